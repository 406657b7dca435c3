#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/thermo/Compound.h"
#include "host/thermo/Equilibrium.h"

namespace morvelan::host {

class CompoundData;
class FluidModel;

/// Properties of one phase, or of all phases together, per mole. The F-properties count from the elements in
/// their reference states at 298.15 K; they are absent when a compound has no formation data.
struct MolarProperties {
  double enthalpy = 0.0;         // [J/mol], zero for the pure ideal gases at 298.15 K
  double entropy = 0.0;          // [J/(mol K)], zero for the pure ideal gases at 298.15 K and 1 bar
  double gibbsEnergy = 0.0;      // [J/mol] = enthalpy - T entropy
  double volume = 0.0;           // [m3/mol]
  double density = 0.0;          // [mol/m3]
  double compressibility = 0.0;  // P V / (R T)
  double heatCapacityCp = 0.0;   // [J/(mol K)]; of all phases together: at fixed amount of each phase
  std::optional<double> enthalpyF;
  std::optional<double> entropyF;
  std::optional<double> gibbsEnergyF;
};

/// First derivatives of a phase's properties. n dlnPhi_i/dn_j stands in row i, column j of a row-major n x n
/// array. A partial molar value is the derivative of the amount times the molar property with respect to n_i
/// at constant T and P.
struct PhaseDerivatives {
  double volumeDT = 0.0;                // [m3/(mol K)]
  double volumeDP = 0.0;                // [m3/(mol Pa)]
  double enthalpyDP = 0.0;              // [J/(mol Pa)]; enthalpy by T is heatCapacityCp
  double entropyDP = 0.0;               // [J/(mol K Pa)]; entropy by T is heatCapacityCp / T
  std::vector<double> partialEnthalpy;  // [J/mol]
  std::vector<double> partialEntropy;   // [J/(mol K)]; absent compounds: infinite
  std::vector<double> partialVolume;    // [m3/mol]
  std::vector<double> lnPhiDT;          // [1/K]
  std::vector<double> lnPhiDP;          // [1/Pa]
  std::vector<double> lnPhiDn;          // [1]
};

/// What a package is made of. Names are those of the compound data (name, alias or CAS number, any ASCII
/// case).
struct PackageOptions {
  std::string model = "peng-robinson";          // or "ideal-gas" (vapour only)
  std::vector<std::string> compounds;           // in the order of every composition
  std::vector<BinaryInteraction> interactions;  // override the built-in pairs
  bool builtInInteraction = true;
};

/// Thermodynamic properties and phase equilibria of mixtures of chosen compounds. Immutable: share it by
/// std::shared_ptr<const PropertyPackage>, from any number of threads.
///
/// Compositions are mole fractions, one per compound in the package's order, that sum to one within 1e-6 (the
/// remainder is scaled away); zeros are allowed. Temperatures are in K, pressures in Pa. Every operation
/// throws std::invalid_argument for an input that is not finite or out of range, and std::runtime_error when
/// a state that was asked for does not exist or was not found.
///
/// Equilibria have at most one vapour and one liquid phase: the package does not report a second liquid. A
/// liquid that would split in two stays one liquid; a vapour over two liquids is reported with that one of
/// them that gives the lower Gibbs energy. A single phase is labelled by its density and attraction (IsLiquid
/// in PengRobinson.h): far above critical temperatures it is a vapour, however dense.
class PropertyPackage {
 public:
  explicit PropertyPackage(std::shared_ptr<const FluidModel> fluid);

  [[nodiscard]] std::size_t CompoundCount() const;
  [[nodiscard]] const Compound& CompoundAt(std::size_t index) const;
  [[nodiscard]] bool HasLiquid() const;  // false for the ideal gas

  /// Equilibrium at T and P: global stability by the tangent plane, then the split.
  [[nodiscard]] Equilibrium FlashTP(double T, double P, std::span<const double> z) const;

  /// Equilibrium at P and molar enthalpy H [J/mol]. H rises with T at constant P, so that T is unique.
  [[nodiscard]] Equilibrium FlashPH(double P, double H, std::span<const double> z) const;

  /// Equilibrium at P and molar entropy S [J/(mol K)].
  [[nodiscard]] Equilibrium FlashPS(double P, double S, std::span<const double> z) const;

  /// Equilibrium at T and molar enthalpy H [J/mol]. Enthalpy falls with pressure through vapour and boiling
  /// to a minimum at the bubble point of a cold liquid or in a dense fluid, and rises beyond it. Of two
  /// states that of lower pressure is returned, but a liquid below 10 MPa goes before one of lower pressure
  /// that has just begun to boil. An ideal gas has no answer.
  [[nodiscard]] Equilibrium FlashTH(double T, double H, std::span<const double> z) const;

  /// Equilibrium at P with the molar fraction `vaporFraction` of vapour, from 0 (bubble point) to 1 (dew
  /// point). Both phases are reported, an incipient one with fraction 0. Of several solutions that one is
  /// returned that is met first when the line of constant vapour fraction is followed upwards from low
  /// pressure.
  [[nodiscard]] Equilibrium FlashPVF(double P, double vaporFraction, std::span<const double> z) const;

  /// The same at T.
  [[nodiscard]] Equilibrium FlashTVF(double T, double vaporFraction, std::span<const double> z) const;

  /// Properties of a phase of composition x. Where the equation of state has one volume only at these
  /// conditions vapour and liquid are the same.
  [[nodiscard]] MolarProperties Properties(PhaseKind kind, double T, double P, std::span<const double> x) const;

  /// Natural logarithms of the fugacity coefficients, one per compound, absent ones (at infinite dilution)
  /// included.
  [[nodiscard]] std::vector<double> LnPhi(PhaseKind kind, double T, double P, std::span<const double> x) const;

  [[nodiscard]] PhaseDerivatives Derivatives(PhaseKind kind, double T, double P, std::span<const double> x) const;

  /// Properties of all phases of an equilibrium together, per mole of mixture.
  [[nodiscard]] MolarProperties Overall(const Equilibrium& equilibrium) const;

  /// enthalpyF - enthalpy [J/mol] at a composition; throws std::runtime_error when a compound that is present
  /// has no formation data.
  [[nodiscard]] double FormationEnthalpy(std::span<const double> x) const;

  /// entropyF - entropy [J/(mol K)] at a composition: formation entropy is (H_f - G_f) / 298.15 K.
  [[nodiscard]] double FormationEntropy(std::span<const double> x) const;

 private:
  [[nodiscard]] Equilibrium FlashVaporFraction(bool isPressure, double value, double vaporFraction,
                                               std::span<const double> z) const;
  [[nodiscard]] MolarProperties Complete(MolarProperties known, double T, double P, std::span<const double> x) const;
  [[nodiscard]] bool HasFormation(std::span<const double> x) const;
  [[nodiscard]] double SumFormation(std::span<const double> x, double (*of)(const Formation&)) const;

  std::shared_ptr<const FluidModel> fluid;
};

/// Makes a package. Throws std::runtime_error naming the model, compound or pair that cannot be used.
[[nodiscard]] std::shared_ptr<const PropertyPackage> MakePropertyPackage(const CompoundData& data,
                                                                         const PackageOptions& options);

}  // namespace morvelan::host
