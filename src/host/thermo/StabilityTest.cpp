#include "host/thermo/StabilityTest.h"

#include <algorithm>
#include <cmath>

#include "host/thermo/FlashLimits.h"

namespace morvelan::host {
namespace {

constexpr int kTestSubstitutions = 6;  // first-order steps before Newton's method
constexpr int kMaxTestSteps = 60;
constexpr double kConverged = 1e-10;  // of the gradient; the error of the distance is of the order of its square
constexpr double kUnstable = -1e-12;  // above the rounding of the distance
constexpr double kClearlyUnstable = -1e-5;

}  // namespace

void StabilityTest::Evaluate(const Mixture& mixture, double P, const Feed& feed, PhaseKind kind, TrialPhase& trial) {
  trial.lnW = trial.lnW.cwiseMax(-kLnLimit).cwiseMin(kLnLimit);
  W = trial.lnW.array().exp();
  sum = W.sum();
  x = W / sum;
  mixture.Evaluate(kind, P, x, state);
  excess = trial.lnW + state.lnPhi - feed.lnFugacity;
  trial.distance = 1.0 + W.dot(excess) - sum;
  error = (W.array() * excess.array().square()).sum();
  error = std::sqrt(error / std::max(sum, 1.0));
}

/// In the variables 2 sqrt(W_i) the ideal part of the Hessian is the unit matrix, however small W_i.
void StabilityTest::NewtonDirection(const Mixture& mixture) {
  mixture.LnPhiDn(state, hessian);
  rootW = W.cwiseSqrt();
  for (Eigen::Index j = 0; j < W.size(); ++j) {
    for (Eigen::Index i = 0; i < W.size(); ++i) hessian(i, j) *= rootW[i] * rootW[j] / sum;
    hessian(j, j) += 1.0;
  }
  for (double shift = 0.0; shift < 1e6; shift = shift == 0.0 ? 0.01 : 4.0 * shift) {
    if (shift > 0.0) hessian.diagonal().array() += shift;
    factors.compute(hessian);
    if (factors.info() == Eigen::Success) break;
  }
  direction = -rootW.cwiseProduct(excess);
  factors.solveInPlace(direction);
  direction = direction.cwiseQuotient(rootW);
  const double largest = direction.cwiseAbs().maxCoeff();
  if (largest > 3.0) direction *= 3.0 / largest;
}

bool StabilityTest::Descend(const Mixture& mixture, double P, const Feed& feed, PhaseKind kind, TrialPhase& trial,
                            bool useNewton) {
  const double oldDistance = trial.distance;
  const double oldError = error;
  before = trial.lnW;
  if (useNewton)
    NewtonDirection(mixture);
  else
    direction = -excess;
  const double slack = 1e-14 * (1.0 + std::abs(oldDistance));
  for (double length = 1.0; length > 0.01; length *= 0.3) {
    trial.lnW = before + length * direction;
    Evaluate(mixture, P, feed, kind, trial);
    if (trial.distance < oldDistance - slack || error < 0.9 * oldError) return true;
  }
  trial.lnW = before;
  Evaluate(mixture, P, feed, kind, trial);
  return false;
}

bool StabilityTest::FindUnstable(const Mixture& mixture, double P, const Feed& feed, PhaseKind kind,
                                 TrialPhase& trial) {
  Evaluate(mixture, P, feed, kind, trial);
  for (int step = 0; step < kMaxTestSteps; ++step) {
    if (error < kConverged) break;
    if (trial.distance < kClearlyUnstable && error < 0.05) break;
    const bool isTrivial =
        (trial.lnW - feed.lnZ).cwiseAbs().maxCoeff() < 1e-6 && std::abs(state.w - feed.state.w) < 1e-5 * feed.state.w;
    if (isTrivial) return false;
    if (step < kTestSubstitutions) {
      (void)Descend(mixture, P, feed, kind, trial, false);
      continue;
    }
    if (!Descend(mixture, P, feed, kind, trial, true) && !Descend(mixture, P, feed, kind, trial, false)) break;
  }
  return trial.distance < kUnstable;
}

}  // namespace morvelan::host
