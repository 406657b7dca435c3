#include "numerics/formula/ExpressionTree.h"

#include <array>

#include "numerics/formula/FunctionTable.h"

namespace morvelan::numerics {
namespace {

constexpr std::int32_t kFirst = static_cast<std::int32_t>(NodeKind::kFirstFunction);
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

bool IsFunction(NodeKind kind) { return kind >= NodeKind::kFirstFunction && kind < NodeKind::kVariable; }

NodeKind FunctionKind(std::int32_t function) { return static_cast<NodeKind>(kFirst + function); }

const FormulaFunction& FunctionOf(NodeKind kind) {
  return FormulaFunctions()[static_cast<std::size_t>(static_cast<std::int32_t>(kind) - kFirst)];
}

std::optional<std::uint32_t> OperandCount(NodeKind kind) {
  if (IsFunction(kind)) return FunctionOf(kind).ArgumentCount();
  switch (kind) {
    case NodeKind::kConstant:
    case NodeKind::kVariable:
      return 0;
    case NodeKind::kNegation:
      return 1;
    case NodeKind::kAddition:
    case NodeKind::kSubtraction:
    case NodeKind::kMultiplication:
    case NodeKind::kDivision:
    case NodeKind::kPower:
      return 2;
    default:
      return std::nullopt;
  }
}

std::string_view DisplayName(NodeKind kind) {
  static constexpr std::array<std::string_view, kFirst> kNames = {
      "real constant", "addition", "subtraction", "multiplication", "division", "negation", "power", "expression list"};
  if (IsFunction(kind)) return FunctionOf(kind).name;
  const auto place = static_cast<std::int32_t>(kind);
  return place >= 0 && place < kFirst ? kNames[static_cast<std::size_t>(place)] : std::string_view();
}

}  // namespace morvelan::numerics
