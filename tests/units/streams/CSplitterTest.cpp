// A Splitter in a fake host.

#include "tests/units/UnitBench.h"

namespace morvelan::test::splitter {

com::Variant Factors(const std::vector<double>& factors) {
  std::vector<com::Variant> elements;
  for (const double factor : factors) elements.push_back(com::MakeDouble(factor));
  return com::MakeVariants(elements);
}

struct SplitterCase {
  double factor;
  double flow;
  std::vector<double> fractions;
  double first, second;  // [mol/s]
  const char* flashes;
};

const SplitterCase kSplitterCases[] = {
    {0.25, 2, {0.25, 0.75}, 0.5, 1.5, "TP TP"},
    {0, 2, {0.25, 0.75}, 0, 2, "TP TP"},
    {1, 2, {0.25, 0.75}, 2, 0, "TP TP"},
    {0.5, 0, {0.25, 0.75}, 0, 0, "TP TP"},
    // One compound: its enthalpy tells the phases.
    {0.5, 2, {0, 1}, 1, 1, "PH PH"},
    {0.5, 2, {1 - 1e-5, 1e-5}, 1, 1, "PH PH"},
    {0.5, 2, {1 - 2e-5, 2e-5}, 1, 1, "TP TP"},
    {1, 2, {1, 0}, 2, 0, "PH PH"},
    {0.5, 0, {1, 0}, 0, 0, "PH PH"},
};

TEST(CSplitter, DividesTheFlow) {
  for (const bool thermo11 : {false, true})
    for (const bool quiet : {false, true})
      for (const SplitterCase& c : kSplitterCases) {
        SCOPED_TRACE(testing::Message() << "factor " << c.factor << ", flow " << c.flow << ", fraction "
                                        << c.fractions[0] << ", thermo 1.1: " << thermo11 << ", quiet: " << quiet);
        UnitBench bench("Splitter", thermo11);
        bench.At("Inlet").flow = c.flow;
        bench.At("Inlet").fractions = c.fractions;
        for (const char* outlet : {"Outlet1", "Outlet2"}) bench.At(outlet).heatCapacity = 60;
        EXPECT_EQ(bench.Put("Split factors", Factors({c.factor})), S_OK);
        bench.Put("Pressure drop", 2e4);
        if (quiet) bench.AskForSimplifiedModel();
        bench.Calculate();
        for (const char* outlet : {"Outlet1", "Outlet2"}) {
          const FakeState& product = bench.At(outlet);
          EXPECT_EQ(product.pressure, 8e4);
          EXPECT_DOUBLE_EQ(product.temperature, c.flashes[0] == 'P' ? 50 * 300 / 60.0 : 300);
          EXPECT_EQ(product.fractions, c.fractions);
        }
        EXPECT_EQ(bench.At("Outlet1").flow, c.first);
        EXPECT_EQ(bench.At("Outlet2").flow, c.second);
        EXPECT_EQ(bench.Flashes(), c.flashes);
        EXPECT_EQ(bench.context->log, std::vector<std::string>{});
      }
}

// Ten compounds of which one counts.
TEST(CSplitter, KnowsOneCompoundAmongMany) {
  for (const bool thermo11 : {false, true}) {
    UnitBench bench("Splitter", thermo11);
    for (auto& [port, material] : bench.materials) {
      material->state.compounds.assign(10, "");
      for (int i = 0; i < 10; ++i) material->state.compounds[i] = "compound " + std::to_string(i);
      material->state.casNumbers.resize(10);
      material->state.molecularWeights.resize(10);
    }
    bench.At("Inlet").fractions.assign(10, 1e-5);
    bench.At("Inlet").fractions[7] = 1 - 9e-5;
    bench.Calculate();
    EXPECT_EQ(bench.Flashes(), "PH PH");
    EXPECT_EQ(bench.At("Outlet1").flow, 1) << "halves, as nothing else is asked";
    bench.At("Inlet").fractions[2] = 1.1e-5;
    bench.Restart();
    bench.Calculate();
    EXPECT_EQ(bench.Flashes(), "TP TP");
  }
}

TEST(CSplitter, RefusesSplitFactorsThatDoNotSplit) {
  constexpr const char* kCount = "Invalid number of array elements for split factor value";
  constexpr const char* kBounds = "value out of bounds an array element for setting array parameter value";
  struct {
    std::vector<double> factors;
    const char* text;
  } const cases[] = {
      {{}, kCount},      {{0.5, 0.3}, kCount}, {{0.2, 0.3, 0.5}, kCount}, {{1.1}, kBounds},
      {{-0.1}, kBounds}, {{kNaN}, kBounds},    {{1.1, 0.2}, kBounds},     {{0.9, 0.9}, kCount},
  };
  UnitBench bench("Splitter", false);
  EXPECT_EQ(bench.Put("Split factors", Factors({0.75})), S_OK);
  const auto parameter = bench.door.Parameter("Split factors");
  for (const auto& c : cases) {
    EXPECT_EQ(bench.Put("Split factors", Factors(c.factors)), kUnitFailed) << c.text;
    EXPECT_EQ(ErrorOf(parameter.Get()).description, c.text);
    com::Variant value;
    EXPECT_EQ(parameter->get_value(value.Put()), S_OK);
    EXPECT_EQ(com::ReadDoubles(value.Get()), std::vector<double>{0.75}) << "as it was";
  }
  bench.Calculate();
  EXPECT_EQ(bench.At("Outlet1").flow, 1.5);
}

TEST(CSplitter, DividesAmongThree) {
  constexpr const char* kTotal = "Total value of split factors exceeds unity";
  struct {
    std::vector<double> factors;
    std::vector<double> flows;  // of 2 mol/s; none when refused
    const char* text = "";
  } const cases[] = {
      {{0.3, 0.3}, {0.3 * 2, 0.3 * 2, (1 - (0.3 + 0.3)) * 2}},
      {{0, 0}, {0, 0, 2}},
      {{0.5, 0.5}, {1, 1, 0}},
      {{0.7, 0.3 + 5e-14}, {1.4, 0.6 + 1e-13, 0}},  // what rounding may add is not taken from the last outlet
      {{0.7, 0.3 + 2e-13}, {}, kTotal},
      {{0.6, 0.5}, {}, kTotal},
      {{0.5}, {}, "Invalid number of array elements for split factor value"},
  };
  UnitBench bench("Splitter", true);
  bench.Configure(R"({"numberOfOutlets": 3})");
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.factors));
    const HRESULT put = bench.Put("Split factors", Factors(c.factors));
    EXPECT_EQ(put, c.flows.empty() ? kUnitFailed : S_OK);
    if (c.flows.empty()) {
      EXPECT_EQ(ErrorOf(bench.door.Parameter("Split factors").Get()).description, c.text);
      continue;
    }
    bench.Calculate();
    for (std::size_t k = 0; k < 3; ++k) EXPECT_DOUBLE_EQ(bench.At("Outlet" + std::to_string(k + 1)).flow, c.flows[k]);
  }
  bench.At("Inlet").fractions = {1, 0};
  bench.Restart();
  bench.Calculate();
  EXPECT_EQ(bench.Flashes(), "PH PH PH");
  for (const char* outlet : {"Outlet1", "Outlet2", "Outlet3"})
    EXPECT_EQ(bench.At(outlet).written["enthalpy"], std::vector<double>{50 * 300}) << outlet;
}

