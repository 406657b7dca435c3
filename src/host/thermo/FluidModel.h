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

/// Everything a calculation needs of the chosen compounds; immutable.
class FluidModel {
 public:
  /// Compounds have ideal-gas ranges and, with interactions given, critical data. `oneLessKij` absent: ideal
  /// gas.
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
