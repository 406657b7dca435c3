#pragma once

#include <optional>
#include <span>
#include <vector>

#include "host/reactions/Reaction.h"
#include "host/thermo/IdealGasCurve.h"
#include "host/thermo/PropertyPackage.h"

namespace morvelan::host {

/// Formation properties of a package's compounds as pure ideal gases at 1 bar and any temperature. Like the package's
/// F-properties they count from the elements in their reference states at 298.15 K.
class StandardGases {
 public:
  explicit StandardGases(const PropertyPackage& package);

  [[nodiscard]] bool HasFormation(std::size_t compound) const { return gases[compound].has_value(); }

  /// Sum of coefficient times enthalpy [J/mol]; all compounds must have formation properties.
  [[nodiscard]] double Enthalpy(std::span<const CompoundNumber> stoichiometry, double T) const;
  /// The same of the Gibbs energy [J/mol].
  [[nodiscard]] double GibbsEnergy(std::span<const CompoundNumber> stoichiometry, double T) const;

 private:
  struct Gas {
    Formation formation;
    IdealGasCurve curve;
  };

  std::vector<std::optional<Gas>> gases;
};

}  // namespace morvelan::host
