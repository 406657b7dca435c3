#include "host/thermo/PureSaturation.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/thermo/FlashLimits.h"
#include "host/thermo/PengRobinson.h"

namespace morvelan::host {
namespace {

/// ln p at which liquid and vapor have the same Gibbs energy at e, a function of e alone.
std::optional<double> ReducedSaturation(double e) {
  constexpr int kMaxSteps = 200;
  if (!(e > kCriticalE * (1.0 + 1e-10))) return std::nullopt;
  // The cold limit ln p = -f(1) e + ln e + const, with the constant of the critical point.
  double lnP = std::log(kOmegaB) - 0.62322524 * (e - kCriticalE) + std::log(e / kCriticalE);
  double lower = -std::numeric_limits<double>::infinity();
  double upper = std::log(kOmegaB);
  for (int i = 0; i < kMaxSteps; ++i) {
    const double p = std::exp(lnP);
    const CubicVolumes volumes = SolveCubic(p, e);
    double next = lnP;
    if (volumes.isLoop) {
      const double gap = ResidualGibbs(volumes.vapor, p, e) - ResidualGibbs(volumes.liquid, p, e);
      (gap > 0.0 ? upper : lower) = lnP;
      next = lnP - gap / (p * (volumes.vapor - volumes.liquid));
      if (std::abs(next - lnP) < 1e-14 * std::max(1.0, std::abs(lnP))) return next;
    } else {
      const bool isVapor = volumes.vapor > kCriticalW;
      (isVapor ? lower : upper) = lnP;
      next = isVapor ? lnP + 0.1 : lnP - 0.1;
    }
    if (!(next > lower && next < upper)) next = std::isfinite(lower) ? 0.5 * (lower + upper) : upper - 1.0;
    lnP = next;
  }
  return lnP;
}

}  // namespace

std::optional<double> SaturationPressure(Mixture& mixture, double T) {
  mixture.SetTemperature(T);
  PhaseState state;
  mixture.Evaluate(PhaseKind::kVapor, kReferencePressure, Eigen::VectorXd::Ones(1), state);
  const auto lnP = ReducedSaturation(state.e);
  if (!lnP) return std::nullopt;
  return std::exp(*lnP) * kGasConstant * T / state.b;
}

std::optional<double> SaturationTemperature(Mixture& mixture, double P) {
  constexpr int kMaxSteps = 100;
  const Eigen::VectorXd x = Eigen::VectorXd::Ones(1);
  const double Tc = mixture.Cubic().Tc[0];
  const double Pc = mixture.Cubic().Pc[0];
  if (!(P < Pc)) return std::nullopt;
  PhaseState vapor;
  PhaseState liquid;
  double lower = kLowestTemperature;
  double upper = Tc;
  double T = Tc / (1.0 - std::log(P / Pc) / (5.373 * (1.0 + mixture.Cubic().omega[0])));
  for (int i = 0; i < kMaxSteps; ++i) {
    T = std::clamp(T, kLowestTemperature, Tc * (1.0 - 1e-12));
    const auto saturation = SaturationPressure(mixture, T);
    double next = upper;
    if (saturation) {
      mixture.Evaluate(PhaseKind::kVapor, *saturation, x, vapor);
      mixture.Evaluate(PhaseKind::kLiquid, *saturation, x, liquid);
      const double lnRatio = std::log(P / *saturation);
      (lnRatio > 0.0 ? lower : upper) = T;
      // Clapeyron: d ln P/dT = (Hv - Hl)/(R T^2 (Zv - Zl)), taken as linear in 1/T.
      const double slope =
          (mixture.Bulk(vapor).enthalpy - mixture.Bulk(liquid).enthalpy) / (kGasConstant * T * (vapor.Z - liquid.Z));
      next = T / (1.0 - lnRatio / slope);
    } else {
      upper = T;
    }
    if (std::abs(next - T) < 1e-14 * T) return next;
    if (upper - lower < 1e-14 * T) return 0.5 * (lower + upper);
    T = next > lower && next < upper ? next : 0.5 * (lower + upper);
  }
  return T;
}

}  // namespace morvelan::host
