// The material operations of a port under both thermo generations, against a host whose answers follow on
// paper: a vapour (fraction 0.4, 1000 J/mol, 0.02 m3/mol) over a liquid (0.6, -500 J/mol, 0.0001 m3/mol), 2
// mol/s of methane (0.25, 16 g/mol) and ethane (0.75, 30 g/mol).

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <span>
#include <utility>

#include "material/MissingValue.h"
#include "material/Names.h"
#include "material/Thermo10.h"
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

// ---- Values
// -----------------------------------------------------------------------------------------------------

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

// ---- Flashes
// ----------------------------------------------------------------------------------------------------

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

// ---- Refusals
// ---------------------------------------------------------------------------------------------------

struct Refusal {
  const char* title;
  bool thermo11;
  void (*ask)(Bench&);
  Texts texts;
};

Texts Evaluation(std::string text, const char* scope = "GetPropertyNoDup") { return {text, text, scope, "CUnitPort"}; }

const Refusal kRefusals[] = {
    {"not connected",
     false,
     [](Bench& b) {
       b.Port().Disconnect();
       (void)b.Port().GetProp(names::kPressure, names::kOverall, com::kNoValue, {}, {});
     },
     {"port is not connected", "port is not connected", "GetProp", "UnitPort"}},
    {"flash while not connected",
     true,
     [](Bench& b) {
       b.Port().Disconnect();
       b.Port().CalcEquilibrium(names::kTP);
     },
     {"not connected", "port Inlet is not connected", "CalcEquilibrium", "UnitPort"}},
    {"compounds while not connected",
     true,
     [](Bench& b) {
       b.Port().Disconnect();
       (void)b.Port().GetCompoundIds();
     },
     {"Inlet: port is not connected", "Inlet: port is not connected", "GetCompoundIds", "UnitPort"}},
    {"calcType pure", true,
     [](Bench& b) {
       (void)b.Port().GetPropertyNoDup(names::kTemperature, names::kOverall, names::kPure, names::kMole);
     },
     Evaluation("Internal error: unimplemented thermo V11 call for calcType other than mixture")},
    {"overall temperature", true,
     [](Bench& b) {
       (void)b.Port().GetPropertyNoDup(names::kTemperature, names::kOverall, names::kMixture, names::kMole);
     },
     Evaluation("Internal error: unimplemented overall thermo V11 call for property Temperature")},
    {"no property", true,
     [](Bench& b) { (void)b.Port().GetPropertyNoDup({}, names::kOverall, names::kMixture, names::kMole); },
     Evaluation("Internal error: unimplemented overall thermo V11 call for property <NULL>")},
    {"unknown basis", true,
     [](Bench& b) { (void)b.Port().GetPropertyNoDup(names::kVolume, names::kOverall, names::kMixture, Kept("litre")); },
     Evaluation("Internal error: unimplemented overall V11 property calculation for basis litre")},
    {"two vapours",
     true,
     [](Bench& b) {
       b.material->state.phases[1].aggregation = "vapor";
       (void)b.Port().GetVaporName();
     },
     {"More than one vapor phase reported by GetPhaseList", "More than one vapor phase reported by GetPhaseList",
      "GetVaporName", "CPort"}},
    {"no vapour for a PVF flash",
     true,
     [](Bench& b) {
       b.material->state.phases[0].aggregation = "Solid";
       b.Port().CalcEquilibrium(names::kPVF);
     },
     {"unable to get vapor phase ID: no vapor phase reported by GetPhaseList",
      "unable to get vapor phase ID: no vapor phase reported by GetPhaseList", "GetVaporName", "CPort"}},
    {"statuses of another size", true,
     [](Bench& b) {
       b.script->oddAnswers["GetPresentPhases"] = [] { return com::MakeStrings(std::vector<std::string>{"Vapor"}); };
       (void)b.Port().GetPropertyNoDup(names::kVolume, names::kOverall, names::kMixture, names::kMole);
     },
     Evaluation("Failed to calculate overall volume; GetPresentPhases returned different sizes for phase name list "
                "and phase status list")},
    {"two total flows", true,
     [](Bench& b) {
       b.script->oddAnswers["GetOverallProp totalFlow"] = [] { return com::MakeDoubles(std::array{1.0, 2.0}); };
       (void)b.Port().GetPropertyNoDup(names::kVolume, names::kOverall, names::kMixture, {});
     },
     Evaluation("Invalid values for phase fraction for overall phase, basis \"mole\": scalar expected")},
    {"molecular weight that is no number", true,
     [](Bench& b) {
       b.script->oddAnswers["GetCompoundConstant molecularWeight"] = [] {
         return com::MakeStrings(std::vector<std::string>{"16", "30"});
       };
       (void)b.Port().GetPropertyNoDup(names::kVolume, names::kOverall, names::kMixture, names::kMass);
     },
     Evaluation("Invalid value for molecular weight of a compound for mass/mole conversion. Expected VARIANT "
                "of type "
                "REAL.")},
    {"no phases to sum over", false,
     [](Bench& b) {
       b.material->state.calculatesOverall = false;
       b.material->state.phases.clear();
       (void)b.Port().GetPropertyNoDup(names::kVolume, names::kOverall, names::kMixture, names::kMole);
     },
     Evaluation("Failed to get overall volume: no valid phases are present")},
    {"an overall property that can't be summed", false,
     [](Bench& b) {
       b.material->state.calculatesOverall = false;
       (void)b.Port().GetProperty(names::kViscosity, names::kOverall, {}, names::kMole);
     },
     Evaluation(InThisSystemsWords("CalcProp (Viscosity/Overall/<NULL>) failed: Not implemented"), "GetProperty")},
    {"missing constants",
     false,
     [](Bench& b) {
       b.script->oddAnswers["GetComponentConstant molecularWeight"] = [] {
         return com::MakeDoubles(std::array{16.0, std::numeric_limits<double>::quiet_NaN()});
       };
       (void)b.Port().GetCompoundConstant(names::kMolecularWeight);
     },
     {"One or more missing values for molecularWeight from port Inlet",
      "One or more missing values for molecularWeight from port Inlet", "GetCompoundConstant", "UnitPort"}},
    {"no inlet material for an isentropic flash",
     true,
     [](Bench& b) {
       b.Port().Disconnect();
       (void)b.unit->HFromPSFlash(1e5, 0);
     },
     {"Failed to get material", "Failed to get material connected to inlet port", "HFromPSFlash", "BaseUnit"}},
};

