#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "numerics/formula/Evaluation.h"
#include "numerics/formula/ExpressionTree.h"
#include "numerics/formula/FormulaProgram.h"

namespace morvelan::numerics {

/// A checked formula with variables, ready to be evaluated by any number of threads at once.
class CalculatorFormula {
 public:
  /// `checked` has passed CheckTree.
  CalculatorFormula(ExpressionTree checked, std::size_t variables);

  /// Evaluates with a value per variable, in the order in which their names were given. Division by zero,
  /// overflow and what is not defined are failures that name the operation. Locks nothing, and allocates
  /// only for a failure and where an infinity came up on the way to a finite value. Throws nothing.
  [[nodiscard]] Evaluation Evaluate(std::span<const double> values) const;

  [[nodiscard]] std::size_t VariableCount() const { return variableCount; }

 private:
  [[nodiscard]] Evaluation EvaluateCarefully(std::span<const double> values) const;

  ExpressionTree tree;  // tells where a fault was
  FormulaProgram program;
  std::size_t variableCount;
  bool needsWholeEnvironment;  // beyond that of arithmetic
};

/// A formula, or why there is none; the text of a failed check ends with CR LF.
struct FormulaCheck {
  std::optional<CalculatorFormula> formula;
  std::string failure;
};

/// Parses and checks a formula in UTF-8, in which variables are written as their names in double quotes. One
/// is parsed at a time. Throws nothing for want of memory: that is a failure like others.
[[nodiscard]] FormulaCheck CheckFormula(std::string_view text, std::span<const std::string> variables);

}  // namespace morvelan::numerics
