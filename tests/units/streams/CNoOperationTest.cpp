// A NoOperation through the door that hosts use: the registered library, COM interfaces only.

#include <gtest/gtest.h>

#include <array>
#include <span>

#include "material/Names.h"
#include "tests/support/Faults.h"
#include "tests/support/Heap.h"
#include "tests/units/UnitBench.h"
#include "units/streams/CNoOperation.h"

namespace morvelan::test::no_operation {

/// A NoOperation in a fake host, connected and in the host's simulation context.
struct Flowsheet : UnitBench {
  explicit Flowsheet(bool thermo11)
      : UnitBench("NoOperation", thermo11, {}), feed(materials.at("Inlet")), product(materials.at("Outlet")) {}

  void ExpectFeedInProduct() const {
    EXPECT_EQ(product->state.temperature, feed->state.temperature);
    EXPECT_EQ(product->state.pressure, feed->state.pressure);
    EXPECT_EQ(product->state.flow, feed->state.flow);
    EXPECT_EQ(product->state.fractions, feed->state.fractions);
  }

  const com::Ref<FakeMaterial>& feed;
  const com::Ref<FakeMaterial>& product;
};

/// A host call of an operation in its order, and the unit's description when it fails; null where the failure
/// is harmless.
struct HostCall {
  const char* call;
  const char* description;
};

constexpr const char* kQuery10 = "QueryInterface ICapeThermoMaterialObject";
constexpr const char* kQuery11 = "QueryInterface ICapeThermoMaterial";
constexpr const char* kQueryCompounds = "QueryInterface ICapeThermoCompounds";
constexpr const char* kNoMaterial10 = "Failed to get ICapeThermoMaterialObject from material: <why>";
constexpr const char* kNoMaterial11 = "Failed to get ICapeThermoMaterial from material: <why>";
constexpr const char* kReadTemperature =
    "failed to get property Temperature from material connected to port Inlet: <why>";
constexpr const char* kReadPressure = "failed to get property Pressure from material connected to port Inlet: <why>";
constexpr const char* kReadFlow = "failed to get property totalFlow from material connected to port Inlet: <why>";
constexpr const char* kReadFraction = "failed to get property Fraction from material connected to port Inlet: <why>";

constexpr HostCall kCount10[] = {
    {kQuery10, "Failed to obtain material interface: <why>"},
    {"ComponentIds", "Failed to obtain compound IDs: <why>"},
};
constexpr HostCall kCount11[] = {
    {kQueryCompounds, "Failed to obtain material's ICapeThermoCompounds interface: <why>"},
    {"GetCompoundList", "Failed to obtain compounds IDs: <why>"},
};
constexpr HostCall kCompare10[] = {
    {kQuery10, "Invalid format for compound list at port Outlet: Failed to obtain material interface: <why>"},
    {"ComponentIds", "Invalid format for compound list at port Outlet: Failed to obtain compound IDs: <why>"},
};
constexpr HostCall kCompare11[] = {
    {kQueryCompounds,
     "Invalid format for compound list at port Outlet: Failed to obtain material's "
     "ICapeThermoCompounds interface: <why>"},
    {"GetCompoundList", "Invalid format for compound list at port Outlet: Failed to obtain compounds IDs: <why>"},
};
constexpr HostCall kRun10[] = {
    {kQuery10, kNoMaterial10},
    {"GetProp Temperature/Overall///", kReadTemperature},
    {kQuery10, kNoMaterial10},
    {"GetProp Pressure/Overall///", kReadPressure},
    {kQuery10, kNoMaterial10},
    {"GetProp totalFlow/Overall///Mole", kReadFlow},
    {kQuery10, kNoMaterial10},
    {"GetProp Fraction/Overall///Mole", kReadFraction},
    {"NamedValue SimplifiedModelRequest", nullptr},
    {kQuery10, kNoMaterial10},
    {"SetProp Pressure/Overall////[100000]", "failed to set Pressure: <why>"},
    {"SetProp Temperature/Overall////[300]", "failed to set Temperature: <why>"},
    {"SetProp totalFlow/Overall///Mole/[2]", "failed to set totalFlow: <why>"},
    {"SetProp Fraction/Overall///Mole/[0.25,0.75]", "failed to set Fraction: <why>"},
    {"CalcEquilibrium/TP/", "CalcEquilibrium failed: <why>"},
};
constexpr HostCall kRun11[] = {
    {kQuery11, kNoMaterial11},
    {"GetOverallProp Temperature/", kReadTemperature},
    {kQuery11, kNoMaterial11},
    {"GetOverallProp Pressure/", kReadPressure},
    {kQuery11, kNoMaterial11},
    {"GetOverallProp totalFlow/Mole", kReadFlow},
    {kQuery11, kNoMaterial11},
    {"GetOverallProp Fraction/Mole", kReadFraction},
    {"NamedValue SimplifiedModelRequest", nullptr},
    {kQuery11, kNoMaterial11},
    {"SetOverallProp Pressure//[100000]", "failed to set Pressure: <why>"},
    {"SetOverallProp Temperature//[300]", "failed to set Temperature: <why>"},
    {"SetOverallProp totalFlow/Mole/[2]", "failed to set totalFlow: <why>"},
    {"SetOverallProp Fraction/Mole/[0.25,0.75]", "failed to set Fraction: <why>"},
    {"QueryInterface ICapeThermoPhases",
     "Failed to obtain ICapeThermoPhases from material \"stream\" before CalcEquilibrium: <why>"},
    {"GetPhaseList",
     "Failed to obtain list of supported phases from material \"stream\" before CalcEquilibrium: <why>"},
    {"SetPresentPhases/[Vapor,Liquid]/[0,0]",
     "Failed to set present phases on material \"stream\" before CalcEquilibrium: <why>"},
    {"QueryInterface ICapeThermoEquilibriumRoutine",
     "Failed to get ICapeThermoEquilibriumRoutine from material: <why>"},
    {"CalcEquilibrium/[Temperature,,Overall]/[Pressure,,Overall]/unspecified", "CalcEquilibrium failed: <why>"},
};

/// Everything that must hold whatever call failed.
struct Operation {
  const char* title;
  bool thermo11;
  bool validated;  // before the operation
  std::vector<std::span<const HostCall>> calls;
  bool calculate;  // or only validate
};

const Operation kOperations[] = {
    {"1.0 Validate", false, false, {kCount10, kCompare10}, false},
    {"1.1 Validate", true, false, {kCount11, kCompare11}, false},
    {"1.0 Calculate", false, true, {kCount10, kRun10}, true},
    {"1.1 Calculate", true, true, {kCount11, kRun11}, true},
    // The count that validation has read serves the calculation too.
    {"1.0 Calculate unvalidated", false, false, {kCount10, kCompare10, kRun10}, true},
    {"1.1 Calculate unvalidated", true, false, {kCount11, kCompare11, kRun11}, true},
};

std::vector<HostCall> CallsOf(const Operation& operation) {
  std::vector<HostCall> calls;
  for (const auto& part : operation.calls) calls.insert(calls.end(), part.begin(), part.end());
  return calls;
}

std::vector<std::string> Labels(const std::vector<HostCall>& calls) {
  std::vector<std::string> labels;
  for (const HostCall& call : calls) labels.emplace_back(call.call);
  return labels;
}

TEST(CNoOperation, MakesNoOtherHostCallsThanItNeeds) {
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.title);
    Flowsheet sheet(operation.thermo11);
    if (operation.validated) sheet.Validate();
    std::string message;
    if (operation.calculate)
      EXPECT_EQ(sheet.door.unit->Calculate(), S_OK) << ErrorOf(sheet.door.unit.Get());
    else
      EXPECT_TRUE(sheet.door.IsValid(message)) << message;
    EXPECT_EQ(sheet.script->calls, Labels(CallsOf(operation)));
  }
}

