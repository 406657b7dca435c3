// Reading of a material's values in the basis that is asked for.

#include <numeric>

#include "host/material/MaterialState.h"
#include "host/material/PhaseProperties.h"
#include "host/objects/HostError.h"

namespace morvelan::host {
namespace {

constexpr const char* kOverallPlace = "Overall";

/// The factor that turns a value from one basis to the other, M [kg/mol] being the mean molecular weight.
double BasisFactor(Dimension dimension, Basis to, double M) {
  const double toMass = dimension == Dimension::kPerAmount ? 1.0 / M : M;
  return to == Basis::kMass ? toMass : 1.0 / toMass;
}

}  // namespace

std::vector<double> MaterialState::Overall(PropertyId id, Basis basis) const {
  if (id.property == Property::kFlow) return Flow(overall, id, basis, 1.0, kOverallPlace);
  return Read(overall, id, basis, kOverallPlace);
}

double MaterialState::OverallScalar(Property property, Basis basis) const { return Overall({property}, basis).front(); }

std::vector<double> MaterialState::OverallComposition() const { return Overall({Property::kFraction}, Basis::kMole); }

std::vector<double> MaterialState::OfPhase(PhaseKind kind, PropertyId id, Basis basis) const {
  CheckPhase(kind);
  const Values& values = SlotOf(kind).values;
  const char* place = PhaseName(kind);
  if (InfoOf(id.property).dimension == Dimension::kAmount)
    return Flow(values, id, basis, Read(values, {Property::kPhaseFraction}, Basis::kMole, place).front(), place);
  std::vector<double> result = Read(values, id, id.property == Property::kPhaseFraction ? Basis::kMole : basis, place);
  if (id.property == Property::kPhaseFraction && basis == Basis::kMass) {
    const auto x = Read(values, {Property::kFraction}, Basis::kMole, place);
    result.front() *= MeanMolecularWeight(*package, x) / MeanMolecularWeight(*package, OverallComposition());
  }
  return result;
}

std::vector<double> MaterialState::Read(const Values& from, PropertyId id, Basis basis, const char* place) const {
  const auto found = from.find(id);
  if (found == from.end())
    throw HostError(kECapeThrmPropertyNotAvailable,
                    "property " + NameOf(id) + " of phase \"" + place + "\" is not set");
  const StoredValue& stored = found->second;
  if (id.property == Property::kFraction && basis == Basis::kMass) return ToMassFractions(stored.values);
  std::vector<double> values = stored.values;
  if (stored.basis != basis && basis != Basis::kNone) {
    const double M = MeanMolecularWeight(*package, Read(from, {Property::kFraction}, Basis::kMole, place));
    const double factor = BasisFactor(InfoOf(id.property).dimension, basis, M);
    for (double& value : values) value *= factor;
  }
  return values;
}

/// The total flow of a phase, whose share of all moles is given, or the flow of each of its compounds.
std::vector<double> MaterialState::Flow(const Values& from, PropertyId id, Basis basis, double share,
                                        const char* place) const {
  const double total = share * OverallScalar(Property::kTotalFlow, Basis::kMole);
  std::vector<double> flows = Read(from, {Property::kFraction}, Basis::kMole, place);
  for (std::size_t i = 0; i < flows.size(); ++i)
    flows[i] *= total * (basis == Basis::kMass ? 0.001 * package->CompoundAt(i).molecularWeight : 1.0);
  if (id.property == Property::kFlow) return flows;
  return {std::accumulate(flows.begin(), flows.end(), 0.0)};
}

std::vector<double> MaterialState::ToMoleFractions(std::vector<double> massFractions) const {
  double sum = 0;
  for (std::size_t i = 0; i < massFractions.size(); ++i)
    sum += massFractions[i] /= package->CompoundAt(i).molecularWeight;
  if (sum > 0)
    for (double& fraction : massFractions) fraction /= sum;
  return massFractions;
}

std::vector<double> MaterialState::ToMassFractions(std::vector<double> moleFractions) const {
  double sum = 0;
  for (std::size_t i = 0; i < moleFractions.size(); ++i)
    sum += moleFractions[i] *= package->CompoundAt(i).molecularWeight;
  if (sum > 0)
    for (double& fraction : moleFractions) fraction /= sum;
  return moleFractions;
}

}  // namespace morvelan::host
