#pragma once

#include <Eigen/Core>
#include <span>
#include <string>
#include <vector>

#include "units/reactors/ReactionRecord.h"

namespace morvelan {

/// Net stoichiometric coefficients: one row per compound of the feed, one column per reaction. (A package may
/// list a compound twice, as reactant and as product.)
[[nodiscard]] Eigen::MatrixXd StoichiometricMatrix(std::span<const ReactionRecord> reactions,
                                                   std::size_t compoundCount);

/// Sets of reactions, by column in ascending order, of which each follows from others of its set. No reaction
/// is in two sets, and those that depend on none are in no set.
[[nodiscard]] std::vector<std::vector<std::size_t>> DependentSets(const Eigen::MatrixXd& nu);

/// Between which extents [mol/s], from those that led to `flows` [mol/s], a reaction leaves no flow negative.
struct ExtentRange {
  double lowest = 0;
  double highest = 0;
};
[[nodiscard]] ExtentRange RangeOfExtent(const Eigen::VectorXd& coefficients, const Eigen::VectorXd& flows);

/// The reactions, by column, that can take place in neither direction with a feed [mol/s]: some of their
/// reactants and some of their products are not fed, nor made by others.
[[nodiscard]] std::vector<std::size_t> IdleReactions(const Eigen::MatrixXd& nu,
                                                     const Eigen::VectorXd& inletFlows);

/// Whether reactions that are idle one by one could all the same take place in combination, through compounds
/// of which there is none at any time: nothing tells then how far they go.
[[nodiscard]] bool CouldCombine(const Eigen::MatrixXd& nu, const Eigen::VectorXd& inletFlows,
                                const std::vector<std::size_t>& idle);

/// Names joined as in "R1 and R2".
[[nodiscard]] std::string JoinedNames(std::span<const ReactionRecord> reactions,
                                      const std::vector<std::size_t>& set);

}  // namespace morvelan
