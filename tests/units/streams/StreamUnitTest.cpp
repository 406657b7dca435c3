// What the units of streams share: connections that they refuse, the pressure after a drop, and their reports, which
// stand in tests/approved/streams.

#include <variant>

#include "tests/support/Approved.h"
#include "tests/units/UnitBench.h"

namespace morvelan::test::stream_unit {

constexpr const char* kUnits[] = {"NoOperation", "HeaterCooler", "Valve", "Mixer", "Splitter"};

void CheckFailedValidation(const UnitBench& bench, const std::string& description) {
  std::string message;
  EXPECT_FALSE(bench.door.IsValid(message));
  EXPECT_EQ(message, description);
  EXPECT_EQ(bench.door.Status(), CAPE_INVALID);
  EXPECT_EQ(bench.door.Report("Status"), description);
}

TEST(StreamUnit, NeedsAllItsMaterials) {
  for (const char* unit : kUnits) {
    const UnitBench whole(unit, true);
    for (const auto& [port, material] : whole.materials) {
      SCOPED_TRACE(std::string(unit) + ", " + port);
      UnitBench bench(unit, true);
      EXPECT_EQ(bench.door.Port(port)->Disconnect(), S_OK);
      CheckFailedCalculation(bench.door, "not all material ports are connected");
      CheckFailedValidation(bench, "not all material ports are connected");
    }
  }
}

TEST(StreamUnit, RefusesOtherCompounds) {
  struct {
    std::vector<std::string> compounds;  // of the last outlet
    const char* start;
    const char* end;
  } const cases[] = {
      {{"ethane", "methane"}, "Compounds list on port ", " does not match compound list on port "},
      {{"methane"}, "Compounds count present on port ", " does not match number of compounds on port "},
      {{}, "No compounds present on port ", nullptr},
  };
  for (const char* unit : kUnits)
    for (const auto& c : cases) {
      UnitBench bench(unit, true);
      const std::string first = bench.PortNames().front(), last = bench.materials.rbegin()->first;
      SCOPED_TRACE(std::string(unit) + ", " + last);
      bench.At(last).compounds = c.compounds;
      bench.At(last).casNumbers.resize(c.compounds.size());
      bench.At(last).molecularWeights.resize(c.compounds.size());
      CheckFailedValidation(bench, c.start + last +
                                       (c.end ? c.end + first +
                                                    "; please make sure to connect materials of the same type to these "
                                                    "ports"
                                              : ""));
    }
}

TEST(StreamUnit, LowersThePressure) {
  for (const char* unit : {"HeaterCooler", "Mixer", "Splitter"}) CheckPressureAfterDrop(unit, "Pressure drop");
  CheckPressureAfterDrop("Valve", "Pressure difference");
}

struct Told {
  const char* unit;
  const char* title;
  std::vector<std::pair<const char*, std::variant<double, const char*>>> parameters;
  double flow = 2;  // [mol/s] of all feeds
  std::optional<double> heat = {};
};

const Told kTold[] = {
    {"HeaterCooler", "heats", {{"Heat duty", 1000.0}, {"Pressure drop", 2e4}}},
    {"HeaterCooler", "cools", {{"Heat duty", -5000.0}}},
    {"HeaterCooler", "without flow", {{"Heat duty", 1000.0}}, 0},
    {"HeaterCooler", "backwards", {{"Heat duty", 1000.0}}, -2},
    {"HeaterCooler", "to a temperature", {{"Type", "Temperature"}, {"Outlet temperature", 320.0}}},
    {"HeaterCooler", "to a temperature, without flow", {{"Type", "Temperature"}, {"Outlet temperature", 320.0}}, 0},
    {"HeaterCooler", "by a stream", {{"Type", "Energy inlet"}, {"Pressure drop", 2e4}}, 2, 500},
    {"HeaterCooler", "by a stream, without flow", {{"Type", "Energy inlet"}}, 0, 500},
    {"Valve", "by a difference", {{"Pressure difference", 2e4}}},
    {"Valve", "to the floor", {{"Pressure difference", 3e5}}},
    {"Valve", "to a pressure", {{"Pressure spec.", "Pressure"}, {"Pressure", 6e4}}},
    {"Valve", "to a higher pressure", {{"Pressure spec.", "Pressure"}, {"Pressure", 1.5e5}}},
    {"Mixer", "with a drop", {{"Pressure drop", 1e4}}},
    {"Splitter", "with a drop", {{"Pressure drop", 2e4}}},
};

std::string Said(const Told& run, bool thermo11, bool quiet) {
  UnitBench bench(run.unit, thermo11);
  bench.Rename("U-7");
  for (auto& [port, material] : bench.materials)
    if (port.starts_with("Inlet")) material->state.flow = run.flow;
  for (const auto& [parameter, value] : run.parameters)
    std::visit([&, name = parameter](auto given) { bench.Put(name, given); }, value);
  if (run.heat) bench.ConnectHeat(*run.heat);
  if (quiet) bench.AskForSimplifiedModel();
  bench.Calculate();
  std::string text;
  for (const std::string& line : bench.context->log) text += "log: " + line + '\n';
  return text + bench.door.Report("Last run");
}

// The same by each thermodynamic interface but for its name, and nothing for a simplified model.
TEST(StreamUnit, Reports) {
  std::string text;
  for (const Told& run : kTold) {
    SCOPED_TRACE(std::string(run.unit) + ", " + run.title);
    const std::string said = Said(run, true, false);
    std::string older = Said(run, false, false);
    for (const bool thermo11 : {false, true}) EXPECT_EQ(Said(run, thermo11, true), "Report is not available");
    if (const auto at = older.find("Version:\t1.0"); at != std::string::npos) older.replace(at, 12, "Version:\t1.1");
    EXPECT_EQ(older, said);
    text += std::string("====== ") + run.unit + ", " + run.title + '\n' + said;
  }
  std::erase(text, '\r');
  ExpectApproved("streams/reports", text);
}

}  // namespace morvelan::test::stream_unit
