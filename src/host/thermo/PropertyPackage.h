#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "host/thermo/Compound.h"
#include "host/thermo/Equilibrium.h"

namespace morvelan::host {

class FluidModel;

/// Properties of one phase, or of all phases together, per mole. The F-properties count from the elements in their
/// reference states at 298.15 K. They are absent when a compound has no formation data.
struct MolarProperties {
  double enthalpy = 0.0;         // [J/mol], zero for the pure ideal gases at 298.15 K
  double entropy = 0.0;          // [J/(mol K)], zero for the pure ideal gases at 298.15 K and 1 bar
  double gibbsEnergy = 0.0;      // [J/mol] = enthalpy - T entropy
  double volume = 0.0;           // [m3/mol]
  double density = 0.0;          // [mol/m3]
  double compressibility = 0.0;  // P V / (R T)
  double heatCapacityCp = 0.0;   // [J/(mol K)]; of all phases together: at fixed amount of each phase
  std::optional<double> enthalpyF = {};
  std::optional<double> entropyF = {};
  std::optional<double> gibbsEnergyF = {};
};

/// First derivatives of a phase's properties. n dlnPhi_i/dn_j stands in row i, column j of a row-major n x n array. A
/// partial molar value is the derivative of the amount times the molar property with respect to n_i at constant T and
/// P.
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

/// Thermodynamic properties and phase equilibria of mixtures of chosen compounds. Immutable: share it by
/// std::shared_ptr<const PropertyPackage>, from any number of threads.
///
/// Compositions are mole fractions, one per compound in the package's order. They must sum to one within 1e-6 and are
/// scaled to one; zeros are allowed. Temperatures are in K, pressures in Pa. Every operation throws
/// std::invalid_argument for an input that is not finite or out of range, and std::runtime_error for a state that does
/// not exist or was not found.
///
/// Equilibria have at most one vapor and one liquid phase; a second liquid is not reported. A liquid that would split
/// in two is reported as one liquid. A vapor over two liquids is reported with the liquid that gives the lower Gibbs
/// energy. The density and the attraction of a single phase decide whether it is called liquid (IsLiquid in
/// PengRobinson.h); far above critical temperatures every phase is a vapor.
class PropertyPackage {
 public:
  explicit PropertyPackage(std::shared_ptr<const FluidModel> fluid);

  [[nodiscard]] std::size_t CompoundCount() const;
  [[nodiscard]] const Compound& CompoundAt(std::size_t index) const;
  [[nodiscard]] bool HasLiquid() const;  // false for the ideal gas
  /// True when all compounds have formation properties.
  [[nodiscard]] bool HasFormationData() const;
  /// Mean molecular weight [kg/mol] of a composition.
  [[nodiscard]] double MeanMolecularWeight(std::span<const double> x) const;

  /// Equilibrium at T and P: stability by the tangent plane criterion, then the split.
  [[nodiscard]] Equilibrium FlashTP(double T, double P, std::span<const double> z) const;

  /// Equilibrium at P and molar enthalpy H [J/mol]. H rises with T at constant P, so that T is unique.
  [[nodiscard]] Equilibrium FlashPH(double P, double H, std::span<const double> z) const;

  /// Equilibrium at P and molar entropy S [J/(mol K)].
  [[nodiscard]] Equilibrium FlashPS(double P, double S, std::span<const double> z) const;

  /// Equilibrium at T and molar enthalpy H [J/mol]. At constant T the enthalpy falls with pressure in a vapor and while
  /// it condenses. It has its minimum at the bubble point of a cold liquid or in a dense fluid, and rises above that
  /// pressure. Of two states the one of lower pressure is returned; but if that state is partly vapor, a liquid below
  /// 10 MPa is preferred. Throws for an ideal gas.
  [[nodiscard]] Equilibrium FlashTH(double T, double H, std::span<const double> z) const;

  /// Equilibrium at P with the molar fraction `vaporFraction` of vapor, from 0 (bubble point) to 1 (dew point). Both
  /// phases are reported, an incipient one with fraction 0. Of several solutions the first one on the line of constant
  /// vapor fraction is returned, counted from low pressure.
  [[nodiscard]] Equilibrium FlashPVF(double P, double vaporFraction, std::span<const double> z) const;

  /// The same at T.
  [[nodiscard]] Equilibrium FlashTVF(double T, double vaporFraction, std::span<const double> z) const;

  /// Properties of a phase of composition x. Vapor and liquid are the same where the equation of state has one volume.
  [[nodiscard]] MolarProperties Properties(PhaseKind kind, double T, double P, std::span<const double> x) const;

  /// Natural logarithms of the fugacity coefficients, one per compound; at infinite dilution for absent compounds.
  [[nodiscard]] std::vector<double> LnPhi(PhaseKind kind, double T, double P, std::span<const double> x) const;

  [[nodiscard]] PhaseDerivatives Derivatives(PhaseKind kind, double T, double P, std::span<const double> x) const;

  /// Properties of all phases of an equilibrium together, per mole of mixture.
  [[nodiscard]] MolarProperties Overall(const Equilibrium& equilibrium) const;

  /// enthalpyF - enthalpy [J/mol] at a composition. Throws std::runtime_error when a compound that is present has no
  /// formation data.
  [[nodiscard]] double FormationEnthalpy(std::span<const double> x) const;

  /// entropyF - entropy [J/(mol K)] at a composition: formation entropy is (H_f - G_f) / 298.15 K.
  [[nodiscard]] double FormationEntropy(std::span<const double> x) const;

 private:
  /// Checks the composition, calls `solve(engine)` and returns the state that it leaves.
  template <class Solve>
  [[nodiscard]] Equilibrium Flash(std::span<const double> z, Solve solve) const;
  [[nodiscard]] Equilibrium FlashVaporFraction(bool isPressure, double value, double vaporFraction,
                                               std::span<const double> z) const;
  [[nodiscard]] MolarProperties Complete(MolarProperties known, double T, double P, std::span<const double> x) const;
  [[nodiscard]] bool HasFormation(std::span<const double> x) const;
  [[nodiscard]] double SumFormation(std::span<const double> x, double (*of)(const Formation&)) const;

  std::shared_ptr<const FluidModel> fluid;
};

}  // namespace morvelan::host
