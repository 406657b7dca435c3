#pragma once

#include <Eigen/Cholesky>
#include <Eigen/Core>

#include "host/thermo/Mixture.h"

namespace morvelan::host {

/// The homogeneous mixture that is tested for stability.
struct Feed {
  Eigen::VectorXd z;           // all above zero
  Eigen::VectorXd lnZ;         // ln z_i
  Eigen::VectorXd lnFugacity;  // ln (z_i phi_i)
  PhaseState state;            // of the volume with the lower Gibbs energy
};

/// A trial phase at a minimum of the tangent plane distance, in mole numbers W.
struct TrialPhase {
  Eigen::VectorXd lnW;
  double distance = 0.0;  // modified tangent plane distance over RT; below zero: the feed is unstable
};

/// Tangent plane criterion (Michelsen, Fluid Phase Equilib. 9 (1982) 1): a mixture is stable when no trial phase W has
/// 1 + sum_i W_i (ln W_i + lnPhi_i(W) - ln(z_i phi_i(z)) - 1) < 0.
class StabilityTest {
 public:
  /// Minimizes the distance from `trial.lnW` on, with the trial phase evaluated as `kind`. Returns true with the trial
  /// phase in `trial` when the feed is unstable. The result false is no proof of stability.
  bool FindUnstable(const Mixture& mixture, double P, const Feed& feed, PhaseKind kind, TrialPhase& trial);

  /// The trial phase where the search ended.
  [[nodiscard]] const PhaseState& LastState() const { return state; }

 private:
  void Evaluate(const Mixture& mixture, double P, const Feed& feed, PhaseKind kind, TrialPhase& trial);
  void NewtonDirection(const Mixture& mixture);
  bool Descend(const Mixture& mixture, double P, const Feed& feed, PhaseKind kind, TrialPhase& trial, bool useNewton);

  PhaseState state;
  Eigen::VectorXd W, x, excess, rootW, direction, before;
  Eigen::MatrixXd hessian;
  Eigen::LLT<Eigen::MatrixXd> factors;
  double sum = 1.0;
  double error = 0.0;
};

}  // namespace morvelan::host
