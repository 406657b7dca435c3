// The material operations of a port under both thermo generations, against a host whose answers follow on
// paper: a vapor (fraction 0.4, 1000 J/mol, 0.02 m3/mol) over a liquid (0.6, -500 J/mol, 0.0001 m3/mol), 2
// mol/s of methane (0.25, 16 g/mol) and ethane (0.75, 30 g/mol).

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <utility>

#include "material/MissingValue.h"
#include "material/Names.h"
#include "material/Thermo10.h"
#include "tests/support/Approved.h"
#include "tests/support/Door.h"
#include "tests/support/FakeHost.h"
#include "tests/support/FakeMaterial.h"
#include "tests/support/Faults.h"
#include "tests/support/TestUnit.h"

namespace morvelan::test::material_access {

/// A unit with a fake material on its inlet.
struct Bench {
  explicit Bench(bool thermo11, FakeState state = {}) {
    state.thermo10 = !thermo11;
    state.thermo11 = thermo11;
    material = com::Make<FakeMaterial>(script, state);
    EXPECT_EQ(unit->Initialize(), S_OK);
    EXPECT_EQ(Port().Connect(static_cast<ICapeIdentification*>(material.Get())), S_OK);
    script->Restart();
  }
  CUnitPort& Port() { return unit->Inlet(0); }

