#include "numerics/formula/FunctionTable.h"

#include <array>
#include <cmath>

namespace morvelan::numerics {
namespace {

// Single instructions, without the way into the library.
double SquareRoot(double x) { return std::sqrt(x); }
double Absolute(double x) { return std::fabs(x); }

/// Halves go up, those of negative numbers too.
double Round(double x) { return std::floor(x + 0.5); }

// Which of the two is a matter of comparing, unless one is not a number: then neither is the outcome.
double Min(double a, double b) { return a < b || std::isnan(a) ? a : b; }
double Max(double a, double b) { return a > b || std::isnan(a) ? a : b; }

const char* RefuseSquareRoot(double x) { return x < 0 ? "sqrt of negative number" : nullptr; }
const char* RefuseArcSine(double x) { return x < -1 || x > 1 ? "domain error in asin" : nullptr; }
const char* RefuseArcCosine(double x) { return x < -1 || x > 1 ? "domain error in acos" : nullptr; }
// Only zero passes. Typed logarithms are folded before, so that this meets nothing that a user wrote.
const char* RefuseLogarithm(double x) { return x == 0 ? nullptr : "ln of negative number"; }
const char* RefuseDecimalLogarithm(double x) { return x == 0 ? nullptr : "log of negative number"; }

constexpr std::array<FormulaFunction, 20> kFunctions = {{
    {"SQRT", SquareRoot, nullptr, RefuseSquareRoot},
    {"SIN", std::sin},
    {"COS", std::cos},
    {"SINH", std::sinh},
    {"COSH", std::cosh},
    {"ASIN", std::asin, nullptr, RefuseArcSine},
    {"ACOS", std::acos, nullptr, RefuseArcCosine},
    {"TAN", std::tan},
    {"ATAN", std::atan},
    {"ABS", Absolute},
    {"FLOOR", std::floor},
    {"CEIL", std::ceil},
    {"ROUND", Round},
    {"EXP", std::exp},
    {"LOG", std::log, nullptr, RefuseLogarithm},
    {"LOG10", std::log10, nullptr, RefuseDecimalLogarithm},
    {"TANH", std::tanh},
    {"MIN", nullptr, Min},
    {"MAX", nullptr, Max},
    {"MOD", nullptr, std::fmod},
}};

}  // namespace

std::span<const FormulaFunction> FormulaFunctions() { return kFunctions; }

std::optional<std::int32_t> FindFunction(std::string_view name) {
  for (std::size_t i = 0; i < kFunctions.size(); ++i)
    if (kFunctions[i].name == name) return static_cast<std::int32_t>(i);
  return std::nullopt;
}

}  // namespace morvelan::numerics
