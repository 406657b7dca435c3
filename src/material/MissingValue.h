#pragma once

#include <cmath>
#include <limits>

namespace morvelan {

/// The mark with which hosts and parameters say that a real value is not set.
inline constexpr double kMissingValue = std::numeric_limits<double>::lowest();

/// True for the mark and for NaN.
[[nodiscard]] inline bool IsMissing(double value) { return std::isnan(value) || value == kMissingValue; }

}  // namespace morvelan
