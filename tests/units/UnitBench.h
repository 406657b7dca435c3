#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "morvelan.h"
#include "tests/support/Door.h"
#include "tests/support/FakeHost.h"
#include "tests/support/FakeMaterial.h"
#include "tests/support/Published.h"

namespace morvelan::test {

inline constexpr HRESULT kUnitFailed = static_cast<HRESULT>(0x80040501u);
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kMissing = std::numeric_limits<double>::lowest();

/// A feed of 2 mol/s at 300 K and 1 bar whose enthalpy is 50 J/(mol K) times its temperature: it brings
/// 30000 W, and 100 W heat it by 1 K.
inline FakeState HeatableFeed() { return {.heatCapacity = 50}; }

/// A unit in a fake host, in its simulation context and with a material at each material port. Outlets are
/// blank.
struct UnitBench {
  UnitBench(const std::string& className, bool thermo11, FakeState feedState = HeatableFeed())
      : feed(std::move(feedState)), door(CreateUnit(className)) {
    feed.thermo10 = !thermo11;
    feed.thermo11 = thermo11;
    context->namedValues["SimplifiedModelRequest"] = com::MakeBoolean(false);
    EXPECT_EQ(door.utilities->Initialize(), S_OK);
    EXPECT_EQ(door.utilities->put_simulationContext(Dispatch(context)), S_OK);
    ConnectMaterials();
  }
  virtual ~UnitBench() = default;

  void Configure(const std::string& json) {
    const auto configuration = door.unit.As<IUnitConfiguration>();
    EXPECT_EQ(configuration->SetConfiguration(com::ToBstr(json).Get()), S_OK) << ErrorOf(door.unit.Get());
    ConnectMaterials();
  }

  template <class Object>
  static IDispatch* Dispatch(const com::Ref<Object>& object) {
    return static_cast<ICapeIdentification*>(object.Get());
  }

  [[nodiscard]] std::vector<std::string> PortNames() const {
    LONG count = 0;
    EXPECT_EQ(door.Ports()->Count(&count), S_OK);
    std::vector<std::string> names;
    for (LONG i = 1; i <= count; ++i) {
      com::Ref<IDispatch> port;
      EXPECT_EQ(door.Ports()->Item(com::MakeInteger(i).Get(), port.Put()), S_OK);
      names.push_back(TextFrom(port.Get(), &ICapeIdentification::get_ComponentName));
    }
    return names;
  }

  /// Connects a stream that offers heat [W] between temperatures [K]; one that is not given at all is missing
  /// from the stream.
  void ConnectHeat(double work, std::optional<double> low = {}, std::optional<double> high = {},
                   const char* port = "Heat") {
    const std::vector<double> kelvin = {0, 0, 0, 0, 1, 0, 0, 0};
    heat = com::Make<FakeStream>(script);
    heat->Add("work", {2, 1, -3, 0, 0, 0, 0, 0}, work);
    if (low) heat->Add("temperatureLow", kelvin, *low);
    if (high) heat->Add("temperatureHigh", kelvin, *high);
    EXPECT_EQ(door.Port(port)->Connect(Dispatch(heat)), S_OK);
    Restart();
  }

  /// Connects an information stream with one value.
  void ConnectValue(const std::string& port, const std::vector<double>& dimensionality, double value) {
    streams[port] = com::Make<FakeStream>(script);
    streams[port]->Add("value", dimensionality, value);
    EXPECT_EQ(door.Port(port)->Connect(Dispatch(streams[port])), S_OK) << ErrorOf(door.Port(port).Get());
  }

  FakeState& At(const std::string& port) { return materials.at(port)->state; }

  HRESULT Put(const std::string& parameter, const com::Variant& value) {
    const auto target = door.Parameter(parameter);
    EXPECT_TRUE(target) << parameter;
    return target->put_value(value.Get());
  }
  void Put(const std::string& parameter, double value) {
    EXPECT_EQ(Put(parameter, com::MakeDouble(value)), S_OK) << parameter;
  }
  void Put(const std::string& parameter, const char* option) {
    EXPECT_EQ(Put(parameter, com::MakeString(option)), S_OK) << parameter;
  }
  [[nodiscard]] double Number(const std::string& parameter) const {
    com::Variant value;
    EXPECT_EQ(door.Parameter(parameter)->get_value(value.Put()), S_OK) << parameter;
    return com::ReadDouble(value.Get());
  }
  [[nodiscard]] bool IsOutput(const std::string& parameter) const {
    CapeParamMode mode = CAPE_INPUT_OUTPUT;
    EXPECT_EQ(door.Parameter(parameter)->get_Mode(&mode), S_OK);
    return mode == CAPE_OUTPUT;
  }

  /// Gives the unit another name than its class's.
  void Rename(const std::string& name) {
    EXPECT_EQ(door.unit.As<ICapeIdentification>()->put_ComponentName(com::ToBstr(name).Get()), S_OK);
  }
  void AskForSimplifiedModel() { context->namedValues["SimplifiedModelRequest"] = com::MakeBoolean(true); }
  /// Forgets the calls and the log.
  void Restart() {
    script->Restart();
    context->log.clear();
  }
  void Calculate() { EXPECT_EQ(door.unit->Calculate(), S_OK) << ErrorOf(door.unit.Get()); }
  void Validate() {
    std::string message;
    EXPECT_TRUE(door.IsValid(message)) << message;
    Restart();
  }

