#include "host/reactions/ReactionConditions.h"

#include <cmath>

#include "com/Text.h"
#include "host/file/NumberText.h"
#include "host/material/MaterialState.h"
#include "host/objects/HostError.h"

namespace morvelan::host {
namespace {

/// The value of a property that has one, which must be above zero.
double PositiveValue(const std::vector<double>& values, const char* property) {
  if (values.size() != 1)
    throw HostError(kECapeInvalidArgument, std::string("the material gives ") + std::to_string(values.size()) +
                                               " values of property " + property + ", one is expected");
  if (!(values.front() > 0) || !std::isfinite(values.front()))
    throw HostError(kECapeOutOfBounds, std::string("the material's ") + property + " is " + NumberText(values.front()) +
                                           ", it must be above 0");
  return values.front();
}

std::size_t PositionOf(const PropertyPackage& package, const std::string& name) {
  for (std::size_t i = 0; i < package.CompoundCount(); ++i)
    if (com::EqualNoCase(package.CompoundAt(i).name, name)) return i;
  throw HostError(kECapeInvalidArgument, "the material's compound \"" + name + "\" is unknown to the reactions");
}

}  // namespace

double PhaseConditions::Condition(const char* property) const {
  std::vector<double> values;
  try {
    values = reader.Values(property, PhaseName(phase));
  } catch (const HostError&) {
    values = reader.Values(property, "Overall");
  }
  return PositiveValue(values, property);
}

double PhaseConditions::Temperature() {
  if (!temperature) temperature = Condition("temperature");
  return *temperature;
}

double PhaseConditions::Pressure() {
  if (!pressure) pressure = Condition("pressure");
  return *pressure;
}

const std::vector<double>& PhaseConditions::MoleFractions() {
  if (!fractions.empty()) return fractions;
  const std::vector<double> given = reader.Values("fraction", PhaseName(phase));
  const std::vector<std::string> compounds = reader.Compounds();
  if (given.size() != compounds.size())
    throw HostError(kECapeInvalidArgument, "the material gives " + std::to_string(given.size()) +
                                               " mole fractions of its " + std::to_string(compounds.size()) +
                                               " compounds");
  std::vector<double> sorted(package.CompoundCount(), 0.0);
  for (std::size_t i = 0; i < given.size(); ++i) {
    if (!std::isfinite(given[i]))
      throw HostError(kECapeInvalidArgument, "the mole fraction of \"" + compounds[i] + "\" is not set");
    sorted[PositionOf(package, compounds[i])] = given[i];
  }
  fractions = std::move(sorted);
  return fractions;
}

double PhaseConditions::MolarDensity() {
  if (!density) {
    reader.Calculate("density", PhaseName(phase));
    density = PositiveValue(reader.Values("density", PhaseName(phase)), "density");
  }
  return *density;
}

double PhaseConditions::AmountPerFraction(ConcentrationBasis basis, std::size_t compound) {
  const double M = package.CompoundAt(compound).molecularWeight / 1000;  // [kg/mol]
  switch (basis) {
    case ConcentrationBasis::kMolarity:
      return MolarDensity();
    case ConcentrationBasis::kConcentration:
      return M * MolarDensity();
    case ConcentrationBasis::kMoleFraction:
      return 1;
    case ConcentrationBasis::kMassFraction:
      break;
  }
  return M / package.MeanMolecularWeight(MoleFractions());
}

}  // namespace morvelan::host
