#pragma once

#include <string>
#include <vector>

#include "errors/LazyText.h"
#include "material/Flashable.h"
#include "material/PhaseLabel.h"

namespace morvelan {

/// A copy of a feed's material, which a unit brings to states of its choosing while it looks for the one that
/// it leaves: neither feed nor product know of it. Operations with an `opening` begin a failure's text with
/// it.
class TrialMaterial final : public Flashable {
 public:
  enum class Basis { kMole, kMass };

  /// A copy that a port made, of a number of compounds.
  TrialMaterial(com::Ref<IDispatch> portCopy, std::string portOfCopy, material::OverallEmulation& overallEmulation,
                const material::Thermo& generation, std::size_t compoundCount);

  void FlashAtTemperature(const StreamState& state) override;
  void FlashAtEnthalpy(const StreamState& state, double enthalpy, const Property& which = property::kEnthalpy) override;
  void FlashAtVaporFraction(const StreamState& state, double fraction) override;
  [[nodiscard]] double Temperature() override;
  [[nodiscard]] double MolarProperty(const Property& which) override;
  [[nodiscard]] std::vector<PhaseFraction> Phases() override;

  /// Makes it one phase in the state, at equilibrium or not.
  void SetSinglePhase(const StreamState& state, const PhaseLabel& phase);
  /// Replaces `fractions` by those of a phase, one per compound.
  void ReadFractions(const PhaseLabel& phase, Basis basis, std::vector<double>& fractions, LazyText opening);
  /// Calculates a property of a phase that is one finite number. Failures to get it begin with `opening`,
  /// other values than one finite number with `invalid`.
  [[nodiscard]] double PhaseProperty(const Property& which, const PhaseLabel& phase, Basis basis, LazyText opening,
                                     LazyText invalid);

  /// For those who pass the material on to others of the host.
  [[nodiscard]] const com::Ref<IDispatch>& Object() const { return copy; }

 private:
  [[nodiscard]] material::PortMaterial Material() const { return {copy, portName, emulation}; }

  const material::Thermo& thermo;
  material::OverallEmulation& emulation;
  std::string portName;
  com::Ref<IDispatch> copy;
  std::size_t count;
};

}  // namespace morvelan