void CheckFailedValidation(const Flowsheet& sheet, const std::string& description) {
  std::string message;
  EXPECT_FALSE(sheet.door.IsValid(message));
  EXPECT_EQ(message, description);
  EXPECT_EQ(sheet.door.Status(), CAPE_INVALID);
  EXPECT_EQ(sheet.door.Report("Status"), description);
}

TEST(CNoOperation, ExplainsEveryFailingHostCallAndRecovers) {
  for (const Operation& operation : kOperations)
    for (const FaultMode& mode : kFaultModes) {
      const std::vector<HostCall> calls = CallsOf(operation);
      for (std::size_t k = 0; k < calls.size(); ++k) {
        SCOPED_TRACE(std::string(operation.title) + ", " + mode.title + ", call " + std::to_string(k + 1) + ": " +
                     calls[k].call);
        Flowsheet sheet(operation.thermo11);
        if (operation.validated) sheet.Validate();
        const int objects = sheet.script->liveObjects;
        const ULONG references = sheet.product->References();
        Provoke(*sheet.script, mode, static_cast<int>(k) + 1);
        if (!calls[k].description)
          EXPECT_EQ(sheet.door.unit->Calculate(), S_OK);
        else if (operation.calculate)
          CheckFailedCalculation(sheet.door, Explain(calls[k].description, calls[k].call, mode));
        else
          CheckFailedValidation(sheet, Explain(calls[k].description, calls[k].call, mode));
        EXPECT_EQ(sheet.script->liveObjects, objects);
        EXPECT_EQ(sheet.product->References(), references);
        sheet.script->Restart();
        EXPECT_EQ(sheet.door.unit->Calculate(), S_OK) << ErrorOf(sheet.door.unit.Get());
        sheet.ExpectFeedInProduct();
      }
    }
}

