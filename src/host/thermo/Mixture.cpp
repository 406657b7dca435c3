#include "host/thermo/Mixture.h"

#include <cmath>

#include "host/thermo/PengRobinson.h"

namespace morvelan::host {
namespace {

/// First and second derivatives of the equation in w, and of the composition terms that go with them.
struct VolumeTerms {
  explicit VolumeTerms(const PhaseState& state)
      : attraction(state.w), repulsion(1.0 / (state.w - 1.0)), e(state.e), w(state.w) {
    kappa = repulsion * repulsion - e * attraction.ddf;
  }

  /// b dP/dn_i over RT.
  [[nodiscard]] double PressureDn(const PhaseState& state, Eigen::Index i) const {
    const double coefficient = repulsion * repulsion - e * (2.0 * attraction.df + w * attraction.ddf);
    return repulsion + state.bRatio[i] * coefficient + state.sigma[i] * attraction.df;
  }

  AttractionTerm attraction;
  double repulsion;
  double e;
  double w;
  double kappa;  // -b^2/(RT) dP/dv, positive in a mechanically stable fluid
};

}  // namespace

Mixture::Mixture(const FluidModel& fluid, const std::vector<Eigen::Index>& members) : isIdealGas(!fluid.Cubic()) {
  const auto n = static_cast<Eigen::Index>(members.size());
  for (const Eigen::Index i : members) curves.push_back(&fluid.Curves()[static_cast<std::size_t>(i)]);
  ideal.resize(members.size());
  if (isIdealGas) return;
  const CubicParameters& all = *fluid.Cubic();
  cubic = {all.Tc(members),
           all.Pc(members),
           all.omega(members),
           all.rootA(members),
           all.m(members),
           all.b(members),
           all.oneLessKij(members, members)};
  rootA.resize(n);
  rootADT.resize(n);
  rootADTT.resize(n);
}

void Mixture::SetTemperature(double T) {
  if (T == temperature) return;
  temperature = T;
  RT = kGasConstant * T;
  isIdealCurrent = false;
  if (isIdealGas) return;
  for (Eigen::Index i = 0; i < Count(); ++i) {
    const double thermal = cubic.m[i] * std::sqrt(T / cubic.Tc[i]);
    rootA[i] = cubic.rootA[i] * (1.0 + cubic.m[i] - thermal);
    rootADT[i] = -0.5 * cubic.rootA[i] * thermal;
    rootADTT[i] = 0.25 * cubic.rootA[i] * thermal;
  }
}

void Mixture::SetComposition(double P, const Eigen::VectorXd& x, PhaseState& state) const {
  state.P = P;
  state.x = x;
  if (isIdealGas) {
    state.Z = 1.0;
    state.isLoop = false;
    state.lnPhi.setZero(Count());
    return;
  }
  state.b = x.dot(cubic.b);
  state.q.noalias() = cubic.oneLessKij * x.cwiseProduct(rootA);
  state.bRatio = cubic.b / state.b;
  state.sigma = rootA.cwiseProduct(state.q) * (2.0 / (state.b * RT));
  state.e = 0.5 * x.dot(state.sigma);
  state.p = P * state.b / RT;
}

void Mixture::SetVolume(double w, PhaseState& state) const {
  state.w = w;
  state.Z = state.p * w;
  const AttractionTerm attraction(w);
  const double common = -std::log(state.p * (w - 1.0));
  const double ofB = 1.0 / (w - 1.0) + state.e * (attraction.f + w * attraction.df);
  state.lnPhi = (state.bRatio * ofB - state.sigma * attraction.f).array() + common;
}

void Mixture::Evaluate(PhaseKind kind, double P, const Eigen::VectorXd& x, PhaseState& state) const {
  SetComposition(P, x, state);
  if (isIdealGas) return;
  const CubicVolumes volumes = SolveCubic(state.p, state.e);
  state.isLoop = volumes.isLoop;
  SetVolume(kind == PhaseKind::kVapor ? volumes.vapor : volumes.liquid, state);
}

void Mixture::EvaluateStable(double P, const Eigen::VectorXd& x, PhaseState& state) const {
  SetComposition(P, x, state);
  if (isIdealGas) return;
  const CubicVolumes volumes = SolveCubic(state.p, state.e);
  state.isLoop = volumes.isLoop;
  const bool isLiquid = volumes.isLoop && ResidualGibbs(volumes.liquid, state.p, state.e) <
                                              ResidualGibbs(volumes.vapor, state.p, state.e);
  SetVolume(isLiquid ? volumes.liquid : volumes.vapor, state);
}

PhaseKind Mixture::Label(const PhaseState& state) const {
  return !isIdealGas && IsLiquid(state.w, state.e) ? PhaseKind::kLiquid : PhaseKind::kVapor;
}

Mixture::AttractionDT Mixture::AttractionByT(const PhaseState& state) const {
  // a = r.K.r with r = x sqrt(a): a' = 2 r'.K.r, a'' = 2 r''.K.r + 2 r'.K.r'.
  const Eigen::VectorXd first = state.x.cwiseProduct(rootADT);
  const double curvature = state.x.cwiseProduct(rootADTT).dot(state.q) + first.dot(cubic.oneLessKij * first);
  const double scale = 2.0 / (state.b * RT);
  return {scale * first.dot(state.q), scale * curvature};
}

BulkProperties Mixture::Bulk(const PhaseState& state) {
  constexpr double R = kGasConstant;
  BulkProperties bulk;
  double mixing = 0.0;
  for (Eigen::Index i = 0; i < Count(); ++i) {
    const IdealGasValues& values = Ideal()[static_cast<std::size_t>(i)];
    const double x = state.x[i];
    bulk.enthalpy += R * x * values.enthalpy;
    bulk.entropy += R * x * values.entropy;
    bulk.heatCapacity += R * x * values.heatCapacity;
    if (x > 0.0) mixing -= x * std::log(x);
  }
  bulk.entropy += R * (mixing - std::log(state.P / kReferencePressure));
  if (isIdealGas) {
    bulk.volume = RT / state.P;
    bulk.volumeDT = R / state.P;
    bulk.volumeDP = -bulk.volume / state.P;
    return bulk;
  }
  const VolumeTerms terms(state);
  const AttractionDT attraction = AttractionByT(state);
  const double f = terms.attraction.f;
  const double pressureDT = state.p - (state.e - attraction.first) * terms.attraction.df;  // T b/(RT) dP/dT
  bulk.enthalpy += RT * (state.Z - 1.0 - (state.e - attraction.first) * f);
  bulk.entropy += R * (std::log(state.p * (state.w - 1.0)) + attraction.first * f);
  bulk.heatCapacity += R * (attraction.second * f - 1.0 + pressureDT * pressureDT / terms.kappa);
  bulk.volume = state.b * state.w;
  bulk.volumeDT = state.b * pressureDT / (terms.kappa * temperature);
  bulk.volumeDP = -state.b * state.b / (terms.kappa * RT);
  return bulk;
}

void Mixture::LnPhiDn(const PhaseState& state, Eigen::MatrixXd& derivatives) const {
  const Eigen::Index n = Count();
  derivatives.setZero(n, n);
  if (isIdealGas) return;
  const VolumeTerms terms(state);
  const AttractionTerm& a = terms.attraction;
  const double w = state.w;
  const double ofBB = terms.repulsion * terms.repulsion - state.e * (2.0 * a.f + 4.0 * w * a.df + w * w * a.ddf);
  const double ofBD = a.f + w * a.df;
  const double ofDD = -2.0 * a.f / (state.b * RT);
  for (Eigen::Index j = 0; j < n; ++j) {
    const double bj = state.bRatio[j];
    const double pressureDnj = terms.PressureDn(state, j) / terms.kappa;
    for (Eigen::Index i = 0; i <= j; ++i) {
      const double bi = state.bRatio[i];
      const double value =
          1.0 + terms.repulsion * (bi + bj) + ofBB * bi * bj + ofBD * (bi * state.sigma[j] + bj * state.sigma[i]) +
          ofDD * rootA[i] * rootA[j] * cubic.oneLessKij(i, j) - terms.PressureDn(state, i) * pressureDnj;
      derivatives(i, j) = derivatives(j, i) = value;
    }
  }
}

void Mixture::LnPhiDlnT(const PhaseState& state, Eigen::VectorXd& derivatives) const {
  derivatives.setZero(Count());
  if (isIdealGas) return;
  const VolumeTerms terms(state);
  const AttractionTerm& a = terms.attraction;
  const double thermal = state.e - AttractionByT(state).first;
  const double pressureDT = state.p - thermal * a.df;
  const double ofB = thermal * (a.f + state.w * a.df);
  const Eigen::VectorXd qDT = cubic.oneLessKij * state.x.cwiseProduct(rootADT);
  for (Eigen::Index i = 0; i < Count(); ++i) {
    const double sigmaDT = (rootADT[i] * state.q[i] + rootA[i] * qDT[i]) * (2.0 / (state.b * RT));
    derivatives[i] = 1.0 - state.bRatio[i] * ofB + (state.sigma[i] - sigmaDT) * a.f -
                     terms.PressureDn(state, i) * pressureDT / terms.kappa;
  }
}

void Mixture::LnPhiDlnP(const PhaseState& state, Eigen::VectorXd& derivatives) const {
  derivatives.setZero(Count());
  if (isIdealGas) return;
  const VolumeTerms terms(state);
  for (Eigen::Index i = 0; i < Count(); ++i) derivatives[i] = state.p * terms.PressureDn(state, i) / terms.kappa - 1.0;
}

const std::vector<IdealGasValues>& Mixture::Ideal() {
  if (!isIdealCurrent) {
    for (std::size_t i = 0; i < curves.size(); ++i) ideal[i] = curves[i]->At(temperature);
    isIdealCurrent = true;
  }
  return ideal;
}

}  // namespace morvelan::host
