#pragma once

#include <Eigen/Cholesky>
#include <Eigen/Core>

#include "host/thermo/Mixture.h"
#include "host/thermo/RachfordRice.h"

namespace morvelan::host {

/// A vapor and a liquid that together are the feed z.
struct TwoPhases {
  PhaseFractions fractions;
  Eigen::VectorXd lnK;   // ln(y_i/x_i)
  Eigen::VectorXd y, x;  // vapor, liquid
  PhaseState vapor, liquid;
  Eigen::VectorXd excess;  // ln of the vapor's over the liquid's fugacity
  double error = 0.0;      // the largest |excess|
  double gibbs = 0.0;      // molar Gibbs energy over RT less that of the ideal gases at T, P, unmixed
};

/// Isothermal two-phase split: successive substitution, then Newton's method on the Gibbs energy (Michelsen, Fluid
/// Phase Equilib. 9 (1982) 21). Steps are shortened until the Gibbs energy falls.
class PhaseSplit {
 public:
  /// Starts from `phases.lnK`. Returns true with the equilibrium in `phases`, and false when one phase vanishes.
  bool Solve(const Mixture& mixture, double P, const Eigen::VectorXd& z, TwoPhases& phases);

  /// Solves (Hessian of the Gibbs energy in the vapor's mole numbers over RT) v = r.
  Eigen::VectorXd SolveHessian(const Mixture& mixture, const Eigen::VectorXd& z, const TwoPhases& phases,
                               const Eigen::VectorXd& r);

  /// Sets compositions, fugacities and Gibbs energy from phases.lnK. Returns false when these K give a single phase.
  static bool Evaluate(const Mixture& mixture, double P, const Eigen::VectorXd& z, TwoPhases& phases);

 private:
  void Factorize(const Mixture& mixture, const Eigen::VectorXd& z, const TwoPhases& phases);
  void NewtonDirection(const Mixture& mixture, const Eigen::VectorXd& z, const TwoPhases& phases);
  bool Descend(const Mixture& mixture, double P, const Eigen::VectorXd& z, TwoPhases& phases, bool useNewton);

  TwoPhases candidate;
  Eigen::VectorXd scale, direction;
  Eigen::MatrixXd hessian, liquidPart;
  Eigen::LLT<Eigen::MatrixXd> factors;
};

}  // namespace morvelan::host