TEST(CNoOperation, CarriesItsFeedToItsProduct) {
  for (const bool thermo11 : {false, true})
    for (const bool quiet : {false, true}) {
      SCOPED_TRACE(testing::Message() << "thermo 1.1: " << thermo11 << ", quiet: " << quiet);
      Flowsheet sheet(thermo11);
      sheet.context->namedValues["SimplifiedModelRequest"] = com::MakeBoolean(quiet);
      EXPECT_EQ(sheet.door.unit->Calculate(), S_OK) << ErrorOf(sheet.door.unit.Get());
      sheet.ExpectFeedInProduct();
      EXPECT_EQ(sheet.product->state.flash, thermo11 ? "Temperature//Overall, Pressure//Overall, unspecified" : "TP");
      EXPECT_EQ(sheet.door.Report("status"), "unit is solved");
      EXPECT_EQ(sheet.door.Status(), CAPE_VALID);
    }
}

/// An answer that no careful host gives, and what the unit makes of it: a description, or null when it copes.
struct OddAnswer {
  const char* title;
  bool thermo11;
  const char* call;
  com::Variant (*answer)();
  const char* description;
};

com::Variant BaseOne(std::span<const double> values) {
  com::Variant array = com::MakeDoubles(values);
  array.Get().parray->rgsabound[0].lLbound = 1;
  return array;
}

com::Variant Strings(std::vector<std::string> values) { return com::MakeStrings(values); }

com::Variant Variants(double first, double second) {
  std::vector<com::Variant> elements;
  elements.push_back(com::MakeDouble(first));
  elements.push_back(com::MakeDouble(second));
  return com::MakeVariants(elements);
}

/// A reference to a variant that refers to an array.
com::Variant Referring(double first, double second) {
  static com::Variant inner;
  static com::Variant array;
  array = Variants(first, second);
  inner.Put()->vt = VT_ARRAY | VT_VARIANT | VT_BYREF;
  const_cast<VARIANT&>(inner.Get()).pparray = const_cast<SAFEARRAY**>(&array.Get().parray);
  com::Variant outer;
  VARIANT* reference = outer.Put();
  reference->vt = VT_VARIANT | VT_BYREF;
  reference->pvarVal = const_cast<VARIANT*>(&inner.Get());
  return outer;
}

