#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>

namespace morvelan::numerics {

/// Refers to a residual r(x) of one unknown without owning it: any object callable as bool(double x, double& r,
/// std::string& message) that gives false, and a message, where it cannot evaluate. A NaN counts as such a failure. An
/// infinite r, as at a pole, is a value: its sign tells the side of the root, and a step that it makes impossible
/// becomes a bisection.
class ResidualRef {
 public:
  template <class Residual>
  requires(!std::is_same_v<std::remove_cvref_t<Residual>, ResidualRef>) ResidualRef(Residual&& residual)
      : object(const_cast<void*>(static_cast<const void*>(std::addressof(residual)))),
        call([](void* target, double x, double& r, std::string& message) -> bool {
          return (*static_cast<std::remove_reference_t<Residual>*>(target))(x, r, message);
        }) {}

  bool operator()(double x, double& r, std::string& message) const { return call(object, x, r, message); }

 private:
  void* object;
  bool (*call)(void*, double, double&, std::string&);
};

struct BracketedRoot {
  bool success = false;
  double x = 0.0;                // with success: where the smallest absolute residual was seen
  std::int32_t evaluations = 0;  // without one that failed and without the last one at x
  std::string message;           // without success: why
};

/// Finds where a residual vanishes between two bounds in either order, in the manner of Brent's method (R. P. Brent,
/// Algorithms for Minimization without Derivatives, 1973, chapter 4): inverse quadratic interpolation, secant or
/// bisection. Stops when the bracket is no wider than `tolerance`; this is also the difference of residuals below which
/// only the secant is taken. Fails without an evaluation if a bound or the tolerance is not finite.
///
/// Makes at most maxEvaluations + 1 evaluations, but always those at the bounds. If the last one was not at the best
/// point, one more follows there: with success, whatever state the residual leaves belongs to x. Allocates nothing as
/// long as it succeeds. An exception of the residual passes through.
[[nodiscard]] BracketedRoot SolveBracketed(ResidualRef residual, double lowBound, double highBound, double tolerance,
                                           std::int32_t maxEvaluations);

}  // namespace morvelan::numerics
