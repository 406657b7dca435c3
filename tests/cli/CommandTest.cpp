// The command: its arguments and exit status, what it says of units and of flowsheets, and the examples.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "com/Classes.h"
#include "tests/cli/CommandRun.h"
#include "tests/cli/Flowsheets.h"
#include "tests/support/Approved.h"

namespace morvelan::test::command {

namespace fs = std::filesystem;

const std::string kExample = "run \"" MORVELAN_EXAMPLES "/noop-two-phase-10.json\" ";
const std::string kHeater = "run \"" MORVELAN_EXAMPLES "/heater-duty.json\" ";

struct Invocation {
  std::string arguments;
  int status;
  std::vector<const char*> output;  // words of it; none if there is no output
  std::vector<const char*> errors;
};

const Invocation kInvocations[] = {
    {"--help", 0, {"run", "units", "describe"}, {}},
    {"run --help", 0, {"--json", "--thermo", "--simplified", "--roundtrip", "--quiet"}, {}},
    {"--version", 0, {"morvelan 1."}, {}},
    {"describe VELT_MORV.nooperation", 0, {"NoOperation  VELT_MORV.NoOperation", "No-Operation feed"}, {}},
    {"describe {A158F66A-9b33-489f-a4d1-dcfe3bfd26b0}", 0, {"NoOperation  VELT_MORV.NoOperation"}, {}},
    {"describe NoOperatin", 2, {}, {"\"NoOperatin\" is unknown", "did you mean \"NoOperation\"?"}},
    {"", 2, {}, {"subcommand"}},
    {"run", 2, {}, {"FILE"}},
    {"walk", 2, {}, {"subcommand"}},
    {"run x.json --thermo 1.2", 2, {}, {"1.2"}},
    {"run x.json --colour", 2, {}, {"--colour"}},
    {"run x.json y.json", 2, {}, {"y.json"}},
    {"run x.json", 2, {}, {"x.json: the file cannot be read"}},
    {kHeater + "--roundtrip", 0, {"unit is solved", "Thermo Version      1.1", "+++ specifications +++"}, {}},
    {kHeater + "--simplified", 0, {"unit is solved", "Report is not available"}, {}},
    {kExample + "--thermo 1.1", 0, {"Thermo Version  1.1"}, {}},
    {kExample + "--quiet", 0, {}, {}},
    {kExample + "--json /no/such/folder/out.json", 2, {}, {"cannot be written"}},
};

void ExpectWords(const std::string& text, const std::vector<const char*>& words, const std::string& what) {
  EXPECT_EQ(text.empty(), words.empty()) << what << ": " << text;
  for (const char* word : words) EXPECT_NE(text.find(word), std::string::npos) << what << ": " << text;
}

TEST(Command, AnswersItsArguments) {
  for (const auto& [arguments, status, output, errors] : kInvocations) {
    const CommandOutcome outcome = RunCommand(arguments);
    EXPECT_EQ(outcome.status, status) << arguments;
    ExpectWords(outcome.output, output, arguments);
    ExpectWords(outcome.errors, errors, arguments);
    if (!errors.empty()) EXPECT_TRUE(outcome.errors.starts_with("morvelan: ")) << outcome.errors;
  }
}

// A unit that fails takes those behind it along, and no others. The results are JSON, its keys in this order.
TEST(Command, WritesWhatIsSolved) {
  const CommandOutcome outcome = RunCommand("run \"" MORVELAN_FLOWSHEETS "/failing-unit.json\" --json -");
  EXPECT_EQ(outcome.status, 1);
  ExpectApproved("flowsheets/failing-unit-json", outcome.output + "Errors\n" + outcome.errors);
  const fs::path file = Scratch("results.json");
  const CommandOutcome quiet =
      RunCommand("run \"" MORVELAN_FLOWSHEETS "/failing-unit.json\" --quiet --json \"" + file.string() + '"');
  EXPECT_EQ(quiet.status, 1);
  EXPECT_EQ(quiet.output, "");
  EXPECT_EQ(quiet.errors, outcome.errors);
  EXPECT_EQ(ReadFile(file), outcome.output);
}

/// Lines in alphabetical order: systems list the classes in orders of their own.
std::string Sorted(const std::string& text) {
  std::istringstream stream(text);
  std::multiset<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.insert(line + "\n");
  std::string sorted;
  for (const std::string& line : lines) sorted += line;
  return sorted;
}

TEST(Command, DescribesEveryUnit) {
  ExpectApproved("describe/units", Sorted(RunCommand("units").output));
  for (const com::PublishedClass& unitClass : com::PublishedClasses())
    ExpectApproved("describe/" + unitClass.name, RunCommand("describe " + unitClass.name).output);
}

std::set<fs::path> FilesOf(const char* folder) {
  std::set<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder))
    if (entry.path().extension() == ".json") files.insert(entry.path());
  return files;
}