TEST(MaterialAccess, RefusesWhatItCannotAnswer) {
  for (const Refusal& refusal : kRefusals) {
    SCOPED_TRACE(refusal.title);
    Bench bench(refusal.thermo11);
    try {
      refusal.ask(bench);
      ADD_FAILURE() << "was not refused";
    } catch (const Failure& failure) {
      const UnitError& error = failure.error;
      EXPECT_EQ((Texts{error.name, error.description, std::string(error.scope), std::string(error.interfaceName)}),
                refusal.texts);
    }
  }
}

/// An answer that no careful host gives, and the refusal's description.
struct OddAnswer {
  const char* title;
  bool thermo11;
  void (*spoil)(Bench&);
  void (*ask)(Bench&);
  const char* description;
};

template <class... Elements>
auto Answer(const char* call, Elements... elements) {
  return std::pair(std::string(call), [=] { return com::MakeDoubles(std::vector<double>{elements...}); });
}

void Say(Bench& b, std::pair<std::string, std::function<com::Variant()>> answer) {
  b.script->oddAnswers.insert(std::move(answer));
}

com::Variant TextArray() { return com::MakeStrings(std::vector<std::string>{"one", "two"}); }

com::Variant MixedArray() {
  std::vector<com::Variant> elements;
  elements.push_back(com::MakeString("Vapor"));
  elements.push_back(com::MakeDouble(1));
  return com::MakeVariants(elements);
}

void AskEnthalpy(Bench& b) { (void)b.Port().GetPropertyNoDup(names::kEnthalpy, names::kOverall, names::kMixture, {}); }
void AskMassEnthalpy(Bench& b) {
  (void)b.Port().GetPropertyNoDup(names::kEnthalpy, names::kOverall, names::kMixture, names::kMass);
}
void AskVapor(Bench& b) { (void)b.Port().GetVaporName(); }
void AskFractions(Bench& b) { (void)b.Port().GetPhaseFractions(); }
void AskNames(Bench& b) { (void)b.Port().GetCompoundIdentities(); }
void AskWeights(Bench& b) { (void)b.Port().GetCompoundConstant(names::kMolecularWeight); }
void AskCas(Bench& b) { (void)b.Port().GetCompoundText(names::kCasRegistryNumber); }
void CannotCalculateOverall(Bench& b) { b.material->state.calculatesOverall = false; }

