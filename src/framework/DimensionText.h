#pragma once

#include <string>
#include <string_view>

#include "framework/Dimensionality.h"

namespace morvelan {

/// A dimensionality as text: SI base units with their exponents, "m^2 kg^1 s^-3"; empty when there are none.
/// That of a difference ends in ";Delta".
[[nodiscard]] std::string FormatDimension(const Dimensionality& dimensionality);

/// Reads such a text. An exponent of one may be left out, and units may stand in any order and more than
/// once, with blanks or "*" in between; six digits of an exponent count. Throws Failure with the text "parse
/// error".
[[nodiscard]] Dimensionality ParseDimension(std::string_view text);

}  // namespace morvelan
