#include "host/thermo/PropertyPackage.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <stdexcept>

#include "host/file/NumberText.h"
#include "host/thermo/EnergyFlash.h"
#include "host/thermo/FlashEngine.h"
#include "host/thermo/FlashLimits.h"
#include "host/thermo/FluidModel.h"
#include "host/thermo/SaturationFlash.h"

namespace morvelan::host {
namespace {

void RequireRange(const char* what, double value, double lowest, double highest, const char* unit) {
  if (value >= lowest && value <= highest) return;
  throw std::invalid_argument(std::string(what) + " of " + NumberText(value) + " " + unit + " is not between " +
                              NumberText(lowest) + " and " + NumberText(highest) + " " + unit);
}

void RequireTemperature(double T) { RequireRange("temperature", T, kLowestTemperature, kHighestTemperature, "K"); }

void RequirePressure(double P) { RequireRange("pressure", P, kLowestPressure, kHighestPressure, "Pa"); }

void RequireFinite(const char* what, double value) {
  if (!std::isfinite(value)) throw std::invalid_argument(std::string(what) + " is not a finite number");
}

void RequireComposition(const FluidModel& fluid, std::span<const double> x) {
  constexpr double kSumTolerance = 1e-6;
  const std::vector<Compound>& compounds = fluid.Compounds();
  if (x.size() != compounds.size())
    throw std::invalid_argument("composition has " + std::to_string(x.size()) + " fractions for " +
                                std::to_string(compounds.size()) + " compounds");
  double sum = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    if (!(x[i] >= 0.0 && x[i] <= 1.0 + kSumTolerance))
      throw std::invalid_argument("mole fraction of " + compounds[i].name + " is " + NumberText(x[i]) +
                                  ", not between 0 and 1");
    sum += x[i];
  }
  if (std::abs(sum - 1.0) > kSumTolerance)
    throw std::invalid_argument("mole fractions sum to " + NumberText(sum) + ", not to 1");
}

/// A phase in which all compounds take part, also those with a fraction of zero.
struct WholePhase {
  WholePhase(const FluidModel& fluid, PhaseKind kind, double T, double P, std::span<const double> composition)
      : mixture(fluid, AllMembers(composition.size())) {
    RequireTemperature(T);
    RequirePressure(P);
    RequireComposition(fluid, composition);
    x = Eigen::Map<const Eigen::VectorXd>(composition.data(), static_cast<Eigen::Index>(composition.size()));
    x /= x.sum();
    mixture.SetTemperature(T);
    mixture.Evaluate(kind, P, x, state);
  }

  static std::vector<Eigen::Index> AllMembers(std::size_t count) {
    std::vector<Eigen::Index> members(count);
    std::iota(members.begin(), members.end(), Eigen::Index{0});
    return members;
  }

  Mixture mixture;
  Eigen::VectorXd x;
  PhaseState state;
};

std::vector<double> ToVector(const Eigen::VectorXd& values) { return {values.begin(), values.end()}; }

}  // namespace

PropertyPackage::PropertyPackage(std::shared_ptr<const FluidModel> given) : fluid(std::move(given)) {}

std::size_t PropertyPackage::CompoundCount() const { return fluid->Compounds().size(); }

const Compound& PropertyPackage::CompoundAt(std::size_t index) const { return fluid->Compounds().at(index); }

bool PropertyPackage::HasLiquid() const { return fluid->Cubic().has_value(); }

bool PropertyPackage::HasFormationData() const {
  return std::ranges::all_of(fluid->Compounds(), [](const Compound& c) { return c.formationGas.has_value(); });
}

double PropertyPackage::MeanMolecularWeight(std::span<const double> x) const {
  double mean = 0;
  for (std::size_t i = 0; i < x.size(); ++i) mean += x[i] * CompoundAt(i).molecularWeight;
  return mean * 0.001;
}

template <class Solve>
Equilibrium PropertyPackage::Flash(std::span<const double> z, Solve solve) const {
  RequireComposition(*fluid, z);
  FlashEngine engine(*fluid, z);
  solve(engine);
  return engine.Result();
}

Equilibrium PropertyPackage::FlashTP(double T, double P, std::span<const double> z) const {
  RequireTemperature(T);
  RequirePressure(P);
  return Flash(z, [&](FlashEngine& engine) { engine.Solve(T, P); });
}

Equilibrium PropertyPackage::FlashPH(double P, double H, std::span<const double> z) const {
  RequirePressure(P);
  RequireFinite("enthalpy", H);
  return Flash(z, [&](FlashEngine& engine) { FlashEnergyAtPressure(engine, P, H, EnergyKind::kEnthalpy); });
}

Equilibrium PropertyPackage::FlashPS(double P, double S, std::span<const double> z) const {
  RequirePressure(P);
  RequireFinite("entropy", S);
  return Flash(z, [&](FlashEngine& engine) { FlashEnergyAtPressure(engine, P, S, EnergyKind::kEntropy); });
}

Equilibrium PropertyPackage::FlashTH(double T, double H, std::span<const double> z) const {
  RequireTemperature(T);
  RequireFinite("enthalpy", H);
  return Flash(z, [&](FlashEngine& engine) { FlashEnthalpyAtTemperature(engine, T, H); });
}

Equilibrium PropertyPackage::FlashPVF(double P, double vaporFraction, std::span<const double> z) const {
  RequirePressure(P);
  return FlashVaporFraction(true, P, vaporFraction, z);
}

Equilibrium PropertyPackage::FlashTVF(double T, double vaporFraction, std::span<const double> z) const {
  RequireTemperature(T);
  return FlashVaporFraction(false, T, vaporFraction, z);
}

