// Equilibria of a material from two conditions.

#include <algorithm>

#include "host/material/MaterialState.h"
#include "host/objects/HostError.h"

namespace morvelan::host {
namespace {

bool IsEnergy(Property property) {
  return property == Property::kEnthalpy || property == Property::kEnthalpyF || property == Property::kEntropy ||
         property == Property::kEntropyF;
}

bool IsEntropy(Property property) { return property == Property::kEntropy || property == Property::kEntropyF; }

/// Temperature or pressure first, as every flash that exists has one of them.
void Order(FlashCondition& first, FlashCondition& second) {
  if (second.property == Property::kTemperature || second.property == Property::kPressure)
    if (first.property != Property::kPressure) std::swap(first, second);
}

}  // namespace

void MaterialState::CheckConditions(FlashCondition first, FlashCondition second) {
  Order(first, second);
  const bool atT = first.property == Property::kTemperature;
  const bool atP = first.property == Property::kPressure;
  const bool both = atP && second.property == Property::kTemperature;
  const bool energy = IsEnergy(second.property) && (atP || (atT && !IsEntropy(second.property)));
  const bool fraction = second.property == Property::kPhaseFraction && (atT || atP);
  if (!both && !energy && !fraction)
    throw HostError(kECapeLimitedImpl, "an equilibrium at given " + NameOf({first.property}) + " and " +
                                           NameOf({second.property}) + " is not implemented");
}

double MaterialState::ConditionValue(FlashCondition condition) const {
  if (condition.phase) {
    const double fraction = OfPhase(*condition.phase, {Property::kPhaseFraction}, Basis::kMole).front();
    return *condition.phase == PhaseKind::kVapor ? fraction : 1.0 - fraction;
  }
  const double value =
      OverallScalar(condition.property, NeedsBasis({condition.property}) ? Basis::kMole : Basis::kNone);
  if (condition.property == Property::kEnthalpyF) return value - package->FormationEnthalpy(OverallComposition());
  if (condition.property == Property::kEntropyF) return value - package->FormationEntropy(OverallComposition());
  return value;
}

Equilibrium MaterialState::Solve(FlashCondition first, FlashCondition second) const {
  const double value1 = ConditionValue(first);
  const double value2 = ConditionValue(second);
  const std::vector<double> z = OverallComposition();
  if (first.property == Property::kTemperature) {
    if (second.property == Property::kPhaseFraction) return package->FlashTVF(value1, value2, z);
    return package->FlashTH(value1, value2, z);
  }
  if (second.property == Property::kTemperature) return package->FlashTP(value2, value1, z);
  if (second.property == Property::kPhaseFraction) return package->FlashPVF(value1, value2, z);
  return IsEntropy(second.property) ? package->FlashPS(value1, value2, z) : package->FlashPH(value1, value2, z);
}

void MaterialState::Flash(FlashCondition first, FlashCondition second) {
  CheckConditions(first, second);
  Order(first, second);
  for (const PhaseKind kind : SupportedPhases())
    if (!SlotOf(kind).allowed)
      throw HostError(kECapeLimitedImpl,
                      std::string("an equilibrium without phase \"") + PhaseName(kind) +
                          "\" is not implemented: declare all phases that the material supports as present");
  Accept(Solve(first, second), first, second);
}

void MaterialState::Accept(const Equilibrium& equilibrium, FlashCondition first, FlashCondition second) {
  const auto stays = [&](const PropertyId& id) {
    const bool isCondition = id == PropertyId{first.property} || id == PropertyId{second.property};
    return id == PropertyId{Property::kFraction} || id == PropertyId{Property::kTotalFlow} || isCondition;
  };
  std::erase_if(overall, [&](const auto& entry) { return !stays(entry.first); });
  overall[{Property::kTemperature}] = {{equilibrium.T}, Basis::kNone, true};
  overall[{Property::kPressure}] = {{equilibrium.P}, Basis::kNone, true};
  slots = {};
  for (const Phase& phase : equilibrium.phases) {
    PhaseSlot& slot = SlotOf(phase.kind);
    slot.present = true;
    slot.status = PhaseStatus::kAtEquilibrium;
    slot.values[{Property::kTemperature}] = {{equilibrium.T}, Basis::kNone, false};
    slot.values[{Property::kPressure}] = {{equilibrium.P}, Basis::kNone, false};
    slot.values[{Property::kPhaseFraction}] = {{phase.fraction}, Basis::kMole, false};
    slot.values[{Property::kFraction}] = {phase.x, Basis::kMole, false};
  }
}

}  // namespace morvelan::host
