#pragma once

#include <array>
#include <charconv>
#include <string>

namespace morvelan::host {

/// A number as std::to_chars writes it, without the locale; `format` are its further arguments.
template <class... Format>
[[nodiscard]] std::string ToChars(double value, Format... format) {
  std::array<char, 64> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value, format...);
  return {text.data(), end.ptr};
}

/// A number for a message, with seven significant digits.
[[nodiscard]] inline std::string NumberText(double value) { return ToChars(value, std::chars_format::general, 7); }

/// A number with as few digits as tell it from all others.
[[nodiscard]] inline std::string PlainNumber(double value) { return ToChars(value); }

}  // namespace morvelan::host
