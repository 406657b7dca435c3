#pragma once

#include <limits>
#include <new>
#include <string>
#include <utility>

namespace morvelan::numerics {

/// The value of an expression, or the reason why it has none.
struct Evaluation {
  double value = std::numeric_limits<double>::quiet_NaN();
  std::string failure;  // empty on success

  [[nodiscard]] bool Succeeded() const { return failure.empty(); }
};

[[nodiscard]] inline Evaluation FailedEvaluation(std::string reason) {
  Evaluation evaluation;
  evaluation.failure = std::move(reason);
  return evaluation;
}

/// Returns the result of `operation`. If memory runs out, the result's failure is `message`, or "out of memory" if
/// there is not even enough memory for `message`: a string holds so few characters without allocating.
template <class Operation>
[[nodiscard]] auto WithinMemory(const char* message, const Operation& operation) {
  try {
    return operation();
  } catch (const std::bad_alloc&) {
    decltype(operation()) result;
    try {
      result.failure = message;
    } catch (const std::bad_alloc&) {
      result.failure = "out of memory";
    }
    return result;
  }
}

}  // namespace morvelan::numerics
