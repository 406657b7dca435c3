// A Valve in a fake host.

#include "tests/units/UnitBench.h"

namespace morvelan::test::valve {

TEST(CValve, TakesAsInputThePressureThatIsSpecified) {
  UnitBench bench("Valve", false);
  EXPECT_FALSE(bench.IsOutput("Pressure difference"));
  EXPECT_TRUE(bench.IsOutput("Pressure"));
  bench.Put("Pressure spec.", "Pressure");
  EXPECT_TRUE(bench.IsOutput("Pressure difference"));
  EXPECT_FALSE(bench.IsOutput("Pressure"));
  EXPECT_EQ(bench.Put("Pressure", com::MakeDouble(-1)), kUnitFailed);
  EXPECT_EQ(bench.door.Parameter("Pressure spec.")->Reset(), S_OK);
  EXPECT_TRUE(bench.IsOutput("Pressure"));
  EXPECT_EQ(bench.Put("Pressure difference", com::MakeDouble(-1)), kUnitFailed);
}

struct ValveCase {
  const char* specification;
  double value;
  double flow;
  double outlet;      // [Pa]
  double difference;  // [Pa]
};

const ValveCase kValveCases[] = {
    {"Pressure difference", 2e4, 2, 8e4, 2e4},
    {"Pressure difference", 2e4, 0, 8e4, 2e4},
    {"Pressure difference", 2e4, -2, 8e4, 2e4},
    {"Pressure", 6e4, 2, 6e4, 4e4},
    {"Pressure", 6e4, 0, 6e4, 4e4},
    {"Pressure", 1e5, 2, 1e5, 0},
    {"Pressure", 1.5e5, 2, 1.5e5, -5e4},
    {"Pressure", 0.25, 2, 0.25, 99999.75},  // what is asked for has no floor
};

TEST(CValve, ThrottlesAtConstantEnthalpy) {
  for (const bool thermo11 : {false, true})
    for (const bool quiet : {false, true})
      for (const ValveCase& c : kValveCases) {
        SCOPED_TRACE(testing::Message() << c.specification << ' ' << c.value << ", flow " << c.flow
                                        << ", thermo 1.1: " << thermo11 << ", quiet: " << quiet);
        UnitBench bench("Valve", thermo11);
        bench.At("Inlet").flow = c.flow;
        bench.At("Outlet").heatCapacity = 60;  // a product that cools on throttling
        bench.Put("Pressure spec.", c.specification);
        bench.Put(c.specification, c.value);
        if (quiet) bench.AskForSimplifiedModel();
        for (int run = 0; run < 2; ++run) {  // the second with what the first one calculated
          bench.Restart();
          bench.Calculate();
          const FakeState& product = bench.At("Outlet");
          EXPECT_EQ(product.pressure, c.outlet);
          EXPECT_EQ(product.flow, c.flow);
          EXPECT_EQ(product.fractions, bench.At("Inlet").fractions);
          EXPECT_DOUBLE_EQ(product.temperature, c.flow == 0 ? 300 : 50 * 300 / 60.0);
          EXPECT_EQ(bench.Flashes(), c.flow == 0 ? "TP" : "PH");
          EXPECT_EQ(bench.Number("Pressure"), c.outlet);
          EXPECT_EQ(bench.Number("Pressure difference"), c.difference);
          const bool isSilent = quiet || c.difference >= 0;
          EXPECT_EQ(bench.context->log.empty(), isSilent);
        }
      }
}

TEST(CValve, RefusesANegativeDifferenceOnceItIsTheSpecification) {
  UnitBench bench("Valve", false);
  bench.Put("Pressure spec.", "Pressure");
  bench.Put("Pressure", 1.5e5);
  bench.Calculate();
  EXPECT_EQ(bench.Number("Pressure difference"), -5e4);
  bench.Put("Pressure spec.", "Pressure difference");
  CheckFailedCalculation(bench.door, "invalid value for parameter Pressure difference: value out of bounds");
}

// The report is written before the flash.
TEST(CValve, ReportsWhatItWasAboutToFlash) {
  UnitBench bench("Valve", false);
  bench.Put("Pressure difference", 2e4);
  bench.Validate();
  bench.At("Inlet").flow = 0;
  bench.script->oddAnswers["GetProp enthalpy"] = [] { return com::MakeString("much"); };
  EXPECT_EQ(bench.door.unit->Calculate(), kUnitFailed) << "the enthalpy is read without flow, too";
  EXPECT_EQ(bench.door.Report("Last run"),
            "+++ specifications +++\r\n\r\nPressure difference:\t20000 Pa\r\n\r\n+++ optional parameters "
            "+++\r\nPressure:\t80000 Pa\r\n");
  EXPECT_EQ(bench.Number("Pressure"), 100000) << "a failure changes no parameter";
}

}  // namespace morvelan::test::valve
