#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cape_open.h"

namespace morvelan {

/// A reaction of a reaction package, its compounds found among those of the reactor's feed. The three lists
/// have one element per compound of the reaction, in the package's order, and at least one.
struct ReactionRecord {
  std::string name;
  std::optional<CapeReactionType> type = {};            // when it was asked for
  std::optional<CapeReactionRateBasis> rateBasis = {};  // of a kinetic reaction, when its kind was asked for
  std::vector<std::string> compoundIds = {};            // as the package spells them
  std::vector<std::int32_t> compoundIndices = {};       // in the feed's list of compounds
  std::vector<double> coefficients = {};                // stoichiometric, negative for reactants
  std::string phase = {};
  std::string concentrationBasis = {};  // when it was asked for; empty when the package gives none
};

}  // namespace morvelan
