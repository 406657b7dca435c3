// What a reaction package says of its reactions.

#include "host/reactions/ReactionPackage.h"

#include <algorithm>

#include "com/Text.h"
#include "host/material/MaterialState.h"

namespace morvelan::host {
namespace {

constexpr const char* kInterface = "ICapeReactionChemistry";

}  // namespace

ReactionPackage::ReactionPackage(std::vector<Reaction> list, std::shared_ptr<const PropertyPackage> thermodynamics)
    : Implements("Reactions", "Reactions of the flowsheet"),
      reactions(std::move(list)),
      package(std::move(thermodynamics)),
      calculator(*package) {}

std::size_t ReactionPackage::Find(const std::string& id) const {
  const auto found =
      std::ranges::find_if(reactions, [&](const Reaction& reaction) { return com::EqualNoCase(reaction.id, id); });
  if (found != reactions.end()) return static_cast<std::size_t>(found - reactions.begin());
  std::string known;
  for (const Reaction& reaction : reactions) known += (known.empty() ? "\"" : ", \"") + reaction.id + '"';
  throw HostError(kECapeInvalidArgument, "reaction \"" + id + "\" is unknown; the package has " + known);
}

com::Variant ReactionPackage::CompoundsOf(const Reaction& reaction) const {
  std::vector<std::string> names;
  for (const auto& [compound, nu] : reaction.stoichiometry) names.push_back(package->CompoundAt(compound).name);
  return com::MakeStrings(names);
}

HRESULT ReactionPackage::GetNumberOfReactions(LONG* count) {
  if (!count) return E_POINTER;
  *count = static_cast<LONG>(reactions.size());
  return S_OK;
}

HRESULT ReactionPackage::GetReactionsIds(VARIANT* ids) {
  return Answer("GetReactionsIds", kInterface, ids, [&] {
    std::vector<std::string> names;
    for (const Reaction& reaction : reactions) names.push_back(reaction.id);
    return com::MakeStrings(names);
  });
}

HRESULT ReactionPackage::GetReactionType(BSTR id, CapeReactionType* type) {
  if (!type) return E_POINTER;
  return Guard("GetReactionType", kInterface,
               [&] { *type = ReactionOf(id).IsKinetic() ? CAPE_KINETIC : CAPE_EQUILIBRIUM; });
}

HRESULT ReactionPackage::GetNumberOfReactionCompounds(BSTR id, LONG* count) {
  if (!count) return E_POINTER;
  return Guard("GetNumberOfReactionCompounds", kInterface,
               [&] { *count = static_cast<LONG>(ReactionOf(id).stoichiometry.size()); });
}

HRESULT ReactionPackage::GetReactionCompoundIds(BSTR id, VARIANT* compounds, VARIANT* charges, VARIANT* casNumbers) {
  if (!compounds || !charges || !casNumbers) return E_POINTER;
  return Guard("GetReactionCompoundIds", kInterface, [&] {
    const Reaction& reaction = ReactionOf(id);
    std::vector<std::string> numbers;
    for (const auto& [compound, nu] : reaction.stoichiometry) numbers.push_back(package->CompoundAt(compound).cas);
    com::Variant names = CompoundsOf(reaction);
    com::Variant neutral = com::MakeDoubles(std::vector<double>(numbers.size(), 0.0));
    Replace(casNumbers, com::MakeStrings(numbers));
    Replace(charges, std::move(neutral));
    Replace(compounds, std::move(names));
  });
}

HRESULT ReactionPackage::GetStoichiometricCoefficients(BSTR id, VARIANT* coefficients) {
  return Answer("GetStoichiometricCoefficients", kInterface, coefficients, [&] {
    std::vector<double> numbers;
    for (const auto& [compound, nu] : ReactionOf(id).stoichiometry) numbers.push_back(nu);
    return com::MakeDoubles(numbers);
  });
}

HRESULT ReactionPackage::AnswerText(const char* operation, BSTR id, BSTR* text, std::string (*of)(const Reaction&)) {
  if (!text) return E_POINTER;
  *text = nullptr;
  return Guard(operation, kInterface, [&] { *text = com::ToBstr(of(ReactionOf(id))).Detach(); });
}

HRESULT ReactionPackage::GetReactionPhase(BSTR id, BSTR* phase) {
  return AnswerText("GetReactionPhase", id, phase,
                    [](const Reaction& reaction) -> std::string { return PhaseName(reaction.phase); });
}

HRESULT ReactionPackage::GetReactionConcBasis(BSTR id, BSTR* basis) {
  return AnswerText("GetReactionConcBasis", id, basis, [](const Reaction& reaction) -> std::string {
    return std::ranges::find(kConcentrationBases, reaction.basis, &NamedBasis::basis)->name;
  });
}

HRESULT ReactionPackage::GetReactionRateBasis(BSTR id, CapeReactionRateBasis* basis) {
  if (!basis) return E_POINTER;
  return Guard("GetReactionRateBasis", kInterface, [&] {
    const Reaction& reaction = ReactionOf(id);
    const auto* kinetics = std::get_if<Kinetics>(&reaction.law);
    if (!kinetics)
      throw HostError(kECapeInvalidArgument,
                      "reaction \"" + reaction.id + "\" is an equilibrium reaction and has no rate basis");
    *basis = kinetics->isHeterogeneous ? CAPE_HETEROGENEOUS : CAPE_HOMOGENEOUS;
  });
}

HRESULT ReactionPackage::GetBaseReactant(BSTR id, BSTR* compound) {
  if (!compound) return E_POINTER;
  *compound = nullptr;
  return Guard("GetBaseReactant", kInterface, [&] {
    const Reaction& reaction = ReactionOf(id);
    const auto reactant =
        std::ranges::find_if(reaction.stoichiometry, [](const CompoundNumber& entry) { return entry.number < 0; });
    if (reactant == reaction.stoichiometry.end())
      throw HostError(kECapeInvalidArgument, "reaction \"" + reaction.id + "\" has no reactant");
    *compound = com::ToBstr(package->CompoundAt(reactant->compound).name).Detach();
  });
}

HRESULT ReactionPackage::GetPhaseCompounds(BSTR id, LONG* count, VARIANT* compounds) {
  if (!count || !compounds) return E_POINTER;
  return Guard("GetPhaseCompounds", kInterface, [&] {
    const Reaction& reaction = ReactionOf(id);
    Replace(compounds, CompoundsOf(reaction));
    *count = static_cast<LONG>(reaction.stoichiometry.size());
  });
}

HRESULT ReactionPackage::GetReactionParameters(BSTR id, IDispatch** parameters) {
  if (!parameters) return E_POINTER;
  *parameters = nullptr;
  return Guard("GetReactionParameters", kInterface, [&] {
    throw HostError(kECapeNoImpl, "reaction \"" + ReactionOf(id).id +
                                      "\" has no parameters to be set: the flowsheet file gives its numbers");
  });
}

}  // namespace morvelan::host
