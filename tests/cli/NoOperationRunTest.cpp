// A stream that passes through a NoOperation must come out as it went in, whatever is offered and asked.

#include <gtest/gtest.h>

#include "tests/cli/CommandRun.h"

namespace morvelan::test::no_operation_run {

// The unit copies the state and the host flashes it anew from the same numbers.
constexpr double kUnchanged = 1e-9;

struct Feed {
  const char* name;
  const char* compounds;
  double T;
  double P;
  double flow;
  const char* composition;
  std::vector<const char*> phases;  // that the conditions were chosen to have
};

const Feed kFeeds[] = {
    {"two phases",
     R"(["methane", "propane", "n-pentane"])",
     250,
     2e6,
     10,
     R"({"methane": 0.6, "propane": 0.25, "n-pentane": 0.15})",
     {"Liquid", "Vapor"}},
    {"liquid", R"(["propane", "n-pentane"])", 280, 5e6, 3.25, R"({"propane": 0.3, "n-pentane": 0.7})", {"Liquid"}},
    {"vapour", R"(["methane", "nitrogen"])", 300, 1e5, 1e-3, R"({"methane": 0.5, "nitrogen": 0.5})", {"Vapor"}},
    {"no flow", R"(["methane", "propane"])", 300, 1e5, 0, R"({"methane": 0.5, "propane": 0.5})", {"Vapor"}},
    {"a trace",
     R"(["methane", "n-pentane"])",
     300,
     1e5,
     5,
     R"({"methane": 0.999999999999, "n-pentane": 1e-12})",
     {"Vapor"}},
    {"an absent compound",
     R"(["water", "methane", "n-hexane"])",
     300,
     1e6,
     5,
     R"({"methane": 0.4, "n-hexane": 0.6})",
     {"Liquid", "Vapor"}},
    {"a pure vapour", R"(["water"])", 500, 1e5, 2, R"({"water": 1})", {"Vapor"}},
};

std::string FlowsheetOf(const Feed& feed, const std::string& thermo) {
  return R"({"title": "t", "thermo": {"interface": ")" + thermo + R"(", "compounds": )" + feed.compounds +
         R"(}, "streams": {"in": {"type": "material", "temperature": )" + Json(feed.T).dump() + R"(, "pressure": )" +
         Json(feed.P).dump() + R"(, "flow": )" + Json(feed.flow).dump() + R"(, "composition": )" + feed.composition +
         R"(}}, "units": {"N": {"class": "NoOperation", "ports": {"Inlet": "in", "Outlet": "out"}}}})";
}

void ExpectAsListed(const Json& stream, const Feed& feed) {
  EXPECT_EQ(stream["temperature"], feed.T) << feed.name;
  EXPECT_EQ(stream["pressure"], feed.P) << feed.name;
  EXPECT_EQ(stream["flow"], feed.flow) << feed.name;
  const Json listed = Json::parse(feed.composition);
  for (const auto& [compound, fraction] : listed.items())
    EXPECT_NEAR(stream["composition"][compound].get<double>(), fraction.get<double>(), 1e-15) << feed.name;
  std::vector<std::string> phases;
  for (const auto& [name, phase] : stream["phases"].items()) phases.push_back(name);
  EXPECT_EQ(phases, std::vector<std::string>(feed.phases.begin(), feed.phases.end())) << feed.name;
}

TEST(NoOperationRun, CarriesStreamsUnchangedUnderEveryInterface) {
  struct {
    const char* thermo;
    const char* options;
    const char* version;  // that the unit is to use
  } const modes[] = {{"1.0", "--quiet", "1.0"},
                     {"1.1", "--quiet", "1.1"},
                     {"both", "--quiet", "1.1"},
                     {"1.0", "--quiet --simplified", "1.0"},
                     {"1.1", "--quiet --thermo 1.0", "1.0"}};
  for (const Feed& feed : kFeeds) {
    Json first;
    for (const auto& mode : modes) {
      const auto outcome = RunFlowsheet(FlowsheetOf(feed, mode.thermo), mode.options);
      const std::string what = std::string(feed.name) + ", thermo " + mode.thermo + ' ' + mode.options;
      ASSERT_EQ(outcome.status, 0) << what << ": " << outcome.errors;
      EXPECT_EQ(outcome.output + outcome.errors, "") << what;
      const Json& streams = outcome.results["streams"];
      ExpectAsListed(streams["in"], feed);
      ExpectSame(streams["in"], streams["out"], kUnchanged, what);
      if (first.is_null()) first = streams["out"];
      ExpectSame(first, streams["out"], kUnchanged, what + ", against thermo 1.0");
      EXPECT_EQ(outcome.results["units"]["N"]["parameters"]["Thermo Version"], mode.version) << what;
    }
  }
}

// Two phases in the results obey the balance z = V y + L x, and together hold all that there is.
TEST(NoOperationRun, ResultsBalance) {
  const auto outcome = RunFlowsheet(FlowsheetOf(kFeeds[0], "1.1"));
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  const Json& out = outcome.results["streams"]["out"];
  const double V = out["phases"]["Vapor"]["fraction"], L = out["phases"]["Liquid"]["fraction"];
  EXPECT_GT(V, 0.01);
  EXPECT_GT(L, 0.01);
  EXPECT_NEAR(V + L, 1, 1e-12);
  for (const auto& [compound, z] : out["composition"].items()) {
    const double y = out["phases"]["Vapor"]["composition"][compound];
    const double x = out["phases"]["Liquid"]["composition"][compound];
    EXPECT_NEAR(V * y + L * x, z.get<double>(), 1e-9) << compound;
  }
}

TEST(NoOperationRun, FollowsTheStreamsNotTheFile) {
  const auto outcome = RunFlowsheet(R"({"thermo": {"compounds": ["methane"]}, "streams": {
      "a": {"type": "material", "temperature": 300, "pressure": 1e5, "flow": 1, "composition": {"methane": 1}}},
    "units": {"last": {"class": "nooperation", "ports": {"Inlet": "c", "Outlet": "d"}},
              "first": {"class": "VELT_MORV.NoOperation", "ports": {"INLET": "a", "outlet": "b"}},
              "middle": {"class": "{a158f66a-9b33-489f-a4d1-dcfe3bfd26b0}", "ports": {"Inlet": "b", "Outlet": "c"}}}})");
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.results["title"], "flowsheet") << "the file's name, as it has no title";
  ExpectSame(outcome.results["streams"]["a"], outcome.results["streams"]["d"], kUnchanged, "a and d");
  for (const auto& [name, unit] : outcome.results["units"].items()) {
    EXPECT_EQ(unit["class"], "NoOperation");
    EXPECT_EQ(unit["status"], "unit is solved") << name;
    EXPECT_EQ(unit["reports"]["Status"], "unit is solved") << name;
  }
}

