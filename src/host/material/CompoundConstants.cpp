#include "host/material/CompoundConstants.h"

#include <algorithm>
#include <numeric>

#include "com/Text.h"
#include "host/file/Nearest.h"
#include "host/objects/HostError.h"

namespace morvelan::host {
namespace {

com::Variant NumberOrEmpty(std::optional<double> value) { return value ? com::MakeDouble(*value) : com::Variant(); }

com::Variant TextOrEmpty(const std::string& text) { return text.empty() ? com::Variant() : com::MakeString(text); }

/// A member of optional data, absent with it.
template <class Data>
com::Variant MemberOf(const std::optional<Data>& data, double Data::*member) {
  return NumberOrEmpty(data ? std::optional((*data).*member) : std::nullopt);
}

struct Constant {
  const char* name;
  com::Variant (*read)(const Compound& compound);
};

constexpr Constant kCompoundConstants[] = {
    {"molecularWeight", [](const Compound& c) { return NumberOrEmpty(c.molecularWeight); }},
    {"chemicalFormula", [](const Compound& c) { return TextOrEmpty(c.formula); }},
    {"casRegistryNumber", [](const Compound& c) { return TextOrEmpty(c.cas); }},
    {"criticalTemperature", [](const Compound& c) { return MemberOf(c.critical, &CriticalPoint::temperature); }},
    {"criticalPressure", [](const Compound& c) { return MemberOf(c.critical, &CriticalPoint::pressure); }},
    {"acentricFactor", [](const Compound& c) { return MemberOf(c.critical, &CriticalPoint::acentricFactor); }},
    {"criticalVolume", [](const Compound& c) { return NumberOrEmpty(c.criticalVolume); }},
    {"normalBoilingPoint", [](const Compound& c) { return NumberOrEmpty(c.normalBoilingPoint); }},
    {"standardFormationEnthalpyGas", [](const Compound& c) { return MemberOf(c.formationGas, &Formation::enthalpy); }},
    {"standardFormationGibbsEnergyGas",
     [](const Compound& c) { return MemberOf(c.formationGas, &Formation::gibbsEnergy); }},
    {"standardEntropyGas", [](const Compound& c) { return NumberOrEmpty(c.entropyGas); }},
    {"standardFormationEnthalpySolid",
     [](const Compound& c) { return MemberOf(c.formationSolid, &Formation::enthalpy); }},
    {"standardFormationGibbsEnergySolid",
     [](const Compound& c) { return MemberOf(c.formationSolid, &Formation::gibbsEnergy); }},
    {"standardEntropySolid", [](const Compound& c) { return NumberOrEmpty(c.entropySolid); }},
};

struct NatureConstant {
  const char* name;
  double value;
};

// CODATA 2018. All are exact by definition, except the gas constant, which is rounded.
constexpr NatureConstant kNatureConstants[] = {
    {"avogadroConstant", 6.02214076e23},         // [1/mol]
    {"boltzmannConstant", 1.380649e-23},         // [J/K]
    {"speedOfLightInVacuum", 299792458.0},       // [m/s]
    {"standardAccelerationOfGravity", 9.80665},  // [m/s2]
    {"molarGasConstant", kGasConstant},          // [J/(mol K)]
};

template <class Entry>
const Entry& FindByName(std::span<const Entry> entries, const std::string& name, const char* what) {
  const auto found =
      std::ranges::find_if(entries, [&](const Entry& entry) { return com::EqualNoCase(entry.name, name); });
  if (found == entries.end())
    throw HostError(kECapeInvalidArgument, std::string(what) + " \"" + name + "\" is unknown");
  return *found;
}

}  // namespace

std::vector<std::string> CompoundConstantNames() { return NamesOf(kCompoundConstants); }

com::Variant CompoundConstants(const PropertyPackage& package, const std::vector<std::string>& names,
                               const std::vector<std::size_t>& compounds) {
  std::vector<com::Variant> values;
  for (const std::string& name : names) {
    const Constant& constant = FindByName<Constant>(kCompoundConstants, name, "compound constant");
    for (const std::size_t i : compounds) values.push_back(constant.read(package.CompoundAt(i)));
  }
  return com::MakeVariants(values);
}

std::vector<std::size_t> CompoundPositions(const PropertyPackage& package, const std::vector<std::string>& names) {
  std::vector<std::size_t> positions(names.empty() ? package.CompoundCount() : names.size());
  std::iota(positions.begin(), positions.end(), std::size_t{0});
  for (std::size_t i = 0; i < names.size(); ++i) {
    std::size_t found = 0;
    const auto matches = [&](const Compound& compound) {
      return com::EqualNoCase(compound.name, names[i]) || com::EqualNoCase(compound.cas, names[i]);
    };
    while (found < package.CompoundCount() && !matches(package.CompoundAt(found))) ++found;
    if (found == package.CompoundCount())
      throw HostError(kECapeInvalidArgument, "compound \"" + names[i] + "\" is unknown to this material");
    positions[i] = found;
  }
  return positions;
}

double UniversalConstant(const std::string& name) {
  return FindByName<NatureConstant>(kNatureConstants, name, "universal constant").value;
}

std::vector<std::string> UniversalConstantNames() { return NamesOf(kNatureConstants); }

}  // namespace morvelan::host
