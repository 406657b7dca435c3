// How an EquilibriumReactor comes to its solution, or doesn't: reactions that are left out, evaluations that
// fail, iterations. Its feed is 2 mol/s of A at 300 K unless a case says otherwise.

#include <cmath>

#include "tests/support/SystemText.h"
#include "tests/units/reactors/EquilibriumBench.h"

namespace morvelan::test::equilibrium_solution {

// ---- Reactions that are left out

TEST(EquilibriumSolution, LeavesOutReactions) {
  const FakePhase kVapor = {"Vapor", "Vapor", 1, {}}, kNoLiquid = {"Liquid", "Liquid", 0, {}};
  constexpr const char* kNone = "No reactions are possible";
  const auto absent = [](const char* id) {
    return std::string("Reaction \"") + id + "\" is ignored: phase \"Liquid\" is not present";
  };
  const auto idle = [](const char* id) {
    return std::string("Reaction \"") + id + "\" is ignored: it can't take place with this feed";
  };
  struct {
    const char* title;
    const char* reactions;
    std::vector<FakePhase> phases;
    std::vector<double> feed, product;
    std::vector<std::string> log;
  } const cases[] = {
      {"one in a phase that the feed does not know",
       R"("R1", "L2")",
       {kVapor},
       {2, 0, 0},
       {0.4, 1.6, 0},
       {absent("L2")}},
      {"one in a phase of which there is nothing",
       R"("L2", "R1")",
       {kVapor, kNoLiquid},
       {2, 0, 0},
       {0.4, 1.6, 0},
       {absent("L2")}},
      {"all", R"("L1", "L2")", {kVapor}, {1, 0, 1}, {1, 0, 1}, {absent("L1"), absent("L2"), kNone}},
      {"one without its compounds", R"("R2")", {kVapor}, {2, 0, 0}, {2, 0, 0}, {idle("R2"), kNone}},
      {"one whose maker is left out",
       R"("L1", "R2")",
       {kVapor},
       {2, 0, 0},
       {2, 0, 0},
       {absent("L1"), idle("R2"), kNone}},
      {"none: another makes the compounds", R"("R2", "R1")", {kVapor}, {2, 0, 0}, {2. / 7, 8. / 7, 4. / 7}, {}},
  };
  for (const bool thermo11 : {false, true})
    for (const auto& c : cases) {
      SCOPED_TRACE(testing::Message() << c.title << ", thermo 1.1: " << thermo11);
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

// A + C = B and A2 + C = B exchange A for A2, through B and C of which there are none.
TEST(EquilibriumSolution, RefusesReactionsThatTakePlaceOnlyTogether) {
  constexpr const char* kInfeasible =
      "Infeasible system: Infeasible system. Given the current feed, a linear combination of the reactions "
      "may take place with a rank less than the total number of the reactions; an insufficient number of "
      "individual reactions can be eliminated";
  FakeState feed = ReactorFeed();
  feed.compounds = {"A", "A2", "B", "C"};
  feed.casNumbers = {"1", "2", "3", "4"};
  feed.molecularWeights = {10, 10, 20, 10};
  feed.fractions = {0.5, 0.5, 0, 0};
  feed.formationEnthalpies = {0, 0, 0, 0};
  const FakePackageState package = {.reactions = {AtEquilibrium("R1", {"A", "C", "B"}, {-1, -1, 1}, 1),
                                                  AtEquilibrium("R2", {"A2", "C", "B"}, {-1, -1, 1}, 1)}};
  for (const bool thermo11 : {false, true}) {
    EquilibriumBench bench(thermo11, package, feed);
    bench.Select(R"("R1", "R2")");
    CheckFailedCalculation(bench.door, kInfeasible);
    EXPECT_EQ(bench.At("Outlet").written.size(), 0u) << "the outlet is untouched";
    // Some of B tells how far they go: with e of each undone, (1 - 2 e) (3 + 2 e) = (1 + e) 2 e.
    bench.Feed({1, 1, 1, 0});
    bench.Calculate();
    const double e = (std::sqrt(3.0) - 1) / 2;
    ExpectFlows(bench, {1 + e, 1 + e, 1 - 2 * e, 2 * e}, 1e-6);
  }
}

TEST(EquilibriumSolution, KnowsNoDifferenceBetweenConstantsBeyondAllMeasure) {
  for (const double constant : {1e150, 1e250, std::numeric_limits<double>::infinity()}) {
    EquilibriumBench bench(true, AtEquilibrium("R1", {"A", "B"}, {-1, 1}, constant));
    bench.Calculate();
    ExpectFlows(bench, {0, 2, 0}, 1e-100);
  }
}

// A reaction may be written with any coefficients: by nu A = nu B, K^nu is the same equilibrium as K by A =
// B.
TEST(EquilibriumSolution, DependsOnNoScaleOfCoefficients) {
  for (const double nu : {0.01, 0.1, 1.0, 3.0})
    for (const double K : {1e-8, 4.0, 1e8}) {
      EquilibriumBench bench(true, AtEquilibrium("R1", {"A", "B"}, {-nu, nu}, std::pow(K, nu)));
      bench.Calculate();
      // ln Q / K is left at 1e-10 / nu.
      EXPECT_NEAR(bench.Flows()[0], 2 / (1 + K), 1e-7 / (1 + K)) << nu << ", " << K;
    }
}

// ---- Failures of the evaluation, and of the solution

struct Fault {
  const char* title;
  const char* call;          // that goes wrong each time
  com::Variant (*answer)();  // null for one that fails
  const char* why;           // after "Solution failed: Function cannot be evaluated at initial guess: "
};

com::Variant One(double number) { return com::MakeDoubles(std::array{number}); }
com::Variant Two() { return com::MakeDoubles(std::array{1.0, 2.0}); }
com::Variant Text() { return com::MakeStrings(std::vector<std::string>{"four"}); }

constexpr const char* kConstant = "GetReactionProp chemicalEquilibriumConstant";
constexpr const char* kFractions = "GetSinglePhaseProp Fraction";
constexpr const char* kDensity = "GetSinglePhaseProp Density";

const Fault kFaults[] = {
    {"no flash", "CalcEquilibrium", nullptr, "TP flash failed: CalcEquilibrium failed: Unspecified error"},
    {"no constant", kConstant, nullptr,
     "Failed to obtain chemicalEquilibriumConstant for reaction R1: Unspecified error"},
    {"no constant can be calculated", "CalcReactionProp chemicalEquilibriumConstant", nullptr,
     "Failed to obtain chemicalEquilibriumConstant for reaction R1: Unspecified error"},
    {"two constants", kConstant, Two,
     "Invalid format for chemicalEquilibriumConstant for reaction R1: scalar expected"},
    {"a text for a constant", kConstant, Text,
     "Invalid format for chemicalEquilibriumConstant for reaction R1: element 1: a number expected, a text "
     "found"},
    {"nothing for a constant", kConstant, [] { return com::Variant(); },
     "Invalid format for chemicalEquilibriumConstant for reaction R1: an array of numbers expected, nothing "
     "found"},
    {"a constant that is no number", kConstant, [] { return One(kNaN); },
     "Invalid format for chemicalEquilibriumConstant for reaction R1: value is not set"},
    {"an infinite constant", kConstant, [] { return One(-std::numeric_limits<double>::infinity()); },
     "Invalid format for chemicalEquilibriumConstant for reaction R1: value is infinite"},
    {"no fractions", kFractions, nullptr,
     "Failed to get mole fractions for phase Vapor: failed to get property Fraction from material connected "
     "to port Inlet: Unspecified error"},
    {"too few fractions", kFractions, [] { return One(1); },
     "Failed to get mole fractions for phase Vapor: 3 values expected"},
    {"a text for fractions", kFractions, Text,
     "Failed to get mole fractions for phase Vapor: element 1: a number expected, a text found"},
    {"fractions that are no numbers", kFractions,
     [] {
       return com::MakeDoubles(std::array{0.5, kNaN, 0.0});
     },
     "Failed to get mole fractions for phase Vapor: value is not set"},
    {"no density", "CalcSinglePhaseProp Vapor", nullptr,
     "Failed to calculate density for phase Vapor: CalcProp (Density/Vapor) failed: Unspecified error"},
    {"two densities", kDensity, Two, "Invalid value for molar density for phase Vapor: scalar expected"},
    {"a density that is no number", kDensity, [] { return One(kNaN); },
     "Invalid value for molar density for phase Vapor: value is not set"},
    {"a density of zero", kDensity, [] { return One(0); },
     "Invalid value for molar density for phase Vapor: value is not positive"},
};

TEST(EquilibriumSolution, ExplainsEvaluationsThatFail) {
  for (const Fault& fault : kFaults) {
    SCOPED_TRACE(fault.title);
    FakeState feed = ReactorFeed();
    feed.phases[0].properties["density"] = 40;
    FakeReaction reaction = AtEquilibrium("R1", {"A", "B"}, {-1, 1}, 4);
    reaction.concentrationBasis = "Molarity";
    EquilibriumBench bench(true, reaction, feed);
    // (The enthalpy of the feed, which is asked for first, is calculated alike.)
    bench.script->interfere = [&] {
      if (fault.answer)
        bench.script->oddAnswers[fault.call] = fault.answer;
      else
        bench.script->failing = {fault.call};
    };
    bench.script->interferesAt = "SetMaterial";
    CheckFailedCalculation(
        bench.door, InThisSystemsWords(std::string("Solution failed: Function cannot be evaluated at initial guess: ") +
                                       fault.why));
    EXPECT_EQ(bench.At("Outlet").written.size(), 0u) << "the outlet is untouched";
    EXPECT_NE(bench.door.Report("Last run").find("\r\n+++ no solution +++\r\n"), std::string::npos);
    EXPECT_EQ(bench.door.Report("Last run").find("\r\n+++ solution +++\r\n"), std::string::npos);
    bench.script->oddAnswers.clear();
    bench.script->failing.clear();
    bench.Calculate();
    ExpectFlows(bench, {0.4, 1.6, 0}, 1e-8);
  }
}

// ln Q - ln K = exp(-1 / d^2) with d = 2 (x_A - 0.1) is so flat at its root that Newton's steps of d^3 / 2
// take more than twenty iterations to come within 1e-10 of zero from the feed with x_A = 0.6. The one change
// of sign is a jump, close to the end where B runs out.
TEST(EquilibriumSolution, CountsItsIterations) {
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

}  // namespace morvelan::test::equilibrium_solution
