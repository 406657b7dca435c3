#pragma once

#include <string>
#include <vector>

#include "reactions/Reaction.h"
#include "reactions/ReactionPackage.h"

namespace morvelan {

/// What a reactor wants to know of a reaction, and what it requires of it.
struct ReactionRequest {
  std::string name = {};
  bool mustBeKinetic = false;
  bool mustBeEquilibrium = false;
  bool wantsKind = false;  // the type, and the rate basis of a kinetic reaction
  bool wantsConcentrationBasis = false;
};

/// Finds reactions in a reaction package and their compounds in the material at a reactor's inlet, whose
/// compounds are listed once for all reactions.
class ReactionResolver {
 public:
  /// Package and material may be empty.
  ReactionResolver(const ReactionPackage& reactionPackage, com::Ref<IDispatch> inletMaterial, bool usesThermo11)
      : package(reactionPackage), inlet(std::move(inletMaterial)), thermo11(usesThermo11) {}

  /// Throws Failure with the text of the step that failed.
  [[nodiscard]] Reaction Resolve(const ReactionRequest& request);
  /// The compounds of the inlet material, once a reaction was resolved.
  [[nodiscard]] const std::vector<std::string>& Compounds() const { return compounds; }

 private:
  void AskType(const ReactionRequest& request, BSTR id, Reaction& reaction) const;
  void AskRateBasis(BSTR id, Reaction& reaction) const;
  void AskConcentrationBasis(BSTR id, Reaction& reaction) const;
  void AskCompounds(BSTR id, Reaction& reaction) const;
  void ListCompounds();
  void MapCompounds(Reaction& reaction) const;
  void AskStoichiometry(BSTR id, Reaction& reaction) const;
  void AskPhase(BSTR id, Reaction& reaction) const;

  ReactionPackage package;
  com::Ref<ICapeReactionChemistry> chemistry;
  com::Ref<IDispatch> inlet;
  bool thermo11;
  std::vector<std::string> compounds;
};

}  // namespace morvelan
