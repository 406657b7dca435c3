#include "numerics/formula/ExpressionTree.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace morvelan::numerics {
namespace {

constexpr const char* kUnknownType = "internal error: unknown expression type";

/// How many expressions the nodes form; nothing if a node has more children than there are.
std::optional<std::size_t> CountExpressions(const ExpressionTree& tree) {
  std::size_t complete = 0;
  for (const ExpressionNode& node : tree.nodes) {
    if (node.childCount > complete) return std::nullopt;
    complete -= node.childCount;
    ++complete;
  }
  return complete;
}

/// Returns why a node cannot have its number of children or cannot stand in a tree, or an empty text.
std::string CheckNode(const ExpressionNode& node) {
  if (node.kind == NodeKind::kList) return "unexpected expression list";
  const auto operands = OperandCount(node.kind);
  if (!operands) return kUnknownType;
  if (*operands == node.childCount) return {};
  if (node.kind == NodeKind::kConstant) return "internal error: real constant with sub expressions";
  if (node.kind == NodeKind::kVariable) return "internal error: variable with sub expressions";
  if (!IsFunction(node.kind)) return kUnknownType;
  return std::string(DisplayName(node.kind)) +
         (*operands == 1 ? " should have one argument" : " should have two arguments");
}

bool ResolveCall(ExpressionNode& node) {
  if (node.kind != NodeKind::kUnresolvedCall) return true;
  if (node.index < 0 || static_cast<std::size_t>(node.index) >= FormulaFunctions().size()) return false;
  node.kind = FunctionKind(node.index);
  return true;
}

/// Adds a checked node to the nodes before it, or its value if its children, the last of them, are constants. Returns
/// why the value is refused, or an empty text.
std::string AddFolded(std::vector<ExpressionNode>& nodes, const ExpressionNode& node) {
  const auto children = nodes.end() - node.childCount;
  const auto isConstant = [](const ExpressionNode& child) { return child.kind == NodeKind::kConstant; };
  if (node.childCount == 0 || !std::all_of(children, nodes.end(), isConstant)) {
    nodes.push_back(node);
    return {};
  }
  std::array<double, 2> operands{};
  std::transform(children, nodes.end(), operands.begin(), [](const ExpressionNode& child) { return child.value; });
  if (node.kind == NodeKind::kDivision && operands[1] == 0) return "division by zero";
  nodes.erase(children, nodes.end());
  nodes.push_back(ConstantNode(Compute(node.kind, operands.data())));
  return {};
}

std::string CheckNodes(ExpressionTree& tree) {
  const auto count = CountExpressions(tree);
  if (!count) return kUnknownType;
  if (*count > 1) return "internal error: more than one expression remaining after parsing is finished";
  if (*count == 0) return "expression must result a scalar";
  const std::vector<ExpressionNode> unchecked = std::move(tree.nodes);
  tree.nodes.clear();
  for (ExpressionNode node : unchecked) {
    if (!ResolveCall(node)) return kUnknownType;
    std::string failure = CheckNode(node);
    if (failure.empty()) failure = AddFolded(tree.nodes, node);
    if (!failure.empty()) return failure;
  }
  return {};
}

enum class DomainRules { kNone, kApply };

Evaluation EvaluateOperation(NodeKind kind, const double* operands, DomainRules rules) {
  const bool checked = rules == DomainRules::kApply;
  if (const char* refusal = checked ? DomainRefusal(kind, operands) : nullptr) return FailedEvaluation(refusal);
  const double result = Compute(kind, operands);
  const FaultCode fault = FaultOf(kind, operands, result);
  // The rules accept the logarithms of zero, so that their pole is no fault.
  const bool accepted = checked && IsFunction(kind) && fault == FaultCode::kSingularity;
  if (fault == FaultCode::kNone || accepted) return {result, {}};
  return FailedEvaluation(FaultText(DisplayName(kind), fault));
}

Evaluation EvaluateNodes(const ExpressionTree& tree, std::span<const double> values, DomainRules rules) {
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
    Evaluation operation = EvaluateOperation(node.kind, stack.data() + stack.size() - *count, rules);
    if (!operation.Succeeded()) return operation;
    stack.resize(stack.size() - *count);
    stack.push_back(operation.value);
  }
  if (stack.size() != 1) return FailedEvaluation(kUnknownType);
  return {stack.front(), {}};
}

}  // namespace

ExpressionNode ConstantNode(double value) {
  ExpressionNode node;
  node.value = value;
  return node;
}

ExpressionNode VariableNode(std::int32_t index) {
  ExpressionNode node{NodeKind::kVariable, 0, {}};
  node.index = index;
  return node;
}

ExpressionNode CallNode(std::int32_t function, std::uint32_t childCount) {
  ExpressionNode node{NodeKind::kUnresolvedCall, childCount, {}};
  node.index = function;
  return node;
}

ExpressionNode OperationNode(NodeKind kind, std::uint32_t childCount) { return {kind, childCount, {}}; }

std::string CheckTree(ExpressionTree& tree) {
  const std::string failure = CheckNodes(tree);
  return failure.empty() ? failure : failure + "\r\n";  // the message becomes a line of a report
}

Evaluation EvaluateTree(const ExpressionTree& tree, std::span<const double> values) {
  return EvaluateNodes(tree, values, DomainRules::kNone);
}

Evaluation EvaluateWithDomainRules(const ExpressionTree& tree) { return EvaluateNodes(tree, {}, DomainRules::kApply); }

Evaluation RefuseNonFinite(Evaluation evaluation) {
  if (!evaluation.Succeeded() || std::isfinite(evaluation.value)) return evaluation;
  const FaultCode code = std::isnan(evaluation.value) ? FaultCode::kNotANumber : FaultCode::kOverflow;
  return FailedEvaluation(FaultText("result", code));
}

}  // namespace morvelan::numerics
