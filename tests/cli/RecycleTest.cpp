// Flowsheets whose streams lead back: they converge to what the balances say, or tell why not.

#include <gtest/gtest.h>

#include "tests/cli/CommandRun.h"

namespace morvelan::test::recycle {

constexpr double kTolerance = 1e-6;

/// A feed and a returned stream are mixed, brought to a temperature and split; the first outlet returns.
std::string Loop(const std::string& returned, double splitFactor, const std::string& heater) {
  return R"({"thermo": {"compounds": ["methane", "propane", "n-pentane"]},
    "streams": {
      "feed": {"type": "material", "temperature": 300, "pressure": 1000000, "flow": 5,
               "composition": {"methane": 0.5, "propane": 0.3, "n-pentane": 0.2}})" +
         returned + R"(},
    "units": {
      "Split": {"class": "Splitter", "ports": {"Inlet": "hot", "Outlet1": "return", "Outlet2": "product"},
                "parameters": {"Split factors": [)" +
         std::to_string(splitFactor) + R"(]}},
      "Mix": {"class": "Mixer", "ports": {"Inlet 1": "feed", "Inlet 2": "return", "Outlet": "mixed"}},
      "Heat": {"class": "HeaterCooler", "ports": {"Inlet": "mixed", "Outlet": "hot"}, "parameters": )" +
         heater + "}}}";
}

constexpr const char* kGuess = R"(,
  "return": {"type": "material", "temperature": 290, "pressure": 900000, "flow": 1,
             "composition": {"methane": 0.2, "propane": 0.2, "n-pentane": 0.6}})";
constexpr const char* kNothingReturned = R"(,
  "return": {"type": "material", "temperature": 290, "pressure": 1000000, "flow": 0,
             "composition": {"methane": 1}})";
constexpr const char* kByTemperature = R"({"Outlet temperature": 330, "Type": "Temperature"})";
constexpr const char* kByDuty = R"({"Type": "Heat duty", "Heat duty": 20000})";

struct LoopCase {
  const char* title;
  const char* guess;
  double splitFactor;
  const char* heater;
};

constexpr LoopCase kLoops[] = {
    {"a poor guess", kGuess, 0.5, kByTemperature},
    {"nothing returned at first", kNothingReturned, 0.5, kByTemperature},
    {"much returned", kGuess, 0.95, kByTemperature},
    {"two phases, heated by a duty", kGuess, 0.7, kByDuty},
};

TEST(Recycle, ConvergesToTheBalances) {
  for (const LoopCase& loop : kLoops)
    for (const char* option : {"--quiet --thermo 1.0", "--quiet --thermo 1.1", "--quiet --roundtrip"}) {
      SCOPED_TRACE(std::string(loop.title) + " " + option);
      const auto outcome = RunFlowsheet(Loop(loop.guess, loop.splitFactor, loop.heater), option);
      ASSERT_EQ(outcome.status, 0) << outcome.errors;
      const Json& streams = outcome.results["streams"];
      const auto value = [&](const char* stream, const char* key) { return streams[stream][key].get<double>(); };
      const double returned = 5 * loop.splitFactor / (1 - loop.splitFactor);
      EXPECT_NEAR(value("return", "flow"), returned, kTolerance * returned);
      EXPECT_NEAR(value("product", "flow"), 5, 5 * kTolerance / (1 - loop.splitFactor));
      EXPECT_NEAR(streams["product"]["composition"]["n-pentane"].get<double>(), 0.2, kTolerance);
      const double duty = outcome.results["units"]["Heat"]["parameters"]["Heat duty"];
      const double gained =
          value("product", "flow") * value("product", "enthalpy") - value("feed", "flow") * value("feed", "enthalpy");
      EXPECT_NEAR(gained, duty, kTolerance * std::abs(duty) / (1 - loop.splitFactor));
    }
}

TEST(Recycle, SaysWhatKeepsItFromBeingSolved) {
  const auto everythingReturned = RunFlowsheet(Loop(kGuess, 1, kByTemperature), "--quiet");
  EXPECT_EQ(everythingReturned.status, 1);
  EXPECT_NE(everythingReturned.errors.find("the recycle does not converge"), std::string::npos)
      << everythingReturned.errors;
  const auto withoutGuess = RunFlowsheet(Loop("", 0.5, kByTemperature), "--quiet");
  EXPECT_EQ(withoutGuess.status, 2);
  EXPECT_NE(withoutGuess.errors.find("needs a guess"), std::string::npos) << withoutGuess.errors;
}

TEST(Recycle, LogsItsLastRoundOnly) {
  const auto outcome = RunFlowsheet(
      Loop(kGuess, 0.5, R"({"Type": "Temperature", "Outlet temperature": 330, "Pressure drop": 2e6})"), "--quiet");
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.results["log"], Json::array({"Mix warning: limiting outlet pressure to 1 Pa",
                                                 "Heat warning: limiting outlet pressure to 1 Pa",
                                                 "Split warning: limiting outlet pressure to 1 Pa"}));
}

}  // namespace morvelan::test::recycle
