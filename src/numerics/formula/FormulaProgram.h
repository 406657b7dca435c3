#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "numerics/formula/ExpressionTree.h"

namespace morvelan::numerics {

/// One step of a program: an operation on the running value and on the operands that the step names.
struct FormulaStep {
  std::uint32_t operation = 0;
  std::int32_t variable = 0;
  union {
    double constant = 0;
    std::int32_t secondVariable;
    UnaryFunction unary;
    BinaryFunction binary;
  };
};

/// A checked expression as a sequence of steps on a running value, for fast evaluation. Numbers and variables are
/// operands of the steps. A value that waits for another result stands on a stack.
class FormulaProgram {
 public:
  /// `tree` comes from the parser, which limits how many values wait for others, and has passed CheckTree.
  explicit FormulaProgram(const ExpressionTree& tree);

  /// Computes the value from one value per variable, without allocation. Returns false if a fault is possible: the
  /// value is infinite or NaN, or such a value went into a function or a computed divisor, where it can disappear.
  /// Expects the default floating-point environment, and is not inlined, so that all arithmetic happens in it.
  [[nodiscard, gnu::noinline]] bool Run(const double* values, double& result) const noexcept;

  /// The program calls functions of the mathematical library.
  [[nodiscard]] bool CallsFunctions() const { return callsFunctions; }

 private:
  friend class FormulaCompiler;

  template <bool kCallsFunctions>
  bool RunOn(double* stack, const double* values, double& result) const noexcept;
  bool RunDeep(const double* values, double& result) const noexcept;

  std::vector<FormulaStep> steps;
  std::size_t stackSize = 0;  // how many values wait at most
  bool callsFunctions = false;
};

}  // namespace morvelan::numerics
