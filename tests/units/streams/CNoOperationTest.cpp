// A NoOperation in a fake host: the library as hosts load it, COM interfaces only.

#include "tests/support/Heap.h"
#include "tests/units/UnitBench.h"

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

// Elements as variants, and identifiers in other letters. Reading knows more forms, which have tests of their own.
TEST(CNoOperation, ReadsAnswersInOtherForms) {
  Flowsheet sheet(true);
  sheet.script->oddAnswers["GetOverallProp Fraction"] = [] {
    std::vector<com::Variant> elements;
    for (const double fraction : {0.25, 0.75}) elements.push_back(com::MakeDouble(fraction));
    return com::MakeVariants(elements);
  };
  sheet.product->state.compounds = {"METHANE", "ethane"};
  EXPECT_EQ(sheet.door.unit->Calculate(), S_OK) << ErrorOf(sheet.door.unit.Get());
  sheet.ExpectFeedInProduct();
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
