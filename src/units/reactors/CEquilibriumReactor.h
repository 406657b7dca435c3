#pragma once

#include "units/reactors/BaseReactorConstrained.h"

namespace morvelan {

/// Brings a feed to chemical equilibrium by the selected reactions of the reaction package, and to phase
/// equilibrium; at a temperature, with a heat duty or with the heat of an energy stream. The extents [mol/s]
/// solve
///
///     ln Q_r - ln K_r = 0,  Q_r = product of a_i^nu_i,r,  n = n_in + sum of nu_r extent_r
///
/// with K from the package, and activities a in the reaction's phase by its concentration basis, all at the
/// outlet's state. The heat balance is that of BaseReactor, with heats of reaction at the feed's state.
class CEquilibriumReactor final : public BaseReactorConstrained {
 public:
  CEquilibriumReactor();

  [[nodiscard]] bool ValidateUnit(std::string& message) override;

 protected:
  void ResolveAll() override;
  void React() override;

 private:
  /// What is wrong with reactions of which one follows from others; empty for nothing.
  [[nodiscard]] std::string FindDependence() const;
  /// The resolved reactions whose phase is present in the feed.
  [[nodiscard]] std::vector<ReactionRecord> ReactionsOfPresentPhases();
  [[nodiscard]] ExtentSolution SolveEquilibrium(const std::vector<ReactionRecord>& reactions, HeatDutyType type,
                                                double enthalpyFlow, const std::vector<double>& heats);
};

}  // namespace morvelan
