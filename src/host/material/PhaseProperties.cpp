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

using Molar = const MolarProperties&;
using OnePhase = PhaseProperties&;

double HeatCapacity(OnePhase phase) { return phase.Molar().heatCapacityCp; }
double HeatCapacityOverT(OnePhase phase) { return phase.Molar().heatCapacityCp / phase.Temperature(); }
double EnthalpyByPressure(OnePhase phase) { return phase.Derivatives().enthalpyDP; }
double EntropyByPressure(OnePhase phase) { return phase.Derivatives().entropyDP; }
double MolarVolume(OnePhase phase) { return phase.Molar().volume; }

/// How a property with one value follows from those of the package: the value, and its derivatives by temperature at
/// constant pressure and by pressure at constant temperature, where they are calculated.
struct MolarFormula {
  Property property;
  double (*value)(Molar molar);
  double (*byTemperature)(OnePhase phase) = nullptr;
  double (*byPressure)(OnePhase phase) = nullptr;
};

constexpr MolarFormula kMolarFormulas[] = {
    {Property::kEnthalpy, [](Molar m) { return m.enthalpy; }, HeatCapacity, EnthalpyByPressure},
    {Property::kEnthalpyF, [](Molar m) { return Required(m.enthalpyF, Property::kEnthalpyF); }, HeatCapacity,
     EnthalpyByPressure},
    {Property::kEntropy, [](Molar m) { return m.entropy; }, HeatCapacityOverT, EntropyByPressure},
    {Property::kEntropyF, [](Molar m) { return Required(m.entropyF, Property::kEntropyF); }, HeatCapacityOverT,
     EntropyByPressure},
    {Property::kGibbsEnergy, [](Molar m) { return m.gibbsEnergy; }, [](OnePhase p) { return -p.Molar().entropy; },
     MolarVolume},
    {Property::kGibbsEnergyF, [](Molar m) { return Required(m.gibbsEnergyF, Property::kGibbsEnergyF); },
     [](OnePhase p) { return -Required(p.Molar().entropyF, Property::kGibbsEnergyF); }, MolarVolume},
    {Property::kVolume, [](Molar m) { return m.volume; }, [](OnePhase p) { return p.Derivatives().volumeDT; },
     [](OnePhase p) { return p.Derivatives().volumeDP; }},
    {Property::kDensity, [](Molar m) { return m.density; },
     [](OnePhase p) { return -p.Derivatives().volumeDT * p.Molar().density * p.Molar().density; },
     [](OnePhase p) { return -p.Derivatives().volumeDP * p.Molar().density * p.Molar().density; }},
    {Property::kHeatCapacityCp, [](Molar m) { return m.heatCapacityCp; }},
    {Property::kCompressibilityFactor, [](Molar m) { return m.compressibility; }},
};

const MolarFormula& FormulaOf(Property property) {
  const auto* found = std::ranges::find(kMolarFormulas, property, &MolarFormula::property);
  if (found == std::end(kMolarFormulas)) NotCalculated({property});
  return *found;
}

/// The values plus `formation(x)` of each pure compound.
template <class Formation>
std::vector<double> WithFormation(std::vector<double> values, Formation formation) {
  std::vector<double> pure(values.size(), 0.0);
  for (std::size_t i = 0; i < values.size(); ++i) {
    pure[i] = 1.0;
    values[i] += formation(pure);
    pure[i] = 0.0;
  }
  return values;
}

}  // namespace

double MolarValue(const MolarProperties& values, Property property) { return FormulaOf(property).value(values); }

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
      return {FormulaOf(id.property).byTemperature(*this)};
    case Derivative::kPressure:
      return {FormulaOf(id.property).byPressure(*this)};
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
      return {1000.0 * package.MeanMolecularWeight(x)};
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

std::vector<double> PhaseProperties::Partial(Property property) {
  switch (property) {
    case Property::kEnthalpy:
      return Derivatives().partialEnthalpy;
    case Property::kEntropy:
      return Derivatives().partialEntropy;
    case Property::kVolume:
      return Derivatives().partialVolume;
    case Property::kEnthalpyF:
      return WithFormation(Partial(Property::kEnthalpy),
                           [&](const auto& pure) { return package.FormationEnthalpy(pure); });
    case Property::kEntropyF:
      return WithFormation(Partial(Property::kEntropy),
                           [&](const auto& pure) { return package.FormationEntropy(pure); });
    case Property::kGibbsEnergy:
      return PartialGibbsEnergy(Property::kEnthalpy, Property::kEntropy);
    case Property::kGibbsEnergyF:
      return PartialGibbsEnergy(Property::kEnthalpyF, Property::kEntropyF);
    default:
      NotCalculated({property, Derivative::kMoles});
  }
}

std::vector<double> PhaseProperties::PartialGibbsEnergy(Property enthalpy, Property entropy) {
  std::vector<double> values = Partial(enthalpy);
  const std::vector<double> s = Partial(entropy);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] -= T * s[i];
  return values;
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
