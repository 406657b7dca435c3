#include "numerics/formula/TreeEvaluation.h"

#include <cmath>
#include <vector>

#include "numerics/formula/FaultCode.h"
#include "numerics/formula/FunctionTable.h"
#include "numerics/formula/Operations.h"

namespace morvelan::numerics {
namespace {

constexpr const char* kUnknownType = "internal error: unknown expression type";

/// Why the rules of numeric entries refuse an operation, or null.
const char* Refusal(NodeKind kind, const double* operands) {
  if (kind == NodeKind::kDivision) return operands[1] == 0 ? "division by zero" : nullptr;
  if (kind == NodeKind::kPower) return operands[0] < 0 ? "negative base in power" : nullptr;
  if (!IsFunction(kind)) return nullptr;
  const FormulaFunction& function = FunctionOf(kind);
  return function.refusal ? function.refusal(operands[0]) : nullptr;
}

/// Computes one operation; a failure has a text.
Evaluation EvaluateOperation(NodeKind kind, const double* operands, bool checked) {
  if (const char* refusal = checked ? Refusal(kind, operands) : nullptr) return FailedEvaluation(refusal);
  const double result = Compute(kind, operands);
  const FaultCode fault = FaultOf(kind, operands, result);
  // The rules let the logarithms of zero pass, so that their pole is no fault.
  const bool exempt = checked && IsFunction(kind) && fault == FaultCode::kSingularity;
  if (fault == FaultCode::kNone || exempt) return {result, {}};
  return FailedEvaluation(FaultText(DisplayName(kind), fault));
}

Evaluation Evaluate(const ExpressionTree& tree, std::span<const double> values, bool checked) {
  std::vector<double> stack;
  for (const ExpressionNode& node : tree.nodes) {
    const auto count = OperandCount(node.kind);
    const bool isVariable = node.kind == NodeKind::kVariable;
    if (!count || *count != node.childCount || *count > stack.size() ||
        (isVariable && static_cast<std::size_t>(node.index) >= values.size()))
      return FailedEvaluation(kUnknownType);
    if (*count == 0) {
      stack.push_back(isVariable ? values[static_cast<std::size_t>(node.index)] : node.value);
      continue;
    }
    Evaluation operation = EvaluateOperation(node.kind, stack.data() + stack.size() - *count, checked);
    if (!operation.Succeeded()) return operation;
    stack.resize(stack.size() - *count);
    stack.push_back(operation.value);
  }
  if (stack.size() != 1) return FailedEvaluation(kUnknownType);
  return {stack.front(), {}};
}

}  // namespace

Evaluation EvaluatePlainly(const ExpressionTree& tree, std::span<const double> values) {
  return Evaluate(tree, values, false);
}

Evaluation EvaluateChecked(const ExpressionTree& tree) { return Evaluate(tree, {}, true); }

Evaluation RefuseNonFinite(Evaluation evaluation) {
  if (!evaluation.Succeeded() || std::isfinite(evaluation.value)) return evaluation;
  const FaultCode code = std::isnan(evaluation.value) ? FaultCode::kNotANumber : FaultCode::kOverflow;
  return FailedEvaluation(FaultText("result", code));
}

}  // namespace morvelan::numerics
