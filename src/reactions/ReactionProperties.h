#pragma once

#include <functional>
#include <span>
#include <vector>

#include "errors/LazyText.h"
#include "material/Property.h"
#include "material/TrialMaterial.h"
#include "reactions/Reaction.h"
#include "reactions/ReactionPackage.h"

namespace morvelan {

namespace property {

inline const Property kEnthalpyOfReaction{"enthalpyOfReaction"};                    // [J/mol]
inline const Property kChemicalEquilibriumConstant{"chemicalEquilibriumConstant"};  // of the reaction's basis
/// [mol/(s m3)], or [mol/(s kg)] of catalyst.
inline const Property kReactionRate{"reactionRate"};

}  // namespace property

/// A reaction package with a material at whose state it evaluates properties. As long as this lives the
/// package has the material, a copy, for packages may write to it. All throw Failure.
class ReactionProperties {
 public:
  /// Hands the material over, as the package takes it: by ICapeThermoMaterialContext, or else by the older
  /// ICapeThermoContext. A package that takes none is asked for its properties all the same. `failed` begins
  /// the text of a failure.
  ReactionProperties(const ReactionPackage& reactionPackage, const TrialMaterial& material, LazyText failed);
  ~ReactionProperties();
  ReactionProperties(const ReactionProperties&) = delete;
  ReactionProperties& operator=(const ReactionProperties&) = delete;

  /// Hands the material over again, once its state is another: packages may keep what they calculated.
  void HandOver(LazyText failed);

  /// The finite value of a property of one reaction on mole basis, calculated first where the package has a
  /// routine for that. A constant that is too large for a number may be infinite. Failures of the package
  /// begin with `failed`, other values than one finite number with `invalid`.
  [[nodiscard]] double Read(const Property& which, const Reaction& reaction, LazyText failed, LazyText invalid);

 private:
  com::Ref<ICapeReactionProperties> package;
  com::Ref<ICapeReactionsRoutine> routine;  // null when the package has none
  com::Ref<ICapeThermoMaterialContext> context;
  com::Ref<IDispatch> handedOver;
};

/// Heats of reaction [J/mol] at the state of a material, one per reaction. Throws Failure of "Calculate".
[[nodiscard]] std::vector<double> HeatsOfReaction(const ReactionPackage& package,
                                                  const std::function<TrialMaterial()>& copyMaterial,
                                                  std::span<const Reaction> reactions);

}  // namespace morvelan
