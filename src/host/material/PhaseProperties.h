#pragma once

#include <optional>
#include <vector>

#include "host/material/Property.h"
#include "host/thermo/PropertyPackage.h"

namespace morvelan::host {

/// Molar properties of one phase by their identifiers. What several properties share is calculated once.
///
/// Derivatives by moles are those of the amount times the property, per mole of phase; derivatives by mole
/// fractions take the fractions as independent, with the property extended in proportion to the amount, and
/// are the same numbers. Those of logFugacityCoefficient by moles are n x n, row by row.
class PhaseProperties {
 public:
  PhaseProperties(const PropertyPackage& package, PhaseKind kind, double T, double P, std::vector<double> x);

  /// Values in molar basis. Throws HostError (ECapeLimitedImpl) for what is not calculated, and what the
  /// package throws.
  [[nodiscard]] std::vector<double> Values(PropertyId id);

 private:
  [[nodiscard]] const MolarProperties& Molar();
  [[nodiscard]] const std::vector<double>& LnPhi();
  [[nodiscard]] const PhaseDerivatives& Derivatives();
  [[nodiscard]] std::vector<double> PlainValues(Property property);
  [[nodiscard]] double ByTemperature(Property property);
  [[nodiscard]] double ByPressure(Property property);
  [[nodiscard]] std::vector<double> Partial(Property property);
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

/// A molar property that has one value, of a phase or of all phases together. Throws HostError
/// (ECapeLimitedImpl).
[[nodiscard]] double MolarValue(const MolarProperties& values, Property property);

/// Mean molecular weight [kg/mol] of a composition.
[[nodiscard]] double MeanMolecularWeight(const PropertyPackage& package, std::span<const double> x);

/// True when all compounds of the package have formation data.
[[nodiscard]] bool HasFormationData(const PropertyPackage& package);

}  // namespace morvelan::host
