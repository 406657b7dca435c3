#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace morvelan::numerics {

/// A number as it was read from a text.
struct NumberLiteral {
  double value = 0;
  std::size_t end = 0;          // the place after its last character
  bool isInteger = true;        // neither decimal point nor exponent
  const char* error = nullptr;  // why it is no number; `end` is then where that showed
};

/// Reads the number that starts at `start` with a digit or a decimal point, without the locale. A value that
/// is too large is infinite, or not a number.
[[nodiscard]] NumberLiteral ReadNumber(std::string_view text, std::size_t start);

}  // namespace morvelan::numerics
