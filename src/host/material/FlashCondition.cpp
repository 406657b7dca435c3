#include "host/material/FlashCondition.h"

#include "host/objects/HostError.h"

namespace morvelan::host {

bool IsEntropy(Property property) { return property == Property::kEntropy || property == Property::kEntropyF; }

std::pair<FlashCondition, FlashCondition> OrderConditions(FlashCondition first, FlashCondition second) {
  const auto isTemperature = [](FlashCondition condition) { return condition.property == Property::kTemperature; };
  const auto isPressure = [](FlashCondition condition) { return condition.property == Property::kPressure; };
  if ((isTemperature(second) || isPressure(second)) && !isPressure(first)) std::swap(first, second);

  const bool atT = isTemperature(first), atP = isPressure(first);
  const bool isEnthalpy = second.property == Property::kEnthalpy || second.property == Property::kEnthalpyF;
  const bool isFraction = second.property == Property::kPhaseFraction;
  if (!(atP && (isTemperature(second) || IsEntropy(second.property))) && !((atT || atP) && (isEnthalpy || isFraction)))
    throw HostError(kECapeLimitedImpl, "an equilibrium at given " + NameOf({first.property}) + " and " +
                                           NameOf({second.property}) + " is not implemented");
  return {first, second};
}

}  // namespace morvelan::host
