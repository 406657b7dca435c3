#include "numerics/formula/CalculatorFormula.h"

#include <cmath>
#include <mutex>
#include <utility>

#include "numerics/formula/FloatingPointScope.h"
#include "numerics/formula/FormulaParser.h"
#include "numerics/formula/TreeCheck.h"
#include "numerics/formula/TreeEvaluation.h"
#include "numerics/formula/WithinMemory.h"

namespace morvelan::numerics {
namespace {

constexpr FormulaDialect kDialect = {"parse error", "parser stack overflow"};

std::mutex parseLock;

FormulaCheck CheckAlone(std::string_view text, std::span<const std::string> variables) {
  ParsedFormula parsed = ParseFormula(text, variables, kDialect);
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
  if (values.size() >= variableCount && !needsWholeEnvironment) [[likely]] {
    const ArithmeticEnvironment environment;
    bool suspicious = false;
    evaluation.value = program.Run(values.data(), suspicious);
    if (!suspicious && std::isfinite(evaluation.value)) [[likely]]
      return evaluation;
  }
  return WithinMemory("memory exhausted", [&] { return EvaluateCarefully(values); });
}

Evaluation CalculatorFormula::EvaluateCarefully(std::span<const double> values) const {
  if (values.size() < variableCount)
    return FailedEvaluation("internal error: " + std::to_string(values.size()) + " values for " +
                            std::to_string(variableCount) + " variables");
  const DefaultEnvironment environment;
  Evaluation evaluation;
  bool suspicious = false;
  evaluation.value = program.Run(values.data(), suspicious);
  if (!suspicious && std::isfinite(evaluation.value)) return evaluation;
  return RefuseNonFinite(EvaluatePlainly(tree, values));  // finds out where it was
}

FormulaCheck CheckFormula(std::string_view text, std::span<const std::string> variables) {
  const DefaultEnvironment environment;
  const std::lock_guard alone(parseLock);
  return WithinMemory(kDialect.stackFull, [&] { return CheckAlone(text, variables); });
}

}  // namespace morvelan::numerics
