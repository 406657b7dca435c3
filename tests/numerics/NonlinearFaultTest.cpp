// What the driver says when it finds no solution: each outcome that can be provoked, and its text.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "numerics/NonlinearSystem.h"
#include "numerics/SolverFailure.h"

// So that memory that cannot be had is refused and does not end the program; read by the address sanitizer
// only.
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

/// A residual that falls steeply from where the derivative was taken last, but jumps up soon after, so that
/// no step satisfies the line search's second (beta) condition. When it does not repeat its values, it falls
/// once only.
NonlinearSystem Sawtooth(bool repeats) {
  struct Tooth {
    double start = 0.0;
    double height = 1.0;
    bool hasFallen = false;
  };
  const auto tooth = std::make_shared<Tooth>();
  const auto residual = [=](double x) {
    const double way = x - tooth->start;
    if (way >= 0.1 || (tooth->hasFallen && !repeats)) return 10.0 * tooth->height;
    tooth->hasFallen = way > 0.0;
    return tooth->height * (1.0 - 3.0 * way);
  };
  return Equation(residual, [=](double x) {
    *tooth = {x, residual(x)};
    return -tooth->height;  // the step is one
  });
}

/// The equation, from a residual that does not say why it fails.
NonlinearSystem Silent(NonlinearSystem system) {
  system.residual = [residual = system.residual](Vector x, std::span<double> F, std::string&) {
    std::string unsaid;
    return residual(x, F, unsaid);
  };
  return system;
}

/// The residual fails when the line search comes back from a long step.
NonlinearSystem FailsOnTheWayBack() {
  return Equation([](double x) { return x == 1.0 ? 1.0 : x < -0.5 ? -10.0 : kNan; }, [](double) { return 0.5; });
}

struct FaultCase {
  const char* name;
  NonlinearSystem system;
  double guess;
  NonlinearOptions options;
  const char* errorText;
  const char* lastMessage;  // the start of it
};

