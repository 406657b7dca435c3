// An EquilibriumReactor in a fake host. Its feed is 2 mol/s of A at 300 K unless a case says otherwise; 100 W heat it
// by 1 K.

#include <cmath>

#include "tests/units/reactors/SolvingReactors.h"

namespace morvelan::test::equilibrium_reactor {

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

TEST(CEquilibriumReactor, LeavesOutReactions) {
  const FakePhase kVapor = {"Vapor", "Vapor", 1, {}}, kNoLiquid = {"Liquid", "Liquid", 0, {}};
  const std::string absent1 = "Reaction \"L1\" is ignored: phase \"Liquid\" is not present";
  const std::string absent2 = "Reaction \"L2\" is ignored: phase \"Liquid\" is not present";
  const std::string idle = "Reaction \"R2\" is ignored: it can't take place with this feed";
  const std::string none = "No reactions are possible";
  struct {
    const char* reactions;
    std::vector<FakePhase> phases;
    std::vector<double> feed, product;
    std::vector<std::string> log;
  } const cases[] = {
      {R"("R1", "L2")", {kVapor}, {2, 0, 0}, {0.4, 1.6, 0}, {absent2}},
      {R"("L2", "R1")", {kVapor, kNoLiquid}, {2, 0, 0}, {0.4, 1.6, 0}, {absent2}},
      {R"("L1", "L2")", {kVapor}, {1, 0, 1}, {1, 0, 1}, {absent1, absent2, none}},
      {R"("R2")", {kVapor}, {2, 0, 0}, {2, 0, 0}, {idle, none}},
      {R"("L1", "R2")", {kVapor}, {2, 0, 0}, {2, 0, 0}, {absent1, idle, none}},  // its maker is left out
      {R"("R2", "R1")", {kVapor}, {2, 0, 0}, {2. / 7, 8. / 7, 4. / 7}, {}},      // another makes its compounds
  };
  for (const bool thermo11 : {false, true})
    for (const auto& c : cases) {
      SCOPED_TRACE(testing::Message() << c.reactions << ", thermo 1.1: " << thermo11);
      EquilibriumBench bench(thermo11);
      bench.Select(c.reactions);
      bench.At("Inlet").phases = c.phases;
      bench.Feed(c.feed);
      bench.Put("Temperature", 350);
      bench.Calculate();
      ExpectFlows(bench, c.product, 1e-8);
      EXPECT_EQ(bench.At("Outlet").temperature, 350);
      EXPECT_FALSE(bench.At("Outlet").flash.empty()) << "phase equilibrium all the same";
      EXPECT_EQ(bench.context->log, c.log);
      for (const std::string& line : c.log)
        EXPECT_NE(bench.door.Report("Last run").find(line + "\r\n"), std::string::npos) << line;
    }
}

// Some of B tells how far they go: with e of each undone, (1 - 2 e) (3 + 2 e) = (1 + e) 2 e.
TEST(CEquilibriumReactor, ExchangesThroughAProduct) {
  for (const bool thermo11 : {false, true}) {
    EquilibriumBench bench(thermo11);
    Exchange(bench);
    bench.Feed({1, 1, 1, 0});
    bench.Calculate();
    const double e = (std::sqrt(3.0) - 1) / 2;
    ExpectFlows(bench, {1 + e, 1 + e, 1 - 2 * e, 2 * e}, 1e-6);
  }
}

TEST(CEquilibriumReactor, KnowsNoDifferenceBetweenConstantsBeyondAllMeasure) {
  for (const double constant : {1e150, 1e250, std::numeric_limits<double>::infinity()}) {
    EquilibriumBench bench(true, AtEquilibrium("R1", {"A", "B"}, {-1, 1}, constant));
    bench.Calculate();
    ExpectFlows(bench, {0, 2, 0}, 1e-100);
  }
}

// A reaction may be written with any coefficients: by nu A = nu B, K^nu is the same equilibrium as K by A = B.
TEST(CEquilibriumReactor, DependsOnNoScaleOfCoefficients) {
  for (const double nu : {0.01, 0.1, 1.0, 3.0})
    for (const double K : {1e-8, 4.0, 1e8}) {
      EquilibriumBench bench(true, AtEquilibrium("R1", {"A", "B"}, {-nu, nu}, std::pow(K, nu)));
      bench.Calculate();
      // ln Q / K is left at 1e-10 / nu.
      EXPECT_NEAR(bench.Flows()[0], 2 / (1 + K), 1e-7 / (1 + K)) << nu << ", " << K;
    }
}

// ln Q - ln K = exp(-1 / d^2) with d = 2 (x_A - 0.1) is so flat at its root that Newton's steps of d^3 / 2
// take more than twenty iterations to come within 1e-10 of zero from the feed with x_A = 0.6. The one change
// of sign is a jump, close to the end where B runs out.
TEST(CEquilibriumReactor, CountsItsIterations) {
  FakeReaction reaction = AtEquilibrium("R1", {"A", "B"}, {-1, 1}, 0);
  reaction.formulas["chemicalEquilibriumConstant"] = [](const FakeConditions& vapor) {
    const double d = 2 * (vapor.fractions[0] - 0.1);
    const double quotient = vapor.fractions[1] / vapor.fractions[0];
    return quotient < 1e-20 ? 1 : quotient * std::exp(-std::exp(-1 / (d * d)));
  };
  EquilibriumBench bench(true, reaction);
  bench.Feed({1.2, 0.8, 0});
  EXPECT_EQ(bench.Put("Maximum iterations", com::MakeInteger(10)), S_OK);
  CheckFailedCalculation(bench.door, "Solution failed: maximum number of iterations exceeded");
  const std::string report = bench.door.Report("Last run");
  EXPECT_TRUE(
      report.ends_with("\r\n+++ no solution +++\r\n\r\n\r\nCalculation failed: Solution failed: "
                       "maximum number of iterations exceeded\r\n"))
      << report;
  EXPECT_EQ(bench.Put("Maximum iterations", com::MakeInteger(100)), S_OK);
  bench.Calculate();
  EXPECT_NEAR(bench.At("Outlet").fractions[0], 0.1 + 0.5 / std::sqrt(std::log(1e10)), 0.01);
}

}  // namespace morvelan::test::equilibrium_reactor
