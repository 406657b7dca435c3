#pragma once

#include <span>

#include "numerics/formula/Evaluation.h"
#include "numerics/formula/ExpressionTree.h"

namespace morvelan::numerics {

/// Evaluates a tree whose calls are resolved, with a value per variable, node by node; the first fault is the
/// failure. Expects the default floating-point environment.
[[nodiscard]] Evaluation EvaluatePlainly(const ExpressionTree& tree, std::span<const double> values);

/// The same for a tree without variables, with the domain rules of numeric entries before every operation.
[[nodiscard]] Evaluation EvaluateChecked(const ExpressionTree& tree);

/// The evaluation of a whole expression: a value that is no finite number is a failure.
[[nodiscard]] Evaluation RefuseNonFinite(Evaluation evaluation);

}  // namespace morvelan::numerics