const FaultCase kFaults[] = {
    {"maximum iteration count below zero",
     Line(),
     1.0,
     {.tolerance = -1.0, .maxIterations = -1},
     "invalid maximum iteration count passed to solver",
     ""},
    {"tolerance below zero", Line(), 1.0, {.tolerance = -1e-6}, "invalid tolerance passed to solver", ""},
    {"tolerance that is no number", Line(), 1.0, {.tolerance = kNan}, "invalid tolerance passed to solver", ""},
    {"infinite tolerance", Line(), 1.0, {.tolerance = HUGE_VAL}, "invalid tolerance passed to solver", ""},
    {"no residual", {}, 1.0, {}, "invalid solver input arguments", ""},
    {"no such unknown", Line(), 1.0, {.positiveUnknowns = {1}}, "invalid solver input arguments", ""},
    {"step below the step tolerance: the claimed derivative is twice the true one",
     Equation([](double x) { return 1e15 * (x - 1.0); }, [](double) { return 2e15; }),
     1.0 + 1e-12,
     {},
     "Solution is stalled; no progress between iterations",
     ""},
    {"residual fails wherever the step leads",
     Equation([](double x) { return x < 1.0 ? kNan : x; }, [](double) { return 1.0; }),
     1.0,
     {},
     "Too many function evaluations failed: no value",
     "no value"},
    {"residual fails at the guess",
     Equation([](double) { return kNan; }),
     1.0,
     {},
     "Function cannot be evaluated at initial guess: no value",
     "no value"},
    {"residual fails when the line search comes back from a long step",
     FailsOnTheWayBack(),
     1.0,
     {},
     "no value",
     "no value"},
    {"residual fails there and does not say why",
     Silent(FailsOnTheWayBack()),
     1.0,
     {},
     "the residuals cannot be evaluated",
     "the residuals cannot be evaluated"},
    {"residual is infinite at the guess",
     Equation([](double) { return HUGE_VAL; }),
     1.0,
     {},
     "Function cannot be evaluated at initial guess: a residual is not a finite number",
     "a residual is not a finite number"},
    {"guess is not valid",
     LineWhere([](double) { return false; }),
     1.0,
     {},
     "Function cannot be evaluated at initial guess: "
     "the unknowns are outside the region where the residuals may be evaluated",
     "the unknowns are outside"},
    {"nothing near the root is valid",
     LineWhere([](double x) { return x < 1.01; }),
     1.0,
     {},
     "Too many function evaluations failed: "
     "the unknowns are outside the region where the residuals may be evaluated",
     "the unknowns are outside"},
    {"guess is no number",
     Line(),
     kNan,
     {},
     "Function cannot be evaluated at initial guess: an unknown is not a finite number",
     "an unknown is not a finite number"},
    {"singular Jacobian",
     Equation([](double) { return 1.0; }),
     1.0,
     {},
     "Preconditioner function failed",
     "KINSOL solver: "},
    {"Jacobian fails",
     Equation([](double x) { return x; }, [](double) { return kNan; }),
     1.0,
     {},
     "Preconditioner function failed",
     "KINSOL solver: "},
    {"residual fails at the solver's own difference",
     Equation([](double x) { return x == 1.0 ? 1.0 : kNan; }),
     1.0,
     {},
     "Preconditioner function failed",
     "no value"},
    {"the claimed derivative has the wrong sign",
     Equation([](double x) { return x; }, [](double) { return -1.0; }),
     1.0,
     {},
     "line search did not converge",
     "KINSOL solver: The line search algorithm was unable to find an iterate"},
    {"beta condition fails again and again",
     Sawtooth(true),
     0.0,
     {},
     "line search did not converge",
     "KINSOL solver: The line search algorithm was unable to satisfy the beta-condition"},
    {"root beyond five of the largest steps",
     Equation([](double x) { return 1.0 - x / 1e105; }, [](double) { return -1e-105; }),
     0.0,
     {},
     "too many failed (maximum) Newton steps",
     "KINSOL solver: "},
    {"iteration limit",
     Equation([](double x) { return std::exp(x) - 1e-3; }),
     5.0,
     {.maxIterations = 2},
     "maximum number of iterations exceeded",
     "KINSOL solver: "},
    {"positive unknown starts at zero",
     Line(),
     0.0,
     {.positiveUnknowns = {0}},
     "invalid input to solver",
     "KINSOL solver: "},
    {"residual does not repeat its values",
     Sawtooth(false),
     0.0,
     {},
     "line search did not converge",
     "line search did not converge"},
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
TEST(NonlinearFaults, SayWhenMemoryIsNotObtained) {
  std::vector<double> x(4'300'000, 1.0);
  EXPECT_EQ(SolveNonlinear(Line(), x).errorText, "out of memory");
}

// What this solver with a dense matrix never answers, once it has been set up.
TEST(NonlinearFaults, HaveTextsForWhatIsNeverAnswered) {
  struct {
    int code;
    const char* text;
  } const cases[] = {
      {-1, "out of memory"},                    // no memory
      {-3, "out of memory"},                    // memory not initialised
      {-4, "out of memory"},                    // memory not obtained
      {-12, "Preconditioner function failed"},  // linear solver's solve failed
      {-10, "linear iteration solver initialization failed"},
      {-9,
       "The user-supplied routine psolve encountered a recoverable error, but the preconditioner is already "
       "current"},
      {-16, "unknown solver error"},  // a vector operation failed
  };
  for (const auto& [code, text] : cases) EXPECT_EQ(SolveFailureText(code, "not shown"), text) << code;
}

// The linear solver interface has codes of its own: -2 and -3 mean something else there.
TEST(NonlinearFaults, HaveTextsForEachFailureOfTheSetup) {
  struct {
    int code;
    const char* text;        // of a set-up function
    const char* linearText;  // of a function of the linear solver interface
  } const cases[] = {
      {-1, "out of memory", "out of memory"},                   // no solver
      {-2, "refused", "out of memory"},                         // KIN_ILL_INPUT, no linear solver
      {-3, "out of memory", "invalid solver input arguments"},  // not initialised, KINLS_ILL_INPUT
      {-4, "out of memory", "out of memory"},                   // memory not obtained
      {-8, "unknown solver error", "unknown solver error"},     // anything else
      {-16, "unknown solver error", "unknown solver error"},
      {1, "unknown solver error", "unknown solver error"},
  };
  for (const auto& [code, text, linearText] : cases) {
    EXPECT_STREQ(SetupFailureText(code, "refused"), text) << code;
    EXPECT_STREQ(LinearSetupFailureText(code), linearText) << code;
  }
}

}  // namespace morvelan::numerics::test::nonlinear_fault
