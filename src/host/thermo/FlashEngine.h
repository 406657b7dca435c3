#pragma once

#include <Eigen/Core>
#include <span>
#include <vector>

#include "host/thermo/Equilibrium.h"
#include "host/thermo/FluidModel.h"
#include "host/thermo/Mixture.h"
#include "host/thermo/PhaseSplit.h"
#include "host/thermo/StabilityTest.h"

namespace morvelan::host {

/// Repeated isothermal flashes of one composition. Each starts from the result of the previous one. Compounds with a
/// fraction of zero do not take part.
class FlashEngine {
 public:
  /// z: one non-negative fraction per compound of the fluid, sum above zero.
  FlashEngine(const FluidModel& fluid, std::span<const double> z);

  /// Brings the mixture to equilibrium at T and P.
  void Solve(double T, double P);

  [[nodiscard]] Eigen::Index Count() const { return feed.z.size(); }
  [[nodiscard]] const Eigen::VectorXd& Composition() const { return feed.z; }
  [[nodiscard]] Mixture& Fluid() { return mixture; }

  // Values of the last state that was solved or set by Assume.
  [[nodiscard]] double Pressure() const { return P; }
  [[nodiscard]] bool IsTwoPhase() const { return isTwoPhase; }
  [[nodiscard]] double VaporFraction() const;  // 0 or 1 for a single phase
  [[nodiscard]] double Enthalpy();             // [J/mol]
  [[nodiscard]] double Entropy();              // [J/(mol K)]
  [[nodiscard]] double EnthalpyDT();           // [J/(mol K)] at constant P, phases changing
  [[nodiscard]] double EnthalpyDP();           // [J/(mol Pa)] at constant T, phases changing
  [[nodiscard]] Equilibrium Result() const;    // all compounds of the fluid

  /// Makes two phases found by other means at T, P the current state.
  void Assume(double T, double P, const TwoPhases& found);
  [[nodiscard]] const TwoPhases& Phases() const { return phases; }

  /// ln K estimated without an equation of state (Wilson 1969, as in Michelsen and Mollerup 2007, ch. 10).
  [[nodiscard]] Eigen::VectorXd WilsonLnK(double T, double P) const;

 private:
  bool TrySplit();
  bool TrySplitFrom(const TrialPhase& trial, PhaseKind kind);
  bool TryVaporOverLiquids();
  bool TryOtherLiquid();
  void TakeOut(const TrialPhase& trial, double share, double sign);
  bool TryUnstable(PhaseKind kind, const Eigen::VectorXd& lnW);
  bool TryLightestGas();
  BulkProperties Overall();
  [[nodiscard]] Eigen::VectorXd VaporEnthalpyExcess() const;

  std::size_t compoundCount;
  std::vector<Eigen::Index> members;  // of the compounds present
  Mixture mixture;
  Feed feed;
  Feed reference;  // the phase that a second liquid is compared with
  TwoPhases phases, attempt;
  PhaseSplit splitter;
  StabilityTest stability;
  double P = 0.0;
  bool isTwoPhase = false;
};

}  // namespace morvelan::host
