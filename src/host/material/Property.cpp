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

constexpr Derivative kAll[] = {Derivative::kTemperature, Derivative::kPressure, Derivative::kMoles,
                               Derivative::kMolFraction};
constexpr Derivative kByMoles[] = {Derivative::kTemperature, Derivative::kPressure, Derivative::kMoles};
constexpr Derivative kByState[] = {Derivative::kTemperature, Derivative::kPressure};
constexpr std::span<const Derivative> kNo;

using enum Property;
using enum Dimension;

constexpr PropertyInfo kProperties[] = {
    {kTemperature, "temperature", kPlain, false, false, false, false, kNo},
    {kPressure, "pressure", kPlain, false, false, false, false, kNo},
    {kFraction, "fraction", kFractions, true, false, false, false, kNo},
    {kFlow, "flow", kAmount, true, false, false, false, kNo},
    {kTotalFlow, "totalFlow", kAmount, false, false, false, false, kNo},
    {kPhaseFraction, "phaseFraction", kFractions, false, false, false, false, kNo},
    {kMolecularWeight, "molecularWeight", kPlain, false, true, true, false, kNo},
    {kEnthalpy, "enthalpy", kPerAmount, false, true, true, false, kAll},
    {kEnthalpyF, "enthalpyF", kPerAmount, false, true, true, true, kAll},
    {kEntropy, "entropy", kPerAmount, false, true, true, false, kAll},
    {kEntropyF, "entropyF", kPerAmount, false, true, true, true, kAll},
    {kGibbsEnergy, "gibbsEnergy", kPerAmount, false, true, true, false, kAll},
    {kGibbsEnergyF, "gibbsEnergyF", kPerAmount, false, true, true, true, kAll},
    {kVolume, "volume", kPerAmount, false, true, true, false, kAll},
    {kDensity, "density", kAmountPerVolume, false, true, true, false, kByState},
    {kHeatCapacityCp, "heatCapacityCp", kPerAmount, false, true, true, false, kNo},
    {kCompressibilityFactor, "compressibilityFactor", kPlain, false, true, true, false, kNo},
    {kCompressibility, "compressibility", kPlain, false, true, false, false, kNo},
    {kFugacityCoefficient, "fugacityCoefficient", kPlain, true, true, false, false, kByState},
    {kLogFugacityCoefficient, "logFugacityCoefficient", kPlain, true, true, false, false, kByMoles},
    {kFugacity, "fugacity", kPlain, true, true, false, false, kNo},
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
  Derivative derivative = Derivative::kNone;
  const std::size_t dot = name.find('.');
  const auto* suffix = std::ranges::find_if(kDerivativeNames, [&](const DerivativeName& candidate) {
    return dot != std::string_view::npos && com::EqualNoCase(candidate.suffix, name.substr(dot));
  });
  if (suffix != std::end(kDerivativeNames)) derivative = suffix->derivative;
  const auto* info = std::ranges::find_if(kProperties, [&](const PropertyInfo& candidate) {
    return com::EqualNoCase(candidate.name, name.substr(0, dot));
  });
  const bool isDerivative = dot != std::string_view::npos;
  if (info == std::end(kProperties) || isDerivative != (derivative != Derivative::kNone) ||
      (isDerivative && !info->isCalculated))
    throw HostError(kECapeInvalidArgument, "property \"" + std::string(name) + "\" is unknown");
  return {info->property, derivative};
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
