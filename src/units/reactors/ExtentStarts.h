#pragma once

#include <vector>

#include "units/reactors/ExtentModel.h"

namespace morvelan {

/// A state with given extents [mol/s].
[[nodiscard]] ExtentTrial TrialAt(const ExtentEquations& equations, const Eigen::VectorXd& extents, double temperature);

/// What is left of flows [mol/s] after a change of them; exactly nothing where that is no more than rounding.
/// (Compounds that are used up together then are so in their proportion, however little is left.)
[[nodiscard]] Eigen::VectorXd Remainder(const Eigen::VectorXd& flows, const Eigen::VectorXd& change);

/// As many compounds as there are reactions, those of which there is least, by whose flows the extents are
/// known; fewer when reactions depend on one another.
[[nodiscard]] std::vector<Eigen::Index> ScarceCompounds(const Eigen::MatrixXd& nu, const Eigen::VectorXd& flows);

// Where a solution may be looked for when it isn't found from the feed.

/// So little reaction that there is a trace of every compound, at the temperature of the feed.
[[nodiscard]] ExtentTrial HardlyBegun(const ExtentEquations& equations);

/// What solving for one extent after the other comes to. Where all equations are those of equilibria they are
/// combined so that each is about one scarce compound: W. R. Smith and R. W. Missen, Chemical Reaction
/// Equilibrium Analysis, 1982, chapter 6.
[[nodiscard]] ExtentTrial OneAfterTheOther(const ExtentEquations& equations);

}  // namespace morvelan