const OddAnswer kOddAnswers[] = {
    {"two enthalpies", false, [](Bench& b) { Say(b, Answer("GetProp enthalpy", 1.0, 2.0)); }, AskEnthalpy,
     "Unexpected number of values for enthalpy: scalar expected"},
    {"two flows", false, [](Bench& b) { Say(b, Answer("GetProp totalFlow", 1.0, 2.0)); }, AskEnthalpy,
     "Unexpected number of values for totalFlow: scalar expected"},
    {"enthalpy as text", false, [](Bench& b) { b.script->oddAnswers["GetProp enthalpy"] = TextArray; }, AskEnthalpy,
     "Failed to convert enthalpy values from GetProp: element 1: a number expected, a text found"},
    {"flow not set", false, [](Bench& b) { Say(b, Answer("GetProp totalFlow", kMissingValue)); }, AskEnthalpy,
     "Failed to convert total flow values from GetProp: value is not set"},
    {"two phase fractions to sum", false,
     [](Bench& b) {
       CannotCalculateOverall(b);
       Say(b, Answer("GetProp phaseFraction", 1.0, 2.0));
     },
     AskEnthalpy, "Unexpected value for phase fraction for Vapor"},
    {"two phase enthalpies to sum", false,
     [](Bench& b) {
       CannotCalculateOverall(b);
       Say(b, Answer("GetProp enthalpy", 1.0, 2.0));
     },
     AskEnthalpy, "Unexpected value for enthalpy for Vapor phase: scalar expected"},
    {"flow to multiply a sum not set", false,
     [](Bench& b) {
       CannotCalculateOverall(b);
       Say(b, Answer("GetProp totalFlow", kMissingValue));
     },
     AskEnthalpy, "Unexpected value for total flow for overall phase: value is not set"},
    {"phases as numbers", false,
     [](Bench& b) {
       CannotCalculateOverall(b);
       Say(b, Answer("PhaseIds", 1.0));
     },
     AskEnthalpy,
     "Failed to obtain overall enthalpy; invalid list of phases from material: an array of texts expected, "
     "an array "
     "of numbers found"},
    {"one phase as number", false,
     [](Bench& b) {
       CannotCalculateOverall(b);
       b.script->oddAnswers["PhaseIds"] = MixedArray;
     },
     AskEnthalpy, "unable to get phase name from array"},
    {"present phases as numbers", true, [](Bench& b) { Say(b, Answer("GetPresentPhases", 1.0, 2.0)); }, AskEnthalpy,
     "Failed to calculate overall enthalpy; invalid list of phases from GetPresentPhases: element 1: a text "
     "expected, "
     "a number found"},
    {"present phases not given", true,
     [](Bench& b) { b.script->oddAnswers["GetPresentPhases"] = [] { return com::Variant(); }; }, AskEnthalpy,
     "Failed to calculate overall enthalpy; invalid list of phases from GetPresentPhases: an array of texts "
     "expected, "
     "nothing found"},
    {"phase not at equilibrium", true,
     [](Bench& b) {
       b.material->state.statuses = {1, 2};
     },
     AskEnthalpy, "Failed to calculate overall enthalpy; phase Liquid is reported not to be in equilibrium"},
    {"phase named overall", true, [](Bench& b) { b.material->state.phases[0].label = "overall"; }, AskEnthalpy,
     "Invalid phase name \"overall\" from GetPresentPhases"},
    {"no phase", true, [](Bench& b) { b.material->state.phases.clear(); }, AskEnthalpy,
     "Failed to get overall enthalpy: no valid phases are present"},
    {"two enthalpies of a phase", true, [](Bench& b) { Say(b, Answer("GetSinglePhaseProp enthalpy", 1.0, 2.0)); },
     AskEnthalpy, "Invalid values for enthalpy for phase Vapor, basis \"mole\": scalar expected"},
    {"two fractions of a phase", true, [](Bench& b) { Say(b, Answer("GetSinglePhaseProp phaseFraction", 1.0, 2.0)); },
     AskEnthalpy, "Invalid values for phase fraction for phase Vapor, basis \"mole\": scalar expected"},
    {"three mole fractions of two compounds", true,
     [](Bench& b) { Say(b, Answer("GetOverallProp Fraction", 0.1, 0.2, 0.7)); }, AskMassEnthalpy,
     "Material object returned inconsistent number of values for molecular weights and overall compositions "
     "for "
     "mass/mole conversion"},
    {"mole fraction not set", true, [](Bench& b) { Say(b, Answer("GetOverallProp Fraction", 0.1, kMissingValue)); },
     AskMassEnthalpy, "Invalid values for overall composition for mass/mole conversion: value is not set"},
    {"molecular weight not set", true,
     [](Bench& b) { Say(b, Answer("GetCompoundConstant molecularWeight", 16.0, kMissingValue)); }, AskMassEnthalpy,
     "Invalid value for molecular weight of a compound for mass/mole conversion. Expected VARIANT of type "
     "REAL."},
    {"supported phases as numbers", true, [](Bench& b) { Say(b, Answer("GetPhaseList", 1.0, 2.0)); }, AskVapor,
     "invalid phase name array from GetPhaseList: element 1: a text expected, a number found"},
    {"fewer phases than states", true,
     [](Bench& b) {
       b.script->oddAnswers["GetPhaseList"] = [] { return com::MakeStrings(std::vector<std::string>{"Vapor"}); };
     },
     AskVapor,
     "number of elements in aggregation state array does not match number of elements in names array "
     "returned from "
     "GetPhaseList"},
    {"two values of a phase fraction", false, [](Bench& b) { Say(b, Answer("GetProp phaseFraction", 1.0, 2.0)); },
     AskFractions, "Unexpected format for phase fraction from material object: array with one value expected"},
    {"phase fraction as text", true,
     [](Bench& b) { b.script->oddAnswers["GetSinglePhaseProp phaseFraction"] = TextArray; }, AskFractions,
     "Unexpected format for phase fraction from material object: element 1: a number expected, a text found"},
    {"no phase fractions", false, [](Bench& b) { b.material->state.phases.clear(); }, AskFractions,
     "No phases are present in material"},
    {"compound without name", true, [](Bench& b) { b.material->state.compounds[1] = ""; }, AskNames,
     "One or more empty compound names from material object: compound 2 of port Inlet"},
    {"names as numbers", false, [](Bench& b) { Say(b, Answer("ComponentIds", 1.0, 2.0)); }, AskNames,
     "Invalid compound names from material object: element 1: a text expected, a number found"},
    {"three weights of two compounds", false,
     [](Bench& b) { Say(b, Answer("GetComponentConstant molecularWeight", 1.0, 2.0, 3.0)); }, AskWeights,
     "Invalid values for molecularWeight"},
    {"constant without value", true,
     [](Bench& b) {
       b.script->oddAnswers["GetCompoundConstant molecularWeight"] = [] {
         return com::MakeVariants(std::vector<com::Variant>(2));
       };
     },
     AskWeights, "One or more missing values for molecularWeight from port Inlet"},
    {"text constants as numbers", true,
     [](Bench& b) { Say(b, Answer("GetCompoundConstant CasRegistryNumber", 1.0, 2.0)); }, AskCas,
     "Unexpected data type"},
    {"no text constants", true, [](Bench& b) { Say(b, Answer("GetCompoundConstant CasRegistryNumber")); }, AskCas,
     "No data"},
    {"text constants not given", false,
     [](Bench& b) { b.script->oddAnswers["GetComponentConstant CasRegistryNumber"] = [] { return com::Variant(); }; },
     AskCas, "Invalid data: an array of values expected, nothing found"},
    {"one text constant of two", false,
     [](Bench& b) {
       b.script->oddAnswers["GetComponentConstant CasRegistryNumber"] = [] {
         return com::MakeStrings(std::vector<std::string>{"1-1-1"});
       };
     },
     AskCas, "Unexpected number of data elements"},
    {"two isentropic enthalpies", false, [](Bench& b) { Say(b, Answer("GetProp enthalpy", 1.0, 2.0)); },
     [](Bench& b) { (void)b.unit->HFromPSFlash(1e5, 0); }, "Invalid values for enthalpy"},
    {"a copy that is none, 1.0", false, [](Bench& b) { b.material->state.givesNoCopy = true; },
     [](Bench& b) { (void)b.Port().DuplicateMaterial(); }, "Failed to duplicate material: Invalid pointer"},
    {"a copy that is none, 1.1", true, [](Bench& b) { b.material->state.givesNoCopy = true; },
     [](Bench& b) { (void)b.Port().DuplicateMaterial(); },
     "Failed to get ICapeThermoMaterial from duplicate material object"},
};