// The fault walk has other answers.
TEST(CSplitter, RefusesATableForAnEnthalpy) {
  UnitBench bench("Splitter", false);
  bench.At("Inlet").fractions = {1, 0};
  bench.script->oddAnswers["GetProp enthalpy"] = [] {
    SAFEARRAYBOUND bounds[] = {{1, 0}, {1, 0}};
    com::Variant table;
    VARIANT* variant = table.Put();
    variant->vt = VT_ARRAY | VT_R8;
    variant->parray = SafeArrayCreate(VT_R8, 2, bounds);
    return table;
  };
  CheckFailedCalculation(bench.door, "unexpected array bounds");
}

// The number is a result: what a host puts there anyway doesn't show.
TEST(CSplitter, ReportsTheOutletsThatItHas) {
  UnitBench bench("Splitter", false);
  const auto kept = bench.door.Parameter("Number of outlets");
  EXPECT_EQ(kept->put_value(com::MakeInteger(7).Get()), S_OK);
  com::Variant value;
  EXPECT_EQ(kept->get_value(value.Put()), S_OK);
  EXPECT_EQ(com::ReadInteger(value.Get()), 2);
  bench.Calculate();
  EXPECT_NE(bench.door.Report("Last run").find("Number of outlets:\t2\r\n"), std::string::npos);
}

}  // namespace morvelan::test::splitter
