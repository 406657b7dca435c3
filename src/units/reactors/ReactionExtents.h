#pragma once

#include <span>
#include <string>
#include <vector>

#include "reactions/Reaction.h"

namespace morvelan {

/// A reaction that converts a fraction of the flow of its key compound.
struct ConvertingReaction {
  const Reaction* record;
  std::string keyCompound;
  double conversion;  // 0 to 1
};

/// What reactions make of a feed.
struct Converted {
  std::vector<double> extents;  // [mol/s], one per reaction
  std::vector<double> flows;    // [mol/s], one per compound
};

/// Whether a compound is one of the reaction's, without regard to case.
[[nodiscard]] bool TakesPart(const Reaction& reaction, const std::string& compound);
/// The stoichiometric coefficient of a compound that takes part in the reaction.
[[nodiscard]] double CoefficientOf(const Reaction& reaction, const std::string& compound);

// Both throw Failure when a flow would become negative by more than rounding.

/// Each conversion applies to the flows that the reaction before leaves:
///     extent_r = -X_r n_k / nu_k,  n_j += nu_j extent_r
[[nodiscard]] Converted ConvertInSeries(std::span<const ConvertingReaction> reactions, std::vector<double> inletFlows);
/// All conversions apply to the inlet flows. `compounds` are the feed's, for messages.
[[nodiscard]] Converted ConvertInParallel(std::span<const ConvertingReaction> reactions,
                                          const std::vector<double>& inletFlows,
                                          std::span<const std::string> compounds);

}  // namespace morvelan
