#pragma once

#include <span>
#include <string>

#include "numerics/formula/ExpressionTree.h"

namespace morvelan::test {

/// A formula that means exactly the tree: every operation in parentheses, every number such that it is read without
/// rounding. The calls of the tree may be unresolved.
[[nodiscard]] std::string TreeText(const numerics::ExpressionTree& tree, std::span<const std::string> variables);

/// A formula of integers, divisions and powers of two whose value is exactly `value`, which is finite.
[[nodiscard]] std::string ExactText(double value);

/// The tree with its calls resolved; nothing is folded.
[[nodiscard]] numerics::ExpressionTree Resolved(numerics::ExpressionTree tree);

/// Whether both have the same bits or both are NaN.
[[nodiscard]] bool SameValue(double a, double b);

}  // namespace morvelan::test
