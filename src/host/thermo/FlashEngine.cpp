#include "host/thermo/FlashEngine.h"

#include <algorithm>
#include <cmath>

#include "host/thermo/PengRobinson.h"

namespace morvelan::host {
namespace {

std::vector<Eigen::Index> PresentCompounds(std::span<const double> z) {
  std::vector<Eigen::Index> members;
  for (std::size_t i = 0; i < z.size(); ++i)
    if (z[i] > 0.0) members.push_back(static_cast<Eigen::Index>(i));
  return members;
}

/// Calls the phase vapor that has the larger volume relative to its covolume.
void OrderByDensity(TwoPhases& phases) {
  if (phases.vapor.w >= phases.liquid.w || phases.vapor.isLoop || phases.liquid.isLoop) return;
  std::swap(phases.vapor, phases.liquid);
  std::swap(phases.y, phases.x);
  std::swap(phases.fractions.vapor, phases.fractions.liquid);
  phases.lnK = -phases.lnK;
  phases.excess = -phases.excess;
}

}  // namespace

FlashEngine::FlashEngine(const FluidModel& fluid, std::span<const double> z)
    : compoundCount(z.size()), members(PresentCompounds(z)), mixture(fluid, members) {
  feed.z.resize(static_cast<Eigen::Index>(members.size()));
  for (std::size_t i = 0; i < members.size(); ++i)
    feed.z[static_cast<Eigen::Index>(i)] = z[static_cast<std::size_t>(members[i])];
  feed.z /= feed.z.sum();
  feed.lnZ = feed.z.array().log();
}

Eigen::VectorXd FlashEngine::WilsonLnK(double T, double atP) const {
  const CubicParameters& cubic = mixture.Cubic();
  return (cubic.Pc.array() / atP).log() + 5.373 * (1.0 + cubic.omega.array()) * (1.0 - cubic.Tc.array() / T);
}

/// Splits the feed starting from attempt.lnK. Accepts a vapor and a liquid of lower Gibbs energy than the feed, or of
/// equal energy within rounding errors, as near the phase boundary.
bool FlashEngine::TrySplit() {
  if (!splitter.Solve(mixture, P, feed.z, attempt)) return false;
  const double single = feed.z.dot(feed.lnFugacity);
  if (attempt.gibbs > single + 1e-12 * (1.0 + std::abs(single))) return false;
  OrderByDensity(attempt);
  if (IsDefiniteLiquid(attempt.vapor.w, attempt.vapor.e) && !TryVaporOverLiquids()) return false;
  std::swap(phases, attempt);
  return true;
}

/// The attempt is a pair of liquids, which is not a possible result. One of them with a vapor may still have a lower
/// Gibbs energy than the feed; the search for it starts from the vapor that is nearest to stable beside the liquids. If
/// there is a vapor over both liquids, but no state with one of them, the lighter liquid is reported as the vapor.
/// Otherwise its gas would disappear in a single liquid.
bool FlashEngine::TryVaporOverLiquids() {
  const TwoPhases liquids = attempt;
  reference.z = attempt.x;
  reference.lnZ = attempt.x.array().log();
  reference.state = attempt.liquid;
  reference.lnFugacity = reference.lnZ + attempt.liquid.lnPhi;
  TrialPhase trial{reference.lnFugacity, 0.0};
  const bool hasVapor = stability.FindUnstable(mixture, P, reference, PhaseKind::kVapor, trial) &&
                        mixture.Label(stability.LastState()) == PhaseKind::kVapor;
  const double lnSum = std::log(trial.lnW.array().exp().sum());
  const double single = feed.z.dot(feed.lnFugacity);
  for (const Eigen::VectorXd* x : {&liquids.x, &liquids.y}) {
    attempt.lnK = trial.lnW.array() - lnSum - x->array().log();
    if (splitter.Solve(mixture, P, feed.z, attempt) && attempt.gibbs < single &&
        !IsDefiniteLiquid(attempt.vapor.w, attempt.vapor.e)) {
      return true;
    }
  }
  if (hasVapor) attempt = liquids;
  return hasVapor;
}

/// Sets attempt.lnK to that of two phases: the trial phase, in a share of its largest possible amount, and the rest of
/// the feed.
void FlashEngine::TakeOut(const TrialPhase& trial, double share, double sign) {
  Eigen::VectorXd W = trial.lnW.array().exp();
  W /= W.sum();
  const double amount = share * std::min(1.0, feed.z.cwiseQuotient(W).minCoeff());
  const Eigen::ArrayXd rest = (feed.z - amount * W).array() / (1.0 - amount);
  attempt.lnK = sign * (W.array() / rest).log();
}

/// Splits an unstable feed. A small amount of the trial phase beside the rest of the feed has a lower Gibbs energy; the
/// K values of such a state start the split.
bool FlashEngine::TrySplitFrom(const TrialPhase& trial, PhaseKind kind) {
  const double sign = kind == PhaseKind::kVapor ? 1.0 : -1.0;
  attempt.lnK = sign * (trial.lnW - feed.lnZ);
  if (TrySplit()) return true;
  const double single = feed.z.dot(feed.lnFugacity);
  for (double share = 0.5; share > 1e-12; share *= 0.1) {
    TakeOut(trial, share, sign);
    if (PhaseSplit::Evaluate(mixture, P, feed.z, attempt) && attempt.gibbs < single) return TrySplit();
  }
  return false;
}

bool FlashEngine::TryUnstable(PhaseKind kind, const Eigen::VectorXd& lnW) {
  TrialPhase trial{lnW, 0.0};
  return stability.FindUnstable(mixture, P, feed, kind, trial) && TrySplitFrom(trial, kind);
}

/// Wilson's K values are too low for a gas far above its critical temperature. It may be the only compound of the
/// vapor.
bool FlashEngine::TryLightestGas() {
  Eigen::Index lightest = 0;
  mixture.Cubic().Tc.minCoeff(&lightest);
  Eigen::VectorXd lnW = feed.lnZ.array() - 10.0;
  lnW[lightest] = 0.0;
  return TryUnstable(PhaseKind::kVapor, lnW);
}

/// A compound whose fugacity exceeds that of its pure liquid forms a second liquid. Two different liquids can each be
/// at equilibrium with a vapor. The second one replaces the present liquid, or a part of a single phase, if the state
/// then has a lower Gibbs energy. (Only one of two liquids is kept.)
bool FlashEngine::TryOtherLiquid() {
  constexpr double kLeastExcess = 1e-6;
  const CubicParameters& cubic = mixture.Cubic();
  reference.z = isTwoPhase ? phases.x : feed.z;
  reference.state = isTwoPhase ? phases.liquid : feed.state;
  reference.lnZ = reference.z.array().log();
  reference.lnFugacity = reference.lnZ + reference.state.lnPhi;
  const double RT = kGasConstant * mixture.T();
  Eigen::Index purest = -1;
  double largest = kLeastExcess;
  for (Eigen::Index i = 0; i < Count(); ++i) {
    const double root = mixture.RootA(i);
    const double p = P * cubic.b[i] / RT;
    const double e = root * root / (cubic.b[i] * RT);
    const double excess = reference.lnFugacity[i] - ResidualGibbs(SolveCubic(p, e).liquid, p, e);
    if (excess > largest) {
      largest = excess;
      purest = i;
    }
  }
  if (purest < 0) return false;
  TrialPhase trial;
  trial.lnW = reference.lnZ.array() - 10.0;
  trial.lnW[purest] = 0.0;
  if (!stability.FindUnstable(mixture, P, reference, PhaseKind::kLiquid, trial)) return false;
  if (!isTwoPhase) return isTwoPhase = TrySplitFrom(trial, PhaseKind::kLiquid);
  TakeOut(trial, 0.5, -1.0);
  const bool isBetter = splitter.Solve(mixture, P, feed.z, attempt) &&
                        attempt.gibbs < phases.gibbs - 1e-10 * (1.0 + std::abs(phases.gibbs)) &&
                        !IsDefiniteLiquid(attempt.vapor.w, attempt.vapor.e);
  if (isBetter) std::swap(phases, attempt);
  return isBetter;
}

void FlashEngine::Solve(double T, double atP) {
  constexpr int kMaxLiquids = 3;
  P = atP;
  mixture.SetTemperature(T);
  mixture.EvaluateStable(P, feed.z, feed.state);
  feed.lnFugacity = feed.lnZ + feed.state.lnPhi;
  const bool wasTwoPhase = isTwoPhase;
  isTwoPhase = false;
  if (mixture.IsIdealGas() || Count() == 1) return;

  if (wasTwoPhase) {
    attempt.lnK = phases.lnK;
    isTwoPhase = TrySplit();
  }
  const Eigen::VectorXd wilson = WilsonLnK(T, P);
  if (!isTwoPhase) {
    attempt.lnK = wilson;
    isTwoPhase = TrySplit();
  }
  if (!isTwoPhase) {
    const bool isLiquid = mixture.Label(feed.state) == PhaseKind::kLiquid;
    const auto tryVapor = [&] { return TryUnstable(PhaseKind::kVapor, feed.lnZ + wilson); };
    const auto tryLiquid = [&] { return TryUnstable(PhaseKind::kLiquid, feed.lnZ - wilson); };
    isTwoPhase = isLiquid ? tryVapor() || tryLiquid() : tryLiquid() || tryVapor();
    isTwoPhase = isTwoPhase || TryLightestGas();
  }
  for (int i = 0; i < kMaxLiquids && TryOtherLiquid(); ++i) {
  }
}

void FlashEngine::Assume(double T, double atP, const TwoPhases& found) {
  P = atP;
  mixture.SetTemperature(T);
  phases = found;
  isTwoPhase = true;
}

double FlashEngine::VaporFraction() const {
  if (isTwoPhase) return phases.fractions.vapor;
  return mixture.Label(feed.state) == PhaseKind::kVapor ? 1.0 : 0.0;
}

BulkProperties FlashEngine::Overall() {
  if (!isTwoPhase) return mixture.Bulk(feed.state);
  const double V = phases.fractions.vapor;
  const double L = phases.fractions.liquid;
  const BulkProperties vapor = mixture.Bulk(phases.vapor);
  const BulkProperties liquid = mixture.Bulk(phases.liquid);
  const auto sum = [&](double BulkProperties::*member) { return V * vapor.*member + L * liquid.*member; };
  return {sum(&BulkProperties::enthalpy),     sum(&BulkProperties::entropy),  sum(&BulkProperties::volume),
          sum(&BulkProperties::heatCapacity), sum(&BulkProperties::volumeDT), sum(&BulkProperties::volumeDP)};
}

double FlashEngine::Enthalpy() { return Overall().enthalpy; }

double FlashEngine::Entropy() { return Overall().entropy; }

// M is the Hessian of G/RT in the vapor's mole numbers v; h and u are the differences of partial molar enthalpy and
// volume between vapor and liquid. Phases stay at equilibrium when T and P change if M dv = h/(R T^2) dT - u/(RT) dP.

/// h/(RT), one per compound. The parts of the ideal gas cancel.
Eigen::VectorXd FlashEngine::VaporEnthalpyExcess() const {
  Eigen::VectorXd ofVapor, ofLiquid;
  mixture.LnPhiDlnT(phases.vapor, ofVapor);
  mixture.LnPhiDlnT(phases.liquid, ofLiquid);
  return ofLiquid - ofVapor;
}

double FlashEngine::EnthalpyDT() {
  const double atConstantAmounts = Overall().heatCapacity;
  if (!isTwoPhase) return atConstantAmounts;
  const Eigen::VectorXd h = VaporEnthalpyExcess();
  return atConstantAmounts + kGasConstant * h.dot(splitter.SolveHessian(mixture, feed.z, phases, h));
}

double FlashEngine::EnthalpyDP() {
  const BulkProperties bulk = Overall();
  const double T = mixture.T();
  const double atConstantAmounts = bulk.volume - T * bulk.volumeDT;
  if (!isTwoPhase) return atConstantAmounts;
  const Eigen::VectorXd h = VaporEnthalpyExcess();
  Eigen::VectorXd ofVapor, ofLiquid;
  mixture.LnPhiDlnP(phases.vapor, ofVapor);
  mixture.LnPhiDlnP(phases.liquid, ofLiquid);
  const Eigen::VectorXd u = ofVapor - ofLiquid;  // times P/(RT)
  return atConstantAmounts - kGasConstant * T / P * h.dot(splitter.SolveHessian(mixture, feed.z, phases, u));
}

Equilibrium FlashEngine::Result() const {
  const auto expand = [this](const Eigen::VectorXd& x) {
    std::vector<double> all(compoundCount, 0.0);
    for (std::size_t i = 0; i < members.size(); ++i)
      all[static_cast<std::size_t>(members[i])] = x[static_cast<Eigen::Index>(i)];
    return all;
  };
  Equilibrium equilibrium{mixture.T(), P, {}};
  if (isTwoPhase) {
    equilibrium.phases = {{PhaseKind::kVapor, phases.fractions.vapor, expand(phases.y)},
                          {PhaseKind::kLiquid, phases.fractions.liquid, expand(phases.x)}};
  } else {
    equilibrium.phases = {{mixture.Label(feed.state), 1.0, expand(feed.z)}};
  }
  return equilibrium;
}

}  // namespace morvelan::host
