#include "host/thermo/PhaseSplit.h"

#include <algorithm>
#include <cmath>

#include "host/thermo/FlashLimits.h"

namespace morvelan::host {
namespace {

constexpr int kSplitSubstitutions = 4;  // first-order steps before Newton's method
constexpr int kMaxSplitSteps = 60;

double MixingGibbs(const Eigen::VectorXd& x, const PhaseState& state) {
  double sum = x.dot(state.lnPhi);
  for (const double fraction : x)
    if (fraction > 0.0) sum += fraction * std::log(fraction);
  return sum;
}

/// The error of ln of a fugacity ratio from rounding.
double RoundingError(const TwoPhases& phases) {
  return 1e-13 * (2.0 + phases.liquid.lnPhi.cwiseAbs().maxCoeff() + phases.lnK.cwiseAbs().maxCoeff());
}

bool IsTrivial(const TwoPhases& phases) {
  return phases.lnK.cwiseAbs().maxCoeff() < 1e-6 && std::abs(phases.vapor.w - phases.liquid.w) < 1e-5 * phases.liquid.w;
}

}  // namespace

bool PhaseSplit::Evaluate(const Mixture& mixture, double P, const Eigen::VectorXd& z, TwoPhases& phases) {
  const Eigen::VectorXd K = phases.lnK.array().exp();
  const auto fractions = SolveRachfordRice(z, K);
  if (!fractions) return false;
  phases.fractions = *fractions;
  SplitCompositions(z, K, *fractions, phases.y, phases.x);
  mixture.Evaluate(PhaseKind::kVapor, P, phases.y, phases.vapor);
  mixture.Evaluate(PhaseKind::kLiquid, P, phases.x, phases.liquid);
  const Eigen::VectorXd target = (phases.liquid.lnPhi - phases.vapor.lnPhi).cwiseMax(-kLnLimit).cwiseMin(kLnLimit);
  phases.excess = phases.lnK - target;
  phases.error = phases.excess.cwiseAbs().maxCoeff();
  phases.gibbs =
      fractions->vapor * MixingGibbs(phases.y, phases.vapor) + fractions->liquid * MixingGibbs(phases.x, phases.liquid);
  return true;
}

/// Factorizes the Hessian, scaled by s_i = sqrt(V L x_i y_i/z_i) on both sides. Its ideal part is then the unit matrix
/// minus a dyad, also for very small mole fractions.
void PhaseSplit::Factorize(const Mixture& mixture, const Eigen::VectorXd& z, const TwoPhases& phases) {
  const double V = phases.fractions.vapor;
  const double L = phases.fractions.liquid;
  scale = (V * L * phases.x.array() * (phases.y.array() / z.array())).sqrt();
  mixture.LnPhiDn(phases.vapor, hessian);
  mixture.LnPhiDn(phases.liquid, liquidPart);
  for (Eigen::Index j = 0; j < z.size(); ++j) {
    for (Eigen::Index i = 0; i < z.size(); ++i)
      hessian(i, j) = scale[i] * scale[j] * ((hessian(i, j) - 1.0) / V + (liquidPart(i, j) - 1.0) / L);
    hessian(j, j) += 1.0;
  }
  for (double shift = 0.0; shift < 1e6; shift = shift == 0.0 ? 1e-3 : 4.0 * shift) {
    if (shift > 0.0) hessian.diagonal().array() += shift;
    factors.compute(hessian);
    if (factors.info() == Eigen::Success) return;
  }
}

Eigen::VectorXd PhaseSplit::SolveHessian(const Mixture& mixture, const Eigen::VectorXd& z, const TwoPhases& phases,
                                         const Eigen::VectorXd& r) {
  Factorize(mixture, z, phases);
  Eigen::VectorXd v = scale.cwiseProduct(r);
  factors.solveInPlace(v);
  return scale.cwiseProduct(v);
}

/// The Newton step in ln K. It is equivalent to a step in mole numbers, but keeps them positive.
void PhaseSplit::NewtonDirection(const Mixture& mixture, const Eigen::VectorXd& z, const TwoPhases& phases) {
  Factorize(mixture, z, phases);
  direction = -scale.cwiseProduct(phases.excess);
  factors.solveInPlace(direction);
  const double dV = scale.dot(direction);
  const double common = dV / (phases.fractions.vapor * phases.fractions.liquid);
  for (Eigen::Index i = 0; i < z.size(); ++i)
    direction[i] = scale[i] > 0.0 ? direction[i] / scale[i] - common : -phases.excess[i];
  const double largest = direction.cwiseAbs().maxCoeff();
  if (largest > 3.0) direction *= 3.0 / largest;
}

bool PhaseSplit::Descend(const Mixture& mixture, double P, const Eigen::VectorXd& z, TwoPhases& phases,
                         bool useNewton) {
  if (useNewton)
    NewtonDirection(mixture, z, phases);
  else
    direction = -phases.excess;
  const double slack = 1e-14 * (1.0 + std::abs(phases.gibbs));
  for (double length = 1.0; length > 1e-3; length *= 0.4) {
    candidate.lnK = (phases.lnK + length * direction).cwiseMax(-kLnLimit).cwiseMin(kLnLimit);
    if (!Evaluate(mixture, P, z, candidate)) continue;
    const bool isLower = candidate.gibbs < phases.gibbs - slack;
    const bool isCloser = candidate.error < 0.9 * phases.error && candidate.gibbs < phases.gibbs + slack;
    if (isLower || isCloser) {
      std::swap(phases, candidate);
      return true;
    }
  }
  return false;
}

bool PhaseSplit::Solve(const Mixture& mixture, double P, const Eigen::VectorXd& z, TwoPhases& phases) {
  constexpr double kAcceptable = 1e-10;
  if (!Evaluate(mixture, P, z, phases)) return false;
  for (int step = 0; step < kMaxSplitSteps; ++step) {
    if (phases.error < RoundingError(phases)) break;
    if (IsTrivial(phases)) return false;
    const bool useNewton = step >= kSplitSubstitutions || phases.error < 1e-3;
    if (Descend(mixture, P, z, phases, useNewton)) continue;
    if (!Descend(mixture, P, z, phases, !useNewton)) break;
  }
  return phases.error < kAcceptable && !IsTrivial(phases);
}

}  // namespace morvelan::host
