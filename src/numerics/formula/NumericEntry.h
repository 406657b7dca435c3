#pragma once

#include <memory>
#include <string_view>

#include "numerics/formula/Evaluation.h"
#include "numerics/formula/NamedMutex.h"

namespace morvelan::numerics {

/// Evaluates what a user typed for a number: a formula without variables, such as 2*PI*0.5^2, in UTF-8. One
/// entry is evaluated at a time, over all processes that share the mutex. Throws nothing for want of memory:
/// that is a failure like others.
[[nodiscard]] Evaluation EvaluateNumericEntry(std::string_view text);

/// The same under the mutex that is given, which may be null when it could not be made. Expects the default
/// floating-point environment, and throws std::bad_alloc when memory runs out.
[[nodiscard]] Evaluation EvaluateNumericEntry(std::string_view text, std::unique_ptr<NamedMutex> mutex);

}  // namespace morvelan::numerics