// What the command prints, with the problems that it tells on standard error.
TEST(Flowsheets, AreReported) {
  for (const fs::path& file : FilesOf(MORVELAN_FLOWSHEETS)) {
    const CommandOutcome outcome = RunCommand("run \"" + file.string() + '"');
    ExpectApproved("flowsheets/" + file.stem().string(),
                   outcome.output + (outcome.errors.empty() ? "" : "\nErrors\n" + outcome.errors));
    EXPECT_EQ(outcome.status, outcome.errors.empty() ? 0 : 1) << file;
  }
}

struct ExampleNumber {
  const char* example;
  const char* place;  // in the results
  double expected;
  double tolerance;
};

// Of the two-phase gas: a flash by successive substitution with the 1976 Peng-Robinson equation, the enthalpy from its
// departure function and the ideal gas integrated numerically, written apart from this library.
//
// Of the reactors: equilibrium, rate and heat balance solved with 30 digits, heat capacities integrated numerically
// from 298.15 K, enthalpy and density of the 1976 Peng-Robinson equation in terms of Z, from the same data but written
// apart from this library. The tolerances are those of the reactors' solutions, 1e-9 in ln Q - ln K or in the extents,
// and of flashes, 1e-10 in H/(RT), with room for their effect.
const ExampleNumber kExampleNumbers[] = {
    {"noop-two-phase-10", "/streams/same gas/phases/Vapor/fraction", 0.8775059379624, 1e-9},
    {"noop-two-phase-10", "/streams/same gas/enthalpy", -5075.3714956228, 1e-6},
    {"noop-two-phase-11", "/streams/same gas/phases/Vapor/fraction", 0.8775059379624, 1e-9},
    {"noop-two-phase-11", "/streams/same gas/enthalpy", -5075.3714956228, 1e-6},
    {"noop-two-phase-11", "/streams/same gas/phases/Vapor/composition/methane", 0.8496514363400, 1e-9},
    {"noop-two-phase-11", "/streams/same gas/phases/Liquid/composition/n-pentane", 0.1508778849295, 1e-9},
    {"noop-phases-both", "/streams/vapour out/composition/n-pentane", 1e-12, 1e-21},
    {"recycle", "/streams/product/enthalpy", -730.862, 1e-3},
    // The lower heating value of methane, 802557 J/mol, from the formation enthalpies in data/.
    {"reactor-methane-combustion", "/streams/flue gas/enthalpy", 802557.0 / 12.5, 0.5},
    {"reactor-methane-combustion", "/units/boiler/parameters/Heat duty", -743877, 1},
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

TEST(Examples, HaveTheNumbersOfIndependentCalculations) {
  std::map<std::string, Json> results;
  for (const fs::path& file : FilesOf(MORVELAN_EXAMPLES)) {
    const FlowsheetOutcome outcome = RunFlowsheet(file);
    EXPECT_EQ(outcome.refusal, "") << file;
    EXPECT_EQ(outcome.results["solved"], true) << file;
    ExpectApproved("examples/" + file.stem().string(), outcome.report);
    results[file.stem().string()] = outcome.results;
  }
  for (const auto& [example, place, expected, tolerance] : kExampleNumbers)
    EXPECT_NEAR(results[example].at(Json::json_pointer(place)).get<double>(), expected, tolerance) << example << place;
}

}  // namespace morvelan::test::command
