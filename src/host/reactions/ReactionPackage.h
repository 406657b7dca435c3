#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/objects/HostObject.h"
#include "host/reactions/MaterialReader.h"
#include "host/reactions/ReactionProperties.h"

namespace morvelan::host {

/// The reactions of a flowsheet as units see them.
///
/// A unit hands over a material (`SetMaterial`), lets the package calculate properties at its present state
/// (`CalcReactionProp`) and reads them (`GetReactionProp`): reactionRate [mol/(m3 s)] or [mol/(kg s)],
/// chemicalEquilibriumConstant in the reaction's concentration basis, enthalpyOfReaction [J/mol]. Names are taken in
/// any ASCII case. An empty phase stands for each reaction's own phase. Another material invalidates the results.
class ReactionPackage final : public com::Implements<HostObject, ICapeReactionChemistry, ICapeReactionProperties,
                                                     ICapeReactionsRoutine, ICapeThermoMaterialContext> {
 public:
  ReactionPackage(std::vector<Reaction> list, std::shared_ptr<const PropertyPackage> thermodynamics);

  // ICapeReactionChemistry
  HRESULT GetNumberOfReactions(LONG* count) override { return ReturnValue(count, reactions.size()); }
  HRESULT GetReactionsIds(VARIANT* ids) override;
  HRESULT GetReactionType(BSTR id, CapeReactionType* type) override;
  HRESULT GetNumberOfReactionCompounds(BSTR id, LONG* count) override;
  HRESULT GetReactionCompoundIds(BSTR id, VARIANT* compounds, VARIANT* charges, VARIANT* casNumbers) override;
  HRESULT GetStoichiometricCoefficients(BSTR id, VARIANT* coefficients) override;
  HRESULT GetReactionPhase(BSTR id, BSTR* phase) override;
  HRESULT GetReactionRateBasis(BSTR id, CapeReactionRateBasis* basis) override;
  HRESULT GetReactionConcBasis(BSTR id, BSTR* basis) override;
  /// The first reactant.
  HRESULT GetBaseReactant(BSTR id, BSTR* compound) override;
  /// The reaction's compounds, all of which are in its phase.
  HRESULT GetPhaseCompounds(BSTR id, LONG* count, VARIANT* compounds) override;
  HRESULT GetReactionParameters(BSTR id, IDispatch** parameters) override;

  // ICapeReactionProperties
  HRESULT GetReactionProp(BSTR property, BSTR phase, VARIANT ids, BSTR basis, VARIANT* values) override;
  HRESULT SetReactionProp(BSTR property, BSTR phase, VARIANT ids, BSTR basis, VARIANT values) override;

  // ICapeReactionsRoutine
  HRESULT CalcReactionProp(VARIANT properties, BSTR phase, VARIANT ids, BSTR basis) override;

  // ICapeThermoMaterialContext
  /// Null withdraws the material.
  HRESULT SetMaterial(IDispatch* given) override;
  HRESULT UnsetMaterial() override { return SetMaterial(nullptr); }

 private:
  /// Position among the reactions.
  [[nodiscard]] std::size_t Find(const std::string& id) const;
  [[nodiscard]] const Reaction& ReactionOf(BSTR id) const { return reactions[Find(com::ToUtf8(id))]; }
  [[nodiscard]] com::Variant CompoundsOf(const Reaction& reaction) const;
  /// Positions of the named reactions. Throws HostError when one of them does not take place in the phase.
  [[nodiscard]] std::vector<std::size_t> Chosen(const VARIANT& ids, BSTR phase) const;
  HRESULT AnswerText(const char* operation, BSTR id, BSTR* text, std::string (*of)(const Reaction&));

  std::vector<Reaction> reactions;
  std::shared_ptr<const PropertyPackage> package;
  ReactionCalculator calculator;
  std::unique_ptr<MaterialReader> material;
  std::map<std::pair<ReactionProperty, std::size_t>, double> calculated;
};

}  // namespace morvelan::host
