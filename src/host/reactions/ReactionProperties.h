#pragma once

#include <string>

#include "host/reactions/ReactionConditions.h"
#include "host/reactions/StandardGases.h"

namespace morvelan::host {

enum class ReactionProperty { kRate, kEquilibriumConstant, kEnthalpy };

/// By "reactionRate", "chemicalEquilibriumConstant" or "enthalpyOfReaction" in any ASCII case. Throws HostError.
[[nodiscard]] ReactionProperty ReactionPropertyByName(const std::string& name);
[[nodiscard]] const char* NameOf(ReactionProperty property);

/// Calculates properties of reactions at the conditions of their phase. Throws HostError, also for a property that the
/// kind of reaction does not have and for a result that is not finite.
class ReactionCalculator {
 public:
  explicit ReactionCalculator(const PropertyPackage& package) : gases(package), thermodynamics(package) {}

  [[nodiscard]] double Value(ReactionProperty property, const Reaction& reaction, PhaseConditions& conditions) const;

 private:
  [[nodiscard]] double LnEquilibriumConstant(const Reaction& reaction, PhaseConditions& conditions) const;
  [[nodiscard]] double Enthalpy(const Reaction& reaction, PhaseConditions& conditions) const;
  void RequireFormation(const Reaction& reaction, ReactionProperty property) const;

  StandardGases gases;
  const PropertyPackage& thermodynamics;
};

}  // namespace morvelan::host
