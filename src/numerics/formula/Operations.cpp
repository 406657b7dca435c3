#include "numerics/formula/Operations.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace morvelan::numerics {
namespace {

// Single instructions are faster than calls of the mathematical library.
double SquareRoot(double x) { return std::sqrt(x); }
double Absolute(double x) { return std::fabs(x); }

/// Rounds halves up, also those of negative numbers.
double Round(double x) { return std::floor(x + 0.5); }

// NaN if one of the two is NaN.
double Minimum(double a, double b) { return a < b || std::isnan(a) ? a : b; }
double Maximum(double a, double b) { return a > b || std::isnan(a) ? a : b; }

const char* RefuseSquareRoot(double x) { return x < 0 ? "sqrt of negative number" : nullptr; }
const char* RefuseArcSine(double x) { return x < -1 || x > 1 ? "domain error in asin" : nullptr; }
const char* RefuseArcCosine(double x) { return x < -1 || x > 1 ? "domain error in acos" : nullptr; }
// The rule accepts zero only. A typed logarithm is a constant before the checked evaluation and does not meet it.
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
    {"MIN", nullptr, Minimum},
    {"MAX", nullptr, Maximum},
    {"MOD", nullptr, std::fmod},
}};

constexpr std::int32_t kFirstFunctionKind = static_cast<std::int32_t>(NodeKind::kFirstFunction);

/// The code of a result that is infinite although the operands are finite: exact at a pole, an overflow elsewhere. The
/// poles of all operations but division are at zero.
FaultCode FaultOfInfinity(NodeKind kind, const double* operands) {
  if (kind == NodeKind::kDivision) return operands[1] == 0 ? FaultCode::kDivisionByZero : FaultCode::kOverflow;
  return operands[0] == 0 ? FaultCode::kSingularity : FaultCode::kOverflow;
}

/// A number as the sum of two halves whose products are exact (T. J. Dekker, Numer. Math. 18, 224, 1971).
struct Halves {
  explicit Halves(double x) {
    const double scaled = 0x1.0000002p27 * x;
    high = scaled - (scaled - x);
    low = x - high;
  }
  double high;
  double low;
};

/// Within these limits neither a product nor its rounding error leaves the range of numbers.
bool IsModerate(double base) { return std::fabs(base) > 0x1p-80 && std::fabs(base) < 0x1p80; }

template <int kExponent>
double SplitPower(double base) {
  if (!IsModerate(base)) return std::pow(base, kExponent);
  const Halves factor(base);
  double product = base, error = 0;
  for (int i = 1; i < kExponent; ++i) {
    const Halves halves(product);
    product *= base;
    const double rounding =
        ((halves.high * factor.high - product) + halves.high * factor.low + halves.low * factor.high) +
        halves.low * factor.low;
    error = error * base + rounding;
  }
  return product + error;
}

/// The same with the rounding error of a product in one instruction.
template <int kExponent>
[[gnu::target("fma")]] double FusedPower(double base) {
  if (!IsModerate(base)) return std::pow(base, kExponent);
  double product = base, error = 0;
  for (int i = 1; i < kExponent; ++i) {
    const double next = product * base;
    error = error * base + std::fma(product, base, -next);
    product = next;
  }
  return product + error;
}

double Power(double base, double exponent) {
  if (exponent == 2) return base * base;
  if (exponent >= kSmallestProductPower && exponent <= kLargestProductPower && exponent == std::floor(exponent))
    return ProductPower(static_cast<int>(exponent))(base);
  return std::pow(base, exponent);
}

}  // namespace

std::span<const FormulaFunction> FormulaFunctions() { return kFunctions; }

std::optional<std::int32_t> FindFunction(std::string_view name) {
  const auto found = std::ranges::find(kFunctions, name, &FormulaFunction::name);
  if (found == kFunctions.end()) return std::nullopt;
  return static_cast<std::int32_t>(found - kFunctions.begin());
}

NodeKind FunctionKind(std::int32_t function) { return static_cast<NodeKind>(kFirstFunctionKind + function); }

bool IsFunction(NodeKind kind) { return kind >= NodeKind::kFirstFunction && kind < NodeKind::kVariable; }

