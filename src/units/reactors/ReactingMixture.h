#pragma once

#include <vector>

#include "material/TrialMaterial.h"
#include "reactions/ReactionProperties.h"

namespace morvelan {

/// The natural logarithm, but no less than that of 1e-47 and no more than that of 1e200: exhausted compounds
/// and extreme constants leave a solver something to go by.
[[nodiscard]] double ClampedLog(double value);

/// What a reactor holds while its outlet is being looked for: a material with the reaction package that looks
/// at it. After each change of the material's state `StateChanged` must be called. All throw Failure.
class ReactingMixture {
 public:
  ReactingMixture(TrialMaterial content, const ReactionPackage& package);

  [[nodiscard]] TrialMaterial& Material() { return material; }
  /// What is known of the state before is forgotten, by the package too.
  void StateChanged();

  /// ln of the product of a_i^nu_i over the reaction's compounds, with the activities of its phase.
  [[nodiscard]] double LogActivityProduct(const Reaction& reaction, ActivityBasis basis);
  [[nodiscard]] double EquilibriumConstant(const Reaction& reaction);
  /// [mol/(s m3)], or [mol/(s kg catalyst)] of a heterogeneous reaction.
  [[nodiscard]] double Rate(const Reaction& reaction);

 private:
  struct Activities {
    PhaseLabel phase;
    ActivityBasis basis;
    std::vector<double> values = {};  // one per compound
    bool isCurrent = false;           // at the material's state
  };

  [[nodiscard]] const std::vector<double>& ActivitiesIn(const PhaseLabel& phase, ActivityBasis basis);
  [[nodiscard]] double Density(const PhaseLabel& phase, TrialMaterial::Basis basis);
  [[nodiscard]] double ReactionProperty(const Property& which, const Reaction& reaction);

  TrialMaterial material;
  ReactionProperties properties;
  std::vector<Activities> activities;
};

}  // namespace morvelan