const OddAnswer kOddAnswers[] = {
    {"array from 1", false, "GetProp Fraction",
     [] {
       return BaseOne(std::array{0.25, 0.75});
     },
     nullptr},
    {"variants", true, "GetOverallProp Fraction", [] { return Variants(0.25, 0.75); }, nullptr},
    {"by reference", false, "GetProp Fraction", [] { return Referring(0.25, 0.75); }, nullptr},
    {"identifiers in other case", false, "ComponentIds",
     [] {
       return Strings({"METHANE", "ethane"});
     },
     nullptr},
    {"scalar instead of array", true, "GetOverallProp Pressure", [] { return com::MakeDouble(1e5); },
     "failed to get property Pressure from material connected to port Inlet: an array of numbers expected, a "
     "number "
     "found"},
    {"empty array", false, "GetProp Temperature", [] { return com::MakeDoubles({}); },
     "failed to get property Temperature from material connected to port Inlet: 1 values expected"},
    {"nothing", true, "GetOverallProp totalFlow", [] { return com::Variant(); },
     "failed to get property totalFlow from material connected to port Inlet: an array of numbers expected, "
     "nothing "
     "found"},
    {"NaN", false, "GetProp totalFlow", [] { return com::MakeDoubles(std::array{kNaN}); },
     "failed to get property totalFlow from material connected to port Inlet: value is not set"},
    {"missing value among fractions", true, "GetOverallProp Fraction",
     [] {
       return com::MakeDoubles(std::array{0.25, kMissing});
     },
     "failed to get property Fraction from material connected to port Inlet: value is not set"},
    {"three fractions of two compounds", false, "GetProp Fraction",
     [] {
       return com::MakeDoubles(std::array{0.2, 0.3, 0.5});
     },
     "failed to get property Fraction from material connected to port Inlet: 2 values expected"},
    {"texts instead of numbers", true, "GetOverallProp Fraction",
     [] {
       return Strings({"a", "b"});
     },
     "failed to get property Fraction from material connected to port Inlet: element 1: a number expected, a "
     "text "
     "found"},
    {"no compounds", false, "ComponentIds", [] { return Strings({}); }, "No chemical compounds on port Inlet"},
    {"numbers as compounds", true, "GetCompoundList",
     [] {
       return com::MakeDoubles(std::array{1.0, 2.0});
     },
     "Invalid list of compounds from Inlet: element 1: a text expected, a number found"},
    {"no phases", true, "GetPhaseList", [] { return Strings({}); },
     "Empty list of supported phases from material \"stream\" before CalcEquilibrium: no phases"},
    {"numbers as phases", true, "GetPhaseList", [] { return com::MakeDoubles(std::array{1.0}); },
     "Invalid list of phases from material \"stream\" before CalcEquilibrium: element 1: a text expected, a "
     "number "
     "found"},
};

TEST(CNoOperation, CopesWithOddAnswersOrExplainsThem) {
  for (const OddAnswer& odd : kOddAnswers) {
    SCOPED_TRACE(odd.title);
    Flowsheet sheet(odd.thermo11);
    sheet.script->oddAnswers[odd.call] = odd.answer;
    if (odd.description) {
      CheckFailedCalculation(sheet.door, odd.description);
    } else {
      EXPECT_EQ(sheet.door.unit->Calculate(), S_OK) << ErrorOf(sheet.door.unit.Get());
      sheet.ExpectFeedInProduct();
    }
  }
}

struct Mismatch {
  const char* title;
  std::vector<std::string> compounds;  // of the product
  const char* message;
};

