#pragma once

#include <array>
#include <charconv>
#include <string>

namespace morvelan::host {

/// A number for a message, with seven significant digits.
[[nodiscard]] inline std::string NumberText(double value) {
  std::array<char, 40> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 7);
  return {text.data(), end.ptr};
}

}  // namespace morvelan::host
