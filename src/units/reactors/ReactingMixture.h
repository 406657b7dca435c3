#pragma once

#include <string>
#include <vector>

#include "units/reactors/ActivityBasis.h"
#include "units/reactors/ReactionProperties.h"
#include "units/reactors/ReactionRecord.h"
#include "units/reactors/TrialMaterial.h"

namespace morvelan {

/// The natural logarithm, but no less than that of 1e-47 and no more than that of 1e200: exhausted compounds
/// and extreme constants leave a solver something to go by.
[[nodiscard]] double ClampedLog(double value);

/// What a reactor holds while its outlet is being looked for: a material with the reaction package that looks
/// at it. After each change of the material's state `StateChanged` must be called. All throw Failure.
class ReactingMixture {
 public:
  ReactingMixture(TrialMaterial content, const com::Ref<ICapeReactionProperties>& package);

  [[nodiscard]] TrialMaterial& Material() { return material; }
  /// What is known of the state before is forgotten, by the package too.
  void StateChanged();

  /// ln of the product of a_i^nu_i over the reaction's compounds, with the activities of its phase.
  [[nodiscard]] double LogActivityProduct(const ReactionRecord& reaction, ActivityBasis basis);
  [[nodiscard]] double EquilibriumConstant(const ReactionRecord& reaction);
  /// [mol/(s m3)], or [mol/(s kg catalyst)] of a heterogeneous reaction.
  [[nodiscard]] double Rate(const ReactionRecord& reaction);

 private:
  struct Activities {
    std::string phase;
    ActivityBasis basis;
    std::vector<double> values;  // one per compound
  };

  [[nodiscard]] const std::vector<double>& ActivitiesIn(const std::string& phase, ActivityBasis basis);
  [[nodiscard]] double Density(const std::string& phase, ActivityBasis basis);
  [[nodiscard]] double ReactionProperty(com::Name property, const ReactionRecord& reaction);

  TrialMaterial material;
  ReactionProperties properties;
  std::vector<Activities> known;  // at the material's state
};

}  // namespace morvelan