TEST(MaterialAccess, ExplainsOddAnswers) {
  for (const OddAnswer& odd : kOddAnswers) {
    SCOPED_TRACE(odd.title);
    Bench bench(odd.thermo11);
    odd.spoil(bench);
    try {
      odd.ask(bench);
      ADD_FAILURE() << "was not refused";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.error.description, InThisSystemsWords(odd.description));
    }
    EXPECT_EQ(bench.script->liveObjects, 1) << "a copy was not released";
  }
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

// ---- Faults
// -----------------------------------------------------------------------------------------------------

/// A host call of an operation, and the failure's description when it fails; null where another way is taken.
struct HostCall {
  const char* call;
  const char* description;
};

struct Operation {
  const char* title;
  bool thermo11;
  bool calculatesOverall;
  void (*run)(Bench&);
  std::vector<HostCall> calls;
};

void AskTotalEnthalpy(Bench& b) { (void)b.Port().GetProperty(names::kEnthalpy, names::kOverall, names::kMixture, {}); }
void AskVaporVolume(Bench& b) {
  (void)b.Port().GetPropertyNoDup(names::kVolume, names::kVapor, names::kMixture, names::kMole);
}
void AskMassVolume(Bench& b) {
  (void)b.Port().GetPropertyNoDup(names::kVolume, names::kOverall, names::kMixture, names::kMass);
}
void AskIdentities(Bench& b) { (void)b.Port().GetCompoundIdentities(); }
void AskPhaseFractions(Bench& b) { (void)b.Port().GetPhaseFractions(); }
void AskIsentropic(Bench& b) { (void)b.unit->HFromPSFlash(2e5, 12); }
void AskNormalEnthalpy(Bench& b) { (void)b.Port().CalcNormalEnthalpy(std::array{0.5, 0.5}); }
void AskFlash(Bench& b) { b.Port().CalcEquilibrium(names::kTVF); }
void AskSetProp(Bench& b) {
  b.Port().SetProp(names::kEnthalpy, names::kOverall, com::kNoValue, names::kMixture, names::kMole,
                   com::MakeDoubles(std::array{1.0}).Get());
}

