// A Mixer in a fake host.

#include "tests/units/UnitBench.h"

namespace morvelan::test::mixer {

struct Stream {
  double pressure;
  double temperature;
  double flow;
  double methane;  // mole fraction; the rest is ethane
};

struct MixerCase {
  const char* title;
  Stream first;
  Stream second;
  double drop;
  Stream outlet;  // T = (F1 T1 + F2 T2) / F, as both feeds have the same heat capacity
  const char* flash;
  int enthalpiesAsked;
};

const MixerCase kMixerCases[] = {
    {"two streams", {2e5, 300, 2, 0.25}, {1e5, 400, 6, 0.75}, 0, {1e5, 375, 8, 0.625}, "PH", 2},
    {"first at lower P", {1e5, 300, 2, 0.25}, {2e5, 400, 2, 0.25}, 4e4, {6e4, 350, 4, 0.25}, "PH", 2},
    {"P without flow", {2e5, 300, 2, 0.25}, {1e5, 400, 0, 0.5}, 2e4, {8e4, 300, 2, 0.25}, "PH", 1},
    {"first without flow", {2e5, 300, 0, 0.25}, {1e5, 400, 4, 0.5}, 0, {1e5, 400, 4, 0.5}, "PH", 1},
    {"no flow", {2e5, 310, 0, 0.25}, {1e5, 400, 0, 0.75}, 1e4, {9e4, 310, 0, 0.5}, "TP", 0},
    {"pure streams", {1e5, 300, 1, 1}, {1e5, 320, 1, 1}, 0, {1e5, 310, 2, 1}, "PH", 2},
};

void Set(FakeState& state, const Stream& stream) {
  state.pressure = stream.pressure;
  state.temperature = stream.temperature;
  state.flow = stream.flow;
  state.fractions = {stream.methane, 1 - stream.methane};
}

TEST(CMixer, MixesAdiabatically) {
  for (const bool thermo11 : {false, true})
    for (const bool quiet : {false, true})
      for (const MixerCase& c : kMixerCases) {
        SCOPED_TRACE(testing::Message() << c.title << ", thermo 1.1: " << thermo11 << ", quiet: " << quiet);
        UnitBench bench("Mixer", thermo11);
        Set(bench.At("Inlet 1"), c.first);
        Set(bench.At("Inlet 2"), c.second);
        bench.Put("Pressure drop", c.drop);
        if (quiet) bench.AskForSimplifiedModel();
        bench.Calculate();
        const FakeState& product = bench.At("Outlet");
        EXPECT_EQ(product.pressure, c.outlet.pressure);
        EXPECT_DOUBLE_EQ(product.temperature, c.outlet.temperature);
        EXPECT_EQ(product.flow, c.outlet.flow);
        EXPECT_EQ(product.fractions, (std::vector<double>{c.outlet.methane, 1 - c.outlet.methane}));
        EXPECT_EQ(bench.Flashes(), c.flash);
        EXPECT_EQ(bench.CallsOf(thermo11 ? "CopyFromMaterial" : "Duplicate"), c.enthalpiesAsked);
        EXPECT_EQ(bench.context->log, std::vector<std::string>{});
      }
}

TEST(CMixer, FailsWhenAStreamIsTakenAwayWhileItAsks) {
  for (const bool thermo11 : {false, true})
    for (const char* port : {"Inlet 2", "Outlet"}) {
      UnitBench bench("Mixer", thermo11);
      bench.Validate();
      bench.script->oddAnswers[thermo11 ? "GetCompoundList" : "ComponentIds"] = [&] {
        EXPECT_EQ(bench.door.Port(port)->Disconnect(), S_OK);
        return com::MakeStrings(std::vector<std::string>{"methane", "ethane"});
      };
      CheckFailedCalculation(bench.door, "The unit was changed while it was calculated");
    }
}

}  // namespace morvelan::test::mixer
