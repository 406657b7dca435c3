#pragma once

#include <functional>

namespace morvelan::host {

/// A function's value and its slope at the same place.
struct ValueAndSlope {
  double value = 0.0;
  double slope = 0.0;
};

using SlopedFunction = std::function<ValueAndSlope(double)>;

enum class RootOutcome {
  kFound,  // the last evaluation was at the root
  kJump,   // the function jumps over zero between `lower` and `upper`
  kBelow,  // it is above zero everywhere: the root would lie below the range
  kAbove   // it is below zero everywhere
};

struct RootResult {
  RootOutcome outcome = RootOutcome::kFound;
  double lower = 0.0;
  double upper = 0.0;
};

/// Finds x in [lowest, highest], lowest > 0, where a function that never falls is zero within `tolerance`. The function
/// may have kinks and jumps.
[[nodiscard]] RootResult FindRootOfRising(const SlopedFunction& function, double guess, double lowest, double highest,
                                          double tolerance);

/// Two values of x between which a root lies.
struct Bracket {
  double lower = 0.0;
  double lowerValue = 0.0;  // below zero
  double upper = 0.0;
  double upperValue = 0.0;  // above zero
};

/// The same within a bracket.
[[nodiscard]] RootResult RefineRootOfRising(const SlopedFunction& function, Bracket bracket, double guess,
                                            double tolerance);

}  // namespace morvelan::host
