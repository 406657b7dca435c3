// A CSTR through the door that hosts use. Its feed is 2 mol/s of A at 300 K unless a case says otherwise, and
// its tank of 2 m3 is full of vapour; 100 W heat the feed by 1 K.

#include <charconv>
#include <cmath>

#include "tests/support/SystemText.h"
#include "tests/units/reactors/CstrBench.h"

namespace morvelan::test::cstr {

// ---- Validation

struct Rule {
  const char* title;
  const char* reactions;
  void (*prepare)(ReactorBench&);
  const char* message;
};

void Nothing(ReactorBench&) {}
void NoPackage(ReactorBench& bench) { EXPECT_EQ(bench.Assign(nullptr), S_OK); }
void NoTemperature(ReactorBench& bench) { bench.Put("Temperature", kMissing); }

constexpr const char* kForeign =
    "Phase for reaction \"L\" is \"Liquid\"; the reactor is specified to operate in phase \"Vapor\". The "
    "reaction should not be selected for this reactor.";
constexpr const char* kDependent =
    "The stoichiometric coefficients of reactions E1 and K1 are linearly dependent and contain at least one "
    "equilibrium reaction. One of these reactions must be removed";

const Rule kRules[] = {
    {"neither package nor reaction", "", NoPackage, "No reaction specified"},
    {"no package", R"("K1")", NoPackage,
     "Error for reaction \"K1\": A reaction package has not been assigned. Please return to simulation "
     "environment and assign a reaction package to this unit operation"},
    {"a compound that is not fed, and another phase", R"("L", "D")", Nothing,
     "Error for reaction \"D\": reaction compound \"D\" is not present in (inlet-) material; unable to "
     "resolve compound"},
    {"another kind", R"("E1")", [](ReactorBench& b) { b.package->state.reactions[4].type = 7; },
     "Error for reaction \"E1\": Unknown reaction type for reaction E1; expected CAPE_KINETIC or "
     "CAPE_EQUILIBRIUM"},
    {"another phase, and dependent", R"("L", "E2")", Nothing, kForeign},
    {"the phase in other letters", R"("E1")", [](ReactorBench& b) { b.Put("Phase", "VAPOR"); }, "valid"},
    {"no phase", R"("E1")", [](ReactorBench& b) { b.Put("Phase", ""); },
     "Expected a string value for reaction phase identifier"},
    {"dependent, and no temperature", R"("E1", "K1")", NoTemperature, kDependent},
    {"a dependent set beside another reaction", R"("K2", "E1", "K1")", Nothing, kDependent},
    {"three", R"("E1", "E2", "X")",
     [](ReactorBench& b) {
       b.package->state.reactions.push_back(AtRate("X", {"A", "C"}, {-1, 1}, FirstOrder(1)));
     },
     "The stoichiometric coefficients of reactions E1 and E2 and X are linearly dependent and contain at "
     "least one equilibrium reaction. One of these reactions must be removed"},
    {"two sets", R"("E1", "K1", "E2", "K2")", Nothing,
     "The stoichiometric coefficients of reactions E1 and K1 and of reactions E2 and K2 are linearly "
     "dependent and contain at least one equilibrium reaction. A reaction from each set must be removed."},
    {"two sets, one of rates alone", R"("K1", "K1", "E2", "K2")", Nothing,
     "The stoichiometric coefficients of reactions E2 and K2 are linearly dependent and contain at least one "
     "equilibrium reaction. One of these reactions must be removed"},
    {"no temperature, and no volume", R"("K1", "K1")", NoTemperature, "Error: temperature is not specified."},
    {"no duty, and no volume", R"("K1")",
     [](ReactorBench& b) {
       b.Put("Heat duty type", "Heat duty");
       b.Put("Heat duty", kMissing);
     },
     "Error: heat duty/loss is not specified."},
    {"rates alone may depend on one another", R"("K1", "K1", "K2")",
     [](ReactorBench& b) { b.Put("Reactor volume", 1); }, "valid"},
};

TEST(CCSTR, Validates) {
  for (const bool thermo11 : {false, true})
    for (const Rule& rule : kRules) {
      SCOPED_TRACE(testing::Message() << rule.title << ", thermo 1.1: " << thermo11);
      CstrBench bench(thermo11);
      bench.Select(rule.reactions);
      rule.prepare(bench);
      EXPECT_EQ(bench.Fault(), rule.message);
    }
}

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

// ---- The steady state

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

// ---- Bases of reactions at equilibrium

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

// ---- The feed

TEST(CCSTR, PassesNoFeedOn) {
  CstrBench bench;
  bench.Select(R"("E1")");
  bench.Put("Pressure drop", 2e4);
  bench.At("Inlet").flow = 0;
  bench.Calculate();
  EXPECT_EQ(bench.At("Outlet").flow, 0);
  EXPECT_EQ(bench.At("Outlet").pressure, 8e4);
  EXPECT_EQ(bench.At("Outlet").fractions, bench.At("Inlet").fractions);
  EXPECT_EQ(bench.CallsOf("GetReactionProp"), 0);
  EXPECT_EQ(bench.context->log, std::vector<std::string>{"WARNING: CSTR R-1: Zero flow; bypassing calculations"});
  bench.At("Inlet").flow = -1e-9;
  CheckFailedCalculation(bench.door, "Negative or zero flow on inlet", "underflow");
}

TEST(CCSTR, LowersThePressure) {
  struct {
    double drop, outlet;
    bool warns;
  } const cases[] = {{0, 1e5, false}, {99998, 2, false}, {99999, 1, true}, {2e5, 1, true}};
  for (const auto& c : cases) {
    CstrBench bench;
    bench.Select(R"("E1")");
    bench.Put("Pressure drop", c.drop);
    bench.Calculate();
    EXPECT_EQ(bench.At("Outlet").pressure, c.outlet);
    std::vector<std::string> log;
    if (c.warns) log = {"CSTR \"R-1\" warning: limiting outlet pressure to 1 Pa"};
    EXPECT_EQ(bench.context->log, log) << c.drop;
  }
}

// ---- The report

/// Numbers that a solution finds only nearly are as good as others to nine digits.
std::string Rounded(const std::string& report) {
  std::string rounded;
  for (std::size_t from = 0; from < report.size();) {
    const std::size_t end = std::min(report.find_first_not_of("0123456789.", from), report.size());
    double number = 0;
    const auto read = std::from_chars(report.data() + from, report.data() + end, number);
    char digits[32];
    if (read.ec == std::errc() && end - from > 10)
      rounded.append(digits, std::to_chars(digits, std::end(digits), number, std::chars_format::general, 9).ptr);
    else
      rounded.append(report, from, end - from);
    if (end < report.size()) rounded += report[end];
    from = end + 1;
  }
  return rounded;
}

// Constant rates: 0.25 mol/(m3 s) in 3 m3 less 1 m3 of catalyst, and 0.025 mol/(kg s) on 10 kg. They release
// 7500 W, which with the 2500 W of the energy stream heat the feed by 100 K.
TEST(CCSTR, Reports) {
  for (const bool quiet : {false, true}) {
    CstrBench bench;
    EXPECT_EQ(bench.door.Report("Last run"), "Report is not available");
    bench.package->state.reactions[0].formulas["reactionRate"] = [](const FakeConditions&) { return 0.25; };
    bench.package->state.reactions[3].formulas["reactionRate"] = [](const FakeConditions&) { return 0.025; };
    bench.Select(R"("K1", "H2")");
    bench.Put("Heat duty type", "Energy inlet");
    bench.ConnectHeat(2500, {}, {}, "HeatDutySpecification");
    bench.Put("Enthalpy Type", "Use Enthalpy and heat of reaction");
    bench.Put("Tolerance", 0.0001);
    bench.Put("Reactor volume", 3);
    bench.Put("Catalyst volume", 1);
    bench.Put("Catalyst density", 10);
    bench.Put("Temperature", 250);
    if (quiet) bench.AskForSimplifiedModel();
    bench.Calculate();
    EXPECT_EQ(Rounded(bench.door.Report("Last run")),
              quiet ? "Report is not available"
                    : "+++ specifications +++\r\n\r\n"
                      "Using enthalpy and heat of reaction in enthalpy calculations\r\n"
                      "Heat duty from inlet energy port:\t2500 W (no temperature range for heat transfer)\r\n"
                      "Reaction phase:\tVapor\r\nReactor volume:\t3 m^3\r\n"
                      "Volume occupied by catalyst:\t1 m^3\r\nEffective reactor volume:\t2 m^3\r\n"
                      "Catalyst mass:\t10 kg\r\n"
                      "basis for reaction \"K1\":\tmolarity (molar density), homogeneous\r\n"
                      "basis for reaction \"H2\":\tmolarity (molar density), heterogeneous\r\n"
                      "\r\n+++ solution +++\r\n\r\nSolution converged in 2 iterations\r\n"
                      "Iterations started from:\tno reaction\r\n"
                      "Extent of reaction \"K1\":\t0.5 mol/s\r\nReaction rate reaction \"K1\":\t0.5 mol/s\r\n"
                      "Extent of reaction \"H2\":\t0.25 mol/s\r\n"
                      "Reaction rate reaction \"H2\":\t0.025 mol/s/kg catalyst\r\n"
                      "total heat of reaction:\t-7500 W\r\n"
                      "\r\n+++ optional parameters +++\r\nPressure drop:\t0 Pa\r\n"
                      "Heat duty type:\tEnergy inlet\r\nTemperature:\t400 K\r\nHeat duty:\t2500 W\r\n"
                      "Enthalpy Type:\tUse Enthalpy and heat of reaction\r\nReactor volume:\t3 m^3\r\n"
                      "Catalyst mass:\tN/A\r\nCatalyst volume:\t1 m^3\r\nCatalyst density:\t10 kg/m^3\r\n"
                      "Phase:\tVapor\r\nTolerance:\t0.0001\r\nMaximum iterations:\t100\r\n"
                      "Thermo Version:\t1.1\r\n");
    EXPECT_TRUE(bench.context->log.empty());
  }
}

}  // namespace morvelan::test::cstr
