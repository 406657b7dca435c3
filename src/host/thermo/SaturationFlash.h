#pragma once

#include <Eigen/Core>
#include <Eigen/LU>
#include <optional>

#include "host/thermo/FlashEngine.h"

namespace morvelan::host {

/// Finds the two-phase states of a mixture with a given vapor fraction, at a given P or T. Newton's method in ln K_i,
/// ln T and ln P (Michelsen, Fluid Phase Equilib. 4 (1980) 1) starts from Wilson's estimate. If that fails or ends on a
/// branch where P falls with T, the line of constant vapor fraction is followed from low pressure.
class SaturationFlash {
 public:
  explicit SaturationFlash(FlashEngine& engine);

  /// Returns true with the state in the engine. `value` is P [Pa] if `isPressure`, else T [K].
  bool Solve(bool isPressure, double value, double vaporFraction);

  /// Solves at another vapor fraction, starting from the last solution.
  bool SolveNearby(double vaporFraction);

 private:
  bool SolvePure(double vaporFraction);
  void EvaluateResidual();
  void EvaluateJacobian(Eigen::Index specified);
  bool Newton(Eigen::Index specified, double value);
  bool WilsonStart(double value);
  bool Substitute();
  bool SolveDirect(double value);
  bool FollowFromLowPressure(double target);
  bool Scan();
  bool AdvanceAlongLine(double& step, Eigen::Index& specified);
  [[nodiscard]] Eigen::VectorXd Tangent(Eigen::Index specified);
  [[nodiscard]] bool IsRegular();  // P rises with T along the line
  [[nodiscard]] bool IsTrivial() const;
  [[nodiscard]] bool Accept() const;
  void Deliver();

  [[nodiscard]] double T() const { return std::exp(X[n]); }
  [[nodiscard]] double P() const { return std::exp(X[n + 1]); }
  [[nodiscard]] Eigen::Index Specified() const { return isPressure ? n + 1 : n; }

  FlashEngine& engine;
  Mixture& mixture;
  const Eigen::VectorXd& z;
  Eigen::Index n;
  bool isPressure = true;
  double V = 0.0;
  double given = 0.0;    // P [Pa] or T [K]
  double lnValue = 0.0;  // ln of it
  Eigen::VectorXd X;     // ln K, ln T, ln P
  Eigen::VectorXd residual, ofVapor, ofLiquid;
  Eigen::MatrixXd jacobian, vaporDn, liquidDn;
  TwoPhases phases;
  double ySum = 1.0;
  double xSum = 1.0;
};

}  // namespace morvelan::host
