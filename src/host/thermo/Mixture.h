#pragma once

#include <Eigen/Core>
#include <vector>

#include "host/thermo/Equilibrium.h"
#include "host/thermo/FluidModel.h"

namespace morvelan::host {

/// A homogeneous phase at the T of its mixture, at P and x, with the numbers that the property formulas share. w, p and
/// e are the dimensionless variables of PengRobinson.h.
struct PhaseState {
  double P = 0.0;  // [Pa]
  double Z = 1.0;  // compressibility factor
  double b = 0.0;  // [m3/mol]
  double p = 0.0;
  double e = 0.0;
  double w = 0.0;
  bool isLoop = false;     // the equation has another volume at these conditions
  Eigen::VectorXd x;       // mole fractions
  Eigen::VectorXd q;       // sum_j (1 - kij) x_j sqrt(a_j)
  Eigen::VectorXd bRatio;  // b_i/b
  Eigen::VectorXd sigma;   // 2 sum_j x_j a_ij/(bRT)
  Eigen::VectorXd lnPhi;
};

/// Molar properties of a phase and their derivatives along T and P.
struct BulkProperties {
  double enthalpy = 0.0;      // [J/mol]
  double entropy = 0.0;       // [J/(mol K)]
  double volume = 0.0;        // [m3/mol]
  double heatCapacity = 0.0;  // [J/(mol K)], isobaric
  double volumeDT = 0.0;      // [m3/(mol K)]
  double volumeDP = 0.0;      // [m3/(mol Pa)]
};

/// The equation of state for some compounds of a fluid at one temperature. Repeated use allocates no memory. All arrays
/// are in the order of the members. Formulas: Michelsen and Mollerup, Thermodynamic Models, 2nd ed. 2007, ch. 3, for
/// the residual Helmholtz energy of a cubic equation, with all volumes divided by b.
class Mixture {
 public:
  Mixture(const FluidModel& fluid, const std::vector<Eigen::Index>& members);

  [[nodiscard]] Eigen::Index Count() const { return static_cast<Eigen::Index>(curves.size()); }
  [[nodiscard]] bool IsIdealGas() const { return isIdealGas; }
  [[nodiscard]] double T() const { return temperature; }
  [[nodiscard]] const CubicParameters& Cubic() const { return cubic; }
  [[nodiscard]] double RootA(Eigen::Index i) const { return rootA[i]; }  // sqrt(a_i) at T

  void SetTemperature(double T);

  /// The phase with the largest volume (vapor) or the smallest volume (liquid).
  void Evaluate(PhaseKind kind, double P, const Eigen::VectorXd& x, PhaseState& state) const;

  /// The phase with the volume of lower Gibbs energy.
  void EvaluateStable(double P, const Eigen::VectorXd& x, PhaseState& state) const;

  [[nodiscard]] PhaseKind Label(const PhaseState& state) const;

  [[nodiscard]] BulkProperties Bulk(const PhaseState& state);

  /// n d(lnPhi_i)/dn_j at constant T, P; symmetric.
  void LnPhiDn(const PhaseState& state, Eigen::MatrixXd& derivatives) const;

  /// T d(lnPhi_i)/dT at constant P, x; -1/(RT) times the partial molar residual enthalpy.
  void LnPhiDlnT(const PhaseState& state, Eigen::VectorXd& derivatives) const;

  /// P d(lnPhi_i)/dP at constant T, x; the partial molar volume is RT/P (1 + this).
  void LnPhiDlnP(const PhaseState& state, Eigen::VectorXd& derivatives) const;

  /// Ideal-gas values at T, one per member.
  const std::vector<IdealGasValues>& Ideal();

 private:
  /// Temperature derivatives of the attraction: T da/dT and T^2 d2a/dT2, each over bRT.
  struct AttractionDT {
    double first, second;
  };
  [[nodiscard]] AttractionDT AttractionByT(const PhaseState& state) const;
  void SetComposition(double P, const Eigen::VectorXd& x, PhaseState& state) const;
  void SetVolume(double w, PhaseState& state) const;

  CubicParameters cubic;
  std::vector<const IdealGasCurve*> curves;
  bool isIdealGas = false;
  double temperature = 0.0;
  double RT = 0.0;
  // sqrt(a_i) and its derivatives T d/dT, T^2 d2/dT2. It keeps the sign of 1 + m (1 - sqrt Tr), so that a(T) of
  // mixtures has no kink where that term becomes zero, far above the critical temperature.
  Eigen::VectorXd rootA, rootADT, rootADTT;
  std::vector<IdealGasValues> ideal;
  bool isIdealCurrent = false;
};

}  // namespace morvelan::host
