#include "host/thermo/RachfordRice.h"

#include <algorithm>
#include <cmath>

#include "host/thermo/RootSearch.h"

namespace morvelan::host {
namespace {

/// sum_i z_i (k_i - 1)/(1 + F (k_i - 1)) with k the K or their reciprocals; falls with F.
ValueAndSlope Residual(const Eigen::VectorXd& z, const Eigen::VectorXd& K, bool isReciprocal, double F) {
  ValueAndSlope sum{0.0, 0.0};
  for (Eigen::Index i = 0; i < z.size(); ++i) {
    const double k = isReciprocal ? 1.0 / K[i] : K[i];
    const double term = (k - 1.0) / ((1.0 - F) + F * k);
    sum.value += z[i] * term;
    sum.slope -= z[i] * term * term;
  }
  return sum;
}

/// Fraction of the smaller phase, at most one half.
double SolveSmaller(const Eigen::VectorXd& z, const Eigen::VectorXd& K, bool isReciprocal) {
  constexpr int kMaxSteps = 200;
  double lower = 0.0;
  double upper = 0.5;
  for (Eigen::Index i = 0; i < z.size(); ++i) {
    // A compound's amount in the phase that it prefers cannot exceed the amount of the phase (Leibovici and Neoschil,
    // Fluid Phase Equilib. 74 (1992) 303).
    const double k = isReciprocal ? 1.0 / K[i] : K[i];
    if (k > 1.0) lower = std::max(lower, (z[i] - 1.0 / k) / (1.0 - 1.0 / k));
  }
  double F = std::min(lower, 0.25);
  for (int step = 0; step < kMaxSteps; ++step) {
    const auto [value, slope] = Residual(z, K, isReciprocal, F);
    (value > 0.0 ? lower : upper) = F;
    double next = F - value / slope;
    if (std::abs(next - F) <= 5e-16 * F) return next;
    if (!(next > lower && next < upper))
      next = lower > 0.0 && lower < 0.01 * upper ? std::sqrt(lower * upper) : 0.5 * (lower + upper);
    F = next;
  }
  return F;
}

}  // namespace

std::optional<PhaseFractions> SolveRachfordRice(const Eigen::VectorXd& z, const Eigen::VectorXd& K) {
  double atBubble = -1.0;
  double atDew = -1.0;
  for (Eigen::Index i = 0; i < z.size(); ++i) {
    atBubble += z[i] * K[i];
    atDew += z[i] / K[i];
  }
  if (!(atBubble > 0.0 && atDew > 0.0)) return std::nullopt;
  const bool isMostlyVapor = Residual(z, K, false, 0.5).value > 0.0;
  const double smaller = SolveSmaller(z, K, isMostlyVapor);
  if (!(smaller > 0.0)) return std::nullopt;
  return isMostlyVapor ? PhaseFractions{1.0 - smaller, smaller} : PhaseFractions{smaller, 1.0 - smaller};
}

void SplitCompositions(const Eigen::VectorXd& z, const Eigen::VectorXd& K, const PhaseFractions& fractions,
                       Eigen::VectorXd& y, Eigen::VectorXd& x) {
  x = z.array() / (fractions.liquid + fractions.vapor * K.array());
  y = x.cwiseProduct(K);
  x /= x.sum();
  y /= y.sum();
}

}  // namespace morvelan::host
