#pragma once

#include <Eigen/Core>

#include "host/material/MaterialState.h"

namespace morvelan::host {

/// The state of a stream at which a recycle is torn, in the variables in which it is solved.
struct TearState {
  Eigen::VectorXd flows;   // [mol/s], one per compound
  double pressure = 0;     // [Pa]
  double enthalpy = 0;     // [J/mol]
  double temperature = 0;  // [K]; follows from the others

  /// Throws HostError when the material is not at equilibrium.
  [[nodiscard]] static TearState Of(const MaterialState& material);

  /// Brings a material to this state. Throws std::exception when there is no equilibrium; the material is
  /// unusable then.
  void Impose(MaterialState& material) const;

  /// All variables but the temperature, each of the order of one for a state like `scale`.
  [[nodiscard]] Eigen::VectorXd Scaled(const TearState& scale) const;
  [[nodiscard]] static TearState FromScaled(const Eigen::VectorXd& variables, const TearState& scale);

  /// The largest relative difference in flow, temperature and pressure, and of the mole fractions.
  [[nodiscard]] double DistanceFrom(const TearState& other) const;
};

}  // namespace morvelan::host