const FormulaFunction& FunctionOf(NodeKind kind) {
  return kFunctions[static_cast<std::size_t>(static_cast<std::int32_t>(kind) - kFirstFunctionKind)];
}

std::optional<std::uint32_t> OperandCount(NodeKind kind) {
  if (IsFunction(kind)) return FunctionOf(kind).ArgumentCount();
  switch (kind) {
    case NodeKind::kConstant:
    case NodeKind::kVariable:
      return 0;
    case NodeKind::kNegation:
      return 1;
    case NodeKind::kAddition:
    case NodeKind::kSubtraction:
    case NodeKind::kMultiplication:
    case NodeKind::kDivision:
    case NodeKind::kPower:
      return 2;
    default:
      return std::nullopt;
  }
}

std::string_view DisplayName(NodeKind kind) {
  static constexpr std::array<std::string_view, kFirstFunctionKind> kNames = {
      "real constant", "addition", "subtraction", "multiplication", "division", "negation", "power", "expression list"};
  if (IsFunction(kind)) return FunctionOf(kind).name;
  const auto place = static_cast<std::int32_t>(kind);
  return place >= 0 && place < kFirstFunctionKind ? kNames[static_cast<std::size_t>(place)] : std::string_view();
}

double Compute(NodeKind kind, const double* operands) {
  switch (kind) {
    case NodeKind::kAddition:
      return operands[0] + operands[1];
    case NodeKind::kSubtraction:
      return operands[0] - operands[1];
    case NodeKind::kMultiplication:
      return operands[0] * operands[1];
    case NodeKind::kDivision:
      return operands[0] / operands[1];
    case NodeKind::kNegation:
      return -operands[0];
    case NodeKind::kPower:
      return Power(operands[0], operands[1]);
    default:
      const FormulaFunction& function = FunctionOf(kind);
      return function.unary ? function.unary(operands[0]) : function.binary(operands[0], operands[1]);
  }
}

const char* DomainRefusal(NodeKind kind, const double* operands) {
  if (kind == NodeKind::kDivision) return operands[1] == 0 ? "division by zero" : nullptr;
  if (kind == NodeKind::kPower) return operands[0] < 0 ? "negative base in power" : nullptr;
  if (!IsFunction(kind)) return nullptr;
  const FormulaFunction& function = FunctionOf(kind);
  return function.refusal ? function.refusal(operands[0]) : nullptr;
}

std::string FaultText(std::string_view where, FaultCode code) {
  static constexpr std::array<const char*, 11> kMessages = {"No error",
                                                            "Invalid domain for function",
                                                            "Overflow",
                                                            "Singularity",
                                                            "unhandled exception, number out of range",
                                                            "Not a number (NaN)",
                                                            "Underflow",
                                                            "Total loss of significance",
                                                            "Integer overflow",
                                                            "Integer division by zero",
                                                            "Division by zero"};
  return "floating point exception in " + std::string(where) + ": " + kMessages.at(static_cast<std::size_t>(code));
}

FaultCode FaultOf(NodeKind kind, const double* operands, double result) {
  if (std::isfinite(result)) return FaultCode::kNone;
  const double* end = operands + OperandCount(kind).value_or(0);
  if (std::isnan(result))
    return std::any_of(operands, end, [](double x) { return std::isnan(x); }) ? FaultCode::kNone : FaultCode::kInvalid;
  return std::all_of(operands, end, [](double x) { return std::isfinite(x); }) ? FaultOfInfinity(kind, operands)
                                                                               : FaultCode::kNone;
}

bool HasFusedMultiplyAdd() {
  static const bool kHasIt = __builtin_cpu_supports("fma");
  return kHasIt;
}

UnaryFunction ProductPower(int exponent, bool fused) {
  static constexpr std::array kSplit = {SplitPower<3>, SplitPower<4>, SplitPower<5>, SplitPower<6>,
                                        SplitPower<7>, SplitPower<8>, SplitPower<9>, SplitPower<10>};
  static constexpr std::array kFused = {FusedPower<3>, FusedPower<4>, FusedPower<5>, FusedPower<6>,
                                        FusedPower<7>, FusedPower<8>, FusedPower<9>, FusedPower<10>};
  return (fused ? kFused : kSplit).at(static_cast<std::size_t>(exponent - kSmallestProductPower));
}

}  // namespace morvelan::numerics