constexpr const char* kQuery10 = "QueryInterface ICapeThermoMaterialObject";
constexpr const char* kQuery11 = "QueryInterface ICapeThermoMaterial";
constexpr const char* kQueryRoutine = "QueryInterface ICapeThermoPropertyRoutine";
constexpr const char* kQueryEquilibrium = "QueryInterface ICapeThermoEquilibriumRoutine";
constexpr const char* kQueryPhases = "QueryInterface ICapeThermoPhases";
constexpr const char* kQueryCompounds = "QueryInterface ICapeThermoCompounds";
constexpr const char* kNo10 = "Failed to get ICapeThermoMaterialObject from material: <why>";
constexpr const char* kNo11 = "Failed to get ICapeThermoMaterial from material: <why>";
constexpr const char* kNoRoutine = "Failed to obtain ICapeThermoPropertyRoutine from material: <why>";
constexpr const char* kNoPhases =
    "Failed to obtain ICapeThermoPhases from material \"stream\" before CalcEquilibrium: <why>";
constexpr const char* kNoPhaseList =
    "Failed to obtain list of supported phases from material \"stream\" before CalcEquilibrium: <why>";
constexpr const char* kNoPresentPhases =
    "Failed to set present phases on material \"stream\" before CalcEquilibrium: <why>";
constexpr const char* kNoEquilibrium = "Failed to get ICapeThermoEquilibriumRoutine from material: <why>";
constexpr const char* kNoFlash = "CalcEquilibrium failed: <why>";

