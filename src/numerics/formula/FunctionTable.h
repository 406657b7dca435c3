#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace morvelan::numerics {

/// A function of the formula language. It has one argument or two.
struct FormulaFunction {
  std::string_view name;  // in upper case
  double (*unary)(double) = nullptr;
  double (*binary)(double, double) = nullptr;
  /// Why the checked evaluation refuses an argument, or null.
  const char* (*refusal)(double) = nullptr;

  [[nodiscard]] std::uint32_t ArgumentCount() const { return unary ? 1 : 2; }
};

/// All functions, in the order of their kinds.
[[nodiscard]] std::span<const FormulaFunction> FormulaFunctions();

/// The place in FormulaFunctions() of a name in upper case.
[[nodiscard]] std::optional<std::int32_t> FindFunction(std::string_view name);

}  // namespace morvelan::numerics
