#include "host/thermo/RootSearch.h"

#include <algorithm>
#include <boost/math/tools/toms748_solve.hpp>
#include <cmath>
#include <cstdint>

namespace morvelan::host {
namespace {

constexpr double kRelativeWidth = 4e-14;  // a bracket is not refined further, because of rounding errors

bool IsNarrow(double a, double b) { return b - a <= kRelativeWidth * std::abs(b); }

/// Algorithm 748 (Alefeld, Potra, Shi, ACM TOMS 21 (1995) 327), which is never much slower than bisection.
RootResult Enclose(const SlopedFunction& function, const Bracket& bracket, double tolerance) {
  double root = bracket.lower;
  bool isFound = false;
  const auto value = [&](double x) {
    const double residual = function(x).value;
    if (std::abs(residual) > tolerance) return residual;
    root = x;
    isFound = true;
    return 0.0;
  };
  std::uintmax_t maxSteps = 200;
  const auto [a, b] = boost::math::tools::toms748_solve(value, bracket.lower, bracket.upper, bracket.lowerValue,
                                                        bracket.upperValue, IsNarrow, maxSteps);
  if (isFound) return {RootOutcome::kFound, root, root};
  return {RootOutcome::kJump, a, b};
}

void Shrink(Bracket& bracket, double x, double value) {
  if (value < 0.0) {
    bracket.lower = x;
    bracket.lowerValue = value;
  } else {
    bracket.upper = x;
    bracket.upperValue = value;
  }
}

}  // namespace

RootResult RefineRootOfRising(const SlopedFunction& function, Bracket bracket, double guess, double tolerance) {
  constexpr int kNewtonSteps = 12;
  double x = guess;
  for (int step = 0; step < kNewtonSteps; ++step) {
    const double width = bracket.upper - bracket.lower;
    const bool isNewton = step % 4 != 3;
    if (!(x > bracket.lower && x < bracket.upper) || !isNewton) x = bracket.lower + 0.5 * width;
    const auto [value, slope] = function(x);
    if (std::abs(value) <= tolerance) return {RootOutcome::kFound, x, x};
    Shrink(bracket, x, value);
    if (IsNarrow(bracket.lower, bracket.upper)) return {RootOutcome::kJump, bracket.lower, bracket.upper};
    x -= value / slope;
  }
  return Enclose(function, bracket, tolerance);
}

RootResult FindRootOfRising(const SlopedFunction& function, double guess, double lowest, double highest,
                            double tolerance) {
  constexpr double kReach = 1.5;  // the largest factor between one x and the next outside of a bracket
  Bracket bracket;
  double x = std::clamp(guess, lowest, highest);
  while (true) {
    const auto [value, slope] = function(x);
    if (std::abs(value) <= tolerance) return {RootOutcome::kFound, x, x};
    Shrink(bracket, x, value);
    double next = x - value / slope;
    if (bracket.lowerValue < 0.0 && bracket.upperValue > 0.0)
      return RefineRootOfRising(function, bracket, next, tolerance);
    if (value < 0.0) {
      if (x >= highest) return {RootOutcome::kAbove, highest, highest};
      if (!(next < kReach * x)) next = kReach * x;
      x = std::min(highest, std::max(next, 1.001 * x));
    } else {
      if (x <= lowest) return {RootOutcome::kBelow, lowest, lowest};
      if (!(next > x / kReach)) next = x / kReach;
      x = std::max(lowest, std::min(next, 0.999 * x));
    }
  }
}

}  // namespace morvelan::host
