#pragma once

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "host/material/Property.h"
#include "host/thermo/PropertyPackage.h"

namespace morvelan::host {

class PhaseProperties;

/// Whether a phase is there because an equilibrium says so; the numbers are the standard's.
enum class PhaseStatus { kUnknown = 0, kAtEquilibrium = 1, kEstimates = 2 };

struct PresentPhase {
  PhaseKind kind;
  PhaseStatus status;
};

/// One of the two conditions of an equilibrium: an overall property, or the fraction of a phase.
struct FlashCondition {
  Property property;
  std::optional<PhaseKind> phase = {};
};

/// What a material object holds, apart from the interfaces through which it is seen: the overall state, the
/// phases present and their values.
///
/// Values are given by a client or calculated. A change of the overall state drops the phases present and all
/// calculated values; given ones stay, so that a client can give the conditions of a flash in any order.
/// Failures are HostError: ECapeThrmPropertyNotAvailable for a value that is not there.
class MaterialState {
 public:
  explicit MaterialState(std::shared_ptr<const PropertyPackage> thermodynamics);

  [[nodiscard]] const PropertyPackage& Package() const { return *package; }
  [[nodiscard]] const std::shared_ptr<const PropertyPackage>& SharedPackage() const { return package; }
  /// The phases that the package knows: vapour, then liquid.
  [[nodiscard]] std::span<const PhaseKind> SupportedPhases() const;

  void SetOverall(PropertyId id, Basis basis, std::vector<double> values);
  [[nodiscard]] std::vector<double> Overall(PropertyId id, Basis basis) const;
  void SetPhase(PhaseKind kind, PropertyId id, Basis basis, std::vector<double> values);
  [[nodiscard]] std::vector<double> OfPhase(PhaseKind kind, PropertyId id, Basis basis) const;

  /// One overall value. Throws when it is not set.
  [[nodiscard]] double OverallScalar(Property property, Basis basis = Basis::kNone) const;
  [[nodiscard]] std::vector<double> OverallComposition() const;

  [[nodiscard]] std::vector<PresentPhase> PresentPhases() const;
  /// Says which phases are present, and that the next equilibrium may have no others.
  void DeclarePhases(std::span<const PresentPhase> phases);
  /// The state is no equilibrium any longer.
  void DropEquilibrium();

  /// Calculates and stores properties of a phase, from its own temperature, pressure and composition; from
  /// the overall temperature and pressure where it has none of its own and `overallConditions` allows it.
  void CalculatePhase(PhaseKind kind, std::span<const PropertyId> ids, bool overallConditions);
  /// Calculates and stores properties of all phases together. Needs an equilibrium.
  void CalculateOverall(std::span<const PropertyId> ids);
  /// Brings the material to equilibrium. On failure nothing changes.
  void Flash(FlashCondition first, FlashCondition second);
  /// Throws HostError (ECapeLimitedImpl) for a pair of conditions that cannot be flashed.
  static void CheckConditions(FlashCondition first, FlashCondition second);

  /// The phases present as an equilibrium; nothing when they are not at equilibrium.
  [[nodiscard]] std::optional<Equilibrium> CurrentEquilibrium() const;

  /// Names of the values that are there, overall and of phases, each once.
  [[nodiscard]] std::vector<std::string> StoredProperties() const;
  /// Forgets calculated values; all of them when `ids` is empty.
  void RemoveResults(std::span<const PropertyId> ids);
  void Clear();

 private:
  struct StoredValue {
    std::vector<double> values;
    Basis basis = Basis::kNone;
    bool given = false;
  };
  using Values = std::map<PropertyId, StoredValue>;
  struct PhaseSlot {
    bool present = false;
    bool allowed = true;
    PhaseStatus status = PhaseStatus::kUnknown;
    Values values;
  };

  [[nodiscard]] PhaseSlot& SlotOf(PhaseKind kind) { return slots[static_cast<std::size_t>(kind)]; }
  [[nodiscard]] const PhaseSlot& SlotOf(PhaseKind kind) const { return slots[static_cast<std::size_t>(kind)]; }
  void CheckPhase(PhaseKind kind) const;
  void CheckValues(PropertyId id, std::span<const double> values) const;
  void SetComponentFlows(const std::vector<double>& flows);
  void Store(Values& target, PropertyId id, Basis basis, std::vector<double> values) const;
  [[nodiscard]] std::vector<double> Read(const Values& from, PropertyId id, Basis basis, const char* place) const;
  [[nodiscard]] std::vector<double> Flow(const Values& from, PropertyId id, Basis basis, double share,
                                         const char* place) const;
  [[nodiscard]] double ConditionValue(FlashCondition condition) const;
  [[nodiscard]] Equilibrium Solve(FlashCondition first, FlashCondition second) const;
  void Accept(const Equilibrium& equilibrium, FlashCondition first, FlashCondition second);
  [[nodiscard]] std::vector<double> ToMoleFractions(std::vector<double> massFractions) const;
  [[nodiscard]] std::vector<double> ToMassFractions(std::vector<double> moleFractions) const;

  std::shared_ptr<const PropertyPackage> package;
  Values overall;
  std::array<PhaseSlot, 2> slots;
};

/// "Vapor" or "Liquid".
[[nodiscard]] const char* PhaseName(PhaseKind kind);

}  // namespace morvelan::host
