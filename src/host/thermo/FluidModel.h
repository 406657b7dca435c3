#pragma once

#include <Eigen/Core>
#include <optional>
#include <vector>

#include "host/thermo/Compound.h"
#include "host/thermo/IdealGasCurve.h"

namespace morvelan::host {

/// Parameters of the Peng-Robinson equation, one per compound.
struct CubicParameters {
  Eigen::VectorXd Tc;          // [K]
  Eigen::VectorXd Pc;          // [Pa]
  Eigen::VectorXd omega;       // acentric factor
  Eigen::VectorXd rootA;       // sqrt(a) at the critical temperature [sqrt(J m3)/mol]
  Eigen::VectorXd m;           // slope of sqrt(alpha) in sqrt(Tr)
  Eigen::VectorXd b;           // covolume [m3/mol]
  Eigen::MatrixXd oneLessKij;  // 1 - kij
};

/// The data and parameters of the chosen compounds; immutable.
class FluidModel {
 public:
  /// The compounds must have ideal-gas ranges. `oneLessKij` is absent for an ideal gas; if it is given, the compounds
  /// must have critical data.
  FluidModel(std::vector<Compound> compounds, std::optional<Eigen::MatrixXd> oneLessKij);

  [[nodiscard]] const std::vector<Compound>& Compounds() const { return compounds; }
  [[nodiscard]] const std::vector<IdealGasCurve>& Curves() const { return curves; }
  /// Absent for the ideal gas.
  [[nodiscard]] const std::optional<CubicParameters>& Cubic() const { return cubic; }

 private:
  std::vector<Compound> compounds;
  std::vector<IdealGasCurve> curves;
  std::optional<CubicParameters> cubic;
};

}  // namespace morvelan::host