// A unit that fails takes those behind it along, and no others.
TEST(NoOperationRun, WritesWhatDidSolve) {
  const auto outcome = RunFlowsheet(R"({"thermo": {"compounds": ["methane"]}, "streams": {
      "a": {"type": "material", "temperature": 300, "pressure": 1e5, "flow": 1, "composition": {"methane": 1}},
      "duty": {"type": "energy", "work": 1000, "temperatureLow": 400, "temperatureHigh": 500},
      "signal": {"type": "information", "value": 3.5, "dimensionality": [0, 0, 0, 0, 1, 0, 0, 0, 1]}},
    "units": {"good": {"class": "NoOperation", "ports": {"Inlet": "a", "Outlet": "b"}},
              "behind": {"class": "NoOperation", "ports": {"Inlet": "d", "Outlet": "e"}},
              "bad": {"class": "NoOperation", "ports": {"Outlet": "d"}}}})");
  EXPECT_EQ(outcome.status, 1);
  const Json& results = outcome.results;
  EXPECT_EQ(results["solved"], false);
  EXPECT_EQ(results["units"]["good"]["solved"], true);
  ExpectSame(results["streams"]["a"], results["streams"]["b"], kUnchanged, "a and b");
  EXPECT_FALSE(results["streams"].contains("d") || results["streams"].contains("e")) << results["streams"];
  EXPECT_EQ(results["streams"]["duty"],
            Json::parse(R"({"type": "energy", "work": 1000.0, "temperatureLow": 400.0, "temperatureHigh": 500.0})"));
  EXPECT_EQ(results["streams"]["signal"], Json::parse(R"({"type": "information", "value": 3.5,
            "dimensionality": [0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0]})"));

  const Json& bad = results["units"]["bad"];
  EXPECT_EQ(bad["solved"], false);
  EXPECT_EQ(bad["status"], "not all material ports are connected");
  EXPECT_EQ(bad["error"]["description"], "not all material ports are connected");
  EXPECT_EQ(bad["error"]["scope"], "Validate");
  EXPECT_EQ(bad["error"]["interface"], "ICapeUnit");
  const std::string behind = results["units"]["behind"]["error"]["description"];
  EXPECT_EQ(behind, "not calculated: its feed \"d\" comes from unit \"bad\", which is not solved");
  for (const char* words :
       {"morvelan: unit \"bad\": not all material ports", "morvelan: unit \"behind\": not calculated"})
    EXPECT_NE(outcome.errors.find(words), std::string::npos) << outcome.errors;
  EXPECT_NE(outcome.output.find("Not calculated: d e"), std::string::npos) << outcome.output;
}

}  // namespace morvelan::test::no_operation_run
