#include "host/material/Property.h"

#include <algorithm>

#include "com/Text.h"
#include "host/objects/HostError.h"

namespace morvelan::host {
namespace {

struct DerivativeName {
  Derivative derivative;
  const char* suffix;
};

constexpr DerivativeName kDerivativeNames[] = {
    {Derivative::kTemperature, ".Dtemperature"},
    {Derivative::kPressure, ".Dpressure"},
    {Derivative::kMoles, ".Dmoles"},
    {Derivative::kMolFraction, ".DmolFraction"},
};

constexpr Derivative kAllDerivatives[] = {Derivative::kTemperature, Derivative::kPressure, Derivative::kMoles,
                                          Derivative::kMolFraction};
constexpr Derivative kByMoles[] = {Derivative::kTemperature, Derivative::kPressure, Derivative::kMoles};
constexpr Derivative kByState[] = {Derivative::kTemperature, Derivative::kPressure};
constexpr std::span<const Derivative> kNone;

// Columns: one value per compound; calculated for a phase; calculated overall; needs formation data; derivatives.
constexpr PropertyInfo kProperties[] = {
    {Property::kTemperature, "temperature", Dimension::kPlain, false, false, false, false, kNone},
    {Property::kPressure, "pressure", Dimension::kPlain, false, false, false, false, kNone},
    {Property::kFraction, "fraction", Dimension::kFractions, true, false, false, false, kNone},
    {Property::kFlow, "flow", Dimension::kAmount, true, false, false, false, kNone},
    {Property::kTotalFlow, "totalFlow", Dimension::kAmount, false, false, false, false, kNone},
    {Property::kPhaseFraction, "phaseFraction", Dimension::kFractions, false, false, false, false, kNone},
    {Property::kMolecularWeight, "molecularWeight", Dimension::kPlain, false, true, true, false, kNone},
    {Property::kEnthalpy, "enthalpy", Dimension::kPerAmount, false, true, true, false, kAllDerivatives},
    {Property::kEnthalpyF, "enthalpyF", Dimension::kPerAmount, false, true, true, true, kAllDerivatives},
    {Property::kEntropy, "entropy", Dimension::kPerAmount, false, true, true, false, kAllDerivatives},
    {Property::kEntropyF, "entropyF", Dimension::kPerAmount, false, true, true, true, kAllDerivatives},
    {Property::kGibbsEnergy, "gibbsEnergy", Dimension::kPerAmount, false, true, true, false, kAllDerivatives},
    {Property::kGibbsEnergyF, "gibbsEnergyF", Dimension::kPerAmount, false, true, true, true, kAllDerivatives},
    {Property::kVolume, "volume", Dimension::kPerAmount, false, true, true, false, kAllDerivatives},
    {Property::kDensity, "density", Dimension::kAmountPerVolume, false, true, true, false, kByState},
    {Property::kHeatCapacityCp, "heatCapacityCp", Dimension::kPerAmount, false, true, true, false, kNone},
    {Property::kCompressibilityFactor, "compressibilityFactor", Dimension::kPlain, false, true, true, false, kNone},
    {Property::kCompressibility, "compressibility", Dimension::kPlain, false, true, false, false, kNone},
    {Property::kFugacityCoefficient, "fugacityCoefficient", Dimension::kPlain, true, true, false, false, kByState},
    {Property::kLogFugacityCoefficient, "logFugacityCoefficient", Dimension::kPlain, true, true, false, false,
     kByMoles},
    {Property::kFugacity, "fugacity", Dimension::kPlain, true, true, false, false, kNone},
};

bool IsPerAmountOfCompound(PropertyId id) {
  return id.derivative == Derivative::kMoles || id.derivative == Derivative::kMolFraction;
}

}  // namespace

std::span<const PropertyInfo> Properties() { return kProperties; }

const PropertyInfo& InfoOf(Property property) {
  return *std::ranges::find(kProperties, property, &PropertyInfo::property);
}

PropertyId PropertyByName(std::string_view name) {
  const std::size_t end = std::min(name.find('.'), name.size());
  const std::string_view suffix = name.substr(end);
  Derivative derivative = Derivative::kNone;
  for (const DerivativeName& candidate : kDerivativeNames)
    if (com::EqualNoCase(candidate.suffix, suffix)) derivative = candidate.derivative;
  const bool isUnknownSuffix = !suffix.empty() && derivative == Derivative::kNone;
  for (const PropertyInfo& info : kProperties)
    if (com::EqualNoCase(info.name, name.substr(0, end)) && !isUnknownSuffix && (suffix.empty() || info.isCalculated))
      return {info.property, derivative};
  throw HostError(kECapeInvalidArgument, "property \"" + std::string(name) + "\" is unknown");
}

std::string NameOf(PropertyId id) {
  std::string name = InfoOf(id.property).name;
  for (const DerivativeName& candidate : kDerivativeNames)
    if (candidate.derivative == id.derivative) name += candidate.suffix;
  return name;
}

bool NeedsBasis(PropertyId id) { return InfoOf(id.property).dimension != Dimension::kPlain; }

Basis BasisByName(std::string_view name, PropertyId id) {
  const bool needed = NeedsBasis(id);
  if (com::EqualNoCase(name, "Mole")) return needed ? Basis::kMole : Basis::kNone;
  if (com::EqualNoCase(name, "Mass")) {
    if (needed && IsPerAmountOfCompound(id))
      throw HostError(kECapeLimitedImpl, "property " + NameOf(id) + " has no mass basis here");
    return needed ? Basis::kMass : Basis::kNone;
  }
  if (!needed && (name.empty() || com::EqualNoCase(name, "UNDEFINED"))) return Basis::kNone;
  throw HostError(kECapeInvalidArgument,
                  "basis \"" + std::string(name) + "\" of property " + NameOf(id) + " must be \"Mole\" or \"Mass\"");
}

bool IsCalculated(PropertyId id) {
  const PropertyInfo& info = InfoOf(id.property);
  if (id.derivative == Derivative::kNone) return info.isCalculated;
  return std::ranges::find(info.derivatives, id.derivative) != info.derivatives.end();
}

std::size_t CountOf(PropertyId id, std::size_t compounds) {
  const bool perCompound = InfoOf(id.property).perCompound;
  if (!IsPerAmountOfCompound(id)) return perCompound ? compounds : 1;
  return perCompound ? compounds * compounds : compounds;
}

}  // namespace morvelan::host
