// A CSTR in a fake host. Its feed is 2 mol/s of A at 300 K unless a case says otherwise; 100 W heat the feed by 1 K.

#include "tests/units/reactors/SolvingReactors.h"

namespace morvelan::test::cstr {

TEST(CCSTR, OffersThePhasesOfItsFeed) {
  const auto phases = [](const UnitDoor& door) {
    com::Ref<IDispatch> specification;
    EXPECT_EQ(door.Parameter("Phase")->get_Specification(specification.Put()), S_OK);
    com::Variant list;
    EXPECT_EQ(specification.As<ICapeOptionParameterSpec>()->get_OptionList(list.Put()), S_OK);
    return com::ReadStrings(list.Get());
  };
  const std::vector<std::string> usual = {"Vapor", "Liquid"};
  UnitDoor lonely(CreateUnit("CSTR"));
  EXPECT_EQ(lonely.utilities->Initialize(), S_OK);
  EXPECT_EQ(phases(lonely), usual);
  EXPECT_EQ(lonely.ParameterText("Phase"), "Liquid");
  for (const bool thermo11 : {false, true}) {
    FakeState feed = ReactorFeed();
    feed.phases = {{"Gas", "Vapor", 1, {}}, {"Oil", "Liquid", 0, {}}, {"Water", "Liquid", 0, {}}};
    CstrBench bench(thermo11, CstrPackage(), feed);
    EXPECT_EQ(phases(bench.door), (std::vector<std::string>{"Gas", "Oil", "Water"}));
    EXPECT_EQ(bench.Put("Phase", com::MakeString("Foam")), S_OK) << "others are possible";
    EXPECT_EQ(bench.door.Port("Inlet")->Disconnect(), S_OK);
    EXPECT_EQ(phases(bench.door), usual);
  }
}

// What leaves of 2 mol/s of A in fractions, from the balances over the tank: with Da = k V / 2 mol/s,
//   A -> B       x_A = 1 / (1 + Da)
//   B -> C       x_C = Da_2 x_B
//   A = B        x_B = 4 x_A.
struct SteadyState {
  const char* title;
  const char* reactions;
  double volume, mass, catalystVolume;  // zero for not given
  std::vector<double> fractions;
};

const SteadyState kSteadyStates[] = {
    {"first order", R"("K1")", 2, 0, 0, {1. / 2, 1. / 2, 0}},
    {"a tank that is too small for much", R"("K1")", 2e-6, 0, 0, {1 / (1 + 1e-6), 1e-6 / (1 + 1e-6), 0}},
    {"a tank that is too large for A", R"("K1")", 1e5, 0, 0, {1 / (1 + 5e4), 5e4 / (1 + 5e4), 0}},
    {"consecutive", R"("K1", "K2")", 2, 0, 0, {1. / 2, 1. / 8, 3. / 8}},
    {"consecutive, the other way round", R"("K2", "K1")", 2, 0, 0, {1. / 2, 1. / 8, 3. / 8}},
    {"the same twice", R"("K1", "K1")", 2, 0, 0, {1. / 3, 2. / 3, 0}},
    {"heterogeneous", R"("H1")", 0, 4, 0, {1. / 2, 1. / 2, 0}},
    {"homogeneous beside catalyst", R"("K1")", 3, 7, 1, {1. / 2, 1. / 2, 0}},
    {"homogeneous, then heterogeneous", R"("K1", "H2")", 3, 8, 1, {1. / 2, 1. / 4, 1. / 4}},
    {"equilibrium", R"("E1")", 0, 0, 0, {1. / 5, 4. / 5, 0}},
    {"equilibrium, then a rate", R"("E1", "K2")", 2, 0, 0, {1. / 17, 4. / 17, 12. / 17}},
    {"a rate, then equilibrium", R"("E2", "K1")", 2, 0, 0, {1. / 2, 1. / 4, 1. / 4}},
};

TEST(CCSTR, FindsTheSteadyState) {
  for (const bool thermo11 : {false, true})
    for (const bool adiabatic : {false, true})
      for (const SteadyState& c : kSteadyStates) {
        SCOPED_TRACE(testing::Message() << c.title << ", adiabatic: " << adiabatic << ", thermo 1.1: " << thermo11);
        CstrBench bench(thermo11);
        bench.Select(c.reactions);
        if (c.volume > 0) bench.Put("Reactor volume", c.volume);
        if (c.mass > 0) bench.Put("Catalyst mass", c.mass);
        if (c.catalystVolume > 0) bench.Put("Catalyst volume", c.catalystVolume);
        if (adiabatic) bench.Put("Heat duty type", "Heat duty");
        bench.Calculate();
        ExpectFlows(bench, {2 * c.fractions[0], 2 * c.fractions[1], 2 * c.fractions[2]}, 2e-9);
        // By the heats of formation of B and C and 50 J/(mol K); the heat that is released leaves or heats.
        const double released = 10000 * c.fractions[1] + 30000 * c.fractions[2];  // [J/mol]
        EXPECT_NEAR(bench.At("Outlet").temperature, adiabatic ? 300 + released / 50 : 300, 1e-5);
        EXPECT_NEAR(bench.Number("Heat duty"), adiabatic ? 0 : -2 * released, 1e-3);
        EXPECT_EQ(bench.At("Inlet").written.size(), 0u) << "the feed is untouched";
        EXPECT_EQ(bench.context->log, std::vector<std::string>{});
      }
}

// Adiabatic, rates that double from 300 K to 400 K: with x_B = Da / (1 + Da) and T = 300 + 200 x_B, 1 m3
// gives Da = 1 at 400 K.
TEST(CCSTR, EvaluatesRatesAtItsOutlet) {
  for (const bool thermo11 : {false, true})
    for (const char* enthalpy : {"Use EnthalpyF", "Use Enthalpy and heat of reaction"}) {
      const FakePackageState package = {.reactions = {AtRate("R", {"A", "B"}, {-1, 1}, [](const FakeConditions& tank) {
                                          return tank.fractions[0] * (tank.temperature - 200) / 100 *
                                                 (tank.pressure / 0.8e5);
                                        })}};
      CstrBench bench(thermo11, package);
      bench.Select(R"("R")");
      bench.Put("Heat duty type", "Heat duty");
      bench.Put("Enthalpy Type", enthalpy);
      bench.Put("Pressure drop", 2e4);
      bench.Put("Reactor volume", 1);
      bench.Calculate();
      ExpectFlows(bench, {1, 1, 0}, 1e-8);
      EXPECT_NEAR(bench.Number("Temperature"), 400, 1e-5);
      EXPECT_EQ(bench.At("Outlet").pressure, 8e4);
      const bool countsHeat = enthalpy != std::string("Use EnthalpyF");
      EXPECT_EQ(bench.door.Report("Last run").find("total heat of reaction:\t-10000 W\r\n") != std::string::npos,
                countsHeat)
          << bench.door.Report("Last run");
    }
}

TEST(CCSTR, LeavesOutDensitiesThatCancelOut) {
  constexpr double kMolar = 40;  // [mol/m3]
  constexpr const char* kMoles = "Reducing molarity basis to moleFraction basis; all densities cancel out";
  constexpr const char* kMasses = "Reducing concentration basis to massFraction basis; all densities cancel out";
  struct {
    const char* basis;
    double products, constant;  // half of A becomes B: see the closed forms of each
    const char* note;
    int densities;
  } const cases[] = {
      {"Molarity", 1, 1, kMoles, 0},
      {"Concentration", 1, 1, kMasses, 0},
      {"MoleFraction", 1, 1, nullptr, 0},
      {"MassFraction", 1, 1, nullptr, 0},
      // x = 1/3, 2/3; w = 1/2, 1/2 of 40 x 40/3 g/m3.
      {"Molarity", 2, kMolar * 4 / 3, nullptr, 1},
      {"Concentration", 2, 8. / 15 / 2, nullptr, 1},
  };
  for (const bool thermo11 : {false, true})
    for (const auto& c : cases) {
      SCOPED_TRACE(testing::Message() << c.basis << ", " << c.products << " B, thermo 1.1: " << thermo11);
      FakeState feed = ReactorFeed();
      feed.molecularWeights = {10 * c.products, 10, 10};
      feed.phases[0].properties["density"] = kMolar;
      FakeReaction reaction = AtEquilibrium("R", {"A", "B"}, {-1, c.products}, c.constant);
      reaction.concentrationBasis = c.basis;
      CstrBench bench(thermo11, {.reactions = {reaction}}, feed);
      bench.Select(R"("R")");
      bench.Calculate();
      ExpectFlows(bench, {1, c.products, 0}, 1e-8);
      std::vector<std::string> log;
      if (c.note) log = {c.note};
      EXPECT_EQ(bench.context->log, log);
      const auto read = bench.CallsOf(thermo11 ? "GetSinglePhaseProp Density" : "GetProp Density");
      EXPECT_EQ(read > 0, c.densities > 0);
    }
}

TEST(CCSTR, LeavesOutReactions) {
  constexpr const char* kNone = "No reactions are possible";
  const auto idle = [](const char* id) {
    return std::string("Reaction \"") + id + "\" is ignored: it can't take place with this feed";
  };
  struct {
    const char* title;
    const char* reactions;
    std::vector<double> product;
    std::vector<std::string> log;
  } const cases[] = {
      {"at equilibrium", R"("E2")", {2, 0, 0}, {idle("E2"), kNone}},
      {"kinetic", R"("K2", "K2")", {2, 0, 0}, {idle("K2"), idle("K2"), kNone}},
      {"none: another makes the compounds", R"("E2", "E1")", {2. / 9, 8. / 9, 8. / 9}, {}},
  };
  for (const bool thermo11 : {false, true})
    for (const auto& c : cases) {
      SCOPED_TRACE(testing::Message() << c.title << ", thermo 1.1: " << thermo11);
      CstrBench bench(thermo11);
      bench.Put("Reactor volume", 2);
      bench.Select(c.reactions);
      bench.Calculate();
      ExpectFlows(bench, c.product, 1e-8);
      EXPECT_FALSE(bench.At("Outlet").flash.empty()) << "phase equilibrium all the same";
      EXPECT_EQ(bench.context->log, c.log);
    }
}

// A rate through compounds of which there is none is none, and then nothing is left of the other reaction.
TEST(CCSTR, LeavesOutReactionsThroughNothing) {
  CstrBench bench;
  Exchange(bench);
  bench.package->state.reactions.push_back(
      AtRate("K", {"A2", "C", "B"}, {-1, -1, 1}, [](const FakeConditions&) { return 0.0; }));
  bench.Select(R"("R1", "K")");
  bench.Put("Reactor volume", 2);
  bench.Calculate();
  ExpectFlows(bench, {1, 1, 0, 0}, 0);
  EXPECT_EQ(bench.context->log.back(), "No reactions are possible");
}

TEST(CCSTR, WarnsOfOtherPhases) {
  const FakePhase kVapor = {"VAPOR", "Vapor", 0.5, {}}, kNoVapor = {"Vapor", "Vapor", 0, {}},
                  kLiquid = {"Liquid", "Liquid", 0.5, {}}, kNoLiquid = {"Liquid", "Liquid", 0, {}};
  const std::string absent = "WARNING: Reaction phase \"Vapor\" is not present after equilibrium calculation at outlet";
  const std::string others =
      "WARNING: Phases other than reaction phase \"Vapor\" are present at the reactor outlet after the "
      "equilibrium calculation";
  const std::string balance = "WARNING: Enthalpy balance may be incorrect due to phase equilibrium";
  struct {
    std::vector<FakePhase> phases;
    std::vector<std::string> log;
  } const cases[] = {
      {{kVapor}, {}},
      {{kVapor, kNoLiquid}, {}},
      {{kVapor, kLiquid}, {others, balance}},
      {{kLiquid}, {absent, others, balance}},
      {{kNoVapor, kLiquid}, {absent, others, balance}},
      {{kNoVapor}, {absent, balance}},
  };
  for (const bool thermo11 : {false, true})
    for (const bool isothermal : {false, true})
      for (const auto& c : cases) {
        CstrBench bench(thermo11);
        bench.Select(R"("E1")");
        bench.Put("Heat duty type", isothermal ? "Isothermal" : "Heat duty");
        bench.At("Outlet").phases = c.phases;
        bench.Calculate();
        std::vector<std::string> log = c.log;
        if (isothermal) std::erase(log, balance);
        // The enthalpy of what is not there adds to no duty.
        if (isothermal && !thermo11 && c.phases.size() == 1 && c.phases[0].fraction == 0) continue;
        EXPECT_EQ(bench.context->log, log) << "isothermal: " << isothermal << ", thermo 1.1: " << thermo11;
        for (const std::string& line : log)
          EXPECT_NE(bench.door.Report("Last run").find(line + "\r\n"), std::string::npos) << line;
      }
}

}  // namespace morvelan::test::cstr
