#pragma once

#include <optional>
#include <utility>

#include "host/material/Property.h"
#include "host/thermo/Equilibrium.h"

namespace morvelan::host {

/// One of the two conditions of an equilibrium: an overall property, or the fraction of a phase.
struct FlashCondition {
  Property property;
  std::optional<PhaseKind> phase = {};
};

[[nodiscard]] bool IsEntropy(Property property);

/// The conditions with temperature or pressure first, and pressure before temperature. Throws HostError
/// (ECapeLimitedImpl) for two conditions that cannot be flashed.
[[nodiscard]] std::pair<FlashCondition, FlashCondition> OrderConditions(FlashCondition first, FlashCondition second);

}  // namespace morvelan::host
