#pragma once

#include <compare>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace morvelan::host {

enum class Property {
  kTemperature,
  kPressure,
  kFraction,
  kFlow,
  kTotalFlow,
  kPhaseFraction,
  kMolecularWeight,
  kEnthalpy,
  kEnthalpyF,
  kEntropy,
  kEntropyF,
  kGibbsEnergy,
  kGibbsEnergyF,
  kVolume,
  kDensity,
  kHeatCapacityCp,
  kCompressibilityFactor,
  kCompressibility,
  kFugacityCoefficient,
  kLogFugacityCoefficient,
  kFugacity,
};

/// By temperature [1/K] at constant pressure and composition, by pressure [1/Pa], by the amount of each compound, by
/// the mole fraction of each compound.
enum class Derivative { kNone, kTemperature, kPressure, kMoles, kMolFraction };

struct PropertyId {
  Property property;
  Derivative derivative = Derivative::kNone;

  friend auto operator<=>(const PropertyId&, const PropertyId&) = default;
};

enum class Basis { kNone, kMole, kMass };

/// How a property's values depend on the basis.
enum class Dimension {
  kPlain,            // not at all: [K], [Pa], a ratio
  kPerAmount,        // [J/mol], [J/kg]
  kAmountPerVolume,  // [mol/m3], [kg/m3]
  kAmount,           // [mol/s], [kg/s]
  kFractions,        // mole or mass fractions
};

struct PropertyInfo {
  Property property;
  const char* name;
  Dimension dimension;
  bool perCompound;   // one value per compound, else one value
  bool isCalculated;  // from a phase's temperature, pressure and composition
  bool isCalculatedOverall;
  bool isFromFormation;                     // needs the compounds' formation data
  std::span<const Derivative> derivatives;  // that are calculated
};

[[nodiscard]] std::span<const PropertyInfo> Properties();
[[nodiscard]] const PropertyInfo& InfoOf(Property property);

/// A property by its name, derivatives by the name with ".Dtemperature" and so on at its end, in any ASCII case. Throws
/// HostError (ECapeInvalidArgument) when there is none.
[[nodiscard]] PropertyId PropertyByName(std::string_view name);
[[nodiscard]] std::string NameOf(PropertyId id);

[[nodiscard]] bool NeedsBasis(PropertyId id);

/// "Mole" or "Mass" in any ASCII case. A property that has no basis takes any of them and the empty text too. Throws
/// HostError (ECapeInvalidArgument).
[[nodiscard]] Basis BasisByName(std::string_view name, PropertyId id);

/// True when a property can be calculated for a phase.
[[nodiscard]] bool IsCalculated(PropertyId id);

/// The number of values for `compounds` compounds.
[[nodiscard]] std::size_t CountOf(PropertyId id, std::size_t compounds);

}  // namespace morvelan::host
