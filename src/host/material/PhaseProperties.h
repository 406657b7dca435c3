#pragma once

#include <optional>
#include <vector>

#include "host/material/Property.h"
#include "host/thermo/PropertyPackage.h"

namespace morvelan::host {

/// Molar properties of one phase by their identifiers. What several properties share is calculated once.
///
/// Derivatives by moles are those of the amount times the property, per mole of phase. Derivatives by mole fractions
/// take the fractions as independent and the property in proportion to the amount, which gives the same numbers. Those
/// of logFugacityCoefficient by moles are n x n, row by row.
class PhaseProperties {
 public:
  PhaseProperties(const PropertyPackage& package, PhaseKind kind, double T, double P, std::vector<double> x);

  /// Values in molar basis. Throws HostError (ECapeLimitedImpl) for a property that is not calculated, and what the
  /// package throws.
  [[nodiscard]] std::vector<double> Values(PropertyId id);

  [[nodiscard]] double Temperature() const { return T; }
  [[nodiscard]] const MolarProperties& Molar();
  [[nodiscard]] const PhaseDerivatives& Derivatives();

 private:
  [[nodiscard]] const std::vector<double>& LnPhi();
  [[nodiscard]] std::vector<double> PlainValues(Property property);
  [[nodiscard]] std::vector<double> Partial(Property property);
  [[nodiscard]] std::vector<double> PartialGibbsEnergy(Property enthalpy, Property entropy);
  [[nodiscard]] std::vector<double> FugacityDerivative(PropertyId id);

  const PropertyPackage& package;
  PhaseKind kind;
  double T;
  double P;
  std::vector<double> x;
  std::optional<MolarProperties> molar;
  std::optional<std::vector<double>> lnPhi;
  std::optional<PhaseDerivatives> derivatives;
};

/// A molar property that has one value, of a phase or of all phases together. Throws HostError (ECapeLimitedImpl).
[[nodiscard]] double MolarValue(const MolarProperties& values, Property property);

}  // namespace morvelan::host
