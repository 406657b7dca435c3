#include "numerics/formula/TreeCheck.h"

#include <algorithm>
#include <array>

#include "numerics/formula/FunctionTable.h"
#include "numerics/formula/Operations.h"

namespace morvelan::numerics {
namespace {

constexpr const char* kUnknownType = "internal error: unknown expression type";

/// How many expressions the nodes form; nothing when a node has more children than there are.
std::optional<std::size_t> CountExpressions(const ExpressionTree& tree) {
  std::size_t complete = 0;
  for (const ExpressionNode& node : tree.nodes) {
    if (node.childCount > complete) return std::nullopt;
    complete -= node.childCount;
    ++complete;
  }
  return complete;
}

/// Why a node cannot have that many children, or stand where it stands.
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

/// Adds a checked node to those before it, or its value when its children, the last of them, are constants.
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

std::string Check(ExpressionTree& tree) {
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

}  // namespace

std::string CheckTree(ExpressionTree& tree) {
  const std::string failure = Check(tree);
  return failure.empty() ? failure : failure + "\r\n";  // it becomes a line of a report
}

}  // namespace morvelan::numerics
