#include "host/thermo/SaturationFlash.h"

#include <algorithm>
#include <boost/math/tools/toms748_solve.hpp>
#include <cmath>
#include <cstdint>

#include "host/thermo/FlashLimits.h"
#include "host/thermo/PengRobinson.h"
#include "host/thermo/PureSaturation.h"

namespace morvelan::host {
namespace {

const double kLnLowestT = std::log(kLowestTemperature);
const double kLnHighestT = std::log(kHighestTemperature);
const double kLnLowestP = std::log(kLowestPressure);
const double kLnHighestP = std::log(kHighestPressure);

}  // namespace

SaturationFlash::SaturationFlash(FlashEngine& givenEngine)
    : engine(givenEngine), mixture(engine.Fluid()), z(engine.Composition()), n(z.size()) {
  X.setZero(n + 2);
}

/// Calculates isothermal flashes from high T or low P on. Starts Newton's method where their vapor fraction passes V.
bool SaturationFlash::Scan() {
  constexpr int kPoints = 80;
  constexpr int kHalvings = 25;
  const double from = isPressure ? std::log(1.5 * mixture.Cubic().Tc.maxCoeff()) : std::log(1.0);
  const double to = isPressure ? std::log(0.2 * mixture.Cubic().Tc.minCoeff()) : std::log(1e9);
  bool isFound = false;
  const auto isAbove = [&](double unknown) {
    engine.Solve(isPressure ? std::exp(unknown) : given, isPressure ? given : std::exp(unknown));
    if (engine.IsTwoPhase()) {
      X.head(n) = engine.Phases().lnK;
      X[n] = isPressure ? unknown : lnValue;
      X[n + 1] = isPressure ? lnValue : unknown;
      isFound = true;
    }
    return V < 1.0 ? engine.VaporFraction() > V : engine.VaporFraction() >= V;
  };
  double last = from;
  bool wasAbove = isAbove(last);
  for (int i = 1; i <= kPoints; ++i) {
    const double next = from + (to - from) * i / kPoints;
    const bool above = isAbove(next);
    if (above != wasAbove) {
      double a = last;
      double b = next;
      for (int k = 0; k < kHalvings; ++k) {
        const double middle = 0.5 * (a + b);
        (isAbove(middle) == wasAbove ? a : b) = middle;
      }
      if (isFound && Newton(Specified(), lnValue) && Accept()) return true;
    }
    last = next;
    wasAbove = above;
  }
  return false;
}

bool SaturationFlash::SolvePure(double vaporFraction) {
  const auto other = isPressure ? SaturationTemperature(mixture, given) : SaturationPressure(mixture, given);
  if (!other) return false;
  X << 0.0, std::log(isPressure ? *other : given), std::log(isPressure ? given : *other);
  V = vaporFraction;
  mixture.SetTemperature(T());
  phases.y = phases.x = Eigen::VectorXd::Ones(1);
  mixture.Evaluate(PhaseKind::kVapor, P(), phases.y, phases.vapor);
  mixture.Evaluate(PhaseKind::kLiquid, P(), phases.x, phases.liquid);
  Deliver();
  return true;
}

void SaturationFlash::EvaluateResidual() {
  mixture.SetTemperature(T());
  const Eigen::ArrayXd K = X.head(n).array().exp();
  phases.x = z.array() / ((1.0 - V) + V * K);
  phases.y = phases.x.array() * K;
  xSum = phases.x.sum();
  ySum = phases.y.sum();
  phases.x /= xSum;
  phases.y /= ySum;
  mixture.Evaluate(PhaseKind::kVapor, P(), phases.y, phases.vapor);
  mixture.Evaluate(PhaseKind::kLiquid, P(), phases.x, phases.liquid);
  residual.resize(n + 2);
  residual.head(n) = X.head(n) + phases.vapor.lnPhi - phases.liquid.lnPhi;
  residual[n] = ySum - xSum;
  residual[n + 1] = 0.0;
}

/// Rows: equal fugacities, sum of y less sum of x, the specified variable.
void SaturationFlash::EvaluateJacobian(Eigen::Index specified) {
  mixture.LnPhiDn(phases.vapor, vaporDn);
  mixture.LnPhiDn(phases.liquid, liquidDn);
  jacobian.setZero(n + 2, n + 2);
  for (Eigen::Index j = 0; j < n; ++j) {
    // At fixed V: dy/dlnK = (1-V) x y/z and dx/dlnK = -V x y/z.
    const double product = xSum * phases.x[j] * (ySum * phases.y[j] / z[j]);
    const double dy = (1.0 - V) * product;
    const double dx = -V * product;
    jacobian.col(j).head(n) = vaporDn.col(j) * (dy / ySum) - liquidDn.col(j) * (dx / xSum);
    jacobian(j, j) += 1.0;
    jacobian(n, j) = dy - dx;
  }
  mixture.LnPhiDlnT(phases.vapor, ofVapor);
  mixture.LnPhiDlnT(phases.liquid, ofLiquid);
  jacobian.col(n).head(n) = ofVapor - ofLiquid;
  mixture.LnPhiDlnP(phases.vapor, ofVapor);
  mixture.LnPhiDlnP(phases.liquid, ofLiquid);
  jacobian.col(n + 1).head(n) = ofVapor - ofLiquid;
  jacobian(n + 1, specified) = 1.0;
}

bool SaturationFlash::Newton(Eigen::Index specified, double value) {
  constexpr int kMaxSteps = 40;
  constexpr double kStepLimit[] = {4.0, 0.15, 2.0};  // in ln K, ln T, ln P
  double lastStep = 1.0;
  for (int i = 0; i < kMaxSteps; ++i) {
    EvaluateResidual();
    residual[n + 1] = X[specified] - value;
    const double error = residual.cwiseAbs().maxCoeff();
    const double rounding = 1e-13 * (2.0 + phases.liquid.lnPhi.cwiseAbs().maxCoeff());
    if (error < rounding || (error < 1e-11 && lastStep < 1e-11)) return true;
    EvaluateJacobian(specified);
    const Eigen::VectorXd step = -jacobian.partialPivLu().solve(residual);
    if (!step.allFinite()) return false;
    double length = 1.0;
    for (Eigen::Index k = 0; k < n + 2; ++k)
      length = std::min(length, kStepLimit[std::max<Eigen::Index>(0, k - n + 1)] / (std::abs(step[k]) + 1e-300));
    lastStep = length * step.cwiseAbs().maxCoeff();
    X += length * step;
    X.head(n) = X.head(n).cwiseMax(-kLnLimit).cwiseMin(kLnLimit);
    X[n] = std::clamp(X[n], kLnLowestT, kLnHighestT);
    X[n + 1] = std::clamp(X[n + 1], kLnLowestP, kLnHighestP);
  }
  return residual.cwiseAbs().maxCoeff() < 1e-10;
}

/// T or P, whichever is not specified, from Wilson's K values.
bool SaturationFlash::WilsonStart(double value) {
  const auto excessVapor = [&](double unknown) {
    const double lnT = isPressure ? unknown : value;
    const double lnP = isPressure ? value : unknown;
    X.head(n) = engine.WilsonLnK(std::exp(lnT), std::exp(lnP)).cwiseMax(-kLnLimit).cwiseMin(kLnLimit);
    const Eigen::ArrayXd K = X.head(n).array().exp();
    return (z.array() * (K - 1.0) / ((1.0 - V) + V * K)).sum() * (isPressure ? 1.0 : -1.0);
  };
  const double lower = isPressure ? kLnLowestT : kLnLowestP;
  const double upper = isPressure ? kLnHighestT : kLnHighestP;
  if (!(excessVapor(lower) < 0.0 && excessVapor(upper) > 0.0)) return false;
  std::uintmax_t maxSteps = 100;
  const auto bracket = boost::math::tools::toms748_solve(
      excessVapor, lower, upper, [](double a, double b) { return b - a < 1e-6; }, maxSteps);
  const double unknown = 0.5 * (bracket.first + bracket.second);
  X[n] = isPressure ? unknown : value;
  X[n + 1] = isPressure ? value : unknown;
  return true;
}

/// One step of successive substitution. The fugacities give K; K and its derivatives by T or P give the unknown T or P.
bool SaturationFlash::Substitute() {
  EvaluateResidual();
  X.head(n) -= residual.head(n);
  if (!X.allFinite()) return false;
  if (isPressure) {
    mixture.LnPhiDlnT(phases.vapor, ofVapor);
    mixture.LnPhiDlnT(phases.liquid, ofLiquid);
  } else {
    mixture.LnPhiDlnP(phases.vapor, ofVapor);
    mixture.LnPhiDlnP(phases.liquid, ofLiquid);
  }
  const Eigen::ArrayXd slope = ofLiquid - ofVapor;
  const double limit = isPressure ? 0.1 : 1.0;
  double moved = 0.0;
  for (int i = 0; i < 10; ++i) {
    const Eigen::ArrayXd K = (X.head(n).array() + moved * slope).exp();
    const Eigen::ArrayXd denominator = (1.0 - V) + V * K;
    const double value = (z.array() * (K - 1.0) / denominator).sum();
    const double derivative = (z.array() * K * slope / denominator.square()).sum();
    const double step = -value / derivative;
    if (!std::isfinite(step)) return false;
    moved = std::clamp(moved + step, -limit, limit);
    if (std::abs(step) < 1e-3) break;
  }
  X.head(n) = (X.head(n).array() + moved * slope).cwiseMax(-kLnLimit).cwiseMin(kLnLimit);
  X[isPressure ? n : n + 1] += moved;
  return true;
}

bool SaturationFlash::SolveDirect(double value) {
  constexpr int kSubstitutions = 5;
  if (!WilsonStart(value)) return false;
  for (int i = 0; i < kSubstitutions; ++i)
    if (!Substitute()) return false;
  return Newton(Specified(), value) && Accept();
}

Eigen::VectorXd SaturationFlash::Tangent(Eigen::Index specified) {
  EvaluateJacobian(specified);
  return jacobian.partialPivLu().solve(Eigen::VectorXd::Unit(n + 2, n + 1));
}

bool SaturationFlash::IsRegular() {
  const Eigen::VectorXd tangent = Tangent(Specified());
  return tangent[n] * tangent[n + 1] > 0.0;
}

bool SaturationFlash::IsTrivial() const {
  return X.head(n).cwiseAbs().maxCoeff() < 1e-5 && std::abs(phases.vapor.w - phases.liquid.w) < 1e-4 * phases.liquid.w;
}

/// True when the converged state is a vapor over a liquid.
bool SaturationFlash::Accept() const {
  if (IsTrivial() || phases.vapor.w < phases.liquid.w) return false;
  return !IsDefiniteLiquid(phases.vapor.w, phases.vapor.e);
}

/// Makes a step along the line of constant vapor fraction in the variable that changes most. Returns false at the end
/// of the line.
bool SaturationFlash::AdvanceAlongLine(double& step, Eigen::Index& specified) {
  constexpr double kSmallestStep = 1e-5;
  Eigen::VectorXd tangent = Tangent(specified) * (step > 0.0 ? 1.0 : -1.0);
  if (!tangent.allFinite()) return false;
  Eigen::Index largest = 0;
  const double size = (tangent.array().abs()).maxCoeff(&largest);
  specified = largest;
  const Eigen::VectorXd start = X;
  double length = std::abs(step);
  for (; length > kSmallestStep; length *= 0.4) {
    X = start + tangent * (length / size);
    const double target = X[specified];
    if (Newton(specified, target) && !IsTrivial() && (X - start).cwiseAbs().maxCoeff() < 5.0 * length) break;
  }
  if (length <= kSmallestStep) {
    X = start;
    return false;
  }
  step = std::copysign(std::min(1.5 * length, 0.5), X[specified] - start[specified]);
  return true;
}

bool SaturationFlash::FollowFromLowPressure(double target) {
  constexpr int kMaxSteps = 400;
  // Start at low pressure, where there is only one solution.
  bool isStarted = false;
  for (int i = 0; i < 8 && !isStarted; ++i) {
    const double away = 1.5 * (i + 1);
    const double start = isPressure ? std::min(target, std::log(1e5)) - away : target - 0.1 * away;
    isStarted = SolveDirect(start) && IsRegular();
  }
  if (!isStarted) return false;

  Eigen::Index specified = n + 1;
  double step = 0.2;
  const Eigen::Index index = Specified();
  double lastMoved = 0.0;
  for (int i = 0; i < kMaxSteps; ++i) {
    const Eigen::VectorXd before = X;
    if (!AdvanceAlongLine(step, specified)) return false;
    Eigen::Index heaviest = 0;
    before.head(n).cwiseAbs().maxCoeff(&heaviest);
    if (X[heaviest] * before[heaviest] <= 0.0) return false;  // beyond the critical point
    const double moved = X[index] - before[index];
    const bool hasPassed = (X[index] - target) * (before[index] - target) <= 0.0;
    // The line may reach the target and turn back within one step.
    const bool hasTurned = moved * lastMoved < 0.0 && std::abs(X[index] - target) < 0.3;
    lastMoved = moved;
    if (!hasPassed && !hasTurned) continue;
    const Eigen::VectorXd after = X;
    X = before;
    if (hasPassed) X += (target - before[index]) / moved * (after - before);
    if (Newton(index, target) && Accept()) return true;
    if (hasPassed) return false;
    X = after;
    EvaluateResidual();
  }
  return false;
}

void SaturationFlash::Deliver() {
  phases.fractions = {V, 1.0 - V};
  phases.lnK = X.head(n);
  engine.Assume(isPressure ? T() : given, isPressure ? given : P(), phases);
}

bool SaturationFlash::Solve(bool givenIsPressure, double value, double vaporFraction) {
  isPressure = givenIsPressure;
  given = value;
  lnValue = std::log(value);
  V = vaporFraction;
  if (n == 1) return SolvePure(vaporFraction);
  const bool isDirect = SolveDirect(lnValue);
  if (!isDirect || !IsRegular()) {
    const Eigen::VectorXd direct = X;
    if (!FollowFromLowPressure(lnValue)) {
      if (isDirect) {
        X = direct;
        EvaluateResidual();
      } else if (!Scan()) {
        return false;
      }
    }
  }
  Deliver();
  return true;
}

bool SaturationFlash::SolveNearby(double vaporFraction) {
  V = vaporFraction;
  if (n == 1) return SolvePure(vaporFraction);
  const Eigen::VectorXd before = X;
  if (!Newton(Specified(), lnValue) || !Accept()) {
    X = before;
    return Solve(isPressure, given, vaporFraction);
  }
  Deliver();
  return true;
}

}  // namespace morvelan::host