const Operation kOperations[] = {
    {"1.0 total enthalpy that the host calculates",
     false,
     true,
     AskTotalEnthalpy,
     {{kQuery10, kNo10},
      {"Duplicate", "Failed to duplicate material for calculating enthalpy in CPort::GetProperty(): <why>"},
      {kQuery10, "Failed to get ICapeThermoMaterialObject from duplicate material"},
      {"CalcProp Overall/[enthalpy]/[Overall]/mixture", nullptr},
      {"GetProp enthalpy/Overall//mixture/Mole", "GetProp (enthalpy/Overall/mixture/Mole) failed: <why>"},
      {"GetProp totalFlow/Overall///Mole", "GetProp (totalFlow/Overall/base mole) failed: <why>"}}},
    {"1.0 total enthalpy summed over phases",
     false,
     false,
     AskTotalEnthalpy,
     {{kQuery10, kNo10},
      {"Duplicate", "Failed to duplicate material for calculating enthalpy in CPort::GetProperty(): <why>"},
      {kQuery10, "Failed to get ICapeThermoMaterialObject from duplicate material"},
      {"CalcProp Overall/[enthalpy]/[Overall]/mixture", nullptr},
      {"PhaseIds", "Failed to obtain overall enthalpy; unable to get a list of phases, <why>"},
      {"GetProp phaseFraction/Vapor///Mole", "GetProp (phaseFraction/Vapor) failed: <why>"},
      {"CalcProp Vapor/[enthalpy]/[Vapor]/mixture", "CalcProp (enthalpy/Vapor/mixture) failed: <why>"},
      {"GetProp enthalpy/Vapor//mixture/Mole", "GetProp (enthalpy/Vapor/mixture/mole) failed: <why>"},
      {"GetProp phaseFraction/Liquid///Mole", "GetProp (phaseFraction/Liquid) failed: <why>"},
      {"CalcProp Liquid/[enthalpy]/[Liquid]/mixture", "CalcProp (enthalpy/Liquid/mixture) failed: <why>"},
      {"GetProp enthalpy/Liquid//mixture/Mole", "GetProp (enthalpy/Liquid/mixture/mole) failed: <why>"},
      {"GetProp totalFlow/Overall///Mole", "GetProp (totalFlow/overall) failed: <why>"}}},
    {"1.1 total enthalpy",
     true,
     true,
     AskTotalEnthalpy,
     {{kQuery11, kNo11},
      {"CreateMaterial", "Failed to duplicate material for calculating enthalpy in CPort::GetProperty(): <why>"},
      {kQuery11, "Failed to get ICapeThermoMaterial from duplicate material"},
      {"CopyFromMaterial", "Failed to copy material: <why>"},
      {"GetPresentPhases", "Failed to calculate overall enthalpy; GetPresentPhases failed: <why>"},
      {kQueryRoutine, kNoRoutine},
      {"CalcSinglePhaseProp Vapor/[enthalpy]", "Failed to calculate enthalpy for phase Vapor: <why>"},
      {"GetSinglePhaseProp enthalpy/Vapor/Mole", "Failed to get enthalpy for phase Vapor, basis \"mole\": <why>"},
      {"GetSinglePhaseProp phaseFraction/Vapor/Mole",
       "Failed to get phase fraction for phase Vapor, basis \"mole\": <why>"},
      {"CalcSinglePhaseProp Liquid/[enthalpy]", "Failed to calculate enthalpy for phase Liquid: <why>"},
      {"GetSinglePhaseProp enthalpy/Liquid/Mole", "Failed to get enthalpy for phase Liquid, basis \"mole\": <why>"},
      {"GetSinglePhaseProp phaseFraction/Liquid/Mole",
       "Failed to get phase fraction for phase Liquid, basis \"mole\": <why>"},
      {"GetOverallProp totalFlow/Mole", "Failed to get total flow for overall phase, basis \"mole\": <why>"}}},
    {"1.0 vapour volume",
     false,
     true,
     AskVaporVolume,
     {{kQuery10, kNo10},
      {"CalcProp Vapor/[volume]/[Vapor]/mixture", "CalcProp (volume/Vapor/mixture) failed: <why>"},
      {"GetProp volume/Vapor//mixture/Mole", "GetProp (volume/Vapor/mixture/Mole) failed: <why>"}}},
    {"1.1 vapour volume",
     true,
     true,
     AskVaporVolume,
     {{kQuery11, kNo11},
      {kQueryRoutine, kNoRoutine},
      {"CalcSinglePhaseProp Vapor/[volume]", "CalcProp (volume/Vapor) failed: <why>"},
      {"GetSinglePhaseProp volume/Vapor/Mole", "GetProp (volume/Vapor/Mole) failed: <why>"}}},
    {"1.1 volume on mass basis",
     true,
     true,
     [](Bench& b) {
       b.material->state.phases.pop_back();
       AskMassVolume(b);
     },
     {{kQuery11, kNo11},
      {"GetPresentPhases", "Failed to calculate overall volume; GetPresentPhases failed: <why>"},
      {kQueryRoutine, kNoRoutine},
      {"CalcSinglePhaseProp Vapor/[volume]", "Failed to calculate volume for phase Vapor: <why>"},
      {"GetSinglePhaseProp volume/Vapor/Mole", "Failed to get volume for phase Vapor, basis \"mole\": <why>"},
      {"GetSinglePhaseProp phaseFraction/Vapor/Mole",
       "Failed to get phase fraction for phase Vapor, basis \"mole\": <why>"},
      {kQueryCompounds, "Failed to obtain material's ICapeThermoCompounds interface: <why>"},
      {"GetCompoundConstant molecularWeight/", "Failed to get molecular weights for mass/mole conversion: <why>"},
      {"GetOverallProp Fraction/Mole", "Failed to get overall composition for mass/mole conversion: <why>"}}},
    {"1.0 names and CAS numbers",
     false,
     true,
     AskIdentities,
     {{kQuery10, kNo10},
      {"ComponentIds", "Failed to obtain compound IDs: <why>"},
      {"GetComponentConstant CasRegistryNumber/[methane,ethane]", "GetComponentConstant failed: <why>"}}},
    {"1.1 names and CAS numbers",
     true,
     true,
     AskIdentities,
     {{kQueryCompounds, "Failed to obtain material's ICapeThermoCompounds interface: <why>"},
      {"GetCompoundList", "Failed to obtain compounds IDs: <why>"}}},
    {"1.0 phase fractions",
     false,
     true,
     AskPhaseFractions,
     {{kQuery10, "Failed to get ICapeThermoMaterialObject interface from material: <why>"},
      {"PhaseIds", "Failed to get present phase IDs in material: <why>"},
      {"GetProp phaseFraction/Vapor///Mole", "Failed to get Vapor fraction from material: <why>"},
      {"GetProp phaseFraction/Liquid///Mole", "Failed to get Liquid fraction from material: <why>"}}},
    {"1.1 phase fractions",
     true,
     true,
     AskPhaseFractions,
     {{kQuery11, "Failed to get ICapeThermoMaterial interface from material: <why>"},
      {"GetPresentPhases", "Failed to get present phase IDs in material: <why>"},
      {"GetSinglePhaseProp phaseFraction/Vapor/Mole", "Failed to get Vapor fraction from material: <why>"},
      {"GetSinglePhaseProp phaseFraction/Liquid/Mole", "Failed to get Liquid fraction from material: <why>"}}},
    {"1.0 isentropic flash",
     false,
     true,
     AskIsentropic,
     {{kQuery10, "Failed to get interface to material connected to inlet port"},
      {"Duplicate", "Failed to duplicate material: <why>"},
      {kQuery10, "Failed to obtain material interface: <why>"},
      {"SetProp Pressure/Overall////[200000]", "failed to set Pressure: <why>"},
      {"SetProp entropy/Overall//mixture/Mole/[12]", "failed to set entropy: <why>"},
      {"CalcEquilibrium/pS/", kNoFlash},
      {"CalcProp Overall/[enthalpy]/[Overall]/mixture", nullptr},
      {"GetProp enthalpy/Overall//mixture/Mole", "GetProp (enthalpy/Overall/mixture/Mole) failed: <why>"}}},
    {"1.1 isentropic flash",
     true,
     true,
     [](Bench& b) {
       b.material->state.phases.pop_back();
       AskIsentropic(b);
     },
     {{kQuery11, "Failed to get ICapeThermoMaterial interface to material connected to inlet port"},
      {"CreateMaterial", "Failed to create material from inlet material: <why>"},
      {kQuery11, "Failed to get ICapeThermoMaterial from duplicate material: <why>"},
      {"CopyFromMaterial", "Failed to copy material from inlet: <why>"},
      {"SetOverallProp Pressure//[200000]", "failed to set Pressure: <why>"},
      {"SetOverallProp entropy/Mole/[12]", "failed to set entropy: <why>"},
      {kQueryPhases, kNoPhases},
      {"GetPhaseList", kNoPhaseList},
      {"SetPresentPhases/[Vapor]/[0]", kNoPresentPhases},
      {kQueryEquilibrium, kNoEquilibrium},
      {"CalcEquilibrium/[entropy,,Overall]/[Pressure,,Overall]/unspecified", kNoFlash},
      {"GetPresentPhases", "Failed to calculate overall enthalpy; GetPresentPhases failed: <why>"},
      {kQueryRoutine, kNoRoutine},
      {"CalcSinglePhaseProp Vapor/[enthalpy]", "Failed to calculate enthalpy for phase Vapor: <why>"},
      {"GetSinglePhaseProp enthalpy/Vapor/Mole", "Failed to get enthalpy for phase Vapor, basis \"mole\": <why>"},
      {"GetSinglePhaseProp phaseFraction/Vapor/Mole",
       "Failed to get phase fraction for phase Vapor, basis \"mole\": <why>"}}},
    {"1.0 normal enthalpy",
     false,
     true,
     AskNormalEnthalpy,
     {{kQuery10, kNo10},
      {"Duplicate", "Failed to duplicate material: <why>"},
      {kQuery10, kNo10},
      {"SetProp Pressure/Overall////[101325]", "Failed to set pressure on duplicate material: <why>"},
      {"SetProp Temperature/Overall////[298.15]", "Failed to set temperature on duplicate material: <why>"},
      {"SetProp Fraction/Overall///Mole/[0.5,0.5]", "Failed to set composition on duplicate material: <why>"},
      {"CalcEquilibrium/TP/", "Failed to calculate TP flash on duplicate material object at normal conditions: <why>"},
      {"CalcProp Overall/[enthalpy]/[Overall]/mixture", nullptr},
      {"GetProp enthalpy/Overall//mixture/Mole", "GetProp (enthalpy/Overall/mixture/Mole) failed: <why>"}}},
    {"1.1 normal enthalpy",
     true,
     true,
     [](Bench& b) {
       b.material->state.phases.pop_back();
       AskNormalEnthalpy(b);
     },
     {{kQuery11, kNo11},
      {"CreateMaterial", "Failed to duplicate material: <why>"},
      {kQuery11, "Failed to get ICapeThermoMaterial from duplicate material object"},
      {"CopyFromMaterial", "Failed to copy material: <why>"},
      {"SetOverallProp Pressure//[101325]", "Failed to set pressure on duplicate material: <why>"},
      {"SetOverallProp Temperature//[298.15]", "Failed to set temperature on duplicate material: <why>"},
      {"SetOverallProp Fraction/Mole/[0.5,0.5]", "Failed to set composition on duplicate material: <why>"},
      {kQueryPhases, kNoPhases},
      {"GetPhaseList", kNoPhaseList},
      {"SetPresentPhases/[Vapor]/[0]", kNoPresentPhases},
      {kQueryEquilibrium, "Failed to get ICapeThermoEquilibriumRoutine from duplicate material"},
      {"CalcEquilibrium/[Temperature,,Overall]/[Pressure,,Overall]/unspecified",
       "Failed to calculate phase equilibrium on duplicate material: <why>"},
      {"GetPresentPhases", "Failed to calculate overall enthalpy; GetPresentPhases failed: <why>"},
      {kQueryRoutine, kNoRoutine},
      {"CalcSinglePhaseProp Vapor/[enthalpy]", "Failed to calculate enthalpy for phase Vapor: <why>"},
      {"GetSinglePhaseProp enthalpy/Vapor/Mole", "Failed to get enthalpy for phase Vapor, basis \"mole\": <why>"},
      {"GetSinglePhaseProp phaseFraction/Vapor/Mole",
       "Failed to get phase fraction for phase Vapor, basis \"mole\": <why>"}}},
    {"1.1 TVF flash",
     true,
     true,
     AskFlash,
     {{kQuery11, kNo11},
      {"SetOverallProp Temperature//[0]", "failed to set Temperature: <why>"},
      {"SetOverallProp totalFlow/Mole/[0]", "failed to set totalFlow: <why>"},
      {"SetOverallProp Fraction/Mole/[]", "failed to set Fraction: <why>"},
      {kQueryPhases, "Failed to get ICapeThermoPhases from material: <why>"},
      {"GetPhaseList", "Failed to get list of phases from material: <why>"},
      {kQueryPhases, kNoPhases},
      {"GetPhaseList", kNoPhaseList},
      {"SetPresentPhases/[Vapor,Liquid]/[0,0]", kNoPresentPhases},
      {kQueryEquilibrium, kNoEquilibrium},
      {"CalcEquilibrium/[Temperature,,Overall]/[phaseFraction,Mole,Vapor]/unspecified", kNoFlash}}},
    {"1.0 SetProp",
     false,
     true,
     AskSetProp,
     {{kQuery10, kNo10}, {"SetProp enthalpy/Overall//mixture/Mole/[1]", "<why>"}}},
    {"1.1 SetProp", true, true, AskSetProp, {{kQuery11, kNo11}, {"SetOverallProp enthalpy/Mole/[1]", "<why>"}}},
};

