#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <string>

#include "numerics/formula/ExpressionTree.h"

namespace morvelan::test {

/// A formula that means exactly the tree: everything in parentheses, numbers written so that they are read
/// without rounding. The tree's calls may be unresolved.
[[nodiscard]] std::string TreeText(const numerics::ExpressionTree& tree, std::span<const std::string> variables);

/// A formula of integers, divisions and powers of two whose value is exactly `value`, which is finite.
[[nodiscard]] std::string ExactText(double value);

/// The tree with its calls resolved and nothing else done.
[[nodiscard]] numerics::ExpressionTree Resolved(numerics::ExpressionTree tree);

/// The same bits, or both not a number.
[[nodiscard]] bool SameValue(double a, double b);

}  // namespace morvelan::test
