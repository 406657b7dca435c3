#pragma once

#include "units/reactors/BaseReactorConstrained.h"
#include "units/reactors/CatalystSpecification.h"
#include "units/reactors/StirredTankEquations.h"

namespace morvelan {

/// Continuously stirred tank: one well mixed volume in which the selected kinetic and equilibrium reactions
/// of the reaction package take place in one phase; at a temperature, with a heat duty or with the heat of an
/// energy stream. The extents [mol/s], and the temperature where it is not given, solve
///
///     extent_r = rate_r * volume       homogeneous kinetic reactions; the catalyst's volume does not count
///     extent_r = rate_r * mass         heterogeneous kinetic reactions, mass of the catalyst
///     ln Q_r - ln K_r = 0              equilibrium reactions
///     H_out = H_in + Q - sum of extent_r dH_r
///
/// with all rates, constants, activities and the enthalpy H_out at the state of the outlet's one phase. What
/// leaves is brought to phase equilibrium at that temperature; other phases than the reactions' are warned
/// of.
class CCSTR final : public BaseReactorConstrained {
 public:
  CCSTR();

  [[nodiscard]] bool ValidateUnit(std::string& message) override;
  void InputsChanged() override;

 protected:
  void ResolveAll() override;
  void React() override;
  [[nodiscard]] bool MayBeUnset(std::size_t position) const override;

 private:
  [[nodiscard]] std::string Phase();
  [[nodiscard]] CatalystSpecification Catalyst();
  [[nodiscard]] std::string FindForeignPhase();
  [[nodiscard]] std::string FindDependence() const;
  [[nodiscard]] std::string FindCatalystFault();

  void ReportVolumes(const CatalystSpecification& catalyst);
  void ReportReactions(const std::vector<ReactionRecord>& reactions);
  /// Solves the equations, and returns the flows [mol/s], the temperature [K] and the extents [mol/s].
  [[nodiscard]] ExtentTrial SolveTank(const std::vector<ReactionRecord>& reactions, const StirredTank& tank);
  /// Flashes the outlet at the solution's temperature, and returns the duty [W] if it is known.
  [[nodiscard]] std::optional<double> FlashSolution(HeatDutyType type, const HeatSource& source, double temperature,
                                                    double feedEnthalpyFlow, double heatOfReaction);
  void WarnOfOtherPhases(HeatDutyType type);

  // Whose phases "Phase" lists, by which interfaces.
  const IDispatch* listedMaterial = nullptr;  // only compared
  bool listedThermo11 = false;
};

}  // namespace morvelan
