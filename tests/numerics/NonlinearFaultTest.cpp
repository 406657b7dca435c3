// The messages of the driver if it finds no solution, for each outcome that can be provoked.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "numerics/NonlinearSystem.h"

// Options of the address sanitizer: too large an allocation fails instead of ending the program.
extern "C" [[gnu::visibility("default")]] const char* __asan_default_options() { return "allocator_may_return_null=1"; }

namespace morvelan::numerics::test::nonlinear_fault {

using Vector = std::span<const double>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// One equation f(x) = 0 with the derivative that a case claims; NaN fails.
NonlinearSystem Equation(std::function<double(double)> f, std::function<double(double)> derivative = {}) {
  NonlinearSystem system;
  system.residual = [f](Vector x, std::span<double> F, std::string& errorText) {
    F[0] = f(x[0]);
    errorText = std::isnan(F[0]) ? "no value" : "";
    return !std::isnan(F[0]);
  };
  if (derivative)
    system.jacobian = [derivative](Vector x, SquareMatrix J) {
      J(0, 0) = derivative(x[0]);
      return !std::isnan(J(0, 0));
    };
  return system;
}

NonlinearSystem Line() {
  return Equation([](double x) { return x - 5.0; });
}

NonlinearSystem LineWhere(std::function<bool(double)> isValid) {
  NonlinearSystem system = Equation([](double x) { return x - 5.0; }, [](double) { return 1.0; });
  system.isValid = [isValid](Vector x) { return isValid(x[0]); };
  return system;
}

/// A residual that falls steeply from the point of the last derivative but jumps up soon after, so that no step
/// satisfies the line search's second (beta) condition. If it does not repeat its values, it falls only once.
NonlinearSystem Sawtooth(bool repeats) {
  struct Tooth {
    double start = 0.0;
    double height = 1.0;
    bool hasFallen = false;
  };
  const auto tooth = std::make_shared<Tooth>();
  const auto residual = [=](double x) {
    const double distance = x - tooth->start;
    if (distance >= 0.1 || (tooth->hasFallen && !repeats)) return 10.0 * tooth->height;
    tooth->hasFallen = distance > 0.0;
    return tooth->height * (1.0 - 3.0 * distance);
  };
  return Equation(residual, [=](double x) {
    *tooth = {x, residual(x)};
    return -tooth->height;  // the step is one
  });
}

/// The system with a residual that does not say why it fails.
NonlinearSystem WithoutReason(NonlinearSystem system) {
  system.residual = [residual = system.residual](Vector x, std::span<double> F, std::string&) {
    std::string ignored;
    return residual(x, F, ignored);
  };
  return system;
}

/// The residual fails when the line search comes back from a long step.
NonlinearSystem FailsOnTheWayBack() {
  return Equation([](double x) { return x == 1.0 ? 1.0 : x < -0.5 ? -10.0 : kNan; }, [](double) { return 0.5; });
}

constexpr const char* kOutside = "the unknowns are outside the region where the residuals may be evaluated";

struct FaultCase {
  const char* name;
  NonlinearSystem system;
  std::string errorText;
  const char* lastMessage = "";  // the start of it
  double guess = 1.0;
  NonlinearOptions options = {};
};

const FaultCase kFaults[] = {
    {"maximum iteration count below zero",
     Line(),
     "invalid maximum iteration count passed to solver",
     "",
     1.0,
     {.tolerance = -1.0, .maxIterations = -1}},
    {"tolerance below zero", Line(), "invalid tolerance passed to solver", "", 1.0, {.tolerance = -1e-6}},
    {"tolerance is NaN", Line(), "invalid tolerance passed to solver", "", 1.0, {.tolerance = kNan}},
    {"infinite tolerance", Line(), "invalid tolerance passed to solver", "", 1.0, {.tolerance = HUGE_VAL}},
    {"no residual", {}, "invalid solver input arguments"},
    {"no such unknown", Line(), "invalid solver input arguments", "", 1.0, {.positiveUnknowns = {1}}},
    {"step below the step tolerance: the given derivative is twice the true one",
     Equation([](double x) { return 1e15 * (x - 1.0); }, [](double) { return 2e15; }),
     "Solution is stalled; no progress between iterations", "", 1.0 + 1e-12},
    {"residual fails wherever the step leads",
     Equation([](double x) { return x < 1.0 ? kNan : x; }, [](double) { return 1.0; }),
     "Too many function evaluations failed: no value", "no value"},
    {"residual fails at the guess", Equation([](double) { return kNan; }),
     "Function cannot be evaluated at initial guess: no value", "no value"},
    {"residual fails when the line search comes back from a long step", FailsOnTheWayBack(), "no value", "no value"},
    {"residual fails there and does not say why", WithoutReason(FailsOnTheWayBack()),
     "the residuals cannot be evaluated", "the residuals cannot be evaluated"},
    {"residual is infinite at the guess", Equation([](double) { return HUGE_VAL; }),
     "Function cannot be evaluated at initial guess: a residual is not a finite number",
     "a residual is not a finite number"},
    {"guess is not valid", LineWhere([](double) { return false; }),
     std::string("Function cannot be evaluated at initial guess: ") + kOutside, kOutside},
    {"nothing near the root is valid", LineWhere([](double x) { return x < 1.01; }),
     std::string("Too many function evaluations failed: ") + kOutside, kOutside},
    {"guess is NaN", Line(), "Function cannot be evaluated at initial guess: an unknown is not a finite number",
     "an unknown is not a finite number", kNan},
    {"singular Jacobian", Equation([](double) { return 1.0; }), "Preconditioner function failed", "KINSOL solver: "},
    {"Jacobian fails", Equation([](double x) { return x; }, [](double) { return kNan; }),
     "Preconditioner function failed", "KINSOL solver: "},
    {"residual fails in the solver's own difference", Equation([](double x) { return x == 1.0 ? 1.0 : kNan; }),
     "Preconditioner function failed", "no value"},
    {"the given derivative has the wrong sign", Equation([](double x) { return x; }, [](double) { return -1.0; }),
     "line search did not converge", "KINSOL solver: The line search algorithm was unable to find an iterate"},
    {"beta condition fails again and again", Sawtooth(true), "line search did not converge",
     "KINSOL solver: The line search algorithm was unable to satisfy the beta-condition", 0.0},
    {"root beyond five of the largest steps",
     Equation([](double x) { return 1.0 - x / 1e105; }, [](double) { return -1e-105; }),
     "too many failed (maximum) Newton steps", "KINSOL solver: ", 0.0},
    {"iteration limit",
     Equation([](double x) { return std::exp(x) - 1e-3; }),
     "maximum number of iterations exceeded",
     "KINSOL solver: ",
     5.0,
     {.maxIterations = 2}},
    {"positive unknown starts at zero",
     Line(),
     "invalid input to solver",
     "KINSOL solver: ",
     0.0,
     {.positiveUnknowns = {0}}},
    {"residual does not repeat its values", Sawtooth(false), "line search did not converge",
     "line search did not converge", 0.0},
};

TEST(NonlinearFaults, AreNamedAndLeaveTheGuess) {
  for (const FaultCase& fault : kFaults) {
    SCOPED_TRACE(fault.name);
    double x = fault.guess;
    testing::internal::CaptureStderr();
    const NonlinearResult result = SolveNonlinear(fault.system, {&x, 1}, fault.options);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(result.success);
    EXPECT_EQ(result.errorText, fault.errorText);
    EXPECT_EQ(result.lastMessage.substr(0, std::string(fault.lastMessage).size()), fault.lastMessage)
        << result.lastMessage;
    EXPECT_TRUE(x == fault.guess || std::isnan(fault.guess)) << x;
  }
}

TEST(NonlinearFaults, RefuseASystemWithoutUnknowns) {
  EXPECT_EQ(SolveNonlinear(Line(), {}).errorText, "invalid solver input arguments");
}

// The matrix would be larger than what a 64-bit process can address.
TEST(NonlinearFaults, SayThatMemoryIsExhausted) {
  std::vector<double> x(4'300'000, 1.0);
  EXPECT_EQ(SolveNonlinear(Line(), x).errorText, "out of memory");
}

}  // namespace morvelan::numerics::test::nonlinear_fault
