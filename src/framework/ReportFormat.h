#pragma once

#include <string>

#include "framework/CParameter.h"

namespace morvelan {

/// A number with up to `digits` significant digits and no trailing zeros, as "%.12lg" prints it, in no
/// locale.
[[nodiscard]] std::string FormatNumber(double value, int digits = 12);

/// A number right-aligned in a column of 12 characters with 6 significant digits, as "%12lg" prints it.
[[nodiscard]] std::string FormatColumn(double value);

/// The unit symbol that follows a value, with the blank in front of it; empty for a dimensionless value. The
/// difference flag shows only where no common unit fits.
[[nodiscard]] std::string UnitSuffix(const Dimensionality& dimensionality);

/// A value with its unit, or "N/A" when it is not set.
[[nodiscard]] std::string FormatValue(double value, const Dimensionality& dimensionality);

/// A parameter's line in a report, without its line end: name, colon, tab and value.
[[nodiscard]] std::string FormatParameter(const CParameter& parameter);

}  // namespace morvelan