TEST(MaterialAccess, ExplainsEveryFailingHostCallAndRecovers) {
  for (const Operation& operation : kOperations)
    for (const FaultMode& mode : kFaultModes)
      for (std::size_t k = 0; k < operation.calls.size(); ++k) {
        const HostCall& call = operation.calls[k];
        SCOPED_TRACE(std::string(operation.title) + ", " + mode.title + ", call " + std::to_string(k + 1) + ": " +
                     call.call);
        Bench bench(operation.thermo11, {.calculatesOverall = operation.calculatesOverall});
        Provoke(*bench.script, mode, static_cast<int>(k) + 1);
        std::string description = "<none>";
        try {
          operation.run(bench);
        } catch (const Failure& failure) {
          description = failure.error.description;
          EXPECT_FALSE(failure.error.name.empty());
          EXPECT_FALSE(failure.error.scope.empty());
          EXPECT_FALSE(failure.error.interfaceName.empty());
        }
        EXPECT_EQ(description, call.description ? Explain(call.description, call.call, mode) : "<none>");
        ASSERT_GT(bench.script->calls.size(), k);
        EXPECT_EQ(bench.script->calls[k], call.call);
        EXPECT_EQ(bench.script->liveObjects, 1) << "a copy was not released";
        EXPECT_EQ(bench.material->References(), 2u) << "the test's and the port's";
        bench.script->Restart();
        bench.material->state = {.thermo10 = !operation.thermo11, .thermo11 = operation.thermo11};
        EXPECT_NO_THROW(operation.run(bench));
      }
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
