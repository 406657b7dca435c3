#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "numerics/formula/ExpressionTree.h"

namespace morvelan::numerics {

/// What a step does to the running value: fetch an operand, after putting the running value onto the stack
/// where one is still waited for; combine it with an operand, which a constant or a variable is, or the last
/// one of the stack; or the same the other way round.
enum class FormulaOperation : std::uint32_t {
  kLoadConstant,
  kLoadVariable,
  kPushLoadConstant,
  kPushLoadVariable,
  kAddConstant,
  kAddVariable,
  kAddStack,
  kSubtractConstant,
  kSubtractVariable,
  kSubtractFromConstant,
  kSubtractFromVariable,
  kSubtractFromStack,
  kMultiplyConstant,
  kMultiplyVariable,
  kMultiplyStack,
  kDivideByConstant,
  kDivideByVariable,
  kDivideConstant,
  kDivideVariable,
  kDivideStack,
  kNegate,
  kSquare,
  kProductPower,
  kUnary,
  kBinary,
  kBinaryReversed
};

struct FormulaStep {
  FormulaOperation operation = FormulaOperation::kLoadConstant;
  std::int32_t variable = 0;  // or the exponent of a power that is a product
  union {
    double constant = 0;
    double (*unary)(double);
    double (*binary)(double, double);
  };
};

/// A checked expression as a row of steps on a running value, for fast evaluation. Numbers and variables are
/// operands of the steps rather than steps of their own; only what must wait for another result goes to a
/// stack.
class FormulaProgram {
 public:
  /// `tree` comes from the parser, which limits how many values wait for others, and has passed CheckTree.
  explicit FormulaProgram(const ExpressionTree& tree);

  /// Evaluates with a value per variable, plainly, without allocation and without setting up the
  /// floating-point environment. `suspicious` becomes true when what is not finite went where it could have
  /// disappeared: into a function or a computed divisor. Elsewhere it stays, up to the result; so a finite
  /// result that is not suspicious had no fault.
  [[nodiscard]] double Run(const double* values, bool& suspicious) const noexcept;

  /// It calls functions of the mathematical library.
  [[nodiscard]] bool CallsFunctions() const { return callsFunctions; }

 private:
  friend class FormulaCompiler;

  double RunOn(double* stack, const double* values, bool& suspicious) const noexcept;
  double RunDeep(const double* values, bool& suspicious) const noexcept;

  std::vector<FormulaStep> steps;
  std::size_t stackSize = 0;  // that the steps need
  bool callsFunctions = false;
};

}  // namespace morvelan::numerics
