#pragma once

#include <string>

#include "numerics/formula/ExpressionTree.h"

namespace morvelan::numerics {

/// Checks a tree from its leaves up, left to right: gives calls the kinds of their functions, and replaces
/// what has constants alone by its value, computed plainly. Returns why the tree is refused, ended by CR LF,
/// or an empty text; a refused tree is of no further use. The only check of a value is that of a divisor for
/// zero.
[[nodiscard]] std::string CheckTree(ExpressionTree& tree);

}  // namespace morvelan::numerics
