// The command's own face: what it prints, and its exit status for wrong arguments.

#include <gtest/gtest.h>

#include <sstream>

#include "tests/cli/CommandRun.h"

namespace morvelan::test::command {

struct Invocation {
  const char* arguments;
  int status;
  std::vector<const char*> output;
  std::vector<const char*> errors;
};

void Expect(const Invocation& invocation) {
  const auto outcome = RunCommand(invocation.arguments);
  EXPECT_EQ(outcome.status, invocation.status) << invocation.arguments << ": " << outcome.errors;
  for (const char* words : invocation.output)
    EXPECT_NE(outcome.output.find(words), std::string::npos) << invocation.arguments << ": " << outcome.output;
  for (const char* words : invocation.errors)
    EXPECT_NE(outcome.errors.find(words), std::string::npos) << invocation.arguments << ": " << outcome.errors;
  EXPECT_EQ(outcome.errors.empty(), invocation.errors.empty()) << invocation.arguments << ": " << outcome.errors;
  if (!outcome.errors.empty()) {
    EXPECT_TRUE(outcome.errors.starts_with("morvelan: ")) << outcome.errors;
  }
}

TEST(Command, AnswersItsArguments) {
  const Invocation invocations[] = {
      {"--help", 0, {"run", "units", "describe"}, {}},
      {"run --help", 0, {"--json", "--thermo", "--simplified", "--roundtrip", "--quiet"}, {}},
      {"--version", 0, {"morvelan 1."}, {}},
      {"units",
       0,
       {"NAME", "PROGID", "VELT_MORV.NoOperation", "{A158F66A-9B33-489F-A4D1-DCFE3BFD26B0}", "Debug unit operation"},
       {}},
      {"describe VELT_MORV.nooperation",
       0,
       {"Inlet   inlet   material  No-Operation feed", "Outlet  outlet  material  No-Operation product",
        "Thermo Version  option  input", "\"1.0\", \"1.1\"", "Status"},
       {}},
      {"describe NoOperatin", 2, {}, {"\"NoOperatin\" is unknown", "did you mean \"NoOperation\"?"}},
      {"", 2, {}, {"subcommand"}},
      {"run", 2, {}, {"FILE"}},
      {"walk", 2, {}, {"morvelan: "}},
      {"run x.json --thermo 1.2", 2, {}, {"1.2"}},
      {"run x.json --colour", 2, {}, {"--colour"}},
      {"run x.json y.json", 2, {}, {"y.json"}},
      {"run \"" MORVELAN_EXAMPLES "/noop-two-phase-11.json\" --roundtrip", 0, {"unit is solved"}, {}},
      {"run \"" MORVELAN_EXAMPLES "/noop-two-phase-11.json\" --json /no/such/folder/out.json",
       2,
       {},
       {"cannot be written"}},
  };
  for (const Invocation& invocation : invocations) Expect(invocation);
}

TEST(Command, WritesJsonToStandardOutputForADash) {
  const auto outcome = RunCommand("run \"" MORVELAN_EXAMPLES "/noop-two-phase-10.json\" --json -");
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  const Json results = Json::parse(outcome.output);
  EXPECT_EQ(results["solved"], true);
  EXPECT_EQ(results["units"]["N-101"]["parameters"]["Thermo Version"], "1.0");
  // The order of keys is part of what readers see.
  EXPECT_LT(outcome.output.find("\"title\""), outcome.output.find("\"streams\""));
  EXPECT_LT(outcome.output.find("\"streams\""), outcome.output.find("\"units\""));
}

struct ExampleNumber {
  const char* example;
  const char* place;  // in the results
  double expected;
  double tolerance;
};

// Of the two-phase gas: a flash by successive substitution with the 1976 Peng-Robinson equation, the enthalpy
// from its departure function and the ideal gas integrated numerically, written apart from this library. The
// rest follows on paper from what the units do.
const ExampleNumber kExampleNumbers[] = {
    {"noop-two-phase-10", "/streams/same gas/phases/Vapor/fraction", 0.8775059379624, 1e-9},
    {"noop-two-phase-10", "/streams/same gas/enthalpy", -5075.3714956228, 1e-6},
    {"noop-two-phase-11", "/streams/same gas/phases/Vapor/fraction", 0.8775059379624, 1e-9},
    {"noop-two-phase-11", "/streams/same gas/enthalpy", -5075.3714956228, 1e-6},
    {"noop-two-phase-11", "/streams/same gas/phases/Vapor/composition/methane", 0.8496514363400, 1e-9},
    {"noop-two-phase-11", "/streams/same gas/phases/Liquid/composition/n-pentane", 0.1508778849295, 1e-9},
    {"noop-phases-both", "/streams/vapour out/composition/n-pentane", 1e-12, 1e-21},
    {"noop-phases-both", "/streams/vapour out/composition/water", 0, 0},
    {"noop-phases-both", "/streams/liquid out/phases/Liquid/fraction", 1, 0},
    {"noop-phases-both", "/streams/no flow out/flow", 0, 0},
    {"noop-phases-both", "/streams/no flow out/temperature", 300, 0},
    {"heater-duty", "/units/E-101/parameters/Heat duty", 2.5e6, 0},
    {"heater-temperature", "/streams/cold gas/temperature", 245, 0},
    {"heater-energy-stream", "/streams/as warm as it gets/temperature", 420, 0},
    {"valve-joule-thomson", "/streams/to chiller/pressure", 2.5e5, 0},
    {"mixer-hot-cold", "/streams/quenched/composition/n-heptane", 0.32, 1e-12},
    {"splitter", "/streams/purge/flow", 5, 1e-12},
    {"recycle", "/streams/product/enthalpy", -730.862, 1e-3},
    // The lower heating value of methane, 802557 J/mol, from the formation enthalpies in data/.
    {"reactor-methane-combustion", "/streams/flue gas/enthalpy", 802557.0 / 12.5, 0.5},
    {"reactor-methane-combustion", "/units/boiler/parameters/Heat duty", -743877, 1},
    // Of the reactors: equilibrium, rate and heat balance solved with 30 digits, heat capacities integrated
    // numerically from 298.15 K, enthalpy and density of the 1976 Peng-Robinson equation in terms of Z, from
    // the same data but written apart from this library. The tolerances are those of the reactors' solutions,
    // 1e-9 in ln Q - ln K or in the extents, and of flashes, 1e-10 in H/(RT), with room for their effect.
    {"reactor-water-gas-shift", "/streams/hot gas/temperature", 703.135396223, 1e-6},
    {"reactor-water-gas-shift", "/streams/hot gas/composition/carbon monoxide", 0.014855843795615, 1e-9},
    {"reactor-water-gas-shift", "/streams/shifted gas/composition/carbon monoxide", 0.000805656409917, 1e-10},
    {"reactor-water-gas-shift", "/units/cold shift/parameters/Heat duty", -8100264.69577, 0.01},
    {"reactor-steam-reforming", "/streams/reformed gas/composition/methane", 0.045539513041216, 1e-9},
    {"reactor-steam-reforming", "/streams/reformed gas/composition/carbon dioxide", 0.058058551409918, 1e-9},
    {"reactor-steam-reforming", "/units/reformer/parameters/Heat duty", 5407650.27356, 0.1},
    {"reactor-steam-reforming", "/streams/partly reformed gas/temperature", 818.941001798, 1e-6},
    {"reactor-steam-reforming", "/streams/partly reformed gas/composition/carbon monoxide", 0.002834198567547, 1e-9},
    {"reactor-ammonia", "/streams/hot gas/temperature", 769.078009364, 1e-6},
    {"reactor-ammonia", "/streams/converted gas/temperature", 724.658940722, 1e-6},
    {"reactor-ammonia", "/streams/converted gas/composition/ammonia", 0.182239469380, 1e-9},
    {"reactor-ammonia", "/units/cooler/parameters/Heat duty", -3670377.60217, 0.1},
    {"reactor-esterification", "/streams/crude ester/composition/ethyl acetate", 0.205664292306, 1e-8},
    {"reactor-esterification", "/streams/crude ester/phases/Liquid/fraction", 1, 0},
    {"reactor-esterification", "/units/tank/parameters/Heat duty", 12738.0693431, 0.01},
    // 100 mol/s and the extent, the positive root of e (100 + e) = k V P/(RT) (60 - e).
    {"reactor-ethane-cracking", "/streams/cracked gas/flow", 132.929163911902, 1e-6},
    {"reactor-ethane-cracking", "/streams/cracked gas/composition/ethylene", 0.247719634600, 1e-8},
    {"reactor-ethane-cracking", "/units/cracker/parameters/Heat duty", 6330300.21864, 0.2},
    {"information-calculator", "/streams/mean temperature difference/value", 21.640425613, 1e-8},
    {"information-calculator", "/streams/heat exchanger area/value", 27.182242375, 1e-8},
};

TEST(Command, RunsTheExamplesAsTheirReadmeSays) {
  for (const ExampleNumber& number : kExampleNumbers) {
    const auto outcome = RunCommand("run \"" MORVELAN_EXAMPLES "/" + std::string(number.example) + ".json\" --json -");
    ASSERT_EQ(outcome.status, 0) << number.example << ": " << outcome.errors;
    const Json results = Json::parse(outcome.output);
    EXPECT_NEAR(results.at(Json::json_pointer(number.place)).get<double>(), number.expected, number.tolerance)
        << number.example << number.place;
  }
}

TEST(Command, PrintsStreamsSideBySideInLinesThatFit) {
  std::string streams;
  for (int i = 1; i <= 12; ++i)
    streams += std::string(i > 1 ? "," : "") + "\"stream number " + std::to_string(i) +
               R"(": {"type": "material", "temperature": 300.5, "pressure": 100000, "flow": 0.25,
                 "composition": {"methane": 1}})";
  const auto outcome =
      RunFlowsheet(R"({"title": "Größe", "thermo": {"compounds": ["methane"]}, "streams": {)" + streams + "}}");
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  std::istringstream lines(outcome.output);
  std::size_t headings = 0, width = 0;
  for (std::string line; std::getline(lines, line);) {
    EXPECT_LE(line.size(), 100u) << line;
    if (line.find("stream number") != std::string::npos) {
      ++headings;
      width = line.size();
    }
    if (line.starts_with("Temperature")) {
      EXPECT_EQ(line.size(), width) << "columns end where their headings do: " << line;
      EXPECT_NE(line.find("300.500"), std::string::npos) << line;
    }
  }
  EXPECT_GE(headings, 2u) << outcome.output;
  EXPECT_TRUE(outcome.output.starts_with("Größe\n")) << outcome.output;
}

}  // namespace morvelan::test::command
