#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "numerics/formula/Evaluation.h"
#include "numerics/formula/Operations.h"

namespace morvelan::numerics {

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

/// An expression as its nodes in the order in which they are computed: a node's children stand before it, left to
/// right, each with its own children before it. Deep nesting therefore needs no recursion.
struct ExpressionTree {
  std::vector<ExpressionNode> nodes;
};

/// Checks a tree from its leaves up, left to right: gives calls the kinds of their functions, and replaces an operation
/// on constants by its value. The values are not checked, except that a constant divisor must not be zero. Returns why
/// the tree is refused, followed by CR LF, or an empty text. A refused tree must not be used.
[[nodiscard]] std::string CheckTree(ExpressionTree& tree);

/// Evaluates a checked tree node by node, with one value per variable; the first fault is the failure. Expects the
/// default floating-point environment.
[[nodiscard]] Evaluation EvaluateTree(const ExpressionTree& tree, std::span<const double> values);

/// The same for a tree without variables; the domain rules of numeric entries apply to every operation.
[[nodiscard]] Evaluation EvaluateWithDomainRules(const ExpressionTree& tree);

/// The evaluation of a whole expression, in which a value that is infinite or NaN is a failure.
[[nodiscard]] Evaluation RefuseNonFinite(Evaluation evaluation);

}  // namespace morvelan::numerics
