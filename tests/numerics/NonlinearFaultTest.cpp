// The messages of the driver if it finds no solution, for each outcome that can be provoked.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "numerics/NonlinearSystem.h"
#include "tests/support/Approved.h"

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

NonlinearSystem LineWhere(std::function<bool(double)> isValid, bool hasDerivative = true) {
  NonlinearSystem system = Line();
  if (hasDerivative) system = Equation([](double x) { return x - 5.0; }, [](double) { return 1.0; });
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

double Same(double x) { return x; }
double NoValue(double) { return kNan; }

struct FaultCase {
  const char* name;
  NonlinearSystem system;
  double guess = 1.0;
  NonlinearOptions options = {};
  const char* solversWords = "";  // which the solver's own message contains
};

const FaultCase kFaults[] = {
    {"maximum iteration count below zero", Line(), 1, {.tolerance = -1.0, .maxIterations = -1}},
    {"tolerance below zero", Line(), 1, {.tolerance = -1e-6}},
    {"tolerance is NaN", Line(), 1, {.tolerance = kNan}},
    {"infinite tolerance", Line(), 1, {.tolerance = HUGE_VAL}},
    {"no residual", {}},
    {"no such unknown", Line(), 1, {.positiveUnknowns = {1}}},
    {"step below the step tolerance: the given derivative is twice the true one",
     Equation([](double x) { return 1e15 * (x - 1.0); }, [](double) { return 2e15; }), 1.0 + 1e-12},
    {"residual fails wherever the step leads",
     Equation([](double x) { return x < 1.0 ? kNan : x; }, [](double) { return 1.0; })},
    {"residual fails at the guess", Equation(NoValue)},
    {"residual fails when the line search comes back from a long step", FailsOnTheWayBack()},
    {"residual fails there and does not say why", WithoutReason(FailsOnTheWayBack())},
    {"residual is infinite at the guess", Equation([](double) { return HUGE_VAL; })},
    {"guess is not valid", LineWhere([](double) { return false; })},
    {"nothing near the root is valid", LineWhere([](double x) { return x < 1.01; })},
    {"no direction of a derivative is valid", LineWhere([](double x) { return x == 1.0; }, false)},
    {"guess is NaN", Line(), kNan},
    {"singular Jacobian", Equation([](double) { return 1.0; })},
    {"Jacobian fails", Equation(Same, NoValue)},
    {"residual fails in the solver's own difference", Equation([](double x) { return x == 1.0 ? 1.0 : kNan; })},
    {"the given derivative has the wrong sign",
     Equation(Same, [](double) { return -1.0; }),
     1,
     {},
     "to find an iterate"},
    {"beta condition fails again and again", Sawtooth(true), 0, {}, "to satisfy the beta-condition"},
    {"root beyond five of the largest steps",
     Equation([](double x) { return 1.0 - x / 1e105; }, [](double) { return -1e-105; }), 0},
    {"iteration limit", Equation([](double x) { return std::exp(x) - 1e-3; }), 5, {.maxIterations = 2}},
    {"positive unknown starts at zero", Line(), 0, {.positiveUnknowns = {0}}},
    {"residual does not repeat its values", Sawtooth(false), 0},
};

TEST(NonlinearFaults, AreNamedAndLeaveTheGuess) {
  constexpr std::string_view kSolver = "KINSOL solver: ";
  std::string text;
  for (const FaultCase& fault : kFaults) {
    SCOPED_TRACE(fault.name);
    double x = fault.guess;
    testing::internal::CaptureStderr();
    const NonlinearResult result = SolveNonlinear(fault.system, {&x, 1}, fault.options);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(result.success);
    EXPECT_NE(result.lastMessage.find(fault.solversWords), std::string::npos) << result.lastMessage;
    EXPECT_TRUE(x == fault.guess || std::isnan(fault.guess)) << x;
    const bool isSolvers = result.lastMessage.starts_with(kSolver);
    text += std::string(fault.name) + ": " + result.errorText +
            " (last message: " + (isSolvers ? "the solver's" : result.lastMessage) + ")\n";
  }
  morvelan::test::ExpectApproved("numerics/nonlinear-faults", text);
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
