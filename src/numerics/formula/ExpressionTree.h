#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace morvelan::numerics {

struct FormulaFunction;

/// What a node of an expression is. The functions stand between the list and the variable: kFirstFunction is
/// the first of FormulaFunctions(), and so on.
enum class NodeKind : std::int32_t {
  kUnresolvedCall = -1,  // of the function with the node's index
  kConstant = 0,
  kAddition,
  kSubtraction,
  kMultiplication,
  kDivision,
  kNegation,
  kPower,
  kList,
  kFirstFunction,
  kVariable = 28
};

struct ExpressionNode {
  NodeKind kind = NodeKind::kConstant;
  std::uint32_t childCount = 0;
  union {
    double value = 0;    // of a constant
    std::int32_t index;  // of a variable, or of the function of an unresolved call
  };
};

[[nodiscard]] ExpressionNode ConstantNode(double value);
[[nodiscard]] ExpressionNode VariableNode(std::int32_t index);
[[nodiscard]] ExpressionNode CallNode(std::int32_t function, std::uint32_t childCount);
[[nodiscard]] ExpressionNode OperationNode(NodeKind kind, std::uint32_t childCount);

/// An expression as its nodes in the order in which they are computed: a node's children stand before it,
/// left to right, each with its own children before it. So nesting costs no calls, and the tree is copied and
/// freed as one block.
struct ExpressionTree {
  std::vector<ExpressionNode> nodes;
};

/// How many nodes stand before a node of that kind as its children; nothing for a kind that cannot be
/// computed.
[[nodiscard]] std::optional<std::uint32_t> OperandCount(NodeKind kind);

[[nodiscard]] bool IsFunction(NodeKind kind);

/// The function of such a kind.
[[nodiscard]] const FormulaFunction& FunctionOf(NodeKind kind);

/// The kind of the function at that place of the table.
[[nodiscard]] NodeKind FunctionKind(std::int32_t function);

/// What a user knows the kind as; empty for one that has no such name.
[[nodiscard]] std::string_view DisplayName(NodeKind kind);

}  // namespace morvelan::numerics
