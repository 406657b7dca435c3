#pragma once

#include "units/reactors/BaseReactor.h"
#include "units/reactors/CatalystParameters.h"
#include "units/reactors/ExtentSearch.h"
#include "units/reactors/ReactionPhase.h"
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
class CCSTR final : public BaseReactor {
 public:
  CCSTR();

  [[nodiscard]] bool ValidateUnit(std::string& message) override;
  void InputsChanged() override;

 protected:
  void ResolveAll() override;
  void React() override;

 private:
  [[nodiscard]] bool HasIndependentReactions(std::string& message) const;
  [[nodiscard]] bool HasCatalyst(std::string& message) const;

  void ReportBases(const std::vector<Reaction>& possible);
  /// Solves the equations, and returns the flows [mol/s], the temperature [K] and the extents [mol/s].
  [[nodiscard]] ExtentTrial SolveTank(const std::vector<Reaction>& possible, const StirredTank& tank);
  /// Flashes the outlet at the solution's temperature, and returns the duty [W] if it is known.
  [[nodiscard]] std::optional<double> FlashSolution(StreamState out, const HeatSource& source, double feedEnthalpyFlow,
                                                    double heatOfReaction);

  CatalystParameters catalyst;
  ReactionPhase phase;
  ExtentSearch search;
};

}  // namespace morvelan
