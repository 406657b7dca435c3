// What all reactors share: the reaction package, the options that switch what is given, the heat of an energy stream,
// a feed without flow, the pressure drop, and the report.

#include "tests/support/Approved.h"
#include "tests/support/Faults.h"
#include "tests/support/Persistence.h"
#include "tests/units/reactors/SolvingReactors.h"

namespace morvelan::test::base_reactor {

constexpr const char* kValid = "valid";

struct Assignment {
  const char* title;
  void (*spoil)(FakePackageState&, HostScript&);
  HRESULT outcome;
  const char* error;  // "" for none
  const char* fault;  // of the validation
};

const Assignment kAssignments[] = {
    {"as it should be", [](FakePackageState&, HostScript&) {}, S_OK, "", kValid},
    {"no properties", [](FakePackageState& state, HostScript&) { state.offersProperties = false; }, kUnitFailed,
     "Failed to obtain ICapeReactionProperties from reactionsObject in SetReactionObject: No such interface supported",
     "A reaction package has not been selected"},
    {"no chemistry", [](FakePackageState& state, HostScript&) { state.offersChemistry = false; }, S_OK,
     "Failed to get ICapeReactionChemistry interface from reaction object: No such interface supported",
     "Error for reaction A to B: failed to obtain ICapeReactionChemistry interface"},
    {"no list", [](FakePackageState&, HostScript& script) { script.failAt = 3; }, S_OK,
     "Failed to get reaction IDs from reaction object: Unspecified error", kValid},
    {"no texts",
     [](FakePackageState&, HostScript& script) {
       script.oddAnswers["GetReactionsIds"] = [] { return com::MakeDoubles(std::array{1.0}); };
     },
     S_OK, "format error in array of reaction IDs from reaction object: element 1: a text expected, a number found",
     kValid},
};

TEST(BaseReactor, TakesAReactionPackage) {
  for (const Assignment& c : kAssignments) {
    SCOPED_TRACE(c.title);
    const auto bench = MakeReactor("FixedConversionReactor");
    EXPECT_EQ(bench->Fault(), kValid);
    EXPECT_EQ(bench->Assign(nullptr), S_OK);
    EXPECT_EQ(bench->door.Status(), CAPE_NOT_VALIDATED);
    bench->Restart();
    c.spoil(bench->package->state, *bench->script);
    EXPECT_EQ(bench->Assign(bench->package.Get()), c.outcome);
    const std::string error = InThisSystemsWords(c.error);
    EXPECT_EQ(ErrorOf(bench->door.unit.Get()),
              error.empty() ? Texts{} : (Texts{error, error, "SetReactionObject", "ICapeKineticReactionContext"}));
    bench->Restart();
    bench->script->oddAnswers.clear();
    EXPECT_EQ(bench->Fault(), c.fault);
  }
  EXPECT_EQ(ReactorBench().door.unit.As<ICapeKineticReactionContext>()->SetReactionObject(nullptr), E_POINTER);
}

TEST(BaseReactor, LetsGoOfItsPackage) {
  const auto package = com::Make<FakeReactionPackage>(std::make_shared<HostScript>(), ReactorPackage());
  IDispatch* object = static_cast<ICapeReactionProperties*>(package.Get());
  IDispatch* none = nullptr;
  UnitDoor door(CreateUnit("FixedConversionReactor"));
  const auto context = door.unit.As<ICapeKineticReactionContext>();
  EXPECT_EQ(context->SetReactionObject(&object), S_OK) << "a host may be early";
  const ULONG held = package->References();
  EXPECT_GT(held, 1u);
  EXPECT_EQ(door.utilities->Initialize(), S_OK);
  EXPECT_EQ(context->SetReactionObject(&object), S_OK);
  EXPECT_EQ(package->References(), held) << "once";
  EXPECT_EQ(context->SetReactionObject(&none), S_OK);
  EXPECT_EQ(package->References(), 1u);
  EXPECT_EQ(context->SetReactionObject(&object), S_OK);
  EXPECT_EQ(door.utilities->Terminate(), S_OK);
  EXPECT_EQ(package->References(), 1u);
}

TEST(BaseReactor, NeedsItsPackageToCalculate) {
  const auto bench = MakeReactor("FixedConversionReactor");
  // Withdrawn between the validation and the reading of the feed.
  bench->Validate();
  bench->script->oddAnswers["GetOverallProp Temperature"] = [&] {
    EXPECT_EQ(bench->Assign(nullptr), S_OK);
    return com::MakeDoubles(std::array{300.0});
  };
  CheckFailedCalculation(bench->door, "The unit was changed while it was calculated");
  // Withdrawn while it is used: this calculation ends with what it has.
  bench->script->oddAnswers.clear();
  EXPECT_EQ(bench->Assign(bench->package.Get()), S_OK);
  bench->Put("Enthalpy Type", "Use Enthalpy and heat of reaction");
  bench->Validate();
  bench->script->oddAnswers["GetReactionProp enthalpyOfReaction"] = [&] {
    EXPECT_EQ(bench->Assign(nullptr), S_OK);
    return com::MakeDoubles(std::array{-10000.0});
  };
  bench->Calculate();
  EXPECT_EQ(bench->package->References(), 1u);
  EXPECT_EQ(bench->door.Status(), CAPE_NOT_VALIDATED);
}

TEST(BaseReactor, SwitchesWhatIsGivenAndItsEnergyPort) {
  ReactorBench bench;
  const auto expect = [&](const char* type, bool temperatureIsOutput, bool dutyIsOutput, bool isInlet) {
    SCOPED_TRACE(type);
    EXPECT_EQ(bench.door.ParameterText("Heat duty type"), type);
    EXPECT_EQ(bench.IsOutput("Temperature"), temperatureIsOutput);
    EXPECT_EQ(bench.IsOutput("Heat duty"), dutyIsOutput);
    const std::vector<std::string> names = {"Inlet", "HeatDutySpecification", "Outlet"};
    EXPECT_EQ(bench.PortNames(), isInlet ? names : (std::vector<std::string>{"Inlet", "Outlet", "Heat duty"}));
    const auto port = bench.door.Port(isInlet ? "HeatDutySpecification" : "Heat duty");
    CapePortDirection direction = CAPE_INLET_OUTLET;
    EXPECT_EQ(port->get_direction(&direction), S_OK);
    EXPECT_EQ(direction, isInlet ? CAPE_INLET : CAPE_OUTLET);
    EXPECT_EQ(TextFrom(port.Get(), &ICapeIdentification::get_ComponentDescription),
              isInlet ? "Heat duty specification" : "Heat duty");
  };
  expect("Heat duty", true, false, false);
  bench.ConnectHeat(0, {}, {}, "Heat duty");
  bench.Put("Heat duty type", "Isothermal");
  expect("Isothermal", false, true, false);
  EXPECT_GT(bench.heat->References(), 1u) << "the port stays";
  bench.Put("Heat duty type", "Energy inlet");
  expect("Energy inlet", true, true, true);
  EXPECT_EQ(bench.heat->References(), 1u) << "the other port is gone";
  bench.ConnectHeat(100, {}, {}, "HeatDutySpecification");
  EXPECT_EQ(bench.Put("Heat duty type", com::MakeString("Adiabatic")), kUnitFailed);
  expect("Energy inlet", true, true, true);
  const std::string saved = SavedBytes(bench.door.unit.As<IPersistStream>().Get());
  EXPECT_EQ(bench.door.Parameter("Heat duty type")->Reset(), S_OK);
  expect("Heat duty", true, false, false);
  EXPECT_EQ(bench.heat->References(), 1u);
  EXPECT_EQ(LoadBytes(bench.door.unit.As<IPersistStream>().Get(), saved), S_OK);
  expect("Energy inlet", true, true, true);
}

TEST(BaseReactor, BoundsItsParameters) {
  struct {
    const char* parameter;
    double lowest, highest, below, above;
  } const cases[] = {{"Tolerance", 1e-10, 0.1, 0.99e-10, 0.11}, {"Maximum iterations", 10, 1000, 9, 1001}};
  for (const char* unit : {"EquilibriumReactor", "CSTR"})
    for (const auto& c : cases) {
      SCOPED_TRACE(std::string(unit) + ", " + c.parameter);
      ReactorBench bench(true, unit);
      const auto put = [&](double value) {
        const bool isInteger = *c.parameter == 'M';
        return bench.Put(c.parameter, isInteger ? com::MakeInteger(static_cast<int>(value)) : com::MakeDouble(value));
      };
      for (const double value : {c.lowest, c.highest}) EXPECT_EQ(put(value), S_OK) << value;
      for (const double value : {c.below, c.above}) EXPECT_EQ(put(value), kUnitFailed) << value;
    }
  for (const double duty : {1.1e10, -1.1e10})
    EXPECT_EQ(ReactorBench().Put("Heat duty", com::MakeDouble(duty)), kUnitFailed);
}

struct Balance {
  const char* unit;
  const char* type;
  const char* enthalpy;
  const char* reaction;
  double given;  // [K] or [W]
  double temperature;
  double duty;
};

constexpr const char *kFixed = "FixedConversionReactor", *kEquilibrium = "EquilibriumReactor";
constexpr const char* kF = "Use EnthalpyF";
constexpr const char* kPlain = "Use Enthalpy (no heat of reaction)";
constexpr const char* kAndHeat = "Use Enthalpy and heat of reaction";

// From A to B and to C at equilibrium: x_B = 4 x_A, x_C = x_B / 2. The heats of reaction are those that follow from the
// heats of formation.
constexpr double kA = 2. / 7, kB = 8. / 7, kC = 4. / 7;  // [mol/s]: A (1 + 4 + 2) = 2
constexpr double kReleased = 10000 * kB + 30000 * kC;    // [W], by the heats of formation of B and C
constexpr double kHot = 300 + kReleased / (2 * 50);      // [K]

// Half of the feed of 2 mol/s is converted: the extent is 1 mol/s. From H_in = 30000 W (of either kind, for A is an
// element here) follows
//   A to B:  H = 2 * 50 T, HF = H - 10000;  A to 2B:  H = 3 * 50 T, HF = H - 2 * 10000.
const Balance kBalances[] = {
    {kFixed, "Heat duty", kF, "A to B", 0, 400, 0},
    {kFixed, "Heat duty", kF, "A to B", 1000, 410, 1000},
    {kFixed, "Heat duty", kF, "A to 2B", 0, 50000. / 150, 0},
    {kFixed, "Heat duty", kPlain, "A to B", 0, 300, 0},
    {kFixed, "Heat duty", kPlain, "A to 2B", -1000, 29000. / 150, -1000},
    {kFixed, "Heat duty", kAndHeat, "A to B", 0, 400, 0},
    {kFixed, "Heat duty", kAndHeat, "A to 2B", 1000, 51000. / 150, 1000},
    {kFixed, "Energy inlet", kF, "A to B", -2000, 380, -2000},
    {kFixed, "Energy inlet", kAndHeat, "A to B", -2000, 380, -2000},
    {kFixed, "Isothermal", kF, "A to B", 350, 350, -5000},
    {kFixed, "Isothermal", kF, "A to 2B", 350, 350, 2500},
    {kFixed, "Isothermal", kPlain, "A to B", 350, 350, 5000},
    {kFixed, "Isothermal", kAndHeat, "A to B", 350, 350, -5000},
    {kEquilibrium, "Isothermal", kF, "", 350, 350, 2 * 50 * 50 - kReleased},
    {kEquilibrium, "Isothermal", kPlain, "", 350, 350, 2 * 50 * 50},
    {kEquilibrium, "Isothermal", kAndHeat, "", 350, 350, 2 * 50 * 50 - kReleased},
    {kEquilibrium, "Heat duty", kF, "", 0, kHot, 0},
    {kEquilibrium, "Heat duty", kPlain, "", 1000, 310, 1000},
    {kEquilibrium, "Heat duty", kAndHeat, "", 1000, kHot + 10, 1000},
    {kEquilibrium, "Energy inlet", kF, "", -2000, kHot - 20, -2000},
};

void CheckBalance(const Balance& c, bool thermo11, bool quiet) {
  const bool converts = c.unit == kFixed;
  const std::string type = c.type;
  const auto bench = MakeReactor(c.unit, thermo11);
  if (converts)
    bench->Select('"' + std::string(c.reaction) + '"', R"("A")", "0.5");
  else
    bench->package->state.reactions[1].properties["enthalpyOfReaction"] = {-20000, 0}, bench->Select(R"("R1", "R2")");
  bench->Put("Heat duty type", c.type);
  bench->Put("Enthalpy Type", c.enthalpy);
  if (type == "Energy inlet")
    bench->ConnectHeat(c.given, {}, {}, "HeatDutySpecification");
  else
    bench->Put(type == "Isothermal" ? "Temperature" : "Heat duty", c.given);
  if (type != "Energy inlet") bench->ConnectHeat(-1, {}, {}, "Heat duty");
  if (quiet) bench->AskForSimplifiedModel();
  bench->Calculate();
  const double kelvin = converts ? 1e-10 * c.temperature : 1e-6, watt = converts ? 1e-8 : 1e-4;  // of 30000 W
  EXPECT_NEAR(bench->At("Outlet").temperature, c.temperature, kelvin);
  EXPECT_NEAR(bench->Number("Temperature"), c.temperature, kelvin);
  EXPECT_NEAR(bench->Number("Heat duty"), c.duty, watt);
  EXPECT_NEAR(com::ReadDouble(bench->heat->parameters[0]->value.Get()), c.duty, watt) << "at the port";
  EXPECT_FALSE(bench->package->material) << "the package keeps nothing";
  EXPECT_EQ(bench->context->log, std::vector<std::string>{});
  if (!converts) return ExpectFlows(*bench, {kA, kB, kC}, 1e-9);
  EXPECT_EQ(bench->Flashes(), type == "Isothermal" ? "TP" : "PH");
  EXPECT_EQ(bench->CallsOf("GetReactionPhase"), 1) << "resolved once";
  EXPECT_EQ(bench->CallsOf("SetMaterial"), c.enthalpy == kAndHeat ? 1 : 0);
}

TEST(BaseReactor, ClosesItsHeatBalance) {
  for (const bool thermo11 : {false, true})
    for (const bool quiet : {false, true})
      for (const Balance& c : kBalances) {
        SCOPED_TRACE(testing::Message() << c.unit << ", " << c.type << ", " << c.enthalpy << ", " << c.reaction << ", "
                                        << c.given << ", thermo 1.1: " << thermo11 << ", quiet: " << quiet);
        CheckBalance(c, thermo11, quiet);
      }
}

struct HeatCase {
  const char* title;
  double work;
  std::optional<double> low, high;
};

// Without reaction the feed of 300 K leaves at 310 K when 1000 W heat it, and at 290 K when they cool it.
const HeatCase kHeatCases[] = {
    {"no range", 1000, {}, {}},
    {"hot enough", 1000, 310, 400},
    {"reversed", 1000, 400, 310},
    {"cold at one end", 1000, 305, 400},
    {"cold at both", 1000, 300, 305},
    {"reversed and cold", 1000, 305, 300},
    {"cold, no lower end", 1000, {}, 305},
    {"cold, no upper end", 1000, 305, {}},
    {"cold enough", -1000, 250, 290},
    {"warm at one end", -1000, 250, 295},
    {"warm at both", -1000, 295, 300},
    {"nothing to transfer", 0, 250, 280},
};

std::string SaidOfHeat(const HeatCase& c, bool thermo11, bool quiet) {
  ReactorBench bench(thermo11);
  bench.Select(R"("A to B")", R"("A")", "0");
  bench.Put("Heat duty type", "Energy inlet");
  bench.ConnectHeat(c.work, c.low, c.high, "HeatDutySpecification");
  if (quiet) bench.AskForSimplifiedModel();
  bench.Calculate();
  EXPECT_NEAR(bench.Number("Temperature"), 300 + c.work / 100, 1e-9) << c.title;
  EXPECT_EQ(bench.Number("Heat duty"), c.work) << c.title;
  std::string text;
  for (const std::string& line : bench.context->log) text += "  " + line + '\n';
  const std::string report = bench.door.Report("Last run");
  const auto line = report.find("\r\nHeat duty from inlet energy port: ");
  return line == std::string::npos
             ? text
             : "  " + report.substr(line + 2, report.find('\r', line + 2) - line - 2) + '\n' + text;
}

TEST(BaseReactor, TakesTheHeatOfAnEnergyStream) {
  std::string text;
  for (const HeatCase& c : kHeatCases) {
    const std::string said = SaidOfHeat(c, true, false);
    EXPECT_EQ(SaidOfHeat(c, false, false), said) << c.title;
    for (const bool thermo11 : {false, true}) EXPECT_EQ(SaidOfHeat(c, thermo11, true), "") << c.title;
    text += std::string(c.title) + '\n' + said;
  }
  ExpectApproved("reactors/energy-streams", text);
}

// There is nothing to heat, also if the temperature is given.
TEST(BaseReactor, PassesNoFeedOn) {
  for (const std::string unit : kReactors)
    for (const std::string type : {"Isothermal", "Heat duty", "Energy inlet"})
      for (const bool quiet : {false, true}) {
        SCOPED_TRACE(testing::Message() << unit << ", " << type << ", quiet: " << quiet);
        const auto bench = MakeReactor(unit);
        bench->Put("Heat duty type", type.c_str());
        if (type == "Isothermal") bench->Put("Temperature", 350);
        if (type == "Energy inlet") bench->ConnectHeat(1000, {}, {}, "HeatDutySpecification");
        if (quiet) bench->AskForSimplifiedModel();
        bench->Put("Pressure drop", 2e4);
        bench->At("Inlet").flow = 0;
        bench->Calculate();
        const FakeState& product = bench->At("Outlet");
        EXPECT_EQ(product.temperature, 300);
        EXPECT_EQ(product.pressure, 8e4);
        EXPECT_EQ(product.flow, 0);
        EXPECT_EQ(product.fractions, bench->At("Inlet").fractions);
        EXPECT_EQ(bench->Number("Heat duty"), 0);
        EXPECT_EQ(bench->CallsOf("GetReactionProp"), 0);
        const std::vector<std::string> warning = {"WARNING: " + unit + " R-1: Zero flow; bypassing calculations"};
        EXPECT_EQ(bench->context->log, quiet ? std::vector<std::string>{} : warning);
      }
}

// At exactly 1 Pa the FixedConversionReactor does not warn.
TEST(BaseReactor, LowersThePressure) {
  struct {
    double drop, outlet;
  } const cases[] = {{0, 1e5}, {2e4, 8e4}, {99998, 2}, {99999, 1}, {99999.5, 1}, {2e5, 1}};
  for (const std::string unit : kReactors)
    for (const bool quiet : {false, true})
      for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << unit << ", drop " << c.drop << " Pa, quiet: " << quiet);
        const auto bench = MakeReactor(unit);
        bench->Put("Pressure drop", c.drop);
        if (quiet) bench->AskForSimplifiedModel();
        bench->Calculate();
        EXPECT_EQ(bench->At("Outlet").pressure, c.outlet);
        const bool warns = c.outlet == 1 && !quiet && (c.drop != 99999 || unit != "FixedConversionReactor");
        const std::vector<std::string> warning = {unit + " \"R-1\" warning: limiting outlet pressure to 1 Pa"};
        EXPECT_EQ(bench->context->log, warns ? warning : std::vector<std::string>{});
        EXPECT_EQ(bench->door.Report("Last run") == "Report is not available", quiet);
      }
}

