#pragma once

#include <limits>
#include <string>
#include <utility>

namespace morvelan::numerics {

/// The value of an expression, or why it has none.
struct Evaluation {
  double value = std::numeric_limits<double>::quiet_NaN();
  std::string failure;  // empty on success

  [[nodiscard]] bool Succeeded() const { return failure.empty(); }
};

[[nodiscard]] inline Evaluation FailedEvaluation(std::string why) {
  Evaluation evaluation;
  evaluation.failure = std::move(why);
  return evaluation;
}

}  // namespace morvelan::numerics
