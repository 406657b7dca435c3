#include "host/material/MaterialState.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <set>

#include "host/material/PhaseProperties.h"
#include "host/objects/HostError.h"

namespace morvelan::host {
namespace {

constexpr PhaseKind kPhases[] = {PhaseKind::kVapor, PhaseKind::kLiquid};

bool IsState(Property property) {
  return property == Property::kTemperature || property == Property::kPressure || property == Property::kFraction ||
         property == Property::kPhaseFraction;
}

/// Removes the values that `unwanted(id, value)` names.
template <class Values, class Unwanted>
void Erase(Values& values, Unwanted unwanted) {
  std::erase_if(values, [&](const auto& entry) { return unwanted(entry.first, entry.second); });
}

}  // namespace

const char* PhaseName(PhaseKind kind) { return kind == PhaseKind::kVapor ? "Vapor" : "Liquid"; }

MaterialState::MaterialState(std::shared_ptr<const PropertyPackage> thermodynamics)
    : package(std::move(thermodynamics)) {}

std::span<const PhaseKind> MaterialState::SupportedPhases() const {
  return std::span(kPhases).first(package->HasLiquid() ? 2 : 1);
}

void MaterialState::CheckPhase(PhaseKind kind) const {
  if (kind == PhaseKind::kLiquid && !package->HasLiquid())
    throw HostError(kECapeInvalidArgument, "phase \"Liquid\" does not exist in this material");
}

void MaterialState::CheckValues(PropertyId id, std::span<const double> values) const {
  const std::string name = NameOf(id);
  const std::size_t expected = CountOf(id, package->CompoundCount());
  if (values.size() != expected)
    throw HostError(kECapeInvalidArgument, "property " + name + " takes " + std::to_string(expected) + " values, " +
                                               std::to_string(values.size()) + " given");
  for (const double value : values)
    if (!std::isfinite(value) || value == std::numeric_limits<double>::lowest())
      throw HostError(kECapeInvalidArgument, "property " + name + " is given a value that is not set");
  if (id.derivative != Derivative::kNone) return;
  const bool positive = id.property == Property::kTemperature || id.property == Property::kPressure;
  const bool amount =
      InfoOf(id.property).dimension == Dimension::kAmount || InfoOf(id.property).dimension == Dimension::kFractions;
  for (const double value : values)
    if ((positive && value <= 0) || (amount && value < 0))
      throw HostError(kECapeOutOfBounds, "property " + name + " must " + (positive ? "be above 0" : "not be negative") +
                                             ", " + std::to_string(value) + " given");
}

void MaterialState::Store(Values& target, PropertyId id, Basis basis, std::vector<double> values) const {
  if (id.property == Property::kFraction && basis == Basis::kMass) {
    values = ToMoleFractions(std::move(values));
    basis = Basis::kMole;
  }
  target[id] = {std::move(values), basis, true};
}

void MaterialState::SetOverall(PropertyId id, Basis basis, std::vector<double> values) {
  CheckValues(id, values);
  if (id.property == Property::kPhaseFraction)
    throw HostError(kECapeInvalidArgument, "property phaseFraction belongs to a phase, not to \"Overall\"");
  if (id.property == Property::kFlow) {
    for (std::size_t i = 0; basis == Basis::kMass && i < values.size(); ++i)
      values[i] /= 0.001 * package->CompoundAt(i).molecularWeight;
    SetComponentFlows(values);
  } else {
    Store(overall, id, basis, std::move(values));
  }
  DropEquilibrium();
}

void MaterialState::SetComponentFlows(const std::vector<double>& flows) {
  const double total = std::accumulate(flows.begin(), flows.end(), 0.0);
  overall[{Property::kTotalFlow}] = {{total}, Basis::kMole, true};
  if (total == 0) return;  // no flow has no composition of its own: the one that was set stays
  std::vector<double> fractions = flows;
  for (double& fraction : fractions) fraction /= total;
  overall[{Property::kFraction}] = {std::move(fractions), Basis::kMole, true};
}

void MaterialState::SetPhase(PhaseKind kind, PropertyId id, Basis basis, std::vector<double> values) {
  CheckPhase(kind);
  CheckValues(id, values);
  if (InfoOf(id.property).dimension == Dimension::kAmount)
    throw HostError(kECapeLimitedImpl, "the flow of a phase follows from its phaseFraction and can't be set");
  if (id.property == Property::kPhaseFraction && basis == Basis::kMass)
    throw HostError(kECapeLimitedImpl, "property phaseFraction can be set on basis \"Mole\" only");
  PhaseSlot& slot = SlotOf(kind);
  if (IsState(id.property)) {
    const auto isResult = [](const PropertyId& stored, const StoredValue& value) {
      return !value.given && !IsState(stored.property);
    };
    Erase(slot.values, isResult);
    Erase(overall, isResult);
  }
  Store(slot.values, id, basis, std::move(values));
}

void MaterialState::DropEquilibrium() {
  const auto isResult = [](const PropertyId&, const StoredValue& value) { return !value.given; };
  Erase(overall, isResult);
  for (PhaseSlot& slot : slots) {
    slot.present = false;
    slot.status = PhaseStatus::kUnknown;
    Erase(slot.values, isResult);
  }
}

std::vector<PresentPhase> MaterialState::PresentPhases() const {
  std::vector<PresentPhase> present;
  for (const PhaseKind kind : kPhases)
    if (SlotOf(kind).present) present.push_back({kind, SlotOf(kind).status});
  return present;
}

void MaterialState::DeclarePhases(std::span<const PresentPhase> phases) {
  for (const PresentPhase& phase : phases) CheckPhase(phase.kind);
  for (PhaseSlot& slot : slots) slot.present = slot.allowed = false;
  for (const PresentPhase& phase : phases) {
    PhaseSlot& slot = SlotOf(phase.kind);
    slot.present = slot.allowed = true;
    slot.status = phase.status;
  }
}

void MaterialState::CalculatePhase(PhaseKind kind, std::span<const PropertyId> ids, bool overallConditions) {
  CheckPhase(kind);
  PhaseSlot& slot = SlotOf(kind);
  const auto condition = [&](Property property) {
    if (!slot.values.contains({property}) && overallConditions) return OverallScalar(property);
    return Read(slot.values, {property}, Basis::kNone, PhaseName(kind)).front();
  };
  const double T = condition(Property::kTemperature);
  const double P = condition(Property::kPressure);
  PhaseProperties properties(*package, kind, T, P,
                             Read(slot.values, {Property::kFraction}, Basis::kMole, PhaseName(kind)));
  for (const PropertyId id : ids)
    slot.values[id] = {properties.Values(id), NeedsBasis(id) ? Basis::kMole : Basis::kNone, false};
}

void MaterialState::CalculateOverall(std::span<const PropertyId> ids) {
  const auto equilibrium = CurrentEquilibrium();
  if (!equilibrium)
    throw HostError(kECapeBadInvOrder,
                    "the material is not at equilibrium: overall properties need CalcEquilibrium first");
  const MolarProperties molar = package->Overall(*equilibrium);
  for (const PropertyId id : ids) {
    if (!InfoOf(id.property).isCalculatedOverall || id.derivative != Derivative::kNone)
      throw HostError(kECapeLimitedImpl, "property " + NameOf(id) + " is not calculated for \"Overall\"");
    const double value = id.property == Property::kMolecularWeight
                             ? 1000.0 * MeanMolecularWeight(*package, OverallComposition())
                             : MolarValue(molar, id.property);
    overall[id] = {{value}, NeedsBasis(id) ? Basis::kMole : Basis::kNone, false};
  }
}

std::optional<Equilibrium> MaterialState::CurrentEquilibrium() const {
  const auto present = PresentPhases();
  if (present.empty()) return std::nullopt;
  Equilibrium equilibrium{OverallScalar(Property::kTemperature), OverallScalar(Property::kPressure), {}};
  for (const PresentPhase& phase : present) {
    if (phase.status != PhaseStatus::kAtEquilibrium) return std::nullopt;
    equilibrium.phases.push_back({phase.kind, OfPhase(phase.kind, {Property::kPhaseFraction}, Basis::kMole).front(),
                                  OfPhase(phase.kind, {Property::kFraction}, Basis::kMole)});
  }
  return equilibrium;
}

std::vector<std::string> MaterialState::StoredProperties() const {
  std::set<std::string> names;
  for (const auto& [id, value] : overall) names.insert(NameOf(id));
  for (const PhaseSlot& slot : slots)
    for (const auto& [id, value] : slot.values) names.insert(NameOf(id));
  return {names.begin(), names.end()};
}

void MaterialState::RemoveResults(std::span<const PropertyId> ids) {
  const auto unwanted = [&](const PropertyId& id, const StoredValue& value) {
    return !value.given && !IsState(id.property) && (ids.empty() || std::ranges::find(ids, id) != ids.end());
  };
  Erase(overall, unwanted);
  for (PhaseSlot& slot : slots) Erase(slot.values, unwanted);
}

void MaterialState::Clear() {
  overall.clear();
  slots = {};
}

}  // namespace morvelan::host
