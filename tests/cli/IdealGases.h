#pragma once

#include <map>
#include <string>

namespace morvelan::test {

/// Amounts of compounds [mol/s], or a reaction's coefficients [1].
using Amounts = std::map<std::string, double>;

inline constexpr double kGasConstant = 8.314462618;     // [J/(mol K)], that of the compound data
inline constexpr double kStandardTemperature = 298.15;  // [K]
inline constexpr double kStandardPressure = 100000.0;   // [Pa]

/// Ideal gases as the compound data describes them, integrated here again for tests to compare with:
/// h = Hf + integral of cp dT and s = (Hf - Gf) / 298.15 K + integral of cp / T dT, both from 298.15 K.

/// [J/mol]
[[nodiscard]] double GasEnthalpy(const std::string& compound, double T);
/// At 1 bar [J/mol].
[[nodiscard]] double GasGibbsEnergy(const std::string& compound, double T);
/// [W]
[[nodiscard]] double GasEnthalpyFlow(const Amounts& flows, double T);

/// How many atoms of each element a molecule has, from its formula in the compound data.
[[nodiscard]] const Amounts& AtomsOf(const std::string& compound);

}  // namespace morvelan::test
