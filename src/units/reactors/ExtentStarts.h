#pragma once

#include <vector>

#include "units/reactors/ExtentModel.h"

namespace morvelan {

/// A state with given extents [mol/s].
[[nodiscard]] ExtentTrial TrialAt(const ExtentEquations& equations, const Eigen::VectorXd& extents, double temperature);

/// Flows [mol/s] after a change of them; exactly zero where no more than rounding is left, so that compounds which are
/// used up together keep their proportion.
[[nodiscard]] Eigen::VectorXd Remainder(const Eigen::VectorXd& flows, const Eigen::VectorXd& change);

/// The limiting compounds, those with the smallest flows: one per reaction, so that their flows determine the extents;
/// fewer if reactions depend on one another.
[[nodiscard]] std::vector<Eigen::Index> LimitingCompounds(const Eigen::MatrixXd& nu, const Eigen::VectorXd& flows);

// Initial guesses for a solution that is not found from the feed.

/// Small extents: a trace of every compound is present, at the temperature of the feed.
[[nodiscard]] ExtentTrial SmallExtents(const ExtentEquations& equations);

/// The result of solving for one reaction at a time. Where all equations are those of equilibria they are
/// combined so that each is about one limiting compound: W. R. Smith and R. W. Missen, Chemical Reaction
/// Equilibrium Analysis, 1982, chapter 6.
[[nodiscard]] ExtentTrial OneReactionAtATime(const ExtentEquations& equations);

}  // namespace morvelan
