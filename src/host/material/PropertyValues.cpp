#include "host/material/PropertyValues.h"

#include "host/objects/HostError.h"

namespace morvelan::host {
namespace {

std::vector<double> ToMoleFractions(const PropertyPackage& package, std::vector<double> massFractions) {
  double sum = 0;
  for (std::size_t i = 0; i < massFractions.size(); ++i)
    sum += massFractions[i] /= package.CompoundAt(i).molecularWeight;
  if (sum > 0)
    for (double& fraction : massFractions) fraction /= sum;
  return massFractions;
}

std::vector<double> ToMassFractions(const PropertyPackage& package, std::vector<double> moleFractions) {
  double sum = 0;
  for (std::size_t i = 0; i < moleFractions.size(); ++i)
    sum += moleFractions[i] *= package.CompoundAt(i).molecularWeight;
  if (sum > 0)
    for (double& fraction : moleFractions) fraction /= sum;
  return moleFractions;
}

/// The factor that turns a value from one basis to the other, M [kg/mol] being the mean molecular weight.
double BasisFactor(Dimension dimension, Basis to, double M) {
  const double toMass = dimension == Dimension::kPerAmount ? 1.0 / M : M;
  return to == Basis::kMass ? toMass : 1.0 / toMass;
}

}  // namespace

void PropertyValues::Give(PropertyId id, Basis basis, std::vector<double> values) {
  if (id.property == Property::kFraction && basis == Basis::kMass) {
    values = ToMoleFractions(*package, std::move(values));
    basis = Basis::kMole;
  }
  stored[id] = {std::move(values), basis, true};
}

void PropertyValues::StoreResult(PropertyId id, std::vector<double> values) {
  stored[id] = {std::move(values), NeedsBasis(id) ? Basis::kMole : Basis::kNone, false};
}

std::vector<double> PropertyValues::Read(PropertyId id, Basis basis) const {
  const auto found = stored.find(id);
  if (found == stored.end())
    throw HostError(kECapeThrmPropertyNotAvailable,
                    "property " + NameOf(id) + " of phase \"" + place + "\" is not set");
  const StoredValue& value = found->second;
  if (id.property == Property::kFraction && basis == Basis::kMass) return ToMassFractions(*package, value.values);
  std::vector<double> values = value.values;
  if (value.basis != basis && basis != Basis::kNone) {
    const double M = package->MeanMolecularWeight(Composition());
    const double factor = BasisFactor(InfoOf(id.property).dimension, basis, M);
    for (double& number : values) number *= factor;
  }
  return values;
}

void PropertyValues::ForgetResults() {
  Forget([](PropertyId, bool isGiven) { return !isGiven; });
}

}  // namespace morvelan::host
