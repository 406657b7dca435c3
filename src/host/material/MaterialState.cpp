#include "host/material/MaterialState.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <set>
#include <tuple>

#include "host/material/PhaseProperties.h"
#include "host/objects/HostError.h"

namespace morvelan::host {
namespace {

constexpr PhaseKind kPhases[] = {PhaseKind::kVapor, PhaseKind::kLiquid};

bool IsState(Property property) {
  return property == Property::kTemperature || property == Property::kPressure || property == Property::kFraction ||
         property == Property::kPhaseFraction;
}

}  // namespace

const char* PhaseName(PhaseKind kind) { return kind == PhaseKind::kVapor ? "Vapor" : "Liquid"; }

MaterialState::MaterialState(std::shared_ptr<const PropertyPackage> thermodynamics)
    : package(std::move(thermodynamics)), overall(*package, "Overall"), slots(EmptySlots()) {}

MaterialState::PhaseSlots MaterialState::EmptySlots() const {
  return {{{PropertyValues(*package, PhaseName(kPhases[0]))}, {PropertyValues(*package, PhaseName(kPhases[1]))}}};
}

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
  const Dimension dimension = InfoOf(id.property).dimension;
  const bool amount = dimension == Dimension::kAmount || dimension == Dimension::kFractions;
  for (const double value : values)
    if ((positive && value <= 0) || (amount && value < 0))
      throw HostError(kECapeOutOfBounds, "property " + name + " must " + (positive ? "be above 0" : "not be negative") +
                                             ", " + std::to_string(value) + " given");
}

void MaterialState::SetOverall(PropertyId id, Basis basis, std::vector<double> values) {
  CheckValues(id, values);
  if (id.property == Property::kPhaseFraction)
    throw HostError(kECapeInvalidArgument, "property phaseFraction belongs to a phase, not to \"Overall\"");
  if (id.property == Property::kFlow)
    SetCompoundFlows(basis, std::move(values));
  else
    overall.Give(id, basis, std::move(values));
  DropEquilibrium();
}

void MaterialState::SetCompoundFlows(Basis basis, std::vector<double> flows) {
  for (std::size_t i = 0; basis == Basis::kMass && i < flows.size(); ++i)
    flows[i] /= 0.001 * package->CompoundAt(i).molecularWeight;
  const double total = std::accumulate(flows.begin(), flows.end(), 0.0);
  overall.Give({Property::kTotalFlow}, Basis::kMole, {total});
  if (total == 0) return;  // a stream without flow keeps the composition that was set
  for (double& flow : flows) flow /= total;
  overall.Give({Property::kFraction}, Basis::kMole, std::move(flows));
}

void MaterialState::SetPhase(PhaseKind kind, PropertyId id, Basis basis, std::vector<double> values) {
  CheckPhase(kind);
  CheckValues(id, values);
  if (InfoOf(id.property).dimension == Dimension::kAmount)
    throw HostError(kECapeLimitedImpl, "the flow of a phase follows from its phaseFraction and can't be set");
  if (id.property == Property::kPhaseFraction && basis == Basis::kMass)
    throw HostError(kECapeLimitedImpl, "property phaseFraction can be set on basis \"Mole\" only");
  PropertyValues& ofPhase = SlotOf(kind).values;
  if (IsState(id.property)) {
    const auto isOutdated = [](PropertyId stored, bool isGiven) { return !isGiven && !IsState(stored.property); };
    ofPhase.Forget(isOutdated);
    overall.Forget(isOutdated);
  }
  ofPhase.Give(id, basis, std::move(values));
}

/// The flow of each compound in a phase, or their sum. `share` is that of the phase in all moles.
std::vector<double> MaterialState::Flow(const PropertyValues& from, Property property, Basis basis,
                                        double share) const {
  const double total = share * overall.Read({Property::kTotalFlow}, Basis::kMole).front();
  std::vector<double> flows = from.Composition();
  for (std::size_t i = 0; i < flows.size(); ++i)
    flows[i] *= total * (basis == Basis::kMass ? 0.001 * package->CompoundAt(i).molecularWeight : 1.0);
  if (property == Property::kFlow) return flows;
  return {std::accumulate(flows.begin(), flows.end(), 0.0)};
}

std::vector<double> MaterialState::Overall(PropertyId id, Basis basis) const {
  return id.property == Property::kFlow ? Flow(overall, id.property, basis, 1.0) : overall.Read(id, basis);
}

