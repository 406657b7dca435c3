#pragma once

#include <string>
#include <vector>

#include "com/Values.h"
#include "host/thermo/PropertyPackage.h"

namespace morvelan::host {

/// The names of the compounds' constants: "molecularWeight", "criticalTemperature" and so on.
[[nodiscard]] std::vector<std::string> CompoundConstantNames();

/// Constants of compounds: the values of the first constant for all compounds, then those of the second, in SI units
/// except the molecular weight [g/mol]. A constant that is not known of a compound is an empty element. Throws
/// HostError (ECapeInvalidArgument) for an unknown name.
[[nodiscard]] com::Variant CompoundConstants(const PropertyPackage& package, const std::vector<std::string>& names,
                                             const std::vector<std::size_t>& compounds);

/// Positions of compounds by name or CAS number in any ASCII case; of all compounds when no names are given. Throws
/// HostError (ECapeInvalidArgument) for an unknown one.
[[nodiscard]] std::vector<std::size_t> CompoundPositions(const PropertyPackage& package,
                                                         const std::vector<std::string>& names);

/// Constants of nature by name, in SI units. Throws HostError (ECapeInvalidArgument) for an unknown one.
[[nodiscard]] double UniversalConstant(const std::string& name);
[[nodiscard]] std::vector<std::string> UniversalConstantNames();

}  // namespace morvelan::host
