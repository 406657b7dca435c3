#pragma once

#include <vector>

#include "framework/CUnitPort.h"
#include "units/reactors/ReactionRecord.h"

namespace morvelan {

/// What a reactor wants to know of a reaction, and what it requires of it.
struct ReactionRequest {
  std::string name = {};
  bool mustBeKinetic = false;
  bool mustBeEquilibrium = false;
  bool wantsKind = false;  // the type, and the rate basis of a kinetic reaction
  bool wantsConcentrationBasis = false;
};

/// Finds reactions in a reaction package and their compounds in the material at the first material inlet,
/// whose compounds are listed once for all reactions.
class ReactionResolver {
 public:
  /// `package` may be null. The ports must outlive the resolver.
  ReactionResolver(com::Ref<ICapeReactionProperties> package, const std::vector<com::Ref<CUnitPort>>& inletPorts,
                   bool usesThermo11)
      : properties(std::move(package)), inlets(inletPorts), thermo11(usesThermo11) {}

  /// Throws Failure with the text of the step that failed.
  [[nodiscard]] ReactionRecord Resolve(const ReactionRequest& request);
  /// The compounds of the inlet material, once a reaction was resolved.
  [[nodiscard]] const std::vector<std::string>& InletCompounds() const { return inletCompounds; }

 private:
  void AskType(const ReactionRequest& request, BSTR id, ReactionRecord& record) const;
  void AskRateBasis(BSTR id, ReactionRecord& record) const;
  void AskConcentrationBasis(BSTR id, ReactionRecord& record) const;
  void AskCompounds(BSTR id, ReactionRecord& record) const;
  void ListInletCompounds();
  void MapCompounds(ReactionRecord& record) const;
  void AskStoichiometry(BSTR id, ReactionRecord& record) const;
  void AskPhase(BSTR id, ReactionRecord& record) const;

  com::Ref<ICapeReactionProperties> properties;
  com::Ref<ICapeReactionChemistry> chemistry;
  const std::vector<com::Ref<CUnitPort>>& inlets;
  bool thermo11;
  std::vector<std::string> inletCompounds;
};

/// What a user is told to do whose reactor has no reaction package.
inline constexpr const char* kNoReactionPackage =
    "A reaction package has not been assigned. Please return to simulation environment and assign a reaction "
    "package to this unit operation";

}  // namespace morvelan