TEST(CNoOperation, RefusesUnconnectedPortsAndOtherCompounds) {
  const Mismatch mismatches[] = {
      {"other order",
       {"ethane", "methane"},
       "Compounds list on port Outlet does not match compound list on port Inlet; please make sure to "
       "connect "
       "materials of the same type to these ports"},
      {"fewer",
       {"methane"},
       "Compounds count present on port Outlet does not match number of compounds on port Inlet; please make "
       "sure to "
       "connect materials of the same type to these ports"},
      {"none", {}, "No compounds present on port Outlet"},
  };
  for (const Mismatch& mismatch : mismatches) {
    SCOPED_TRACE(mismatch.title);
    Flowsheet sheet(true);
    sheet.product->state.compounds = mismatch.compounds;
    sheet.product->state.casNumbers.resize(mismatch.compounds.size());
    sheet.product->state.molecularWeights.resize(mismatch.compounds.size());
    CheckFailedValidation(sheet, mismatch.message);
  }
  for (const char* port : {"Inlet", "Outlet"}) {
    Flowsheet sheet(false);
    EXPECT_EQ(sheet.door.Port(port)->Disconnect(), S_OK);
    CheckFailedValidation(sheet, "not all material ports are connected");
  }
}

// What a host does around each run: it disconnects and connects all ports again, and asks for the same
// calculation.
TEST(CNoOperation, StandsManyRunsWithoutGrowing) {
  for (const bool thermo11 : {false, true}) {
    Flowsheet sheet(thermo11);
    EXPECT_EQ(sheet.door.unit->Calculate(), S_OK);
    const int objects = sheet.script->liveObjects;
    const ULONG references = sheet.feed->References();
    const std::size_t before = HeapInUse();
    for (int run = 0; run < 1000; ++run) {
      sheet.script->Restart();
      EXPECT_EQ(sheet.door.Port("Inlet")->Disconnect(), S_OK);
      EXPECT_EQ(sheet.door.Port("Inlet")->Connect(Flowsheet::Dispatch(sheet.feed)), S_OK);
      EXPECT_EQ(sheet.door.unit->Calculate(), S_OK);
    }
    EXPECT_EQ(sheet.script->liveObjects, objects);
    EXPECT_EQ(sheet.feed->References(), references);
    EXPECT_LT(HeapInUse(), before + 10'000) << "bytes more after 1000 runs";
  }
}

TEST(CNoOperation, OutlivesItsReleaseDuringACalculation) {
  Flowsheet sheet(false);
  auto unit = sheet.door.unit;
  sheet.door.unit.Reset();
  sheet.door.utilities.Reset();
  sheet.door.reports.Reset();
  ICapeUnit* last = unit.Detach();
  sheet.script->oddAnswers["GetProp Temperature"] = [&] {
    last->Release();
    return com::MakeDoubles(std::array{300.0});
  };
  EXPECT_EQ(last->Calculate(), S_OK);
  sheet.ExpectFeedInProduct();
}

TEST(CNoOperation, KeepsNoHostObjectAfterTerminate) {
  Flowsheet sheet(true);
  EXPECT_EQ(sheet.door.unit->Calculate(), S_OK);
  EXPECT_EQ(sheet.door.utilities->Terminate(), S_OK);
  EXPECT_EQ(sheet.feed->References(), 1u);
  EXPECT_EQ(sheet.product->References(), 1u);
  EXPECT_EQ(sheet.context->References(), 1u);
  EXPECT_EQ(sheet.door.unit->Calculate(), kUnitFailed);
  EXPECT_EQ(ErrorOf(sheet.door.unit.Get()),
            (Texts{"Initialize not called", "Initialize not called", "Calculate", "ICapeUnit"}));
  EXPECT_EQ(sheet.door.utilities->Terminate(), S_OK);
  EXPECT_EQ(sheet.door.utilities->Initialize(), S_OK);
  EXPECT_EQ(sheet.door.Port("inlet")->Connect(Flowsheet::Dispatch(sheet.feed)), S_OK);
  EXPECT_EQ(sheet.door.Port("OUTLET")->Connect(Flowsheet::Dispatch(sheet.product)), S_OK);
  EXPECT_EQ(sheet.door.unit->Calculate(), S_OK) << ErrorOf(sheet.door.unit.Get());
}

}  // namespace morvelan::test::no_operation