Equilibrium PropertyPackage::FlashVaporFraction(bool isPressure, double value, double vaporFraction,
                                                std::span<const double> z) const {
  RequireRange("vapour fraction", vaporFraction, 0.0, 1.0, "mol/mol");
  return Flash(z, [&](FlashEngine& engine) {
    const std::string where = NumberText(value) + (isPressure ? " Pa" : " K");
    if (!HasLiquid()) throw std::runtime_error("no boiling state at " + where + ": an ideal gas has no liquid");
    if (!SaturationFlash(engine).Solve(isPressure, value, vaporFraction))
      throw std::runtime_error("no vapour and liquid with a vapour fraction of " + NumberText(vaporFraction) +
                               " found at " + where +
                               ": the mixture has no such state there (it may be beyond its critical point)");
  });
}

MolarProperties PropertyPackage::Properties(PhaseKind kind, double T, double P, std::span<const double> x) const {
  WholePhase phase(*fluid, kind, T, P, x);
  const BulkProperties bulk = phase.mixture.Bulk(phase.state);
  return Complete(
      {.enthalpy = bulk.enthalpy, .entropy = bulk.entropy, .volume = bulk.volume, .heatCapacityCp = bulk.heatCapacity},
      T, P, x);
}

/// Adds what follows from enthalpy, entropy and volume.
MolarProperties PropertyPackage::Complete(MolarProperties known, double T, double P, std::span<const double> x) const {
  known.gibbsEnergy = known.enthalpy - T * known.entropy;
  known.density = 1.0 / known.volume;
  known.compressibility = P * known.volume / (kGasConstant * T);
  if (HasFormation(x)) {
    known.enthalpyF = known.enthalpy + FormationEnthalpy(x);
    known.entropyF = known.entropy + FormationEntropy(x);
    known.gibbsEnergyF = *known.enthalpyF - T * *known.entropyF;
  }
  return known;
}

std::vector<double> PropertyPackage::LnPhi(PhaseKind kind, double T, double P, std::span<const double> x) const {
  return ToVector(WholePhase(*fluid, kind, T, P, x).state.lnPhi);
}

PhaseDerivatives PropertyPackage::Derivatives(PhaseKind kind, double T, double P, std::span<const double> x) const {
  constexpr double R = kGasConstant;
  WholePhase phase(*fluid, kind, T, P, x);
  const BulkProperties bulk = phase.mixture.Bulk(phase.state);
  Eigen::VectorXd byLnT;
  Eigen::VectorXd byLnP;
  Eigen::MatrixXd byN;
  phase.mixture.LnPhiDlnT(phase.state, byLnT);
  phase.mixture.LnPhiDlnP(phase.state, byLnP);
  phase.mixture.LnPhiDn(phase.state, byN);
  PhaseDerivatives derivatives;
  derivatives.volumeDT = bulk.volumeDT;
  derivatives.volumeDP = bulk.volumeDP;
  derivatives.enthalpyDP = bulk.volume - T * bulk.volumeDT;
  derivatives.entropyDP = -bulk.volumeDT;
  const std::vector<IdealGasValues>& ideal = phase.mixture.Ideal();
  for (Eigen::Index i = 0; i < byLnT.size(); ++i) {
    const IdealGasValues& values = ideal[static_cast<std::size_t>(i)];
    const double h = R * (values.enthalpy - T * byLnT[i]);
    const double lnFugacity = std::log(phase.x[i] * P / kReferencePressure) + phase.state.lnPhi[i];
    derivatives.partialEnthalpy.push_back(h);
    derivatives.partialEntropy.push_back(R * (values.entropy - byLnT[i] - lnFugacity));
    derivatives.partialVolume.push_back(R * T / P * (1.0 + byLnP[i]));
  }
  derivatives.lnPhiDT = ToVector(byLnT / T);
  derivatives.lnPhiDP = ToVector(byLnP / P);
  derivatives.lnPhiDn.assign(byN.data(), byN.data() + byN.size());  // symmetric: either order
  return derivatives;
}

MolarProperties PropertyPackage::Overall(const Equilibrium& equilibrium) const {
  MolarProperties sum;
  std::vector<double> z(CompoundCount(), 0.0);
  for (const Phase& phase : equilibrium.phases) {
    const MolarProperties part = Properties(phase.kind, equilibrium.T, equilibrium.P, phase.x);
    for (double MolarProperties::*member : {&MolarProperties::enthalpy, &MolarProperties::entropy,
                                            &MolarProperties::volume, &MolarProperties::heatCapacityCp}) {
      sum.*member += phase.fraction * part.*member;
    }
    for (std::size_t i = 0; i < z.size(); ++i) z[i] += phase.fraction * phase.x[i];
  }
  return Complete(sum, equilibrium.T, equilibrium.P, z);
}

bool PropertyPackage::HasFormation(std::span<const double> x) const {
  for (std::size_t i = 0; i < x.size(); ++i)
    if (x[i] > 0.0 && !CompoundAt(i).formationGas) return false;
  return true;
}

double PropertyPackage::FormationEnthalpy(std::span<const double> x) const {
  return SumFormation(x, [](const Formation& formation) { return formation.enthalpy; });
}

double PropertyPackage::FormationEntropy(std::span<const double> x) const {
  return SumFormation(x, [](const Formation& formation) {
    return (formation.enthalpy - formation.gibbsEnergy) / kReferenceTemperature;
  });
}

double PropertyPackage::SumFormation(std::span<const double> x, double (*of)(const Formation&)) const {
  RequireComposition(*fluid, x);
  double sum = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    if (x[i] == 0.0) continue;
    const Compound& compound = CompoundAt(i);
    if (!compound.formationGas) throw std::runtime_error("no formation properties are known of " + compound.name);
    sum += x[i] * of(*compound.formationGas);
  }
  return sum;
}

}  // namespace morvelan::host
