#pragma once

#include <memory>
#include <string_view>

#include "numerics/formula/Evaluation.h"
#include "numerics/formula/NamedMutex.h"

namespace morvelan::numerics {

/// Evaluates what a user typed for a number: a formula without variables, such as 2*PI*0.5^2, in UTF-8. One
/// entry is evaluated at a time, over all processes.
[[nodiscard]] Evaluation EvaluateNumericEntry(std::string_view text);

/// The same under the mutex that is given, which may be null when it could not be made.
[[nodiscard]] Evaluation EvaluateNumericEntry(std::string_view text, std::unique_ptr<NamedMutex> mutex);

}  // namespace morvelan::numerics
