#pragma once

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/material/FlashCondition.h"
#include "host/material/PropertyValues.h"

namespace morvelan::host {

/// The standard's numbers for how a phase came to be present.
enum class PhaseStatus { kUnknown = 0, kAtEquilibrium = 1, kEstimates = 2 };

struct PresentPhase {
  PhaseKind kind;
  PhaseStatus status;
};

/// What a material object holds, apart from the interfaces through which it is seen: the overall state, the phases
/// present and their values.
///
/// Values are given by a client or calculated. A change of the overall state drops the phases present and all
/// calculated values. Given values stay, so that a client can give the conditions of a flash in any order. Failures are
/// HostError: ECapeThrmPropertyNotAvailable for a value that is not there.
class MaterialState {
 public:
  explicit MaterialState(std::shared_ptr<const PropertyPackage> thermodynamics);

  [[nodiscard]] const PropertyPackage& Package() const { return *package; }
  [[nodiscard]] const std::shared_ptr<const PropertyPackage>& SharedPackage() const { return package; }
  /// The phases that the package knows: vapor, then liquid.
  [[nodiscard]] std::span<const PhaseKind> SupportedPhases() const;

  void SetOverall(PropertyId id, Basis basis, std::vector<double> values);
  [[nodiscard]] std::vector<double> Overall(PropertyId id, Basis basis) const;
  void SetPhase(PhaseKind kind, PropertyId id, Basis basis, std::vector<double> values);
  [[nodiscard]] std::vector<double> OfPhase(PhaseKind kind, PropertyId id, Basis basis) const;

  /// One overall value. Throws when it is not set.
  [[nodiscard]] double OverallScalar(Property property, Basis basis = Basis::kNone) const;
  [[nodiscard]] std::vector<double> OverallComposition() const { return overall.Composition(); }

  [[nodiscard]] std::vector<PresentPhase> PresentPhases() const;
  /// Declares which phases are present. The next equilibrium may have no others.
  void DeclarePhases(std::span<const PresentPhase> phases);
  /// The state is no equilibrium any longer.
  void DropEquilibrium();

  /// Calculates and stores properties of a phase at its own temperature, pressure and composition. With
  /// `overallConditions` the overall temperature and pressure stand for those that the phase does not have.
  void CalculatePhase(PhaseKind kind, std::span<const PropertyId> ids, bool overallConditions);
  /// Calculates and stores properties of all phases together. Needs an equilibrium.
  void CalculateOverall(std::span<const PropertyId> ids);
  /// Brings the material to equilibrium. On failure nothing changes.
  void Flash(FlashCondition first, FlashCondition second);

  /// The phases present as an equilibrium; nothing when they are not at equilibrium.
  [[nodiscard]] std::optional<Equilibrium> CurrentEquilibrium() const;

  /// Names of the values that are there, overall and of phases, each once.
  [[nodiscard]] std::vector<std::string> StoredProperties() const;
  /// Forgets calculated values; all of them when `ids` is empty.
  void RemoveResults(std::span<const PropertyId> ids);
  /// Forgets everything.
  void Clear() { *this = MaterialState(package); }

 private:
  struct PhaseSlot {
    PropertyValues values;
    bool present = false;
    bool allowed = true;
    PhaseStatus status = PhaseStatus::kUnknown;
  };
  using PhaseSlots = std::array<PhaseSlot, 2>;

  [[nodiscard]] PhaseSlots EmptySlots() const;
  [[nodiscard]] PhaseSlot& SlotOf(PhaseKind kind) { return slots[static_cast<std::size_t>(kind)]; }
  [[nodiscard]] const PhaseSlot& SlotOf(PhaseKind kind) const { return slots[static_cast<std::size_t>(kind)]; }
  void CheckPhase(PhaseKind kind) const;
  void CheckValues(PropertyId id, std::span<const double> values) const;
  void SetCompoundFlows(Basis basis, std::vector<double> flows);
  [[nodiscard]] std::vector<double> Flow(const PropertyValues& from, Property property, Basis basis,
                                         double share) const;
  [[nodiscard]] double ConditionValue(FlashCondition condition) const;
  [[nodiscard]] Equilibrium Solve(FlashCondition first, FlashCondition second) const;
  void Accept(const Equilibrium& equilibrium, FlashCondition first, FlashCondition second);

  std::shared_ptr<const PropertyPackage> package;
  PropertyValues overall;
  PhaseSlots slots;
};

/// "Vapor" or "Liquid".
[[nodiscard]] const char* PhaseName(PhaseKind kind);

}  // namespace morvelan::host
