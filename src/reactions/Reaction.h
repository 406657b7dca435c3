#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "com/HostText.h"
#include "material/PhaseLabel.h"

namespace morvelan {

enum class ReactionType { kKinetic, kEquilibrium };

/// What the rate of a kinetic reaction refers to: the volume of the phase, or the mass of the catalyst.
enum class RateBasis { kHomogeneous, kHeterogeneous };

/// What stands for the activity of a compound in a reaction's phase.
enum class ActivityBasis {
  kMolarity,       // mole fraction times the molar density [mol/m3]
  kConcentration,  // mass fraction times the mass density [kg/m3]
  kMoleFraction,
  kMassFraction,
};

/// The basis that a reaction package names, ignoring case; nothing for other names.
[[nodiscard]] std::optional<ActivityBasis> FindActivityBasis(const std::string& name);

/// A reaction of a reaction package, its compounds found among those of the reactor's feed. The three lists
/// have one element per compound of the reaction, in the package's order, and at least one.
struct Reaction {
  com::HostText name;
  std::optional<ReactionType> type = {};           // when it was asked for
  std::optional<RateBasis> rateBasis = {};         // of a kinetic reaction, when its kind was asked for
  std::vector<std::string> compoundIds = {};       // as the package spells them
  std::vector<std::int32_t> compoundIndices = {};  // in the feed's list of compounds
  std::vector<double> coefficients = {};           // stoichiometric, negative for reactants
  PhaseLabel phase = {};
  std::string concentrationBasis = {};  // when it was asked for; empty when the package gives none

  [[nodiscard]] bool Is(ReactionType wanted) const { return type == wanted; }
  /// The basis of its activities: molarity where the package gives none that is known.
  [[nodiscard]] ActivityBasis Basis() const;
  /// The basis as reports call it.
  [[nodiscard]] const char* BasisWord() const;
};

/// The names of some reactions, by their places, joined as in "R1 and R2".
[[nodiscard]] std::string JoinedNames(std::span<const Reaction> reactions, const std::vector<std::size_t>& places);

}  // namespace morvelan
