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

/// A checked formula with variables. Any number of threads may evaluate it at once.
class CalculatorFormula {
 public:
  /// `checked` has passed CheckTree.
  CalculatorFormula(ExpressionTree checked, std::size_t variables);

  /// Evaluates with one value per variable, in the order in which CheckFormula got their names. Division by zero,
  /// overflow and an operation without a value are failures that name the operation. Locks nothing, throws nothing, and
  /// allocates only if an operation gives infinity or NaN.
  [[nodiscard]] Evaluation Evaluate(std::span<const double> values) const;

  [[nodiscard]] std::size_t VariableCount() const { return variableCount; }

 private:
  [[nodiscard]] bool EvaluateQuickly(std::span<const double> values, double& result) const;
  [[gnu::noinline]] void EvaluateCarefully(std::span<const double> values, Evaluation& evaluation) const;

  ExpressionTree tree;  // shows where a fault was
  FormulaProgram program;
  std::size_t variableCount;
  bool needsWholeEnvironment;  // not only that of arithmetic
};

/// A formula, or the reason why there is none. The text of a failed check ends with CR LF.
struct FormulaCheck {
  std::optional<CalculatorFormula> formula;
  std::string failure;
};

/// Parses and checks a formula in UTF-8, in which a variable is its name in double quotes. One formula is parsed at a
/// time. If memory runs out, that is a failure like others; no exception is thrown.
[[nodiscard]] FormulaCheck CheckFormula(std::string_view text, std::span<const std::string> variables);

}  // namespace morvelan::numerics
