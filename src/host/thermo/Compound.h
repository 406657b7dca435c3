#pragma once

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace morvelan::host {

inline constexpr double kGasConstant = 8.314462618;      // R [J/(mol K)], CODATA 2018
inline constexpr double kReferenceTemperature = 298.15;  // [K], zero of enthalpy and entropy
inline constexpr double kReferencePressure = 100000.0;   // [Pa], zero of entropy

/// One temperature range of a NASA-7 polynomial (McBride, Gordon, Reno, NASA TM-4513, 1993, eqs. 1-3): cp/R = a1 + a2 T
/// + a3 T^2 + a4 T^3 + a5 T^4, a6 and a7 the constants of h/R and s/R.
struct Nasa7Range {
  double lowest = 0.0;   // [K]
  double highest = 0.0;  // [K]
  std::array<double, 7> a{};
};

/// Formation properties at 298.15 K and 1 bar, from the elements in their reference states.
struct Formation {
  double enthalpy = 0.0;     // [J/mol]
  double gibbsEnergy = 0.0;  // [J/mol]
};

/// The data of a pure compound for a cubic equation of state.
struct CriticalPoint {
  double temperature = 0.0;  // [K]
  double pressure = 0.0;     // [Pa]
  double acentricFactor = 0.0;
};

/// Data of one compound. Values that are not known are absent.
struct Compound {
  std::string name;
  std::string formula;
  std::string cas;
  std::vector<std::string> aliases;
  std::vector<std::pair<std::string, double>> elements;  // symbol, atoms per molecule
  double molecularWeight = 0.0;                          // [g/mol]
  std::optional<CriticalPoint> critical;
  std::optional<double> criticalVolume;      // [m3/mol]
  std::optional<double> normalBoilingPoint;  // [K] at 101325 Pa
  std::vector<Nasa7Range> idealGas;          // ascending; empty when there are none
  std::optional<Formation> formationGas;
  std::optional<double> entropyGas;  // [J/(mol K)], absolute, 298.15 K and 1 bar
  std::vector<Nasa7Range> solid;     // ascending, steps at transitions; empty when there are none
  std::optional<Formation> formationSolid;
  std::optional<double> entropySolid;  // [J/(mol K)], absolute, 298.15 K
};

/// kij of the van der Waals mixing rule between two compounds; kij = kji.
struct BinaryInteraction {
  std::string a;
  std::string b;
  double kij = 0.0;
};

}  // namespace morvelan::host
