#include "host/material/PhaseProperties.h"

#include <algorithm>
#include <cmath>

#include "host/objects/HostError.h"

namespace morvelan::host {
namespace {

[[noreturn]] void NotCalculated(PropertyId id) {
  throw HostError(kECapeLimitedImpl, "property " + NameOf(id) + " is not calculated by this material");
}

double Required(const std::optional<double>& value, Property property) {
  if (!value)
    throw HostError(kECapeLimitedImpl,
                    "property " + NameOf({property}) + " needs formation data that a compound does not have");
  return *value;
}

/// `formation(x)` of each pure compound.
template <class Formation>
void AddPureValues(std::vector<double>& values, Formation formation) {
  std::vector<double> pure(values.size(), 0.0);
  for (std::size_t i = 0; i < values.size(); ++i) {
    pure[i] = 1.0;
    values[i] += formation(pure);
    pure[i] = 0.0;
  }
}

}  // namespace

double MolarValue(const MolarProperties& values, Property property) {
  switch (property) {
    case Property::kEnthalpy:
      return values.enthalpy;
    case Property::kEnthalpyF:
      return Required(values.enthalpyF, property);
    case Property::kEntropy:
      return values.entropy;
    case Property::kEntropyF:
      return Required(values.entropyF, property);
    case Property::kGibbsEnergy:
      return values.gibbsEnergy;
    case Property::kGibbsEnergyF:
      return Required(values.gibbsEnergyF, property);
    case Property::kVolume:
      return values.volume;
    case Property::kDensity:
      return values.density;
    case Property::kHeatCapacityCp:
      return values.heatCapacityCp;
    case Property::kCompressibilityFactor:
      return values.compressibility;
    default:
      NotCalculated({property});
  }
}

double MeanMolecularWeight(const PropertyPackage& package, std::span<const double> x) {
  double mean = 0;
  for (std::size_t i = 0; i < x.size(); ++i) mean += x[i] * package.CompoundAt(i).molecularWeight;
  return mean * 0.001;
}

bool HasFormationData(const PropertyPackage& package) {
  for (std::size_t i = 0; i < package.CompoundCount(); ++i)
    if (!package.CompoundAt(i).formationGas) return false;
  return true;
}

PhaseProperties::PhaseProperties(const PropertyPackage& thermodynamics, PhaseKind phaseKind, double temperature,
                                 double pressure, std::vector<double> composition)
    : package(thermodynamics), kind(phaseKind), T(temperature), P(pressure), x(std::move(composition)) {}

const MolarProperties& PhaseProperties::Molar() {
  if (!molar) molar = package.Properties(kind, T, P, x);
  return *molar;
}

const std::vector<double>& PhaseProperties::LnPhi() {
  if (!lnPhi) lnPhi = package.LnPhi(kind, T, P, x);
  return *lnPhi;
}

const PhaseDerivatives& PhaseProperties::Derivatives() {
  if (!derivatives) derivatives = package.Derivatives(kind, T, P, x);
  return *derivatives;
}

std::vector<double> PhaseProperties::Values(PropertyId id) {
  if (!IsCalculated(id)) NotCalculated(id);
  if (id.property == Property::kFugacityCoefficient || id.property == Property::kLogFugacityCoefficient)
    if (id.derivative != Derivative::kNone) return FugacityDerivative(id);
  switch (id.derivative) {
    case Derivative::kTemperature:
      return {ByTemperature(id.property)};
    case Derivative::kPressure:
      return {ByPressure(id.property)};
    case Derivative::kMoles:
    case Derivative::kMolFraction:
      return Partial(id.property);
    default:
      return PlainValues(id.property);
  }
}

std::vector<double> PhaseProperties::PlainValues(Property property) {
  switch (property) {
    case Property::kMolecularWeight:
      return {1000.0 * MeanMolecularWeight(package, x)};
    case Property::kCompressibility:
      return {-Derivatives().volumeDP / Molar().volume};
    case Property::kLogFugacityCoefficient:
      return LnPhi();
    case Property::kFugacityCoefficient:
    case Property::kFugacity: {
      std::vector<double> values = LnPhi();
      for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = std::exp(values[i]) * (property == Property::kFugacity ? x[i] * P : 1.0);
      return values;
    }
    default:
      return {MolarValue(Molar(), property)};
  }
}

double PhaseProperties::ByTemperature(Property property) {
  switch (property) {
    case Property::kEnthalpy:
    case Property::kEnthalpyF:
      return Molar().heatCapacityCp;
    case Property::kEntropy:
    case Property::kEntropyF:
      return Molar().heatCapacityCp / T;
    case Property::kGibbsEnergy:
      return -Molar().entropy;
    case Property::kGibbsEnergyF:
      return -Required(Molar().entropyF, property);
    case Property::kVolume:
      return Derivatives().volumeDT;
    case Property::kDensity:
      return -Derivatives().volumeDT * Molar().density * Molar().density;
    default:
      NotCalculated({property, Derivative::kTemperature});
  }
}

double PhaseProperties::ByPressure(Property property) {
  switch (property) {
    case Property::kEnthalpy:
    case Property::kEnthalpyF:
      return Derivatives().enthalpyDP;
    case Property::kEntropy:
    case Property::kEntropyF:
      return Derivatives().entropyDP;
    case Property::kGibbsEnergy:
    case Property::kGibbsEnergyF:
      return Molar().volume;
    case Property::kVolume:
      return Derivatives().volumeDP;
    case Property::kDensity:
      return -Derivatives().volumeDP * Molar().density * Molar().density;
    default:
      NotCalculated({property, Derivative::kPressure});
  }
}

std::vector<double> PhaseProperties::Partial(Property property) {
  const auto enthalpy = [&](std::span<const double> pure) { return package.FormationEnthalpy(pure); };
  const auto entropy = [&](std::span<const double> pure) { return package.FormationEntropy(pure); };
  switch (property) {
    case Property::kEnthalpy:
      return Derivatives().partialEnthalpy;
    case Property::kEntropy:
      return Derivatives().partialEntropy;
    case Property::kVolume:
      return Derivatives().partialVolume;
    case Property::kEnthalpyF: {
      std::vector<double> values = Derivatives().partialEnthalpy;
      AddPureValues(values, enthalpy);
      return values;
    }
    case Property::kEntropyF: {
      std::vector<double> values = Derivatives().partialEntropy;
      AddPureValues(values, entropy);
      return values;
    }
    case Property::kGibbsEnergy:
    case Property::kGibbsEnergyF: {
      const bool formation = property == Property::kGibbsEnergyF;
      std::vector<double> values = Partial(formation ? Property::kEnthalpyF : Property::kEnthalpy);
      const auto s = Partial(formation ? Property::kEntropyF : Property::kEntropy);
      for (std::size_t i = 0; i < values.size(); ++i) values[i] -= T * s[i];
      return values;
    }
    default:
      NotCalculated({property, Derivative::kMoles});
  }
}

std::vector<double> PhaseProperties::FugacityDerivative(PropertyId id) {
  if (id.derivative == Derivative::kMoles) return Derivatives().lnPhiDn;
  std::vector<double> values =
      id.derivative == Derivative::kTemperature ? Derivatives().lnPhiDT : Derivatives().lnPhiDP;
  if (id.property == Property::kFugacityCoefficient)
    for (std::size_t i = 0; i < values.size(); ++i) values[i] *= std::exp(LnPhi()[i]);
  return values;
}

}  // namespace morvelan::host
