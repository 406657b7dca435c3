#include "numerics/NonlinearSystem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace morvelan::numerics::test::nonlinear_system {

using Vector = std::span<const double>;

/// One equation in one unknown.
struct OneEquation {
  explicit OneEquation(std::function<double(double)> f) : function(std::move(f)) {
    system.residual = [this](Vector x, std::span<double> F, std::string& errorText) {
      points.push_back(x[0]);
      F[0] = function(x[0]);
      if (!std::isnan(F[0])) return true;
      errorText = "no value";
      return false;
    };
  }
  OneEquation(const OneEquation&) = delete;
  OneEquation& operator=(const OneEquation&) = delete;

  NonlinearResult Solve(double guess) {
    x = guess;
    return SolveNonlinear(system, {&x, 1}, options);
  }

  std::function<double(double)> function;
  NonlinearSystem system;
  NonlinearOptions options;
  std::vector<double> points;  // where the residual was called
  double x = 0.0;
};

TEST(NonlinearSystem, TakesAGuessThatIsASolution) {
  OneEquation equation([](double x) { return x - 4.0; });
  const NonlinearResult result = equation.Solve(4.0);
  EXPECT_TRUE(result.success) << result.errorText;
  EXPECT_EQ(result.iterations, 1);
  EXPECT_EQ(result.residualEvaluations, 1);
  EXPECT_EQ(equation.x, 4.0);
}

struct PerturbationCase {
  const char* name;
  double guess;
  double lowest, highest;  // of what is valid
  double perturbed;        // where the first derivative is taken
};

TEST(NonlinearSystem, PerturbsForwardOrBackward) {
  const PerturbationCase cases[] = {
      {"forward", 2.0, 0.0, 9.0, 2.0 + 2e-4},
      {"negative unknown", -2.0, -9.0, 9.0, -2.0 + 2e-4},
      {"zero", 0.0, -9.0, 9.0, 1e-8},
      {"smaller than the least step", 1e-6, -9.0, 9.0, 1e-6 + 1e-8},
      {"at the upper bound", 2.0, 0.0, 2.0, 2.0 - 2e-4},
      {"zero at the upper bound", 0.0, -9.0, 0.0, -1e-8},
  };
  for (const auto& [name, guess, lowest, highest, perturbed] : cases) {
    SCOPED_TRACE(name);
    OneEquation equation([](double x) { return 0.5 * (x + 5.0); });  // linear: one step solves it
    equation.system.isValid = [&](Vector x) { return x[0] >= lowest && x[0] <= highest; };
    (void)equation.Solve(guess);
    ASSERT_GE(equation.points.size(), 2u);
    EXPECT_EQ(equation.points[1], perturbed);
    // The step that follows is the one to -5, however often it is halved where that is not valid.
    if (equation.points.size() < 3) continue;
    const double step = (equation.points[2] - guess) / (-5.0 - guess);
    EXPECT_NEAR(std::log2(step), std::round(std::log2(step)), 1e-6);
  }
}

TEST(NonlinearSystem, PerturbsBackwardWhereTheResidualFails) {
  OneEquation equation([](double x) { return x > 3.0 ? std::nan("") : x * x - 2.0; });
  equation.system.isValid = [](Vector) { return true; };
  const NonlinearResult result = equation.Solve(3.0);
  ASSERT_TRUE(result.success) << result.errorText;
  EXPECT_NEAR(equation.x, std::sqrt(2.0), 1e-6);
  EXPECT_EQ(equation.points[1], 3.0 + 3e-4);
  EXPECT_EQ(equation.points[2], 3.0 - 3e-4);
  EXPECT_EQ(result.residualEvaluations, static_cast<std::int64_t>(equation.points.size()));
}

TEST(NonlinearSystem, DoesNotPerturbAPositiveUnknownToZeroOrBelow) {
  for (const double guess : {1e-9, 1e-8})  // the least step, 1e-8, leads below zero, and to it
    for (const bool positive : {false, true}) {
      SCOPED_TRACE(testing::Message() << guess << ", " << positive);
      OneEquation equation([](double x) { return x - 3e-9; });
      equation.system.isValid = [&](Vector x) { return x[0] <= guess; };
      equation.options.tolerance = 1e-12;
      if (positive) equation.options.positiveUnknowns = {0};
      const NonlinearResult result = equation.Solve(guess);
      const bool wasOutside = std::ranges::any_of(equation.points, [](double x) { return x <= 0.0; });
      EXPECT_EQ(wasOutside, !positive);
      EXPECT_EQ(result.lastMessage == "Failed to perturb; no valid perturbation direction found", positive);
    }
}

// A given Jacobian needs no residuals nearby, also if there is a region of validity.
TEST(NonlinearSystem, PrefersTheGivenJacobian) {
  OneEquation equation([](double x) { return 2.0 * x - 6.0; });
  equation.system.isValid = [](Vector) { return true; };
  equation.system.jacobian = [](Vector, SquareMatrix J) {
    J(0, 0) = 2.0;
    return true;
  };
  const NonlinearResult result = equation.Solve(1.0);
  ASSERT_TRUE(result.success) << result.errorText;
  EXPECT_EQ(equation.points, (std::vector<double>{1.0, 3.0}));  // linear: one step solves it
  EXPECT_EQ(result.residualEvaluations, 2);
}

