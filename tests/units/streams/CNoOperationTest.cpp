// A NoOperation through the door that hosts use: the registered library, COM interfaces only.

#include <gtest/gtest.h>

#include <array>
#include <span>

#include "material/Names.h"
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

void CheckFailedValidation(const Flowsheet& sheet, const std::string& description) {
  std::string message;
  EXPECT_FALSE(sheet.door.IsValid(message));
  EXPECT_EQ(message, description);
  EXPECT_EQ(sheet.door.Status(), CAPE_INVALID);
  EXPECT_EQ(sheet.door.Report("Status"), description);
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

/// A form in which a host may give the same answer.
struct OddForm {
  const char* title;
  bool thermo11;
  const char* call;
  com::Variant (*answer)();
};

com::Variant BaseOne(std::span<const double> values) {
  com::Variant array = com::MakeDoubles(values);
  array.Get().parray->rgsabound[0].lLbound = 1;
  return array;
}

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

const OddForm kOddForms[] = {
    {"array from 1", false, "GetProp Fraction",
     [] {
       return BaseOne(std::vector{0.25, 0.75});
     }},
    {"variants", true, "GetOverallProp Fraction", [] { return Variants(0.25, 0.75); }},
    {"by reference", false, "GetProp Fraction", [] { return Referring(0.25, 0.75); }},
    {"identifiers in other case", false, "ComponentIds",
     [] {
       return com::MakeStrings(std::vector<std::string>{"METHANE", "ethane"});
     }},
};

TEST(CNoOperation, ReadsAnswersInAnyForm) {
  for (const OddForm& odd : kOddForms) {
    SCOPED_TRACE(odd.title);
    Flowsheet sheet(odd.thermo11);
    sheet.script->oddAnswers[odd.call] = odd.answer;
    EXPECT_EQ(sheet.door.unit->Calculate(), S_OK) << ErrorOf(sheet.door.unit.Get());
    sheet.ExpectFeedInProduct();
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
