#pragma once

#include <string>
#include <vector>

#include "material/Thermo.h"

namespace morvelan {

/// A copy of the feed's material, which a reactor brings to states of its choosing while it looks for the one
/// that it leaves: neither feed nor product know of it. All operations throw Failure; those with an `opening`
/// begin the failure's text with it.
class TrialMaterial {
 public:
  /// A copy that a port made, of a number of compounds.
  TrialMaterial(com::Ref<IDispatch> portCopy, std::string portOfCopy, material::OverallEmulation& overallEmulation,
                bool usesThermo11, std::size_t compoundCount);

  [[nodiscard]] const com::Ref<IDispatch>& Object() const { return copy; }

  /// Brings it to equilibrium at the state's temperature and pressure.
  void FlashAtTemperature(const material::StreamState& state);
  /// Brings it to equilibrium at the state's pressure and a molar enthalpy [J/mol], which is `enthalpy` or
  /// `enthalpyF`; its temperature [K] is a result.
  void FlashAtEnthalpy(const material::StreamState& state, double enthalpy, com::Name property);
  /// Makes it one phase in the state, at equilibrium or not.
  void SetSinglePhase(const material::StreamState& state, const std::string& phase);

  /// Fractions of a phase on "Mole" or "Mass" basis, one per compound.
  [[nodiscard]] std::vector<double> Fractions(const std::string& phase, com::Name basis, const std::string& opening);
  /// Calculates a property of a phase, or of the whole ("Overall"), that is one finite number. Failures to
  /// get it begin with `opening`, other values than one finite number with `invalid`.
  [[nodiscard]] double Property(com::Name property, const std::string& phase, com::Name basis,
                                const std::string& opening, const std::string& invalid);
  [[nodiscard]] double Temperature();  // [K]
  /// The phases of which there is some.
  [[nodiscard]] std::vector<std::string> PresentPhases();

 private:
  [[nodiscard]] material::PortMaterial Material() const { return {copy, portName, emulation}; }

  const material::Thermo& thermo;
  material::OverallEmulation& emulation;
  std::string portName;
  com::Ref<IDispatch> copy;
  std::size_t count;
};

}  // namespace morvelan
