#pragma once

#include <Eigen/Core>
#include <optional>

namespace morvelan::host {

/// Molar fractions of the two phases. Both are kept, because 1 minus the larger one has few exact digits.
struct PhaseFractions {
  double vapor = 0.0;
  double liquid = 1.0;
};

/// Solves sum_i z_i (K_i - 1)/(1 + V (K_i - 1)) = 0 for the vapor fraction V strictly between 0 and 1 (Rachford and
/// Rice, J. Pet. Technol. 4 (1952) 19). Returns nothing when these K give a single phase.
[[nodiscard]] std::optional<PhaseFractions> SolveRachfordRice(const Eigen::VectorXd& z, const Eigen::VectorXd& K);

/// Compositions of both phases, of sum one.
void SplitCompositions(const Eigen::VectorXd& z, const Eigen::VectorXd& K, const PhaseFractions& fractions,
                       Eigen::VectorXd& y, Eigen::VectorXd& x);

}  // namespace morvelan::host
