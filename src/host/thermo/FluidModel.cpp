#include "host/thermo/FluidModel.h"

#include <cmath>

#include "host/thermo/PengRobinson.h"

namespace morvelan::host {
namespace {

CubicParameters MakeCubic(const std::vector<Compound>& compounds, const Eigen::MatrixXd& oneLessKij) {
  const auto n = static_cast<Eigen::Index>(compounds.size());
  CubicParameters cubic;
  for (auto* vector : {&cubic.Tc, &cubic.Pc, &cubic.omega, &cubic.rootA, &cubic.m, &cubic.b}) vector->resize(n);
  cubic.oneLessKij = oneLessKij;
  for (Eigen::Index i = 0; i < n; ++i) {
    const CriticalPoint& critical = *compounds[static_cast<std::size_t>(i)].critical;
    const double RTc = kGasConstant * critical.temperature;
    cubic.Tc[i] = critical.temperature;
    cubic.Pc[i] = critical.pressure;
    cubic.omega[i] = critical.acentricFactor;
    cubic.rootA[i] = RTc * std::sqrt(kOmegaA / critical.pressure);
    cubic.m[i] = AlphaSlope(critical.acentricFactor);
    cubic.b[i] = kOmegaB * RTc / critical.pressure;
  }
  return cubic;
}

}  // namespace

FluidModel::FluidModel(std::vector<Compound> given, std::optional<Eigen::MatrixXd> oneLessKij)
    : compounds(std::move(given)) {
  for (const Compound& compound : compounds) curves.emplace_back(compound.idealGas);
  if (oneLessKij) cubic = MakeCubic(compounds, *oneLessKij);
}

}  // namespace morvelan::host
