// What a FixedConversionReactor is told and what it holds against it, through the door that hosts use.

#include "tests/support/Persistence.h"
#include "tests/units/reactors/ReactorBench.h"

namespace morvelan::test::fixed_conversion_selection {

constexpr const char* kBoth = R"("A to B", "B to C")";

// ---- Validation

struct ValidationCase {
  const char* title;
  void (*spoil)(ReactorBench&);
  const char* fault;
};

const ValidationCase kValidations[] = {
    {"no material", [](ReactorBench& b) { EXPECT_EQ(b.door.Port("Outlet")->Disconnect(), S_OK); },
     "not all material ports are connected"},
    {"no package, no selection",
     [](ReactorBench& b) {
       b.Select("", "", "");
       EXPECT_EQ(b.Assign(nullptr), S_OK);
     },
     "A reaction package has not been selected"},
    {"no selection", [](ReactorBench& b) { b.Select("", "", ""); }, "No reaction specified"},
    {"a reaction that cannot be found", [](ReactorBench& b) { b.package->state.reactions[1].compounds[0] = "D"; },
     "Error for reaction B to C: reaction compound \"D\" is not present in (inlet-) material; unable to "
     "resolve "
     "compound"},
    {"no compound", [](ReactorBench& b) { b.Select(kBoth, R"("A", "")", "0.5, 0.5"); },
     "Error for reaction B to C: no compound specified to which conversion applies"},
    {"another compound", [](ReactorBench& b) { b.Select(kBoth, R"("A", "A")", "0.5, 0.5"); },
     "Error for reaction B to C: compound specified to which conversion applies does not take part in "
     "reaction"},
    {"a compound that is left as it is", [](ReactorBench& b) { b.package->state.reactions[1].coefficients[0] = 0; },
     "Error for reaction B to C: compound specified to which conversion applies does not take part in "
     "reaction "
     "(zero stoichiometric coefficient)"},
    {"too much", [](ReactorBench& b) { b.Select(kBoth, R"("A", "B")", "0.5, 1.2"); },
     "Error for reaction B to C: conversion must be between zero and unity"},
    {"too little", [](ReactorBench& b) { b.Select(kBoth, R"("A", "B")", "-0.1, 1.2"); },
     "Error for reaction A to B: conversion must be between zero and unity"},
    {"no conversion", [](ReactorBench& b) { b.Put("Conversion B reaction B to C", kNaN); },
     "Error for reaction B to C: conversion must be between zero and unity"},
    {"no duty", [](ReactorBench& b) { b.Put("Heat duty", kMissing); }, "Error: heat duty/loss is not specified."},
    {"no temperature",
     [](ReactorBench& b) {
       b.Put("Heat duty type", "Isothermal");
       b.Put("Temperature", kNaN);
     },
     "Error: temperature is not specified."},
    {"no pressure drop", [](ReactorBench& b) { b.Put("Pressure drop", kNaN); }, "parameter Pressure drop has no value"},
};

TEST(FixedConversionSelection, IsValidatedInOrder) {
  for (const ValidationCase& c : kValidations) {
    SCOPED_TRACE(c.title);
    ReactorBench bench;
    bench.Select(kBoth, R"("A", "B")", "0.5, 1");
    EXPECT_EQ(bench.Fault(), "valid");
    c.spoil(bench);
    EXPECT_EQ(bench.Fault(), c.fault);
    EXPECT_EQ(bench.door.Report("Status"), c.fault);
  }
  ReactorBench bench;
  for (const double duty : {1.1e10, -1.1e10}) EXPECT_EQ(bench.Put("Heat duty", com::MakeDouble(duty)), kUnitFailed);
}

// ---- What it is told

TEST(FixedConversionSelection, OffersItsConversionsAsParameters) {
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

TEST(FixedConversionSelection, RefusesABadConfigurationWhole) {
  struct {
    const char* json;
    const char* why;
  } const cases[] = {
      {R"({"reactionNames": ["A to B"]})", "array size mismatch"},
      {R"({"reactionConversions": [0.1, 0.2, 0.3]})", "array size mismatch"},
      {R"({"reactionNames": ["A to B", ""]})", "empty strings"},
      {R"({"reactionNames": "A to B"})", "\"reactionNames\" of the configuration must be a list of texts"},
      {R"({"reactionCompounds": [1, 2]})", "\"reactionCompounds\" of the configuration must be a list of texts"},
      {R"({"reactionConversions": ["1", "1"]})",
       "\"reactionConversions\" of the configuration must be a list of numbers"},
      {R"({"serialReactions": 1})", "\"serialReactions\" of the configuration must be true or false"},
      {R"({"serial": true})",
       "unknown key \"serial\" in the configuration; known are \"reactionNames\", "
       "\"reactionCompounds\", \"reactionConversions\", \"serialReactions\""},
  };
  ReactorBench bench;
  bench.Select(kBoth, R"("A", "B")", "0.5, 0.25", true);
  const std::string before = bench.Configuration();
  const auto configuration = bench.door.unit.As<IUnitConfiguration>();
  for (const auto& c : cases) {
    EXPECT_EQ(configuration->SetConfiguration(com::ToBstr(c.json).Get()), kUnitFailed);
    EXPECT_EQ(ErrorOf(configuration.Get()).description, c.why);
    EXPECT_EQ(bench.Configuration(), before);
  }
}

TEST(FixedConversionSelection, CalculatesTheSameOnceItIsLoaded) {
  ReactorBench source;
  source.Select(kBoth, R"("A", "B")", "0.3333333333333333, 0.1", true);
  source.Put("Heat duty type", "Isothermal");
  source.Put("Enthalpy Type", "Use Enthalpy and heat of reaction");
  source.Put("Temperature", 333.1);
  source.Calculate();
  ReactorBench target;
  EXPECT_EQ(
      LoadBytes(target.door.unit.As<IPersistStream>().Get(), SavedBytes(source.door.unit.As<IPersistStream>().Get())),
      S_OK);
  EXPECT_EQ(target.Configuration(), source.Configuration());
  for (ReactorBench* bench : {&source, &target}) {
    const auto stream = bench->door.unit.As<IPersistStream>();
    EXPECT_EQ(LoadBytes(stream.Get(), SavedBytes(stream.Get())), S_OK);
    com::Variant value;
    EXPECT_EQ(bench->door.Parameter("Conversion A reaction A to B")->get_value(value.Put()), kUnitFailed);
  }
  target.Put("Thermo Version", "1.1");
  target.Calculate();
  EXPECT_EQ(target.Flows(), source.Flows());
  EXPECT_EQ(target.Number("Heat duty"), source.Number("Heat duty"));
  EXPECT_EQ(target.door.Report("Last run"), source.door.Report("Last run"));
}

}  // namespace morvelan::test::fixed_conversion_selection
