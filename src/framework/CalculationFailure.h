#pragma once

#include <string>
#include <utility>

#include "errors/Failure.h"

namespace morvelan {

/// A failure of a unit's calculation, with a title of its own.
[[nodiscard]] inline Failure CalculationFailure(std::string title, std::string description) {
  return Failure(UnitError{std::move(title), std::move(description), "Calculate", "ICapeUnit"});
}

/// The same where the description is the title.
[[nodiscard]] inline Failure CalculationFailure(std::string description) {
  return Failure(std::move(description), "Calculate", "ICapeUnit");
}

/// Runs a step of a unit's calculation: its failure becomes the calculation's.
template <class Step>
auto InCalculation(Step&& step) {
  return ForwardError("Calculate", "ICapeUnit", std::forward<Step>(step));
}

}  // namespace morvelan
