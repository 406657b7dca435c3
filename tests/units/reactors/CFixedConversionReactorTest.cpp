// A FixedConversionReactor in a fake host. Its feed is 2 mol/s of A at 300 K unless a case says otherwise; 100 W heat
// it by 1 K.

#include "tests/support/Persistence.h"
#include "tests/units/reactors/ReactorBench.h"

namespace morvelan::test::fixed_conversion_reactor {

struct ConversionCase {
  const char* title;
  const char* names;
  const char* keys;
  const char* conversions;
  bool serial;
  std::vector<double> feed;     // [mol/s]
  std::vector<double> product;  // [mol/s]
};

constexpr const char *kBoth = R"("A to B", "B to C")", *kTwice = R"("A to B", "A to 2B")";

const ConversionCase kConversions[] = {
    {"in series", kBoth, R"("A", "B")", "0.5, 0.5", true, {1, 0, 0}, {0.5, 0.25, 0.25}},
    {"in parallel", kBoth, R"("A", "B")", "0.5, 0.5", false, {1, 0, 0}, {0.5, 0.5, 0}},
    {"in parallel, some B", kBoth, R"("A", "B")", "0.5, 0.5", false, {1, 1, 0}, {0.5, 1, 0.5}},
    {"in the other order", R"("B to C", "A to B")", R"("B", "A")", "0.5, 0.5", true, {1, 0, 0}, {0.5, 0.5, 0}},
    {"one alone is in series", R"("A to B")", R"("a")", "0.25", false, {1, 0, 1}, {0.75, 0.25, 1}},
    {"more moles", R"("A to 2B")", R"("A")", "0.5", false, {1, 0, 0}, {0.5, 1, 0}},
    {"by its product: backwards", R"("A to B")", R"("B")", "0.5", false, {1, 1, 0}, {1.5, 0.5, 0}},
    {"nothing", kBoth, R"("A", "B")", "0, 0", true, {0.5, 1, 1}, {0.5, 1, 1}},
    {"no key compound in the feed", R"("B to C")", R"("B")", "1", false, {1, 0, 0}, {1, 0, 0}},
    {"everything, in series", kBoth, R"("A", "B")", "1, 1", true, {0.3, 0.1, 0}, {0, 0, 0.4}},
    // (0.9 - 0.6 x 0.9 - 0.4 x 0.9 is less than zero in floating point.)
    {"everything, in parallel", kTwice, R"("A", "A")", "0.6, 0.4", false, {0.9, 0, 0}, {0, 1.4 * 0.9, 0}},
    {"the same reaction twice", R"("A to B", "A to B")", R"("A", "A")", "0.5, 0.5", true, {1, 0, 0}, {0.25, 0.75, 0}},
    // Rounding is forgiven up to 2.2e-15 of what reacts in series, and of the whole feed in parallel.
    {"hardly too little of another", R"("A and B to C")", R"("A")", "1", true, {1, 1 - 1.5e-15, 0}, {0, 0, 1}},
    {"a trace too much", kTwice, R"("A", "A")", "0.6, 0.40000000000001", false, {1, 0, 9}, {0, 1.40000000000002, 9}},
};

TEST(CFixedConversionReactor, Converts) {
  for (const bool thermo11 : {false, true})
    for (const ConversionCase& c : kConversions) {
      SCOPED_TRACE(testing::Message() << c.title << ", thermo 1.1: " << thermo11);
      ReactorBench bench(thermo11);
      bench.Select(c.names, c.keys, c.conversions, c.serial);
      bench.Feed(c.feed);
      bench.Calculate();
      const std::vector<double> flows = bench.Flows();
      for (std::size_t i = 0; i < flows.size(); ++i) EXPECT_NEAR(flows[i], c.product[i], 2e-15 * c.product[i]) << i;
      EXPECT_EQ(bench.At("Inlet").written.size(), 0u) << "the feed is untouched";
    }
}

TEST(CFixedConversionReactor, TakesNoMoreThanThereIs) {
  // Whatever rounding makes of it: n - 3 (n / 3) is not zero for every n.
  for (int i = 1; i <= 200; ++i) {
    ReactorBench bench;
    bench.Select(R"("3A to B")", R"("A")", "1");
    bench.Feed({i * 0.0137, 0.1, 0});
    bench.Calculate();
    EXPECT_GE(bench.Flows()[0], 0) << i;
    EXPECT_LE(bench.Flows()[0], 1e-15 * i) << i;
    EXPECT_NEAR(bench.Flows()[1], 0.1 + i * 0.0137 / 3, 1e-14) << i;
  }
}

constexpr const char* kAndHeat = "Use Enthalpy and heat of reaction";

// By the interface of materials and with a routine, by an older one's name, or not at all: then a package gives what it
// gives without a material, in the fake at 0 K, at which A to B has -13000 J/mol.
TEST(CFixedConversionReactor, HandsTheMaterialOverAsThePackageTakesIt) {
  const std::string heat = " enthalpyOfReaction/Overall/[A to B]/Mole";
  struct {
    bool context, older, routine;
    std::vector<std::string> calls;
    double temperature;
  } const cases[] = {
      {true, true, true, {"SetMaterial", "CalcReactionProp" + heat, "GetReactionProp" + heat, "UnsetMaterial"}, 400},
      {false, true, false, {"GetIDsOfNames", "Invoke SetMaterial", "GetReactionProp" + heat}, 400},
      {false, false, true, {"CalcReactionProp" + heat, "GetReactionProp" + heat}, 430},
  };
  for (const auto& c : cases) {
    FakePackageState state = ReactorPackage();
    state.offersMaterialContext = c.context;
    state.offersThermoContext = c.older;
    state.offersRoutine = c.routine;
    ReactorBench bench(true, "FixedConversionReactor", state);
    bench.Select(R"("A to B")", R"("A")", "0.5");
    bench.Put("Enthalpy Type", kAndHeat);
    bench.Calculate();
    EXPECT_NEAR(bench.Number("Temperature"), c.temperature, 1e-9);
    std::vector<std::string> calls;
    std::ranges::copy_if(bench.script->calls, std::back_inserter(calls), [](const std::string& call) {
      return call.find("SetMaterial") != std::string::npos || call.find("UnsetMaterial") != std::string::npos ||
             call.find("ReactionProp ") != std::string::npos || call == "GetIDsOfNames";
    });
    EXPECT_EQ(calls, c.calls);
  }
}

TEST(CFixedConversionReactor, NotesPhasesOtherThanThoseOfItsReactions) {
  const FakePhase kVapor = {"Vapor", "Vapor", 1, {}}, kLiquid = {"Liquid", "Liquid", 1, {}};
  const FakePhase kNoLiquid = {"Liquid", "Liquid", 0, {}};
  const std::string several =
      "FixedConversionReactor \"R-1\" warning: Multiple phases (Vapor, Liquid) are present in reactor. All reactions "
      "will be performed on OVERALL phase.";
  const std::string another =
      "FixedConversionReactor \"R-1\"warning: phase defined for reaction A to B is Vapor but phase present is Liquid. "
      "Reaction is be performed anyway.";
  struct {
    std::vector<FakePhase> phases;
    const char* reactionPhase;
    std::vector<std::string> log;
  } const cases[] = {
      {{kVapor}, "vapor", {}},
      {{kVapor}, "Overall", {}},
      {{kVapor, kNoLiquid}, "Vapor", {}},
      {{kVapor, kLiquid}, "Vapor", {several}},
      {{kLiquid}, "Vapor", {another}},
  };
  for (const bool thermo11 : {false, true})
    for (const auto& c : cases) {
      ReactorBench bench(thermo11);
      bench.Select(R"("A to B")", R"("A")", "0.5");
      bench.package->state.reactions[0].phase = c.reactionPhase;
      bench.At("Outlet").phases = c.phases;
      bench.Calculate();
      EXPECT_EQ(bench.context->log, c.log);
    }
}

TEST(CFixedConversionReactor, OffersItsConversionsAsParameters) {
  ReactorBench bench;
  EXPECT_EQ(bench.Configuration(),
            R"({"reactionNames":[],"reactionCompounds":[],"reactionConversions":[],"serialReactions":false})");
  bench.Select(kBoth, R"("A", "B")", "0.5, 0.25", true);
  const auto conversion = bench.door.Parameter("conversion b reaction b to c");
  com::Variant value;
  EXPECT_EQ(conversion->get_value(value.Put()), kUnitFailed);
  EXPECT_EQ(ErrorOf(conversion.Get()).description, "unit not validated");
  EXPECT_EQ(TextFrom(conversion.Get(), &ICapeIdentification::get_ComponentDescription),
            "Conversion of B in reaction B to C");
  bench.Put("Conversion B reaction B to C", 0.75);
  EXPECT_EQ(conversion->get_value(value.Put()), kUnitFailed) << "not found yet";
  EXPECT_EQ(bench.Fault(), "valid");
  EXPECT_EQ(bench.Number("Conversion B reaction B to C"), 0.75);
  bench.Put("Conversion B reaction B to C", 1.2);
  EXPECT_EQ(bench.door.Status(), CAPE_NOT_VALIDATED);
  EXPECT_EQ(bench.Number("Conversion B reaction B to C"), 1.2) << "was found before";
  EXPECT_EQ(bench.Fault(), "Error for reaction B to C: conversion must be between zero and unity");

  // In the order of the selection, after the unit's own; a parameter stays that of its reaction.
  bench.Select(R"("B to C", "A to B")", R"("B", "B")", "0.1, 0.2");
  const auto parameters = ItemsOf<ICapeParameter>(bench.door.Parameters());
  ASSERT_EQ(parameters.size(), 8u);
  EXPECT_EQ(parameters[6].Get(), conversion.Get());
  EXPECT_EQ(ParameterText(parameters[6]), "Conversion B reaction B to C (input) = 0.1");
  EXPECT_EQ(ParameterText(parameters[7]), "Conversion B reaction A to B (input) = <unit not validated>");
  bench.Configure(R"({"reactionConversions": [0.3, 0.4]})");
  EXPECT_EQ(bench.Configuration(), R"({"reactionNames":["B to C","A to B"],"reactionCompounds":["B","B"],)"
                                   R"("reactionConversions":[0.3,0.4],"serialReactions":false})");
  bench.Select("", "", "");
  EXPECT_EQ(conversion->put_value(com::MakeDouble(0.9).Get()), S_OK) << "of no use any more";
}

// The reactions of a stream are still to be found.
TEST(CFixedConversionReactor, FindsItsReactionsAgainOnceItIsLoaded) {
  ReactorBench bench;
  bench.Select(kBoth, R"("A", "B")", "0.3333333333333333, 0.1", true);
  bench.Calculate();
  const std::vector<double> flows = bench.Flows();
  const auto stream = bench.door.unit.As<IPersistStream>();
  EXPECT_EQ(LoadBytes(stream.Get(), SavedBytes(stream.Get())), S_OK);
  com::Variant value;
  EXPECT_EQ(bench.door.Parameter("Conversion A reaction A to B")->get_value(value.Put()), kUnitFailed);
  bench.Put("Thermo Version", "1.1");
  bench.Calculate();
  EXPECT_EQ(bench.Flows(), flows);
}

}  // namespace morvelan::test::fixed_conversion_reactor
