#pragma once

#include <Eigen/Core>
#include <span>
#include <string>
#include <vector>

#include "reactions/Reaction.h"

namespace morvelan {

/// Coefficients without what rounding leaves of those that cancel.
[[nodiscard]] Eigen::VectorXd WithoutRounding(const Eigen::VectorXd& coefficients);

/// Net stoichiometric coefficients: one row per compound of the feed, one column per reaction. (A package may
/// list a compound twice, as reactant and as product.)
[[nodiscard]] Eigen::MatrixXd StoichiometricMatrix(std::span<const Reaction> reactions, std::size_t compoundCount);

/// Sets of reactions, by column in ascending order, of which each follows from others of its set. No reaction
/// is in two sets, and those that depend on none are in no set.
[[nodiscard]] std::vector<std::vector<std::size_t>> DependentSets(const Eigen::MatrixXd& nu);

/// Between which extents [mol/s], from those that led to `flows` [mol/s], a reaction leaves no flow negative.
struct ExtentRange {
  double lowest = 0;
  double highest = 0;
};
[[nodiscard]] ExtentRange RangeOfExtent(const Eigen::VectorXd& coefficients, const Eigen::VectorXd& flows);

/// What reactions can do with a feed [mol/s], alone or together, before any flow is negative. Compounds that
/// are not fed must be made before they can react, if need be by two reactions at a time.
struct Feasibility {
  std::vector<std::size_t> inactive;  // reactions, by column, that cannot take place in either direction
  /// Reactions that can take place only in fixed proportions, through compounds that are never present: their extents
  /// are not determined.
  std::vector<std::size_t> degenerate;
  Eigen::VectorXd direction;  // extents that make some of every compound that can be made
};
[[nodiscard]] Feasibility FindFeasibility(const Eigen::MatrixXd& nu, const Eigen::VectorXd& inletFlows);

}  // namespace morvelan
