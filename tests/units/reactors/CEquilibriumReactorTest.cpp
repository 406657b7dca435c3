// An EquilibriumReactor through the door that hosts use. Its feed is 2 mol/s of A at 300 K unless a case says
// otherwise; 100 W heat it by 1 K.

#include "tests/units/reactors/EquilibriumBench.h"

namespace morvelan::test::equilibrium_reactor {

// ---- Validation

struct Rule {
  const char* title;
  const char* reactions;
  void (*prepare)(ReactorBench&);
  const char* message;
};

void Nothing(ReactorBench&) {}
void NoDuty(ReactorBench& bench) {
  bench.Put("Heat duty type", "Heat duty");
  bench.Put("Heat duty", kMissing);
}

const Rule kRules[] = {
    {"neither package nor reaction", "", [](ReactorBench& b) { EXPECT_EQ(b.Assign(nullptr), S_OK); },
     "no reaction package selected"},
    {"no package", R"("R1")", [](ReactorBench& b) { EXPECT_EQ(b.Assign(nullptr), S_OK); },
     "no reaction package selected"},
    {"neither reaction nor duty", "", NoDuty, "No reaction specified"},
    {"a compound that is not fed", R"("R1", "D")", Nothing,
     "Error for reaction D: reaction compound \"D\" is not present in (inlet-) material; unable to resolve "
     "compound"},
    {"a kinetic reaction, and no duty", R"("R1", "K")", NoDuty,
     "Error for reaction K: Reaction \"K\" is not an equilibrium reaction"},
    {"dependent reactions, and no duty", R"("R1", "R1")", NoDuty, "Error: heat duty/loss is not specified."},
    {"no temperature", R"("R1", "R1")", [](ReactorBench& b) { b.Put("Temperature", kMissing); },
     "Error: temperature is not specified."},
    {"the same twice", R"("R1", "R1")", Nothing,
     "The stoichiometric coefficients of reactions R1 and R1 in phase Vapor are linearly dependent.  One of "
     "these reactions must be removed"},
    {"a multiple, and a phase in other letters", R"("R1", "R4")", Nothing,
     "The stoichiometric coefficients of reactions R1 and R4 in phase Vapor are linearly dependent.  One of "
     "these reactions must be removed"},
    {"three of which any two make the other", R"("R1", "R2", "R3")", Nothing,
     "The stoichiometric coefficients of reactions R1 and R2 and R3 in phase Vapor are linearly dependent.  "
     "One of these reactions must be removed"},
    {"two of three in one phase", R"("R2", "L1", "L3")", Nothing,
     "The stoichiometric coefficients of reactions L1 and L3 in phase Liquid are linearly dependent.  One of "
     "these reactions must be removed"},
    {"a set in each of two phases", R"("L1", "R1", "R4", "L3")", Nothing,
     "The stoichiometric coefficients of reactions L1 and L3 in phase Liquid and of reactions R1 and R4 in "
     "phase Vapor are linearly dependent.  A reaction from each set must be removed."},
    {"three that would be dependent in one phase", R"("R1", "R3", "L2")", Nothing, "valid"},
    {"the same in each of two phases", R"("R1", "R2", "L1")", Nothing, "valid"},
};

TEST(CEquilibriumReactor, Validates) {
  for (const bool thermo11 : {false, true})
    for (const Rule& rule : kRules) {
      SCOPED_TRACE(testing::Message() << rule.title << ", thermo 1.1: " << thermo11);
      EquilibriumBench bench(thermo11);
      bench.Select(rule.reactions);
      rule.prepare(bench);
      EXPECT_EQ(bench.Fault(), rule.message);
    }
}

TEST(CEquilibriumReactor, BoundsItsSolution) {
  struct {
    const char* parameter;
    com::Variant value;
    HRESULT outcome;
  } const cases[] = {
      {"Tolerance", com::MakeDouble(0.99e-10), kUnitFailed},
      {"Tolerance", com::MakeDouble(1e-10), S_OK},
      {"Tolerance", com::MakeDouble(0.1), S_OK},
      {"Tolerance", com::MakeDouble(0.11), kUnitFailed},
      {"Maximum iterations", com::MakeInteger(9), kUnitFailed},
      {"Maximum iterations", com::MakeInteger(10), S_OK},
      {"Maximum iterations", com::MakeInteger(1000), S_OK},
      {"Maximum iterations", com::MakeInteger(1001), kUnitFailed},
  };
  for (const char* unit : {"EquilibriumReactor", "CSTR"})
    for (const auto& c : cases) {
      ReactorBench bench(true, unit);
      const HRESULT outcome = bench.Put(c.parameter, c.value);
      EXPECT_EQ(outcome, c.outcome) << unit << ", " << c.parameter << ", " << com::ReadDouble(c.value.Get());
    }
}

// ---- The equilibrium

// With x = x_B / x_A = 4 of A = B, 0.8 of A and B is B, whatever is fed.
TEST(CEquilibriumReactor, SolvesOneReaction) {
  for (const bool thermo11 : {false, true})
    for (const std::vector<double>& feed :
         {std::vector<double>{2, 0, 0}, {0, 2, 0}, {0.4, 1.6, 1}, {1.99, 0.01, 5}, {1e-8, 0, 0}, {3e4, 1e5, 0}}) {
      SCOPED_TRACE(testing::Message() << feed[0] << ", " << feed[1] << ", thermo 1.1: " << thermo11);
      EquilibriumBench bench(thermo11);
      bench.Feed(feed);
      bench.Calculate();
      const double sum = feed[0] + feed[1];
      ExpectFlows(bench, {0.2 * sum, 0.8 * sum, feed[2]}, 1e-9 * sum);
      EXPECT_NEAR(bench.At("Outlet").fractions[1] / bench.At("Outlet").fractions[0], 4, 1e-8);
      EXPECT_EQ(bench.At("Inlet").written.size(), 0u) << "the feed is untouched";
      EXPECT_FALSE(bench.package->material) << "the package keeps nothing";
    }
}

// R1 and R2: x_B = 4 x_A, x_C = x_B / 2. The heats of reaction are those that follow from the heats of
// formation.
TEST(CEquilibriumReactor, ClosesItsHeatBalance) {
  constexpr double kA = 2. / 7, kB = 8. / 7, kC = 4. / 7;  // [mol/s]: A (1 + 4 + 2) = 2
  constexpr double kReleased = 10000 * kB + 30000 * kC;    // [W], by the heats of formation of B and C
  constexpr double kHot = 300 + kReleased / (2 * 50);      // [K]
  struct {
    const char* type;
    const char* enthalpy;
    double given;  // [K] or [W]
    double temperature, duty;
  } const cases[] = {
      {"Isothermal", "Use EnthalpyF", 350, 350, 2 * 50 * 50 - kReleased},
      {"Isothermal", "Use Enthalpy (no heat of reaction)", 350, 350, 2 * 50 * 50},
      {"Isothermal", "Use Enthalpy and heat of reaction", 350, 350, 2 * 50 * 50 - kReleased},
      {"Heat duty", "Use EnthalpyF", 0, kHot, 0},
      {"Heat duty", "Use Enthalpy (no heat of reaction)", 1000, 310, 1000},
      {"Heat duty", "Use Enthalpy and heat of reaction", 1000, kHot + 10, 1000},
      {"Energy inlet", "Use EnthalpyF", -2000, kHot - 20, -2000},
  };
  for (const bool thermo11 : {false, true})
    for (const auto& c : cases) {
      SCOPED_TRACE(testing::Message() << c.type << ", " << c.enthalpy << ", thermo 1.1: " << thermo11);
      FakePackageState package = EquilibriumPackage();
      package.reactions[1].properties["enthalpyOfReaction"] = {-20000, 0};
      EquilibriumBench bench(thermo11, package);
      bench.Select(R"("R1", "R2")");
      bench.Put("Heat duty type", c.type);
      bench.Put("Enthalpy Type", c.enthalpy);
      if (*c.type == 'E')
        bench.ConnectHeat(c.given, {}, {}, "HeatDutySpecification");
      else
        bench.Put(*c.type == 'I' ? "Temperature" : "Heat duty", c.given);
      bench.Calculate();
      ExpectFlows(bench, {kA, kB, kC}, 1e-9);
      EXPECT_NEAR(bench.At("Outlet").temperature, c.temperature, 1e-6);
      EXPECT_NEAR(bench.Number("Temperature"), c.temperature, 1e-6);
      EXPECT_NEAR(bench.Number("Heat duty"), c.duty, 1e-4) << "W of 30000";
    }
}

// Half of 2 mol/s of A (20 g/mol) becomes B (10 g/mol): x = 1/3, 2/3; w = 1/2, 1/2; with 40 mol/m3 there are
// 40 x 13.33 g/m3 = 8/15 kg/m3.
TEST(CEquilibriumReactor, TakesEachBasis) {
  constexpr double kMolar = 40, kMass = 8. / 15;
  constexpr const char* kWarning =
      "Warning: Unable to get reaction concentration basis for reaction R1 for unit operation R-1. Assuming "
      "molar concentrations (molarity)";
  struct {
    const char* basis;
    double constant;
    const char* word;
    bool warns;
  } const cases[] = {
      {"MoleFraction", 4. / 3, "mole fraction", false},
      {"massfraction", 1. / 2, "mass fraction", false},
      {"Molarity", kMolar * 4 / 3, "molarity (molar density)", false},
      {"CONCENTRATION", kMass / 2, "concentration (mass density)", false},
      {"Fugacity", kMolar * 4 / 3, "Unknown", true},
      {"", kMolar * 4 / 3, "molarity (molar density)", true},
  };
  for (const bool thermo11 : {false, true})
    for (const char* phase : {"Vapor", "Overall"})
      for (const bool isValidated : {false, true})
        for (const auto& c : cases) {
          SCOPED_TRACE(testing::Message()
                       << c.basis << " in " << phase << ", thermo 1.1: " << thermo11 << ", validated: " << isValidated);
          FakeState feed = ReactorFeed();
          feed.molecularWeights = {20, 10, 10};
          feed.phases[0].properties["density"] = kMolar;
          FakeReaction reaction = AtEquilibrium("R1", {"A", "B"}, {-1, 2}, c.constant);
          reaction.phase = phase;
          reaction.concentrationBasis = c.basis;
          EquilibriumBench bench(thermo11, reaction, feed);
          if (isValidated) bench.Validate();
          bench.Calculate();
          ExpectFlows(bench, {1, 2, 0}, 1e-8);
          EXPECT_EQ(bench.context->log, c.warns ? std::vector<std::string>{kWarning} : std::vector<std::string>{});
          EXPECT_NE(bench.door.Report("Last run").find(std::string("basis for reaction \"R1\":\t") + c.word + "\r\n"),
                    std::string::npos);
        }
}

TEST(CEquilibriumReactor, DoesWithoutABasisThatCannotBeObtained) {
  FakeState feed = ReactorFeed();
  feed.phases[0].properties["density"] = 7;
  EquilibriumBench bench(true, AtEquilibrium("R1", {"A", "B"}, {-1, 1}, 4), feed);
  std::string message;
  EXPECT_TRUE(bench.door.IsValid(message));
  const auto asked = std::ranges::find(bench.script->calls, "GetReactionConcBasis R1");
  ASSERT_NE(asked, bench.script->calls.end());
  const int call = static_cast<int>(asked - bench.script->calls.begin()) + 1;
  bench.Restart();
  bench.script->failAt = call;
  EXPECT_TRUE(bench.door.IsValid(message)) << message;
  ASSERT_EQ(bench.context->log.size(), 1u);
  EXPECT_TRUE(bench.context->log[0].ends_with("Assuming molar concentrations (molarity)"));
}

// ---- The feed

TEST(CEquilibriumReactor, PassesNoFeedOn) {
  EquilibriumBench bench;
  bench.Put("Pressure drop", 2e4);
  bench.At("Inlet").flow = 0;
  bench.Calculate();
  EXPECT_EQ(bench.At("Outlet").flow, 0);
  EXPECT_EQ(bench.At("Outlet").temperature, 300);
  EXPECT_EQ(bench.At("Outlet").pressure, 8e4);
  EXPECT_EQ(bench.At("Outlet").fractions, bench.At("Inlet").fractions);
  EXPECT_EQ(bench.CallsOf("GetReactionProp"), 0);
  EXPECT_EQ(bench.context->log,
            std::vector<std::string>{"WARNING: EquilibriumReactor R-1: Zero flow; bypassing calculations"});
  bench.At("Inlet").flow = -1e-9;
  CheckFailedCalculation(bench.door, "Negative or zero flow on inlet", "underflow");
}

TEST(CEquilibriumReactor, LowersThePressure) {
  struct {
    double drop, outlet;
    bool warns;
  } const cases[] = {{0, 1e5, false}, {2e4, 8e4, false}, {99998, 2, false}, {99999, 1, true}, {2e5, 1, true}};
  for (const auto& c : cases) {
    EquilibriumBench bench;
    bench.Put("Pressure drop", c.drop);
    bench.Calculate();
    EXPECT_EQ(bench.At("Outlet").pressure, c.outlet);
    std::vector<std::string> log;
    if (c.warns) log = {"EquilibriumReactor \"R-1\" warning: limiting outlet pressure to 1 Pa"};
    EXPECT_EQ(bench.context->log, log) << c.drop;
  }
}

// ---- The report

// The feed is the solution already, so that all numbers are exact: x_B = 4 x_A, and 1250 W heat 2.5 mol/s by
// 10 K.
TEST(CEquilibriumReactor, Reports) {
  for (const bool quiet : {false, true}) {
    EquilibriumBench bench;
    EXPECT_EQ(bench.door.Report("Last run"), "Report is not available");
    bench.Select(R"("R1", "L1")");
    bench.Feed({0.5, 2, 0});
    bench.Put("Heat duty type", "Heat duty");
    bench.Put("Heat duty", 1250);
    bench.ConnectHeat(0, {}, {}, "Heat duty");
    if (quiet) bench.AskForSimplifiedModel();
    bench.Calculate();
    EXPECT_EQ(bench.door.Report("Last run"),
              quiet ? "Report is not available"
                    : "+++ specifications +++\r\n\r\nUsing enthalpyF in enthalpy calculations\r\n"
                      "Reaction \"L1\" is ignored: phase \"Liquid\" is not present\r\n"
                      "\r\n+++ solution +++\r\n\r\nSolution converged in 1 iterations\r\n"
                      "Iterations started from:\tno reaction\r\n"
                      "Extent of reaction \"R1\":\t0 mol/s\r\n"
                      "Equilibrium constant reaction \"R1\":\t4\r\n"
                      "basis for reaction \"R1\":\tmole fraction\r\n"
                      "Heat duty to outlet energy port: 1250 W (positive is consumed by the reactor)\r\n"
                      "\r\n+++ optional parameters +++\r\nPressure drop:\t0 Pa\r\nHeat duty type:\tHeat duty\r\n"
                      "Temperature:\t310 K\r\nHeat duty:\t1250 W\r\nEnthalpy Type:\tUse EnthalpyF\r\n"
                      "Tolerance:\t1e-10\r\nMaximum iterations:\t100\r\nThermo Version:\t1.1\r\n");
    EXPECT_EQ(bench.context->log.empty(), quiet);
  }
}

}  // namespace morvelan::test::equilibrium_reactor
