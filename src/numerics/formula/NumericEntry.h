#pragma once

#include <memory>
#include <string_view>

#include "numerics/formula/Evaluation.h"

namespace morvelan::numerics {

/// Evaluates what a user typed for a number: a formula without variables, such as 2*PI*0.5^2, in UTF-8. One entry is
/// evaluated at a time, over all processes that share the mutex. If memory runs out, that is a failure like others; no
/// exception is thrown.
[[nodiscard]] Evaluation EvaluateNumericEntry(std::string_view text);

/// A mutex that all threads of several processes share: on Linux those of a user with the same folder for temporary
/// files, on Windows those of a session. The end of its owner, however sudden, releases it, and the destructor closes
/// it.
class NamedMutex {
 public:
  NamedMutex() = default;
  NamedMutex(const NamedMutex&) = delete;
  NamedMutex& operator=(const NamedMutex&) = delete;
  virtual ~NamedMutex() = default;

  /// Waits without limit until it is obtained; false if that fails.
  [[nodiscard]] virtual bool Wait() = 0;

  /// Must be called once after each Wait that succeeded.
  virtual void Release() = 0;
};

/// Makes or opens the mutex of numeric entries, without obtaining it; null if that fails.
[[nodiscard]] std::unique_ptr<NamedMutex> OpenParseMutex();

/// Evaluates an entry under the given mutex, which is null if it could not be made. Expects the default floating-point
/// environment, and throws std::bad_alloc if memory runs out.
[[nodiscard]] Evaluation EvaluateNumericEntry(std::string_view text, std::unique_ptr<NamedMutex> mutex);

}  // namespace morvelan::numerics
