#include "numerics/formula/CalculatorFormula.h"

#include <mutex>
#include <utility>

#include "numerics/formula/FloatingPointScope.h"
#include "numerics/formula/FormulaParser.h"

namespace morvelan::numerics {
namespace {

constexpr FormulaDialect kCalculatorDialect = {"parse error", "parser stack overflow"};

std::mutex parseLock;

FormulaCheck ParseAndCheck(std::string_view text, std::span<const std::string> variables) {
  ParsedFormula parsed = ParseFormula(text, variables, kCalculatorDialect);
  if (!parsed.failure.empty()) return {std::nullopt, std::move(parsed.failure)};
  std::string refusal = CheckTree(parsed.tree);
  if (!refusal.empty()) return {std::nullopt, std::move(refusal)};
  return {CalculatorFormula(std::move(parsed.tree), variables.size()), {}};
}

}  // namespace

CalculatorFormula::CalculatorFormula(ExpressionTree checked, std::size_t variables)
    : tree(std::move(checked)),
      program(tree),
      variableCount(variables),
      needsWholeEnvironment(kLibraryUsesOlderUnit && program.CallsFunctions()) {}

Evaluation CalculatorFormula::Evaluate(std::span<const double> values) const {
  Evaluation evaluation;
  if (!EvaluateQuickly(values, evaluation.value)) [[unlikely]]
    EvaluateCarefully(values, evaluation);
  return evaluation;
}

/// Returns false if there is something that the fast way cannot do.
bool CalculatorFormula::EvaluateQuickly(std::span<const double> values, double& result) const {
  if (values.size() < variableCount || needsWholeEnvironment) return false;
  const ArithmeticEnvironment environment;
  return program.Run(values.data(), result);
}

void CalculatorFormula::EvaluateCarefully(std::span<const double> values, Evaluation& evaluation) const {
  evaluation = WithinMemory("memory exhausted", [&] {
    if (values.size() < variableCount)
      return FailedEvaluation("internal error: " + std::to_string(values.size()) + " values for " +
                              std::to_string(variableCount) + " variables");
    const DefaultEnvironment environment;
    Evaluation result;
    if (program.Run(values.data(), result.value)) return result;
    return RefuseNonFinite(EvaluateTree(tree, values));  // finds the operation with the fault
  });
}

FormulaCheck CheckFormula(std::string_view text, std::span<const std::string> variables) {
  const DefaultEnvironment environment;
  const std::lock_guard lock(parseLock);
  return WithinMemory(kCalculatorDialect.stackFull, [&] { return ParseAndCheck(text, variables); });
}

}  // namespace morvelan::numerics