double MaterialState::OverallScalar(Property property, Basis basis) const { return Overall({property}, basis).front(); }

std::vector<double> MaterialState::OfPhase(PhaseKind kind, PropertyId id, Basis basis) const {
  CheckPhase(kind);
  const PropertyValues& values = SlotOf(kind).values;
  const auto phaseFraction = [&] { return values.Read({Property::kPhaseFraction}, Basis::kMole).front(); };
  if (InfoOf(id.property).dimension == Dimension::kAmount) return Flow(values, id.property, basis, phaseFraction());
  if (id.property != Property::kPhaseFraction) return values.Read(id, basis);
  if (basis != Basis::kMass) return {phaseFraction()};
  const double molar = phaseFraction();
  const double M = package->MeanMolecularWeight(values.Composition());
  return {molar * (M / package->MeanMolecularWeight(OverallComposition()))};
}

void MaterialState::DropEquilibrium() {
  overall.ForgetResults();
  for (PhaseSlot& slot : slots) {
    slot.present = false;
    slot.status = PhaseStatus::kUnknown;
    slot.values.ForgetResults();
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
  PropertyValues& values = SlotOf(kind).values;
  const auto condition = [&](Property property) {
    return values.Has({property}) || !overallConditions ? values.Read({property}).front() : OverallScalar(property);
  };
  const double T = condition(Property::kTemperature);
  const double P = condition(Property::kPressure);
  PhaseProperties properties(*package, kind, T, P, values.Composition());
  for (const PropertyId id : ids) values.StoreResult(id, properties.Values(id));
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
    const bool isWeight = id.property == Property::kMolecularWeight;
    overall.StoreResult(
        id, {isWeight ? 1000.0 * package->MeanMolecularWeight(OverallComposition()) : MolarValue(molar, id.property)});
  }
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
  const bool isFraction = second.property == Property::kPhaseFraction;
  if (first.property == Property::kTemperature)
    return isFraction ? package->FlashTVF(value1, value2, z) : package->FlashTH(value1, value2, z);
  if (isFraction) return package->FlashPVF(value1, value2, z);
  if (second.property == Property::kTemperature) return package->FlashTP(value2, value1, z);
  return IsEntropy(second.property) ? package->FlashPS(value1, value2, z) : package->FlashPH(value1, value2, z);
}

void MaterialState::Flash(FlashCondition first, FlashCondition second) {
  std::tie(first, second) = OrderConditions(first, second);
  for (const PhaseKind kind : SupportedPhases())
    if (!SlotOf(kind).allowed)
      throw HostError(kECapeLimitedImpl,
                      std::string("an equilibrium without phase \"") + PhaseName(kind) +
                          "\" is not implemented: declare all phases that the material supports as present");
  Accept(Solve(first, second), first, second);
}

void MaterialState::Accept(const Equilibrium& equilibrium, FlashCondition first, FlashCondition second) {
  overall.Forget([&](PropertyId id, bool) {
    return id.derivative != Derivative::kNone ||
           (id.property != Property::kFraction && id.property != Property::kTotalFlow &&
            id.property != first.property && id.property != second.property);
  });
  overall.Give({Property::kTemperature}, Basis::kNone, {equilibrium.T});
  overall.Give({Property::kPressure}, Basis::kNone, {equilibrium.P});
  slots = EmptySlots();
  for (const Phase& phase : equilibrium.phases) {
    PhaseSlot& slot = SlotOf(phase.kind);
    slot.present = true;
    slot.status = PhaseStatus::kAtEquilibrium;
    slot.values.StoreResult({Property::kTemperature}, {equilibrium.T});
    slot.values.StoreResult({Property::kPressure}, {equilibrium.P});
    slot.values.StoreResult({Property::kPhaseFraction}, {phase.fraction});
    slot.values.StoreResult({Property::kFraction}, phase.x);
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
  const auto insert = [&](PropertyId id) { names.insert(NameOf(id)); };
  overall.ForEach(insert);
  for (const PhaseSlot& slot : slots) slot.values.ForEach(insert);
  return {names.begin(), names.end()};
}

void MaterialState::RemoveResults(std::span<const PropertyId> ids) {
  const auto unwanted = [&](PropertyId id, bool isGiven) {
    return !isGiven && !IsState(id.property) && (ids.empty() || std::ranges::find(ids, id) != ids.end());
  };
  overall.Forget(unwanted);
  for (PhaseSlot& slot : slots) slot.values.Forget(unwanted);
}

}  // namespace morvelan::host
