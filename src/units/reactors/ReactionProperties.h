#pragma once

#include <string>
#include <utility>

#include "cape_open.h"
#include "com/Name.h"
#include "com/Ref.h"
#include "com/Values.h"
#include "errors/Failure.h"

namespace morvelan {

/// How failures to read a reaction property begin; the reason follows.
struct ReactionPropertyTexts {
  std::string failed;   // the package doesn't give it
  std::string invalid;  // it gives something else
};

/// A reaction package with a material at whose state it evaluates properties. As long as this lives the
/// package has the material; give it a copy, for packages may write to it. All throw Failure.
class ReactionProperties {
 public:
  /// Hands the material over, as the package takes it: by ICapeThermoMaterialContext, or else by the older
  /// ICapeThermoContext. A package that takes none is asked for its properties all the same. `failed` begins
  /// the text of a failure.
  ReactionProperties(com::Ref<ICapeReactionProperties> reactionPackage, const com::Ref<IDispatch>& material,
                     const std::string& failed);
  ~ReactionProperties();
  ReactionProperties(const ReactionProperties&) = delete;
  ReactionProperties& operator=(const ReactionProperties&) = delete;

  /// Hands the material over again, once its state is another: packages may keep what they calculated.
  void HandOver(const std::string& failed);

  /// The finite value of a property of one reaction on mole basis, calculated first where the package has a
  /// routine for that. A constant that is too large for a number may be infinite.
  [[nodiscard]] double Read(com::Name property, const std::string& phase, const std::string& reaction,
                            const ReactionPropertyTexts& texts);

 private:
  com::Ref<ICapeReactionProperties> package;
  com::Ref<ICapeReactionsRoutine> routine;  // null when the package has none
  com::Ref<ICapeThermoMaterialContext> context;
  com::Ref<IDispatch> handedOver;
};

}  // namespace morvelan