  /// The flash types of all equilibrium calculations, in order, whatever the thermodynamic generation.
  [[nodiscard]] std::string Flashes() const {
    std::string types;
    for (const std::string& call : script->calls)
      if (call.starts_with("CalcEquilibrium")) {
        const bool known = call.find("nthalpy") != std::string::npos || call.find("/PH") != std::string::npos;
        types += (types.empty() ? "" : " ") + std::string(known ? "PH" : "TP");
      }
    return types;
  }
  [[nodiscard]] std::ptrdiff_t CallsOf(const std::string& label) const {
    return std::ranges::count_if(script->calls, [&](const std::string& call) { return call.starts_with(label); });
  }

  /// The references that the host's objects have.
  [[nodiscard]] virtual std::vector<ULONG> References() const {
    std::vector<ULONG> references = {context->References()};
    for (const auto& [port, material] : materials) references.push_back(material->References());
    for (const auto& [port, stream] : streams) references.push_back(stream->References());
    if (heat) references.push_back(heat->References());
    return references;
  }
  /// Gives or withdraws the reaction package; false for a unit that takes none.
  [[nodiscard]] virtual bool SetPackage(bool /*isAssigned*/) { return false; }
  /// Lets the host forget what the unit has handed over and nothing takes back.
  virtual void ForgetHandedOver() {}

  FakeState feed;
  std::shared_ptr<HostScript> script = std::make_shared<HostScript>();
  std::map<std::string, com::Ref<FakeMaterial>> materials;
  com::Ref<FakeStream> heat;
  std::map<std::string, com::Ref<FakeStream>> streams;  // of information
  com::Ref<FakeContext> context = com::Make<FakeContext>(script);
  UnitDoor door;

 private:
  void ConnectMaterials() {
    for (const std::string& name : PortNames())
      if (!materials.contains(name)) ConnectMaterial(name, feed);
    Restart();
  }

  void ConnectMaterial(const std::string& name, FakeState state) {
    const auto port = door.Port(name);
    CapePortType type = CAPE_MATERIAL;
    CapePortDirection direction = CAPE_INLET;
    EXPECT_EQ(port->get_portType(&type), S_OK);
    EXPECT_EQ(port->get_direction(&direction), S_OK);
    if (type != CAPE_MATERIAL) return;
    if (direction == CAPE_OUTLET) {
      state.temperature = state.pressure = state.flow = 0;
      state.fractions = {};
    }
    materials[name] = com::Make<FakeMaterial>(script, std::move(state));
    EXPECT_EQ(port->Connect(Dispatch(materials[name])), S_OK);
  }
};

inline void CheckFailedCalculation(const UnitDoor& door, const std::string& description, const std::string& name) {
  EXPECT_EQ(door.unit->Calculate(), kUnitFailed);
  EXPECT_EQ(ErrorOf(door.unit.Get()), (Texts{name, description, "Calculate", "ICapeUnit"}));
  EXPECT_EQ(door.Report("Status"), "Calculation failed:\r\n" + description + "\r\n");
}

inline void CheckFailedCalculation(const UnitDoor& door, const std::string& description) {
  CheckFailedCalculation(door, description, description);
}

/// A number as reports print it.
inline std::string NumberText(double number) {
  char buffer[32];
  return {buffer, std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::general, 15).ptr};
}

struct PressureCase {
  double inlet;
  double drop;
  bool quiet;
  double outlet;
};

inline constexpr PressureCase kPressureCases[] = {
    {1e5, 0, false, 1e5},     {1e5, 2e4, false, 8e4}, {1e5, 99998, false, 2}, {1e5, 99999, false, 1},
    {1e5, 99999.5, false, 1}, {1e5, 2e5, false, 1},   {1e5, 2e4, true, 8e4},  {1e5, 95000, true, 9500},
    {1e5, 2e5, true, 2e4},    {500, 450, true, 100},
};

/// Calculates a unit over the pressure cases: the pressure of every outlet, the one warning at the floor, and
/// neither warning nor report in quiet mode.
inline void CheckPressureAfterDrop(const std::string& className, const std::string& dropName) {
  for (const bool thermo11 : {false, true})
    for (const PressureCase& c : kPressureCases) {
      SCOPED_TRACE(testing::Message() << className << ", thermo 1.1: " << thermo11 << ", inlet " << c.inlet
                                      << " Pa, drop " << c.drop << " Pa, quiet: " << c.quiet);
      UnitBench bench(className, thermo11);
      for (auto& [port, material] : bench.materials)
        if (port.starts_with("Inlet")) material->state.pressure = c.inlet;
      bench.Put(dropName, c.drop);
      bench.Rename("U-7");
      if (c.quiet) bench.AskForSimplifiedModel();
      bench.Validate();
      bench.Calculate();
      for (auto& [port, material] : bench.materials)
        if (port.starts_with("Outlet")) EXPECT_EQ(material->state.pressure, c.outlet) << port;
      std::vector<std::string> log;
      // A drop to exactly 1 Pa is "not above 1 Pa" too.
      if (c.outlet == 1) log.push_back("U-7 warning: limiting outlet pressure to 1 Pa");
      EXPECT_EQ(bench.context->log, log);
      EXPECT_EQ(bench.door.Report("Last run") == "Report is not available", c.quiet);
    }
  for (const double unset : {kNaN, kMissing}) {
    UnitBench bench(className, true);
    bench.Put(dropName, unset);
    CheckFailedCalculation(bench.door, "parameter " + dropName + " has no value");
  }
}

}  // namespace morvelan::test