// The CSTR says so as a warning, the others in the report.
TEST(BaseReactor, GoesOnWithoutADutyThatCannotBeFound) {
  const std::string why = "Failed to calculate overall enthalpyF; phase Vapor is reported not to be in equilibrium";
  for (const std::string unit : kReactors) {
    SCOPED_TRACE(unit);
    const auto bench = MakeReactor(unit);
    bench->Put("Heat duty type", "Isothermal");
    bench->Put("Temperature", 350);
    bench->ConnectHeat(0, {}, {}, "Heat duty");
    bench->At("Outlet").statuses = {CAPE_UNKNOWNPHASESTATUS};
    bench->Calculate();
    EXPECT_EQ(bench->At("Outlet").temperature, 350);
    EXPECT_EQ(bench->Number("Heat duty"), kMissing);
    EXPECT_EQ(com::ReadDouble(bench->heat->parameters[0]->value.Get()), kMissing);
    std::vector<std::string> log;
    if (unit == "CSTR") log = {"Warning: Failed to get enthalpyF from outlet: " + why};
    EXPECT_EQ(bench->context->log, log);
    const std::string report = bench->door.Report("Last run");
    const std::string line = log.empty() ? "Heat duty cannot be determined: " + why : log[0];
    EXPECT_NE(report.find(line + "\r\n"), std::string::npos) << report;
    EXPECT_NE(report.find("Heat duty:\tN/A\r\n"), std::string::npos) << report;
  }
}

