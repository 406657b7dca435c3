// What all reactors share, through the door that hosts use: the reaction package, the options that switch
// what is given, and the heat of an energy stream.

#include "tests/support/Faults.h"
#include "tests/support/Persistence.h"
#include "tests/units/reactors/ReactorBench.h"

namespace morvelan::test::base_reactor {

// ---- The reaction package

struct Assignment {
  const char* title;
  void (*spoil)(FakePackageState&, HostScript&);
  HRESULT outcome;
  const char* error;  // "" for none
  const char* fault;  // of the validation
};

constexpr const char* kUnlisted = "valid";

const Assignment kAssignments[] = {
    {"as it should be", [](FakePackageState&, HostScript&) {}, S_OK, "", kUnlisted},
    {"no properties", [](FakePackageState& state, HostScript&) { state.offersProperties = false; }, kUnitFailed,
     "Failed to obtain ICapeReactionProperties from reactionsObject in SetReactionObject: No such interface "
     "supported",
     "A reaction package has not been selected"},
    {"no chemistry", [](FakePackageState& state, HostScript&) { state.offersChemistry = false; }, S_OK,
     "Failed to get ICapeReactionChemistry interface from reaction object: No such interface supported",
     "Error for reaction A to B: failed to obtain ICapeReactionChemistry interface"},
    {"no list", [](FakePackageState&, HostScript& script) { script.failAt = 3; }, S_OK,
     "Failed to get reaction IDs from reaction object: Unspecified error", kUnlisted},
    {"no such list",
     [](FakePackageState&, HostScript& script) {
       script.oddAnswers["GetReactionsIds"] = [] { return com::MakeDoubles(std::array{1.0}); };
     },
     S_OK, "format error in array of reaction IDs from reaction object: element 1: a text expected, a number found",
     kUnlisted},
};

TEST(BaseReactor, TakesAReactionPackage) {
  for (const Assignment& c : kAssignments) {
    SCOPED_TRACE(c.title);
    ReactorBench bench;
    bench.Select(R"("A to B")", R"("A")", "0.5");
    EXPECT_EQ(bench.Fault(), "valid");
    EXPECT_EQ(bench.Assign(nullptr), S_OK);
    EXPECT_EQ(bench.door.Status(), CAPE_NOT_VALIDATED);
    bench.Restart();
    c.spoil(bench.package->state, *bench.script);
    EXPECT_EQ(bench.Assign(bench.package.Get()), c.outcome);
    Texts expected{InThisSystemsWords(c.error), InThisSystemsWords(c.error), "SetReactionObject",
                   "ICapeKineticReactionContext"};
    if (expected.name.empty()) expected = {};
    EXPECT_EQ(ErrorOf(bench.door.unit.Get()), expected);
    bench.Restart();
    bench.script->oddAnswers.clear();
    EXPECT_EQ(bench.Fault(), c.fault);
  }
  ReactorBench bench;
  const auto context = bench.door.unit.As<ICapeKineticReactionContext>();
  EXPECT_EQ(context->SetReactionObject(nullptr), E_POINTER);
}

TEST(BaseReactor, LetsGoOfItsPackage) {
  const auto script = std::make_shared<HostScript>();
  const auto package = com::Make<FakeReactionPackage>(script, ReactorPackage());
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
  EXPECT_EQ(context->SetReactionObject(&object), S_OK);
  door = UnitDoor(CreateUnit("FixedConversionReactor"));
  EXPECT_EQ(package->References(), held) << "of the context that this test holds";
}

TEST(BaseReactor, NeedsItsPackageToCalculate) {
  constexpr const char* kLong =
      "A reaction package has not been assigned. Please return to simulation environment and assign a "
      "reaction package to this unit operation";
  ReactorBench bench;
  bench.Select(R"("A to B")", R"("A")", "0.5");
  bench.Validate();
  EXPECT_EQ(bench.Assign(nullptr), S_OK);
  CheckFailedCalculation(bench.door, kLong);
  EXPECT_EQ(bench.Fault(), "A reaction package has not been selected");
  EXPECT_EQ(bench.Assign(bench.package.Get()), S_OK);
  bench.Calculate();
  // Withdrawn between the validation and the reading of the feed.
  bench.Validate();
  bench.script->oddAnswers["GetOverallProp Temperature"] = [&] {
    EXPECT_EQ(bench.Assign(nullptr), S_OK);
    return com::MakeDoubles(std::array{300.0});
  };
  CheckFailedCalculation(bench.door, "The unit was changed while it was calculated");
  // Withdrawn while it is used: this calculation ends with what it has.
  bench.script->oddAnswers.clear();
  EXPECT_EQ(bench.Assign(bench.package.Get()), S_OK);
  bench.Put("Enthalpy Type", "Use Enthalpy and heat of reaction");
  bench.Validate();
  bench.script->oddAnswers["GetReactionProp enthalpyOfReaction"] = [&] {
    EXPECT_EQ(bench.Assign(nullptr), S_OK);
    return com::MakeDoubles(std::array{-10000.0});
  };
  bench.Calculate();
  EXPECT_EQ(bench.package->References(), 1u);
  EXPECT_EQ(bench.door.Status(), CAPE_NOT_VALIDATED);
}

// ---- The options

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

// ---- The heat of an energy stream

struct HeatCase {
  const char* title;
  double work;
  std::optional<double> low, high;
  const char* range;  // in the report
  std::vector<std::string> log;
};

std::string Infeasible(const char* end, const char* how) {
  return std::string("WARNING: FixedConversionReactor R-1: ") + end + " inlet heat stream temperature is " + how +
         ", this is infeasible";
}
const std::string kLowBelow = Infeasible("lower", "below reactor temperature while heating");
const std::string kHighBelow = Infeasible("upper", "below reactor temperature while heating");
const std::string kLowAbove = Infeasible("lower", "above reactor temperature while cooling");
const std::string kHighAbove = Infeasible("upper", "above reactor temperature while cooling");
const std::string kReversed =
    "FixedConversionReactor \"R-1\" warning: Tlow and Thigh are reversed at inlet heat stream; reversing "
    "values";

// Without reaction the feed of 300 K leaves at 310 K when 1000 W heat it, and at 290 K when they cool it.
const HeatCase kHeatCases[] = {
    {"no range", 1000, {}, {}, "(no temperature range for heat transfer)", {}},
    {"hot enough", 1000, 310, 400, "between 310 K and 400 K", {}},
    {"reversed", 1000, 400, 310, "between 310 K and 400 K", {kReversed}},
    {"cold at one end", 1000, 305, 400, "between 305 K and 400 K", {kLowBelow}},
    {"cold at both", 1000, 300, 305, "between 300 K and 305 K", {kLowBelow, kHighBelow}},
    {"reversed and cold", 1000, 305, 300, "between 300 K and 305 K", {kReversed, kLowBelow, kHighBelow}},
    {"cold, no lower end", 1000, {}, 305, "(no temperature range for heat transfer)", {kHighBelow}},
    {"cold, no upper end", 1000, 305, {}, "between 305 K and N/A", {kLowBelow}},
    {"cold enough", -1000, 250, 290, "between 250 K and 290 K", {}},
    {"warm at one end", -1000, 250, 295, "between 250 K and 295 K", {kHighAbove}},
    {"warm at both", -1000, 295, 300, "between 295 K and 300 K", {kLowAbove, kHighAbove}},
    {"nothing to transfer", 0, 250, 280, "between 250 K and 280 K", {}},
};

TEST(BaseReactor, TakesTheHeatOfAnEnergyStream) {
  for (const bool thermo11 : {false, true})
    for (const bool quiet : {false, true})
      for (const HeatCase& c : kHeatCases) {
        SCOPED_TRACE(testing::Message() << c.title << ", thermo 1.1: " << thermo11 << ", quiet: " << quiet);
        ReactorBench bench(thermo11);
        bench.Select(R"("A to B")", R"("A")", "0");
        bench.Put("Heat duty type", "Energy inlet");
        bench.ConnectHeat(c.work, c.low, c.high, "HeatDutySpecification");
        if (quiet) bench.AskForSimplifiedModel();
        bench.Calculate();
        EXPECT_NEAR(bench.Number("Temperature"), 300 + c.work / 100, 1e-9);
        EXPECT_EQ(bench.Number("Heat duty"), c.work);
        EXPECT_EQ(bench.context->log, quiet ? std::vector<std::string>{} : c.log);
        const std::string line =
            "\r\nHeat duty from inlet energy port: " + NumberText(c.work) + " W " + c.range + "\r\n";
        EXPECT_EQ(bench.door.Report("Last run").find(line) != std::string::npos, !quiet)
            << bench.door.Report("Last run");
      }
}

TEST(BaseReactor, NeedsTheEnergyStreamThatItIsTold) {
  ReactorBench bench;
  bench.Select(R"("A to B")", R"("A")", "0.5");
  bench.Put("Heat duty type", "Energy inlet");
  EXPECT_EQ(bench.Fault(), "valid");
  CheckFailedCalculation(bench.door, "Inlet energy port is not connected", "Not connected");
  EXPECT_NE(bench.door.Report("Last run").find("Heat duty from inlet energy port: Not connected\r\n"),
            std::string::npos);
  bench.ConnectHeat(kNaN, {}, {}, "HeatDutySpecification");
  CheckFailedCalculation(bench.door, "heat flow of the energy stream: value is not set");
  EXPECT_EQ(bench.At("Outlet").written.size(), 0u) << "the outlet is untouched";
}

}  // namespace morvelan::test::base_reactor