// Newton's first step from 9 leads to 9 - (3 - 0.5) 6 = -6, where sqrt has no value: without the other guards the
// failure of the residual shortens the step.
TEST(NonlinearSystem, ShortensAStepThatLeavesWhatIsValid) {
  enum class Guard { kResidual, kValidity, kPositive };
  for (const Guard guard : {Guard::kResidual, Guard::kValidity, Guard::kPositive}) {
    SCOPED_TRACE(static_cast<int>(guard));
    OneEquation equation([](double x) { return std::sqrt(x) - 0.5; });
    if (guard == Guard::kValidity) equation.system.isValid = [](Vector x) { return x[0] >= 0.0; };
    if (guard == Guard::kPositive) equation.options.positiveUnknowns = {0};
    const NonlinearResult result = equation.Solve(9.0);
    ASSERT_TRUE(result.success) << result.errorText;
    EXPECT_NEAR(equation.x, 0.25, 1e-5);  // the slope is one there, the tolerance 1e-6
    const bool wasOutside = std::ranges::any_of(equation.points, [](double x) { return x < 0.0; });
    EXPECT_EQ(wasOutside, guard == Guard::kResidual);
  }
}

// The first step is about 20 times the distance to zero: halving does not bring it back, the cut of a positive unknown
// does.
TEST(NonlinearSystem, CutsAnyStepOfAPositiveUnknown) {
  for (const bool positive : {false, true}) {
    OneEquation equation([](double x) { return x <= 0.0 ? std::nan("") : std::log(x) + 10.0; });
    if (positive) equation.options.positiveUnknowns = {0};
    const NonlinearResult result = equation.Solve(1e4);
    EXPECT_EQ(result.success, positive) << result.errorText;
    EXPECT_EQ(result.errorText, positive ? "" : "Too many function evaluations failed: no value");
    EXPECT_NEAR(equation.x, positive ? std::exp(-10.0) : 1e4, 1e-9);
  }
}

// By default the solver would limit a step from zero to one and would use old derivatives.
TEST(NonlinearSystem, TakesStepsOfAnyLength) {
  for (const double scale : {1e-8, 1.0, 1e5}) {
    SCOPED_TRACE(scale);
    // A <-> B with K = 4 and `scale` mol of A: its extent is 0.8 of that.
    OneEquation equation([&](double extent) { return (extent - 4.0 * (scale - extent)) / scale; });
    equation.options.maxIterations = 3;
    const NonlinearResult result = equation.Solve(0.0);
    ASSERT_TRUE(result.success) << result.errorText;
    EXPECT_NEAR(equation.x, 0.8 * scale, 1e-6 * scale);
  }
}

TEST(NonlinearSystem, TakesNewDerivativesForEachIteration) {
  OneEquation equation([](double x) { return std::exp(x) - 2.0; });
  int jacobians = 0;
  equation.system.jacobian = [&](Vector x, SquareMatrix J) {
    ++jacobians;
    J(0, 0) = std::exp(x[0]);
    return true;
  };
  const NonlinearResult result = equation.Solve(1.0);
  ASSERT_TRUE(result.success) << result.errorText;
  EXPECT_EQ(jacobians, result.iterations);
  EXPECT_NEAR(equation.x, std::log(2.0), 1e-6);
}

// y(x) = x^3 is the root of another equation, which is solved for each x.
TEST(NonlinearSystem, MayBeSolvedWithinAResidual) {
  OneEquation outer([](double x) {
    OneEquation inner([x](double y) { return y - x * x * x; });
    inner.options.tolerance = 1e-12;
    EXPECT_TRUE(inner.Solve(0.0).success);
    return inner.x - 2.0;
  });
  const NonlinearResult result = outer.Solve(1.0);
  ASSERT_TRUE(result.success) << result.errorText;
  EXPECT_NEAR(outer.x, std::cbrt(2.0), 1e-6);
}

struct Cancelled {};

/// Throws at the k-th call.
struct Thrower {
  void Call() {
    if (++calls >= k) throw Cancelled();
  }
  int k;
  int calls = 0;
};

struct ThrowingCase {
  const char* name;
  int residual, jacobian, validity;  // the call that throws; 0: there is no such function
};

TEST(NonlinearSystem, ThrowsWhatAFunctionThrew) {
  constexpr int kNever = 1000;
  const ThrowingCase cases[] = {
      {"residual at the guess", 1, 0, 0},
      {"residual in the solver's difference", 2, 0, 0},
      {"residual in the line search", 2, kNever, 0},
      {"residual in the perturbed difference", 2, 0, kNever},
      {"Jacobian", kNever, 1, 0},
      {"Jacobian of a later iteration", kNever, 2, 0},
      {"validity of the guess", kNever, 0, 1},
      {"validity of the perturbed point", kNever, 0, 2},
      {"validity in the line search", kNever, kNever, 2},
  };
  for (const ThrowingCase& thrown : cases) {
    SCOPED_TRACE(thrown.name);
    Thrower residual{thrown.residual};
    Thrower jacobian{thrown.jacobian};
    Thrower validity{thrown.validity};
    OneEquation equation([&](double x) {
      residual.Call();
      return x * x - 2.0;
    });
    if (thrown.jacobian > 0)
      equation.system.jacobian = [&](Vector x, SquareMatrix J) {
        jacobian.Call();
        J(0, 0) = 2.0 * x[0];
        return true;
      };
    if (thrown.validity > 0)
      equation.system.isValid = [&](Vector) {
        validity.Call();
        return true;
      };
    EXPECT_THROW((void)equation.Solve(1.0), Cancelled);
    EXPECT_EQ(equation.x, 1.0);
    // Nothing is called again once it has thrown.
    for (const Thrower& thrower : {residual, jacobian, validity}) EXPECT_LE(thrower.calls, thrower.k);
  }
}

}  // namespace morvelan::numerics::test::nonlinear_system