struct Report {
  const char* title;
  const char* unit;
  void (*prepare)(ReactorBench&);
};

void HeatAndTell(ReactorBench& bench, const char* enthalpy) {
  bench.Put("Enthalpy Type", enthalpy);
  bench.Put("Heat duty", 1000);
  bench.ConnectHeat(0, {}, {}, "Heat duty");
}

const Report kReports[] = {
    {"half converted", "FixedConversionReactor", [](ReactorBench& b) { HeatAndTell(b, "Use EnthalpyF"); }},
    {"no heat of reaction", "FixedConversionReactor",
     [](ReactorBench& b) { HeatAndTell(b, "Use Enthalpy (no heat of reaction)"); }},
    {"heat of reaction", "FixedConversionReactor",
     [](ReactorBench& b) { HeatAndTell(b, "Use Enthalpy and heat of reaction"); }},
    // The feed is the solution already: x_B = 4 x_A, and 1250 W heat 2.5 mol/s by 10 K.
    {"at equilibrium", "EquilibriumReactor",
     [](ReactorBench& b) {
       b.Select(R"("R1", "L1")");
       b.Feed({0.5, 2, 0});
       b.Put("Heat duty type", "Heat duty");
       b.Put("Heat duty", 1250);
       b.ConnectHeat(0, {}, {}, "Heat duty");
     }},
    // Constant rates: 0.26 mol/(m3 s) in 3 m3 less 1 m3 of catalyst, and 0.025 mol/(kg s) on 10 kg. They release
    // 7700 W, which with the 2525 W of the energy stream heat the feed by 102.25 K.
    {"rates", "CSTR",
     [](ReactorBench& b) {
       b.package->state.reactions[0].formulas["reactionRate"] = [](const FakeConditions&) { return 0.26; };
       b.package->state.reactions[3].formulas["reactionRate"] = [](const FakeConditions&) { return 0.025; };
       b.Select(R"("K1", "H2")");
       b.Put("Heat duty type", "Energy inlet");
       b.ConnectHeat(2525, {}, {}, "HeatDutySpecification");
       b.Put("Enthalpy Type", "Use Enthalpy and heat of reaction");
       b.Put("Tolerance", 0.0001);
       b.Put("Reactor volume", 3);
       b.Put("Catalyst volume", 1);
       b.Put("Catalyst density", 10);
       b.Put("Temperature", 250);
     }},
};

TEST(BaseReactor, Reports) {
  std::string text;
  for (const Report& c : kReports)
    for (const bool quiet : {false, true}) {
      SCOPED_TRACE(c.title);
      const auto bench = MakeReactor(c.unit);
      EXPECT_EQ(bench->door.Report("Last run"), "Report is not available");
      c.prepare(*bench);
      if (quiet) bench->AskForSimplifiedModel();
      bench->Calculate();
      const std::string report = bench->door.Report("Last run");
      if (quiet) EXPECT_EQ(report, "Report is not available");
      if (quiet) EXPECT_TRUE(bench->context->log.empty());
      if (!quiet) text += std::string("====== ") + c.unit + ", " + c.title + '\n' + report;
    }
  std::erase(text, '\r');
  ExpectApproved("reactors/reports", text);
}

}  // namespace morvelan::test::base_reactor
