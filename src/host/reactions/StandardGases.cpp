#include "host/reactions/StandardGases.h"

namespace morvelan::host {

StandardGases::StandardGases(const PropertyPackage& package) {
  for (std::size_t i = 0; i < package.CompoundCount(); ++i) {
    const Compound& compound = package.CompoundAt(i);
    if (compound.formationGas)
      gases.push_back(Gas{*compound.formationGas, IdealGasCurve(compound.idealGas)});
    else
      gases.emplace_back();
  }
}

double StandardGases::Enthalpy(std::span<const CompoundNumber> stoichiometry, double T) const {
  double sum = 0;
  for (const auto& [compound, nu] : stoichiometry) {
    const Gas& gas = *gases[compound];
    sum += nu * (gas.formation.enthalpy + kGasConstant * gas.curve.At(T).enthalpy);
  }
  return sum;
}

double StandardGases::GibbsEnergy(std::span<const CompoundNumber> stoichiometry, double T) const {
  double sum = 0;
  for (const auto& [compound, nu] : stoichiometry) {
    const auto& [formation, curve] = *gases[compound];
    const IdealGasValues ideal = curve.At(T);
    const double entropy = (formation.enthalpy - formation.gibbsEnergy) / kReferenceTemperature;
    sum += nu * (formation.enthalpy - T * entropy + kGasConstant * (ideal.enthalpy - T * ideal.entropy));
  }
  return sum;
}

}  // namespace morvelan::host