  std::shared_ptr<HostScript> script = std::make_shared<HostScript>();
  com::Ref<TestUnit> unit = com::Make<TestUnit>(kTestUnit);
  com::Ref<FakeMaterial> material;
};

double Scalar(const com::Variant& values) {
  const auto numbers = com::ReadDoubles(values.Get());
  EXPECT_EQ(numbers.size(), 1u);
  return numbers.at(0);
}

std::ptrdiff_t CallsOf(const Bench& bench, const std::string& label) {
  return std::ranges::count_if(bench.script->calls,
                               [&](const std::string& call) { return call.starts_with(label + "/"); });
}

com::Name Kept(const char* text) { return com::KeepName(text); }

struct OverallCase {
  const char* property;
  const char* phase;
  const char* basis;
  double expected;
};

TEST(MaterialAccess, GivesOverallAndPhaseProperties) {
  const OverallCase cases[] = {
      {"enthalpy", "Overall", "Mole", 0.4 * 1000 - 0.6 * 500},
      {"ENTHALPY", "overall", "", 2 * (0.4 * 1000 - 0.6 * 500)},
      {"volume", "OVERALL", "mole", 0.4 * 0.02 + 0.6 * 0.0001},
      {"enthalpy", "Vapor", "Mole", 1000},
      {"enthalpy", "liquid", "Mole", -500},
  };
  for (const bool thermo11 : {false, true})
    for (const bool calculatesOverall : {false, true})
      for (const OverallCase& c : cases) {
        SCOPED_TRACE(testing::Message() << "thermo 1.1: " << thermo11 << ", host calculates overall: "
                                        << calculatesOverall << ", " << c.property << "/" << c.phase << "/" << c.basis);
        Bench bench(thermo11, {.calculatesOverall = calculatesOverall});
        const com::Variant onCopy =
            bench.Port().GetProperty(Kept(c.property), Kept(c.phase), names::kMixture, Kept(c.basis));
        const com::Variant inPlace =
            bench.Port().GetPropertyNoDup(Kept(c.property), Kept(c.phase), names::kMixture, Kept(c.basis));
        EXPECT_DOUBLE_EQ(Scalar(onCopy), c.expected);
        EXPECT_DOUBLE_EQ(Scalar(inPlace), c.expected);
      }
}

TEST(MaterialAccess, DividesByMeanMolecularWeightForMassBasis) {
  Bench bench(true);
  const com::Variant value = bench.Port().GetProperty(names::kEnthalpy, names::kOverall, names::kMixture, names::kMass);
  EXPECT_DOUBLE_EQ(Scalar(value), (0.4 * 1000 - 0.6 * 500) / (0.001 * (0.25 * 16 + 0.75 * 30)));
}

TEST(MaterialAccess, RemembersThatTheHostCannotCalculateAnOverallProperty) {
  Bench bench(false, {.calculatesOverall = false});
  const auto ask = [&] {
    bench.script->Restart();
    (void)bench.Port().GetPropertyNoDup(names::kEnthalpy, names::kOverall, names::kMixture, names::kMole);
    return CallsOf(bench, "CalcProp Overall");
  };
  // A sum that fails teaches nothing.
  bench.script->Restart();
  bench.script->failAt = 3;
  EXPECT_THROW((void)bench.Port().GetPropertyNoDup(names::kEnthalpy, names::kOverall, names::kMixture, names::kMole),
               Failure);
  EXPECT_EQ(ask(), 1);
  EXPECT_EQ(ask(), 0);
  (void)bench.Port().GetPropertyNoDup(names::kVolume, names::kOverall, names::kMixture, names::kMole);
  EXPECT_EQ(CallsOf(bench, "CalcProp Overall"), 1) << "another property is asked for first";
}

TEST(MaterialAccess, SkipsAbsentPhasesUnderThermo10Only) {
  FakeState state;
  state.phases[0].fraction = 0;
  state.phases[1].fraction = 1;
  state.calculatesOverall = false;
  for (const bool thermo11 : {false, true}) {
    Bench bench(thermo11, state);
    EXPECT_DOUBLE_EQ(
        Scalar(bench.Port().GetPropertyNoDup(names::kEnthalpy, names::kOverall, names::kMixture, names::kMole)), -500);
    const char* calculation = thermo11 ? "CalcSinglePhaseProp Vapor" : "CalcProp Vapor";
    EXPECT_EQ(CallsOf(bench, calculation), thermo11 ? 1 : 0);
  }
}

TEST(MaterialAccess, ReadsCompoundsAndPhases) {
  for (const bool thermo11 : {false, true}) {
    Bench bench(thermo11);
    EXPECT_EQ(bench.Port().GetCompoundIds(), (std::vector<std::string>{"methane", "ethane"}));
    EXPECT_EQ(bench.Port().GetCompoundIdentities().casNumbers, (std::vector<std::string>{"74-82-8", "74-84-0"}));
    EXPECT_EQ(bench.Port().GetCompoundConstant(names::kMolecularWeight), (std::vector<double>{16, 30}));
    EXPECT_EQ(bench.Port().GetCompoundText(names::kCasRegistryNumber),
              (std::vector<std::string>{"74-82-8", "74-84-0"}));
    const auto fractions = bench.Port().GetPhaseFractions();
    ASSERT_EQ(fractions.size(), 2u);
    EXPECT_EQ(fractions[1].phase, "Liquid");
    EXPECT_EQ(fractions[1].fraction, 0.6);
    EXPECT_EQ(com::ToUtf8(bench.Port().GetVaporName().Get()), "Vapor");
  }
}

struct FlashCase {
  const char* type;
  bool writesPressure;
  bool writesTemperature;
  const char* specifications;  // under thermo 1.1; null when refused
};

TEST(MaterialAccess, WritesAndSpecifiesEveryFlashType) {
  const FlashCase cases[] = {
      {"TP", true, true, "Temperature//Overall, Pressure//Overall, unspecified"},
      {"tp", true, true, "Temperature//Overall, Pressure//Overall, unspecified"},
      {"PH", true, false, "Pressure//Overall, enthalpy//Overall, unspecified"},
      {"PHF", true, false, "Pressure//Overall, enthalpyF//Overall, unspecified"},
      {"PVF", true, false, "Pressure//Overall, phaseFraction/Mole/Vapor, unspecified"},
      {"TH", false, true, "Temperature//Overall, enthalpy//Overall, unspecified"},
      {"THF", true, true, "Temperature//Overall, enthalpyF//Overall, unspecified"},
      {"TVF", false, true, "Temperature//Overall, phaseFraction/Mole/Vapor, unspecified"},
      {"HVF", false, false, "enthalpy//Overall, phaseFraction/Mole/Vapor, unspecified"},
      {"HFVF", true, true, "enthalpyF//Overall, phaseFraction/Mole/Vapor, unspecified"},
      {"PS", true, true, nullptr},
  };
  for (const bool thermo11 : {false, true})
    for (const FlashCase& c : cases) {
      SCOPED_TRACE(testing::Message() << c.type << ", thermo 1.1: " << thermo11);
      Bench bench(thermo11);
      bench.Port().State() = {.pressure = 7e5, .temperature = 350, .totalFlow = 3, .composition = {0.1, 0.9}};
      const auto& written = bench.material->state.written;
      std::string refusal;
      try {
        bench.Port().CalcEquilibrium(Kept(c.type));
      } catch (const Failure& failure) {
        refusal = failure.error.name + ": " + failure.error.description;
      }
      EXPECT_EQ(written.contains("Pressure"), c.writesPressure);
      EXPECT_EQ(written.contains("Temperature"), c.writesTemperature);
      EXPECT_EQ(written.at("totalFlow"), std::vector<double>{3});
      EXPECT_EQ(written.at("Fraction"), (std::vector<double>{0.1, 0.9}));
      if (thermo11 && !c.specifications) {
        EXPECT_EQ(refusal, "Internal Error: Internal error; unimplemented flash type specification PS");
        EXPECT_EQ(bench.material->state.flash, "");
      } else {
        EXPECT_EQ(refusal, "");
        EXPECT_EQ(bench.material->state.flash, thermo11 ? c.specifications : c.type);
      }
    }
}

TEST(MaterialAccess, FlashesAtEntropyAndAtNormalConditionsOnCopies) {
  for (const bool thermo11 : {false, true}) {
    Bench bench(thermo11);
    EXPECT_DOUBLE_EQ(bench.unit->HFromPSFlash(2e5, 12), 100);
    EXPECT_DOUBLE_EQ(bench.Port().CalcNormalEnthalpy(std::array{0.5, 0.5}), 100);
    EXPECT_TRUE(bench.material->state.written.empty());
    EXPECT_EQ(bench.script->liveObjects, 1);
  }
}

void AskTotalEnthalpy(Bench& b) { (void)b.Port().GetProperty(names::kEnthalpy, names::kOverall, names::kMixture, {}); }
void AskEnthalpy(Bench& b) { (void)b.Port().GetPropertyNoDup(names::kEnthalpy, names::kOverall, names::kMixture, {}); }
void AskVaporVolume(Bench& b) {
  (void)b.Port().GetPropertyNoDup(names::kVolume, names::kVapor, names::kMixture, names::kMole);
}
void AskMassVolume(Bench& b) {
  (void)b.Port().GetPropertyNoDup(names::kVolume, names::kOverall, names::kMixture, names::kMass);
}
void AskVapor(Bench& b) { (void)b.Port().GetVaporName(); }
void AskIdentities(Bench& b) { (void)b.Port().GetCompoundIdentities(); }
void AskWeights(Bench& b) { (void)b.Port().GetCompoundConstant(names::kMolecularWeight); }
void AskCas(Bench& b) { (void)b.Port().GetCompoundText(names::kCasRegistryNumber); }
void AskPhaseFractions(Bench& b) { (void)b.Port().GetPhaseFractions(); }
void AskIsentropic(Bench& b) { (void)b.unit->HFromPSFlash(2e5, 12); }
void AskNormalEnthalpy(Bench& b) { (void)b.Port().CalcNormalEnthalpy(std::array{0.5, 0.5}); }
void AskFlash(Bench& b) { b.Port().CalcEquilibrium(names::kTVF); }
void AskCopy(Bench& b) { (void)b.Port().DuplicateMaterial(); }
void AskSetProp(Bench& b) {
  b.Port().SetProp(names::kEnthalpy, names::kOverall, com::kNoValue, names::kMixture, names::kMole,
                   com::MakeDoubles(std::array{1.0}).Get());
}

/// What a request says when it is refused; "done" when it is answered.
std::string Outcome(Bench& bench, void (*ask)(Bench&)) {
  try {
    ask(bench);
    return "done";
  } catch (const Failure& failure) {
    const UnitError& error = failure.error;
    EXPECT_FALSE(error.name.empty() || error.scope.empty() || error.interfaceName.empty());
    return (error.name == error.description ? "" : error.name + ": ") + error.description + " (" +
           std::string(error.scope) + " of " + std::string(error.interfaceName) + ")";
  }
}

void Disconnected(Bench& b, void (*ask)(Bench&)) {
  b.Port().Disconnect();
  ask(b);
}
void AskProperty(Bench& b, com::Name property, com::Name calcType, com::Name basis) {
  (void)b.Port().GetPropertyNoDup(property, names::kOverall, calcType, basis);
}

struct Refusal {
  const char* title;
  void (*ask)(Bench&);
};

const Refusal kRefusals[] = {
    {"a property while not connected",
     [](Bench& b) {
       Disconnected(b,
                    [](Bench& c) { (void)c.Port().GetProp(names::kPressure, names::kOverall, com::kNoValue, {}, {}); });
     }},
    {"a flash while not connected", [](Bench& b) { Disconnected(b, AskFlash); }},
    {"compounds while not connected",
     [](Bench& b) { Disconnected(b, [](Bench& c) { (void)c.Port().GetCompoundIds(); }); }},
    {"an isentropic flash while not connected", [](Bench& b) { Disconnected(b, AskIsentropic); }},
    {"calcType pure", [](Bench& b) { AskProperty(b, names::kTemperature, names::kPure, names::kMole); }},
    {"overall temperature", [](Bench& b) { AskProperty(b, names::kTemperature, names::kMixture, names::kMole); }},
    {"no property", [](Bench& b) { AskProperty(b, {}, names::kMixture, names::kMole); }},
    {"unknown basis", [](Bench& b) { AskProperty(b, names::kVolume, names::kMixture, Kept("liter")); }},
    {"two vapors",
     [](Bench& b) {
       b.material->state.phases[1].aggregation = "vapor";
       AskVapor(b);
     }},
    {"no vapor for a PVF flash",
     [](Bench& b) {
       b.material->state.phases[0].aggregation = "Solid";
       b.Port().CalcEquilibrium(names::kPVF);
     }},
    {"fewer phases than statuses",
     [](Bench& b) {
       b.script->oddAnswers["GetPresentPhases"] = [] { return com::MakeStrings(std::vector<std::string>{"Vapor"}); };
       AskEnthalpy(b);
     }},
    {"fewer phases than states of aggregation",
     [](Bench& b) {
       b.script->oddAnswers["GetPhaseList"] = [] { return com::MakeStrings(std::vector<std::string>{"Vapor"}); };
       AskVapor(b);
     }},
    {"no phases to sum over",
     [](Bench& b) {
       b.material->state.calculatesOverall = false;
       b.material->state.phases.clear();
       AskEnthalpy(b);
     }},
    {"no phase fractions",
     [](Bench& b) {
       b.material->state.phases.clear();
       AskPhaseFractions(b);
     }},
    {"an overall property that cannot be summed",
     [](Bench& b) {
       b.material->state.calculatesOverall = false;
       (void)b.Port().GetProperty(names::kViscosity, names::kOverall, {}, names::kMole);
     }},
    {"a phase that is not at equilibrium",
     [](Bench& b) {
       b.material->state.statuses = {1, 2};
       AskEnthalpy(b);
     }},
    {"a phase named overall",
     [](Bench& b) {
       b.material->state.phases[0].label = "overall";
       AskEnthalpy(b);
     }},
    {"a compound without name",
     [](Bench& b) {
       b.material->state.compounds[1] = "";
       AskIdentities(b);
     }},
    {"a copy that is none",
     [](Bench& b) {
       b.material->state.givesNoCopy = true;
       AskCopy(b);
     }},
};

TEST(MaterialAccess, RefusesWhatItCannotAnswer) {
  std::string sayings;
  for (const Refusal& refusal : kRefusals) {
    sayings += std::string(refusal.title) + "\n";
    for (const bool thermo11 : {false, true}) {
      Bench bench(thermo11);
      const std::string outcome = InCommonWords(Outcome(bench, refusal.ask));
      sayings += std::string("  thermo ") + (thermo11 ? "1.1: " : "1.0: ") + outcome + "\n";
      EXPECT_EQ(bench.script->liveObjects, 1) << "a copy was not released: " << refusal.title;
    }
  }
  ExpectApproved("material/refusals", sayings);
}

TEST(MaterialAccess, TakesTheWholeOrAPhaseInAnyCase) {
  Bench bench(true);
  const com::Variant value = com::MakeDoubles(std::array{1.0});
  for (const char* phase : {"OVERALL", "Liquid"}) {
    bench.Port().SetProp(names::kEnthalpy, Kept(phase), com::kNoValue, names::kMixture, names::kMole, value.Get());
    (void)bench.Port().GetProp(names::kPhaseFraction, Kept(phase), com::kNoValue, {}, names::kMole);
  }
  std::erase(bench.script->calls, "QueryInterface ICapeThermoMaterial");
  EXPECT_EQ(bench.script->calls,
            (std::vector<std::string>{"SetOverallProp enthalpy/Mole/[1]", "GetOverallProp phaseFraction/Mole",
                                      "SetSinglePhaseProp enthalpy/Liquid/Mole/[1]",
                                      "GetSinglePhaseProp phaseFraction/Liquid/Mole"}));
}

struct Operation {
  const char* title;
  void (*ask)(Bench&);
  void (*prepare)(FakeState&) = [](FakeState&) {};
  bool thermo10 = true;
};

const Operation kOperations[] = {
    {"total enthalpy", AskTotalEnthalpy},
    {"total enthalpy summed over the phases", AskTotalEnthalpy, [](FakeState& s) { s.calculatesOverall = false; }},
    {"vapor volume", AskVaporVolume},
    {"volume on mass basis", AskMassVolume, [](FakeState& s) { s.phases.pop_back(); }, false},
    {"label of the vapor", AskVapor},
    {"names and CAS numbers", AskIdentities},
    {"molecular weights", AskWeights},
    {"texts of compounds", AskCas},
    {"phase fractions", AskPhaseFractions},
    {"isentropic flash", AskIsentropic, [](FakeState& s) { s.phases.pop_back(); }},
    {"normal enthalpy", AskNormalEnthalpy, [](FakeState& s) { s.phases.pop_back(); }},
    {"TVF flash", AskFlash},
    {"SetProp", AskSetProp},
};

/// Disturbs an operation, and checks that nothing of the disturbance is left.
template <class Disturb>
std::string Disturbed(const Operation& operation, bool thermo11, Disturb disturb) {
  FakeState state;
  operation.prepare(state);
  Bench bench(thermo11, state);
  disturb(*bench.script);
  std::string outcome = Outcome(bench, operation.ask);
  EXPECT_EQ(bench.script->liveObjects, 1) << "a copy was not released";
  EXPECT_EQ(bench.material->References(), 2u) << "the test's and the port's";
  bench.script->Restart();
  bench.material->state = {.thermo10 = !thermo11, .thermo11 = thermo11};
  EXPECT_NO_THROW(operation.ask(bench));
  return outcome;
}

std::vector<std::string> CallsOf(const Operation& operation, bool thermo11) {
  FakeState state;
  operation.prepare(state);
  Bench bench(thermo11, state);
  operation.ask(bench);
  return bench.script->calls;
}

std::string Walk(const Operation& operation, bool thermo11) {
  std::string sayings = std::string(operation.title) + ", thermo " + (thermo11 ? "1.1" : "1.0") + "\n";
  const std::vector<std::string> calls = CallsOf(operation, thermo11);
  for (int k = 1; k <= std::ssize(calls); ++k) {
    const std::string& call = calls[static_cast<std::size_t>(k) - 1];
    SCOPED_TRACE(testing::Message() << operation.title << ", thermo 1.1: " << thermo11 << ", call " << k << ": "
                                    << call);
    std::set<std::string> failures;
    for (const FaultMode& mode : kFaultModes)
      failures.insert(WithoutReason(
          Disturbed(operation, thermo11, [&](HostScript& script) { Provoke(script, mode, k); }), call, mode));
    EXPECT_EQ(failures.size(), 1u) << testing::PrintToString(failures);
    sayings += "  " + call + " -> " + *failures.begin() + "\n";
    for (const OddAnswer& odd : kOddAnswers) {
      bool isAsked = false;
      const std::string outcome = Disturbed(operation, thermo11, [&](HostScript& script) {
        script.oddAt = k;
        script.oddAnswer = [&] { return isAsked = true, odd.answer(); };
      });
      if (isAsked) sayings += "    [" + std::string(odd.title) + "] -> " + outcome + "\n";
    }
  }
  return sayings;
}

TEST(MaterialAccess, ExplainsEveryFailingCallAndOddAnswer) {
  std::string sayings;
  for (const Operation& operation : kOperations)
    for (const bool thermo11 : {false, true})
      if (thermo11 || operation.thermo10) sayings += Walk(operation, thermo11);
  ExpectApproved("material/faults", sayings);
}

TEST(MaterialAccess, NamesSetPropertyWhenTheMaterialHasNoInterface) {
  Bench bench(false);
  bench.script->failAt = 1;
  try {
    AskSetProp(bench);
    ADD_FAILURE() << "was not refused";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.error.scope, "SetProperty");
    EXPECT_EQ(failure.error.name, "Failed to get material interface");
  }
}

}  // namespace morvelan::test::material_access
