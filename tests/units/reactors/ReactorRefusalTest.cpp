// What reactors refuse: settings, when they are validated, and calculations. What they say stands in
// tests/approved/reactors.

#include "tests/support/Approved.h"
#include "tests/support/SystemText.h"
#include "tests/units/reactors/SolvingReactors.h"
#include "units/reactors/CatalystSpecification.h"

namespace morvelan::test::reactor_refusal {

constexpr const char *kFixed = "FixedConversionReactor", *kEquilibrium = "EquilibriumReactor", *kCstr = "CSTR";

using Prepare = std::function<void(ReactorBench&)>;

/// Several preparations, in order.
template <class... Steps>
Prepare All(Steps... steps) {
  return [=](ReactorBench& bench) { (steps(bench), ...); };
}

/// Selects reactions by their names.
template <class... Names>
Prepare Select(Names... names) {
  std::string list;
  ((list += std::string(list.empty() ? "\"" : ", \"") + names + '"'), ...);
  return [=](ReactorBench& bench) { bench.Select(list); };
}

/// Selects reactions with the compounds that they convert.
Prepare Convert(const char* keys, const char* conversions, const char* names = R"("A to B", "B to C")") {
  return [=](ReactorBench& bench) { bench.Select(names, keys, conversions); };
}

template <class Value>
Prepare Put(const char* parameter, Value value) {
  return [=](ReactorBench& bench) { bench.Put(parameter, value); };
}

Prepare Feed(std::vector<double> flows) {
  return [=](ReactorBench& bench) { bench.Feed(flows); };
}

void NoPackage(ReactorBench& bench) { EXPECT_EQ(bench.Assign(nullptr), S_OK); }
const Prepare kNoTemperature = Put("Temperature", kMissing);
const Prepare kIsothermal = Put("Heat duty type", "Isothermal");
const Prepare kNoDuty = All(Put("Heat duty type", "Heat duty"), Put("Heat duty", kMissing));

struct Case {
  const char* unit;
  const char* title;
  Prepare prepare;
};

std::string TitleOf(const Case& c) { return std::string(c.unit) + ", " + c.title; }

// Each class finds faults in an order of its own.
const Case kRules[] = {
    {kFixed, "as it should be", Convert(R"("A", "B")", "0.5, 1")},
    {kFixed, "no material", [](ReactorBench& b) { EXPECT_EQ(b.door.Port("Outlet")->Disconnect(), S_OK); }},
    {kFixed, "neither package nor reaction", All(Convert("", "", ""), NoPackage)},
    {kFixed, "no reaction", Convert("", "", "")},
    {kFixed, "a compound that is not fed", [](ReactorBench& b) { b.package->state.reactions[0].compounds[0] = "D"; }},
    {kFixed, "no key compound", Convert(R"("A", "")", "0.5, 0.5")},
    {kFixed, "another key compound", Convert(R"("A", "A")", "0.5, 0.5")},
    {kFixed, "a key compound that is left as it is",
     [](ReactorBench& b) { b.package->state.reactions[0].coefficients[0] = 0; }},
    {kFixed, "too high", Convert(R"("A", "B")", "0.5, 1.2")},
    {kFixed, "too low, before too high", Convert(R"("A", "B")", "-0.1, 1.2")},
    {kFixed, "no conversion", Put("Conversion A reaction A to B", kNaN)},
    {kFixed, "no duty", Put("Heat duty", kMissing)},
    {kFixed, "no temperature", All(kIsothermal, Put("Temperature", kNaN))},
    {kFixed, "no pressure drop", Put("Pressure drop", kNaN)},

    {kEquilibrium, "neither package nor reaction", All(Select(), NoPackage)},
    {kEquilibrium, "no package", NoPackage},
    {kEquilibrium, "neither reaction nor duty", All(Select(), kNoDuty)},
    {kEquilibrium, "a compound that is not fed", Select("R1", "D")},
    {kEquilibrium, "a kinetic reaction, and no duty", All(Select("R1", "K"), kNoDuty)},
    {kEquilibrium, "dependent reactions, and no duty", All(Select("R1", "R1"), kNoDuty)},
    {kEquilibrium, "no temperature", All(Select("R1", "R1"), kNoTemperature)},
    {kEquilibrium, "the same twice", Select("R1", "R1")},
    {kEquilibrium, "a multiple, and a phase in other letters", Select("R1", "R4")},
    {kEquilibrium, "three of which any two make the other", Select("R1", "R2", "R3")},
    {kEquilibrium, "two of three in one phase", Select("R2", "L1", "L3")},
    {kEquilibrium, "a set in each of two phases", Select("L1", "R1", "R4", "L3")},
    {kEquilibrium, "three that would be dependent in one phase", Select("R1", "R3", "L2")},
    {kEquilibrium, "the same in each of two phases", Select("R1", "R2", "L1")},

    {kCstr, "neither package nor reaction", All(Select(), NoPackage)},
    {kCstr, "no package", NoPackage},
    {kCstr, "a compound that is not fed, and another phase", Select("L", "D")},
    {kCstr, "another kind", [](ReactorBench& b) { b.package->state.reactions[4].type = 7; }},
    {kCstr, "another phase, and dependent", Select("L", "E2")},
    {kCstr, "the phase in other letters", Put("Phase", "VAPOR")},
    {kCstr, "no phase", Put("Phase", "")},
    {kCstr, "dependent, and no temperature", All(Select("E1", "K1"), kNoTemperature)},
    {kCstr, "a dependent set beside another reaction", Select("K2", "E1", "K1")},
    {kCstr, "three dependent",
     All(
         [](ReactorBench& b) {
           b.package->state.reactions.push_back(AtRate("X", {"A", "C"}, {-1, 1}, FirstOrder(1)));
         },
         Select("E1", "E2", "X"))},
    {kCstr, "two dependent sets", Select("E1", "K1", "E2", "K2")},
    {kCstr, "two sets, one of rates alone", Select("K1", "K1", "E2", "K2")},
    {kCstr, "no temperature, and no volume", All(Select("K1", "K1"), kNoTemperature)},
    {kCstr, "no duty, and no volume", All(Select("K1"), kNoDuty)},
    {kCstr, "rates alone may be dependent", All(Select("K1", "K1", "K2"), Put("Reactor volume", 1.0))},
};

TEST(ReactorRefusal, OfSettings) {
  std::string text;
  for (const Case& c : kRules) {
    std::string faults[2];
    for (const bool thermo11 : {false, true}) {
      SCOPED_TRACE(testing::Message() << TitleOf(c) << ", thermo 1.1: " << thermo11);
      const auto bench = MakeReactor(c.unit, thermo11);
      c.prepare(*bench);
      faults[thermo11] = bench->Fault();
      if (faults[thermo11] != "valid") EXPECT_EQ(bench->door.Report("Status"), faults[thermo11]);
    }
    EXPECT_EQ(faults[0], faults[1]) << TitleOf(c);
    text += TitleOf(c) + ": " + faults[1] + '\n';
  }
  ExpectApproved("reactors/settings", text);
}

using Given = std::optional<double>;
constexpr Given kNo = std::nullopt;

struct Catalyst {
  const char* title;
  Prepare select;
  Given reactorVolume, mass, volume, density;
};

const Prepare kHom = Select("K1"), kHet = Select("H1"), kBothKinds = Select("K1", "H2"), kNeither = Select("E1");

const Catalyst kCatalysts[] = {
    {"equilibrium: nothing needed", kNeither, kNo, kNo, kNo, kNo},
    {"equilibrium: what is given is checked", kNeither, 0, kNo, kNo, kNo},
    {"homogeneous: no volume", kHom, kNo, kNo, kNo, kNo},
    {"homogeneous: no volume, though a bad catalyst", kHom, kNo, 0, 0, kNo},
    {"homogeneous: volume alone", kHom, 2, kNo, kNo, kNo},
    {"homogeneous: no volume but zero", kHom, 0, 0, 0, kNo},
    {"catalyst of no volume", kHom, 2, 0, 0, kNo},
    {"catalyst of no mass", kHom, 2, 0, kNo, kNo},
    {"catalyst of no mass, though it follows", kHet, kNo, 0, 2, 500},
    {"heterogeneous: nothing", kHet, kNo, kNo, kNo, kNo},
    {"heterogeneous: volume alone", kHet, kNo, kNo, 2, kNo},
    {"heterogeneous: density alone", kHet, 5, kNo, kNo, 500},
    {"heterogeneous: mass alone", kHet, kNo, 900, kNo, kNo},
    {"heterogeneous: volume and density", kHet, kNo, kNo, 2, 500},
    {"heterogeneous: mass and density", kHet, kNo, 900, kNo, 500},
    {"all three, inconsistent", kHet, kNo, 900, 2, 500},
    {"all three, inconsistent, but not needed", kNeither, kNo, 900, 2, 500},
    {"all three", kHet, kNo, 1000, 2, 500},
    {"all three, within 1e-6", kHet, kNo, 1000.0009, 2, 500},
    {"all three, beyond 1e-6", kHet, kNo, 1000.0011, 2, 500},
    {"both kinds: volume alone", kBothKinds, 5, kNo, kNo, kNo},
    {"both kinds: and mass", kBothKinds, 5, 900, kNo, kNo},
    {"both kinds: no reactor volume", kBothKinds, kNo, 900, 2, kNo},
    {"both kinds: mass and volume", kBothKinds, 5, 900, 2, kNo},
    {"both kinds: mass and density", kBothKinds, 5, 900, kNo, 500},
    {"both kinds: volume and density", kBothKinds, 5, kNo, 2, 500},
    {"no room beside the catalyst", kBothKinds, 2, kNo, 2, 500},
    {"no room beside the catalyst whose volume follows", kBothKinds, 1.5, 900, kNo, 500},
};

TEST(ReactorRefusal, OfCatalysts) {
  std::string text;
  for (const Catalyst& c : kCatalysts) {
    CstrBench bench;
    c.select(bench);
    const auto put = [&](const char* parameter, Given value) {
      if (value) bench.Put(parameter, *value);
    };
    put("Reactor volume", c.reactorVolume);
    put("Catalyst mass", c.mass);
    put("Catalyst volume", c.volume);
    put("Catalyst density", c.density);
    text += std::string(c.title) + ": " + bench.Fault() + '\n';
  }
  // A density of zero is outside the bounds of the parameter already.
  EXPECT_EQ(CstrBench().Put("Catalyst density", com::MakeDouble(0)), kUnitFailed);
  const CatalystSpecification none{.reactorVolume = {}, .mass = {}, .volume = {}, .density = 0};
  ExpectApproved("reactors/catalysts", text + "catalyst of no density: " + none.FindFault(false, false) + '\n');
}

// What follows from two is not written back: it would contradict them once one of them changes.
TEST(ReactorRefusal, CatalystKeepsWhatFollowsToItself) {
  CstrBench bench;
  kHet(bench);
  bench.Put("Catalyst volume", 2);
  bench.Put("Catalyst density", 500);
  bench.Calculate();
  EXPECT_EQ(bench.Number("Catalyst mass"), kMissing);
  bench.Put("Catalyst density", 600);
  EXPECT_EQ(bench.Fault(), "valid");
}

com::Variant One(double number) { return com::MakeDoubles(std::array{number}); }
com::Variant Two() { return com::MakeDoubles(std::array{1.0, 2.0}); }
com::Variant Text() { return com::MakeStrings(std::vector<std::string>{"four"}); }
com::Variant Nothing() { return {}; }
com::Variant NotSet() { return One(kNaN); }
com::Variant MinusInfinite() { return One(-std::numeric_limits<double>::infinity()); }

/// Lets a call go wrong each time after the feed's enthalpy was asked for: it fails, or is answered so.
Prepare Wrong(const char* call, com::Variant (*answer)() = nullptr) {
  return [=](ReactorBench& bench) {
    bench.script->interferesAt = "SetMaterial";
    bench.script->interfere = [&bench, call, answer] {
      if (answer)
        bench.script->oddAnswers[call] = answer;
      else
        bench.script->failing = {call};
    };
  };
}

/// A tank with a rate, an equilibrium and a heat balance.
void Stir(ReactorBench& bench) {
  bench.Put("Reactor volume", 2);
  bench.Put("Heat duty type", "Heat duty");
  bench.Select(R"("E1", "K2")");
}

/// A reaction of molar densities.
void UseMolarity(ReactorBench& bench) {
  for (auto& [port, material] : bench.materials) material->state.phases[0].properties["density"] = 40;
  bench.package->state.reactions[0].concentrationBasis = "Molarity";
}

Prepare NegativeFlow() {
  return [](ReactorBench& bench) { bench.At("Inlet").flow = -1e-9; };
}

constexpr const char* kRate = "GetReactionProp reactionRate";
constexpr const char* kConstant = "GetReactionProp chemicalEquilibriumConstant";
constexpr const char* kFractions = "GetSinglePhaseProp Fraction";
constexpr const char* kEnthalpy = "GetSinglePhaseProp enthalpyF";
constexpr const char* kDensity = "GetSinglePhaseProp Density";
constexpr const char* kSetFractions = "SetOverallProp Fraction";

const Case kFailures[] = {
    {kFixed, "negative flow", NegativeFlow()},
    {kFixed, "package withdrawn", All([](ReactorBench& b) { b.Validate(); }, NoPackage)},
    {kFixed, "a trace too little of another",
     All(Convert(R"("A")", "1", R"("A and B to C")"), Feed({1, 1 - 4e-15, 0}))},
    {kFixed, "too little of another", All(Convert(R"("A")", "0.75", R"("A and B to C")"), Feed({1, 0.5, 0}))},
    {kFixed, "a trace too much together",
     All(Convert(R"("A", "A")", "0.6, 0.40000000000001", R"("A to B", "A to 2B")"), Feed({1, 0, 0}))},
    {kFixed, "too much together", All(Convert(R"("A", "A")", "0.75, 0.5", R"("A to B", "A to 2B")"), Feed({1, 0, 0}))},
    {kFixed, "missing heat of reaction",
     All(Put("Enthalpy Type", "Use Enthalpy and heat of reaction"),
         Wrong("GetReactionProp enthalpyOfReaction", [] { return One(kMissing); }))},
    {kFixed, "no energy stream", Put("Heat duty type", "Energy inlet")},
    {kFixed, "energy stream without heat",
     All(Put("Heat duty type", "Energy inlet"),
         [](ReactorBench& b) { b.ConnectHeat(kNaN, {}, {}, "HeatDutySpecification"); })},

    {kEquilibrium, "negative flow", NegativeFlow()},
    {kEquilibrium, "reactions that take place only together", Exchange},
    {kEquilibrium, "no flash", Wrong("CalcEquilibrium")},
    {kEquilibrium, "no constant", Wrong(kConstant)},
    {kEquilibrium, "no constant can be calculated", Wrong("CalcReactionProp chemicalEquilibriumConstant")},
    {kEquilibrium, "two constants", Wrong(kConstant, Two)},
    {kEquilibrium, "a text for a constant", Wrong(kConstant, Text)},
    {kEquilibrium, "nothing for a constant", Wrong(kConstant, Nothing)},
    {kEquilibrium, "a constant that is no number", Wrong(kConstant, NotSet)},
    {kEquilibrium, "a constant of minus infinity", Wrong(kConstant, MinusInfinite)},
    {kEquilibrium, "no fractions", Wrong(kFractions)},
    {kEquilibrium, "too few fractions", Wrong(kFractions, [] { return One(1); })},
    {kEquilibrium, "a text for fractions", Wrong(kFractions, Text)},
    {kEquilibrium, "fractions that are no numbers",
     Wrong(kFractions,
           [] {
             return com::MakeDoubles(std::vector{0.5, kNaN, 0.0});
           })},
    {kEquilibrium, "no density", All(UseMolarity, Wrong("CalcSinglePhaseProp Vapor"))},
    {kEquilibrium, "two densities", All(UseMolarity, Wrong(kDensity, Two))},
    {kEquilibrium, "a density that is no number", All(UseMolarity, Wrong(kDensity, NotSet))},
    {kEquilibrium, "a density of zero", All(UseMolarity, Wrong(kDensity, [] { return One(0); }))},

    {kCstr, "negative flow", NegativeFlow()},
    {kCstr, "reactions that take place only together", Exchange},
    {kCstr, "no temperature", Put("Temperature", 0.0)},
    {kCstr, "no flash of the outlet", Wrong("CalcEquilibrium")},
    {kCstr, "no temperature of the outlet", Wrong("GetOverallProp Temperature")},
    {kCstr, "temperature is not taken", All(Stir, Wrong("SetSinglePhaseProp Temperature"))},
    {kCstr, "pressure is not taken", All(Stir, Wrong("SetOverallProp Pressure"))},
    {kCstr, "overall fractions are not taken", All(Stir, Wrong(kSetFractions))},
    {kCstr, "fractions are not taken", All(Stir, Wrong("SetSinglePhaseProp Fraction"))},
    {kCstr, "no rate", All(Stir, Wrong(kRate))},
    {kCstr, "two rates", All(Stir, Wrong(kRate, Two))},
    {kCstr, "a text for a rate", All(Stir, Wrong(kRate, Text))},
    {kCstr, "a rate that is no number", All(Stir, Wrong(kRate, NotSet))},
    {kCstr, "no constant", All(Stir, Wrong(kConstant))},
    {kCstr, "two constants", All(Stir, Wrong(kConstant, Two))},
    {kCstr, "too few fractions", All(Stir, Wrong(kFractions, [] { return One(1); }))},
    {kCstr, "no enthalpy", All(Stir, Wrong("CalcSinglePhaseProp Vapor"))},
    {kCstr, "two enthalpies", All(Stir, Wrong(kEnthalpy, Two))},
    {kCstr, "an enthalpy that is no number", All(Stir, Wrong(kEnthalpy, NotSet))},
};

// By the older thermodynamic interface.
const Case kOlderFailures[] = {
    {kCstr, "1.0: temperature is not taken", All(Stir, Wrong("SetProp Temperature"))},
    {kCstr, "1.0: pressure is not taken", All(Stir, Wrong("SetProp Pressure"))},
    {kCstr, "1.0: fractions are not taken", All(Stir, Wrong("SetProp Fraction"))},
};

/// What a reactor says of a calculation that fails, whether it has written to its outlet, and whether it reports.
std::string Failed(const Case& c, bool thermo11) {
  SCOPED_TRACE(TitleOf(c));
  const auto bench = MakeReactor(c.unit, thermo11);
  c.prepare(*bench);
  EXPECT_EQ(bench->door.unit->Calculate(), kUnitFailed);
  const Texts error = ErrorOf(bench->door.unit.Get());
  EXPECT_EQ(bench->door.Report("Status"), "Calculation failed:\r\n" + error.description + "\r\n");
  const std::string report = bench->door.Report("Last run");
  const bool isReported = report != "Report is not available";
  EXPECT_EQ(report.ends_with("\r\nCalculation failed: " + error.description + "\r\n"), isReported) << report;
  const bool isUnsolved = error.description.starts_with("Solution failed: ");
  EXPECT_EQ(report.find("\r\n+++ no solution +++\r\n") != std::string::npos, isUnsolved);
  if (isUnsolved) EXPECT_EQ(report.find("\r\n+++ solution +++\r\n"), std::string::npos);
  const bool isWritten = !bench->At("Outlet").written.empty();
  if (HostScript& script = *bench->script; !script.oddAnswers.empty() || !script.failing.empty()) {
    script.oddAnswers.clear();
    script.failing.clear();
    bench->Calculate();
  }
  std::string text = TitleOf(c) + ": " + (error.name == error.description ? "" : error.name + ": ") + error.description;
  EXPECT_EQ(error.scope, "Calculate");
  if (error.interfaceName != "ICapeUnit") text += " (" + error.interfaceName + ")";
  if (isWritten) text += " [outlet written]";
  if (!isReported) text += " [no report]";
  return InCommonWords(text) + '\n';
}

TEST(ReactorRefusal, OfCalculations) {
  std::string text;
  for (const Case& c : kFailures) text += Failed(c, true);
  for (const Case& c : kOlderFailures) text += Failed(c, false);
  ExpectApproved("reactors/calculations", text);
}

}  // namespace morvelan::test::reactor_refusal
