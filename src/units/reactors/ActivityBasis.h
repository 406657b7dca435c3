#pragma once

#include <optional>
#include <string>

namespace morvelan {

/// What stands for the activity of a compound in a reaction's phase.
enum class ActivityBasis {
  kMolarity,       // mole fraction times the molar density [mol/m3]
  kConcentration,  // mass fraction times the mass density [kg/m3]
  kMoleFraction,
  kMassFraction,
};

/// The basis that a reaction package names, ignoring case; nothing for other names.
[[nodiscard]] std::optional<ActivityBasis> FindActivityBasis(const std::string& name);

/// As reports call it; "Unknown" for nothing.
[[nodiscard]] const char* ReportWord(std::optional<ActivityBasis> basis);

}  // namespace morvelan
