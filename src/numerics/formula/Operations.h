#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace morvelan::numerics {

/// What a node of an expression is. The functions stand between the list and the variable: kFirstFunction is the first
/// of FormulaFunctions(), and so on.
enum class NodeKind : std::int32_t {
  kUnresolvedCall = -1,  // of the function with the node's index
  kConstant = 0,
  kAddition,
  kSubtraction,
  kMultiplication,
  kDivision,
  kNegation,
  kPower,
  kList,
  kFirstFunction,
  kVariable = 28
};

using UnaryFunction = double (*)(double);
using BinaryFunction = double (*)(double, double);

/// A function of the formula language. It has one argument or two.
struct FormulaFunction {
  std::string_view name;  // in upper case
  UnaryFunction unary = nullptr;
  BinaryFunction binary = nullptr;
  /// Returns why the checked evaluation refuses an argument, or null.
  const char* (*refusal)(double) = nullptr;

  [[nodiscard]] std::uint32_t ArgumentCount() const { return unary ? 1 : 2; }
};

/// All functions, in the order of their kinds.
[[nodiscard]] std::span<const FormulaFunction> FormulaFunctions();

/// The place in FormulaFunctions() of a name in upper case.
[[nodiscard]] std::optional<std::int32_t> FindFunction(std::string_view name);

/// The kind of the function at that place in FormulaFunctions().
[[nodiscard]] NodeKind FunctionKind(std::int32_t function);

[[nodiscard]] bool IsFunction(NodeKind kind);

/// The function of a kind for which IsFunction is true.
[[nodiscard]] const FormulaFunction& FunctionOf(NodeKind kind);

/// How many operands a node of that kind has; nothing for a kind that cannot be computed.
[[nodiscard]] std::optional<std::uint32_t> OperandCount(NodeKind kind);

/// The name that messages use for the kind; empty for a kind that has no such name.
[[nodiscard]] std::string_view DisplayName(NodeKind kind);

/// The value of an operator or function without any check. `operands` has as many values as OperandCount says.
[[nodiscard]] double Compute(NodeKind kind, const double* operands);

/// Returns why the domain rules of the checked evaluation refuse an operation, or null.
[[nodiscard]] const char* DomainRefusal(NodeKind kind, const double* operands);

/// A fault of floating-point arithmetic.
enum class FaultCode : std::int32_t {
  kNone,
  kInvalid,
  kOverflow,
  kSingularity,
  kOutOfRange,
  kNotANumber,
  kUnderflow,
  kTotalLoss,
  kIntegerOverflow,
  kIntegerDivisionByZero,
  kDivisionByZero
};

/// The message of a fault in the operation of that name.
[[nodiscard]] std::string FaultText(std::string_view where, FaultCode code);

/// The fault with which an operation has made `result`: an exceptional condition of IEEE 754 that leaves no usable
/// number. Underflow and rounding are no faults, and an operand that was infinite or NaN before is no fault of this
/// operation. (Operands and result decide, because not every platform's mathematical functions report their faults.)
[[nodiscard]] FaultCode FaultOf(NodeKind kind, const double* operands, double result);

/// The exponents, beside 2, for which a power is a product.
inline constexpr int kSmallestProductPower = 3;
inline constexpr int kLargestProductPower = 10;

/// Whether the processor multiplies and adds with a single rounding.
[[nodiscard]] bool HasFusedMultiplyAdd();

/// The function that raises a number to an exponent of that range. It is faster than std::pow and as accurate: the
/// rounding errors of the products are added up (S. Graillat, Accurate floating-point product and exponentiation, IEEE
/// Trans. Comput. 58, 994, 2009, algorithm CompLinPower). The values are the same on every processor; `fused` only
/// chooses the instructions.
[[nodiscard]] UnaryFunction ProductPower(int exponent, bool fused = HasFusedMultiplyAdd());

}  // namespace morvelan::numerics
