// A HeaterCooler in a fake host. Feeds bring 30000 W, and 100 W heat them by 1 K.

#include <cmath>

#include "tests/support/Approved.h"
#include "tests/units/UnitBench.h"

namespace morvelan::test::heater_cooler {

TEST(CHeaterCooler, TakesAsInputWhatItsTypeSpecifies) {
  UnitBench bench("HeaterCooler", false);
  const auto expect = [&](const char* type, bool temperatureIsOutput, bool dutyIsOutput) {
    EXPECT_EQ(bench.door.ParameterText("Type"), type);
    EXPECT_EQ(bench.IsOutput("Outlet temperature"), temperatureIsOutput) << type;
    EXPECT_EQ(bench.IsOutput("Heat duty"), dutyIsOutput) << type;
  };
  expect("Heat duty", true, false);
  bench.Put("Type", "Temperature");
  expect("Temperature", false, true);
  bench.Put("Type", "Energy inlet");
  expect("Energy inlet", true, true);
  EXPECT_EQ(bench.door.Parameter("Type")->Reset(), S_OK);
  expect("Heat duty", true, false);
  EXPECT_EQ(bench.Put("Type", com::MakeString("Both")), kUnitFailed);
  expect("Heat duty", true, false);
}

struct Specification {
  const char* type;
  double value;  // [W], or [K] under "Temperature"
  double flow;
  double temperature;  // of the outlet
  double duty;         // in the parameter "Heat duty"
  const char* flashes;
};

const Specification kSpecifications[] = {
    {"Heat duty", 1000, 2, 310, 1000, "PH"},  {"Heat duty", -5000, 2, 250, -5000, "PH"},
    {"Heat duty", 1000, 0, 300, 1000, "TP"},  {"Heat duty", 1000, -2, 300, 1000, "TP"},
    {"Temperature", 320, 2, 320, 2000, "TP"}, {"Temperature", 280, 2, 280, -2000, "TP"},
    {"Temperature", 320, 0, 320, 0, "TP"},    {"Energy inlet", 500, 2, 305, 500, "PH"},
    {"Energy inlet", 500, 0, 300, 0, "TP"},
};

TEST(CHeaterCooler, HeatsByEachSpecification) {
  for (const bool thermo11 : {false, true})
    for (const bool quiet : {false, true})
      for (const Specification& c : kSpecifications) {
        SCOPED_TRACE(testing::Message() << c.type << ' ' << c.value << ", flow " << c.flow
                                        << ", thermo 1.1: " << thermo11 << ", quiet: " << quiet);
        UnitBench bench("HeaterCooler", thermo11);
        const std::string type = c.type;
        bench.At("Inlet").flow = c.flow;
        bench.Put("Type", c.type);
        bench.Put("Pressure drop", 2e4);
        if (type == "Energy inlet")
          bench.ConnectHeat(c.value);
        else
          bench.Put(type == "Heat duty" ? "Heat duty" : "Outlet temperature", c.value);
        if (quiet) bench.AskForSimplifiedModel();
        bench.Calculate();
        const FakeState& product = bench.At("Outlet");
        EXPECT_DOUBLE_EQ(product.temperature, c.temperature);
        EXPECT_EQ(product.pressure, 8e4);
        EXPECT_EQ(product.flow, c.flow);
        EXPECT_EQ(product.fractions, bench.At("Inlet").fractions);
        EXPECT_EQ(bench.Flashes(), c.flashes) << "and no second flash";
        EXPECT_NEAR(bench.Number("Outlet temperature"), c.temperature, 1e-12 * c.temperature);
        EXPECT_NEAR(bench.Number("Heat duty"), c.duty, 1e-9);
      }
}

struct RangeCase {
  const char* title;
  double work;
  std::optional<double> low, high;
  double duty;
  double temperature;
  const char* flashes;
  double productCapacity = 50;  // [J/(mol K)]; another one stands for a product that is another fluid
};

const RangeCase kRangeCases[] = {
    {"heating within the range", 1000, 350, 400, 1000, 310, "TP PH"},
    {"heating to the very limit", 10000, 350, 400, 10000, 400, "TP PH"},
    {"heating limited", 20000, 350, 400, 10000, 400, "TP"},
    {"limited, source cold at one end", 20000, 280, 400, 10000, 400, "TP"},
    {"source cold at one end", 1000, 280, 400, 1000, 310, "TP PH"},
    {"cold but for rounding", 1000, 300 - 9e-7, 400, 1000, 310, "TP PH"},
    {"hardly cold", 1000, 300 - 2e-6, 400, 1000, 310, "TP PH"},
    {"heating from below the inlet", 1000, 250, 290, 0, 300, "TP"},
    {"heating, reversed", 1000, 400, 350, 1000, 310, "TP PH"},
    {"heating, reversed and limited", 20000, 400, 350, 10000, 400, "TP"},
    {"no temperatures", 20000, {}, {}, 20000, 500, "PH"},
    {"no lower temperature", 20000, {}, 400, 20000, 500, "PH"},
    {"lower temperature missing", 20000, kMissing, 400, 20000, 500, "PH"},
    {"lower temperature NaN", -20000, kNaN, 250, -20000, 100, "PH"},
    {"heating, no upper temperature", 20000, 350, {}, 20000, 500, "PH"},
    {"the same from below", 20000, 280, kNaN, 20000, 500, "PH"},
    {"cooling within the range", -1000, 250, 280, -1000, 290, "TP PH"},
    {"cooling limited", -20000, 250, 280, -5000, 250, "TP"},
    {"cooling, reversed and limited", -20000, 280, 250, -5000, 250, "TP"},
    {"sink warm at one end", -1000, 250, 320, -1000, 290, "TP PH"},
    {"warm but for rounding", -1000, 250, 300 + 9e-7, -1000, 290, "TP PH"},
    {"hardly warm", -1000, 250, 300 + 2e-6, -1000, 290, "TP PH"},
    {"cooling from above the inlet", -1000, 320, 350, 0, 300, "TP"},
    {"cooling, no upper temperature", -20000, 250, {}, -5000, 250, "TP"},
    {"no heat", 0, 250, 350, 0, 300, "TP PH"},
    // H_lim = 2 x 40 x 310 = 24800 W is less than was fed: marked only. T = (30000 + 1000) / (2 x 40).
    {"heating lowers enthalpy", 1000, 305, 310, 1000, 387.5, "TP PH", 40},
    {"hardly above the limit", 1e-5, 305, 375 - 1.5e-6, 1e-5, 375 + 1.25e-7, "TP PH", 40},
    {"above but for rounding", 1e-5, 305, 375 - 5e-7, 1e-5, 375 + 1.25e-7, "TP PH", 40},
    // H_lim = 2 x 60 x 300 = 36000 W is more than was fed, though nothing is to be heated.
    {"cooling raises enthalpy", -1000, 300, 350, 6000, 300, "TP", 60},
    {"no heat does", 0, 300, 350, 6000, 300, "TP", 60},
    {"so from below", 1000, 250, 310, 1000, 387.5, "TP PH", 40},
    // A limit of zero but for the flashes' noise, of either sign.
    {"limit hardly below zero", 1000, 250, 300, -1.5e-5, 300, "TP", 50 * (1 - 5e-10)},
    {"limit hardly above zero", -1000, 300, 350, 1.5e-5, 300, "TP", 50 * (1 + 5e-10)},
};

std::string SaidOfRange(const RangeCase& c, bool thermo11, bool quiet) {
  UnitBench bench("HeaterCooler", thermo11);
  bench.Rename("H-101");
  bench.At("Outlet").heatCapacity = c.productCapacity;
  bench.ConnectHeat(c.work, c.low, c.high);
  bench.Put("Type", "Energy inlet");
  if (quiet) bench.AskForSimplifiedModel();
  bench.Calculate();
  EXPECT_NEAR(bench.Number("Heat duty"), c.duty, 1e-9) << "J of 30000, from rounding";
  EXPECT_DOUBLE_EQ(bench.At("Outlet").temperature, c.temperature);
  EXPECT_DOUBLE_EQ(bench.Number("Outlet temperature"), c.temperature);
  EXPECT_EQ(bench.Flashes(), c.flashes);
  std::string text;
  for (const std::string& line : bench.context->log) text += "  " + line + '\n';
  const std::string report = bench.door.Report("Last run");
  const auto line = report.find("Heat duty from inlet energy port: ");
  return line == std::string::npos ? text : "  " + report.substr(line, report.find('\r', line) - line) + '\n' + text;
}

TEST(CHeaterCooler, KeepsToTheTemperaturesOfItsEnergyStream) {
  std::string text;
  for (const RangeCase& c : kRangeCases) {
    SCOPED_TRACE(c.title);
    const std::string said = SaidOfRange(c, true, false);
    EXPECT_EQ(SaidOfRange(c, false, false), said);
    for (const bool thermo11 : {false, true}) EXPECT_EQ(SaidOfRange(c, thermo11, true), "");
    text += std::string(c.title) + '\n' + said;
  }
  ExpectApproved("streams/energy-ranges", text);
}

TEST(CHeaterCooler, GoesOnWithoutALimitThatCannotBeFound) {
  constexpr const char* kNoCheck = "Warning: cannot do range check on temperature: ";
  struct {
    const char* title;
    void (*spoil)(UnitBench&);
    const char* why;
  } const cases[] = {
      {"no enthalpy at the limit",
       [](UnitBench& bench) {
         bench.At("Outlet").statuses = {CAPE_UNKNOWNPHASESTATUS, CAPE_UNKNOWNPHASESTATUS};
       },
       "Failed to calculate overall enthalpy; phase Vapor is reported not to be in equilibrium"},
      {"a text for a temperature", [](UnitBench& bench) { bench.heat->parameters[1]->value = com::MakeString("warm"); },
       "a number expected, a text found"},
      {"no value for a temperature", [](UnitBench& bench) { bench.heat->parameters[1]->value = com::Variant(); },
       nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.title);
    UnitBench bench("HeaterCooler", true);
    bench.ConnectHeat(20000, 350, 400);
    bench.Put("Type", "Energy inlet");
    c.spoil(bench);
    bench.Calculate();
    EXPECT_DOUBLE_EQ(bench.At("Outlet").temperature, 500);
    EXPECT_EQ(bench.Number("Heat duty"), 20000);
    EXPECT_EQ(bench.context->log,
              c.why ? std::vector<std::string>{std::string(kNoCheck) + c.why} : std::vector<std::string>{});
  }
}

TEST(CHeaterCooler, GoesOnWithoutADutyThatCannotBeFound) {
  UnitBench bench("HeaterCooler", true);
  bench.Put("Type", "Temperature");
  bench.Put("Outlet temperature", 350);
  bench.Rename("H-101");
  bench.At("Outlet").statuses = {CAPE_UNKNOWNPHASESTATUS, CAPE_UNKNOWNPHASESTATUS};
  bench.Calculate();
  EXPECT_EQ(bench.At("Outlet").temperature, 350);
  EXPECT_EQ(bench.context->log, std::vector<std::string>{"H-101 unable to determine heat duty"});
  EXPECT_NE(bench.door.Report("Last run").find("Heat duty:\tN/A\r\n"), std::string::npos);
  bench.Put("Type", "Heat duty");
  CheckFailedCalculation(bench.door, "parameter Heat duty has no value");
}

TEST(CHeaterCooler, AsksAgainForATemperatureThatIsNotSet) {
  for (const int unset : {1, 2}) {
    UnitBench bench("HeaterCooler", false);
    bench.Put("Heat duty", 1000);
    bench.Validate();
    int asked = 0;
    bench.script->oddAnswers["GetProp Temperature"] = [&] {
      // The first time is for the feed.
      const bool isUnset = ++asked > 1 && asked <= 1 + unset;
      return com::MakeDoubles(std::array{isUnset ? kNaN : 310.0});
    };
    if (unset == 1) {
      bench.Calculate();
      EXPECT_EQ(bench.Number("Outlet temperature"), 310);
    } else {
      CheckFailedCalculation(bench.door, "the temperature of the material on port Outlet is not set after its flash");
    }
  }
}

TEST(CHeaterCooler, NeedsItsEnergyStreamOnlyForItsHeat) {
  UnitBench bench("HeaterCooler", false);
  bench.Validate();
  bench.Put("Type", "Energy inlet");
  bench.Validate();
  CheckFailedCalculation(bench.door, "Inlet energy port is not connected", "Not connected");
  EXPECT_EQ(bench.door.Report("Last run"), "+++ specifications +++\r\n\r\n");
  bench.ConnectHeat(1000, 280, 400);
  const auto expectRefused = [&](com::Variant heat, const std::string& why) {
    bench.heat->parameters[0]->value = std::move(heat);
    CheckFailedCalculation(bench.door, "heat flow of the energy stream: " + why);
  };
  expectRefused(com::MakeString("much"), "a number expected, a text found");
  for (const double unset : {kNaN, kMissing}) expectRefused(com::MakeDouble(unset), "value is not set");
  expectRefused(com::MakeDouble(-std::numeric_limits<double>::infinity()), "value is infinite");
}

TEST(CHeaterCooler, GivesItsHeatToAnOutletPort) {
  constexpr double kUntouched = -1;
  struct {
    const char* type;
    const char* parameter;
    double value;
    double flow;
    bool spoilt;  // the outlet's enthalpy can't be had
    double work;
  } const cases[] = {
      {"Heat duty", "Heat duty", 1000, 2, false, -1000},
      {"Heat duty", "Heat duty", 1000, 0, false, 0},
      {"Temperature", "Outlet temperature", 280, 2, false, 2000},
      {"Temperature", "Outlet temperature", 280, 2, true, kUntouched},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.type << ' ' << c.value << ", flow " << c.flow);
    UnitBench bench("HeaterCooler", true);
    bench.Configure(R"({"heatPort": "outlet"})");
    bench.Put("Type", c.type);
    bench.Put(c.parameter, c.value);
    bench.At("Inlet").flow = c.flow;
    if (c.spoilt) bench.At("Outlet").statuses = {CAPE_UNKNOWNPHASESTATUS, CAPE_UNKNOWNPHASESTATUS};
    bench.Calculate();  // unconnected
    bench.ConnectHeat(kUntouched);
    bench.Calculate();
    EXPECT_NEAR(com::ReadDouble(bench.heat->parameters[0]->value.Get()), c.work, 1e-9);
    EXPECT_EQ(bench.Flashes(), c.flow == 0 || c.type[0] == 'T' ? "TP" : "PH");
    bench.Put("Type", "Energy inlet");
    CheckFailedCalculation(bench.door, "Inlet energy port is not connected", "Not connected");
  }
}

}  // namespace morvelan::test::heater_cooler
