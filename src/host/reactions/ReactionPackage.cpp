#include "host/reactions/ReactionPackage.h"

#include <algorithm>

#include "com/Text.h"
#include "host/file/Nearest.h"
#include "host/material/MaterialState.h"
#include "host/objects/Arguments.h"

namespace morvelan::host {
namespace {

constexpr const char* kChemistry = "ICapeReactionChemistry";
constexpr const char* kContext = "ICapeThermoMaterialContext";
constexpr const char* kPropertiesInterface = "ICapeReactionProperties";

bool IsOmitted(const std::string& text) { return text.empty() || com::EqualNoCase(text, "UNDEFINED"); }

/// Rates and enthalpies are given per mole. An equilibrium constant is in its reaction's own basis, so that any basis
/// is accepted for it.
void CheckBasis(BSTR basis, ReactionProperty property) {
  const std::string text = com::ToUtf8(basis);
  if (IsOmitted(text) || com::EqualNoCase(text, "Mole")) return;
  if (!com::EqualNoCase(text, "Mass"))
    throw HostError(kECapeInvalidArgument, "basis \"" + text + "\" is unknown; known are Mole and Mass");
  if (property != ReactionProperty::kEquilibriumConstant)
    throw HostError(kECapeLimitedImpl, std::string(NameOf(property)) + " is given on basis \"Mole\" only");
}

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
  throw HostError(kECapeInvalidArgument,
                  "reaction \"" + id + "\" is unknown; the package has " + Listed(NamesOf(reactions, &Reaction::id)));
}

com::Variant ReactionPackage::CompoundsOf(const Reaction& reaction) const {
  std::vector<std::string> names;
  for (const auto& [compound, nu] : reaction.stoichiometry) names.push_back(package->CompoundAt(compound).name);
  return com::MakeStrings(names);
}

HRESULT ReactionPackage::GetReactionsIds(VARIANT* ids) {
  return Answer("GetReactionsIds", kChemistry, ids,
                [&] { return com::MakeStrings(NamesOf(reactions, &Reaction::id)); });
}

HRESULT ReactionPackage::GetReactionType(BSTR id, CapeReactionType* type) {
  if (!type) return E_POINTER;
  return Guard("GetReactionType", kChemistry,
               [&] { *type = ReactionOf(id).IsKinetic() ? CAPE_KINETIC : CAPE_EQUILIBRIUM; });
}

HRESULT ReactionPackage::GetNumberOfReactionCompounds(BSTR id, LONG* count) {
  if (!count) return E_POINTER;
  return Guard("GetNumberOfReactionCompounds", kChemistry,
               [&] { *count = static_cast<LONG>(ReactionOf(id).stoichiometry.size()); });
}

HRESULT ReactionPackage::GetReactionCompoundIds(BSTR id, VARIANT* compounds, VARIANT* charges, VARIANT* casNumbers) {
  if (!compounds || !charges || !casNumbers) return E_POINTER;
  return Guard("GetReactionCompoundIds", kChemistry, [&] {
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
  return Answer("GetStoichiometricCoefficients", kChemistry, coefficients, [&] {
    std::vector<double> numbers;
    for (const auto& [compound, nu] : ReactionOf(id).stoichiometry) numbers.push_back(nu);
    return com::MakeDoubles(numbers);
  });
}

HRESULT ReactionPackage::AnswerText(const char* operation, BSTR id, BSTR* text, std::string (*of)(const Reaction&)) {
  if (!text) return E_POINTER;
  *text = nullptr;
  return Guard(operation, kChemistry, [&] { *text = com::ToBstr(of(ReactionOf(id))).Detach(); });
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
  return Guard("GetReactionRateBasis", kChemistry, [&] {
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
  return Guard("GetBaseReactant", kChemistry, [&] {
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
  return Guard("GetPhaseCompounds", kChemistry, [&] {
    const Reaction& reaction = ReactionOf(id);
    Replace(compounds, CompoundsOf(reaction));
    *count = static_cast<LONG>(reaction.stoichiometry.size());
  });
}

HRESULT ReactionPackage::GetReactionParameters(BSTR id, IDispatch** parameters) {
  if (!parameters) return E_POINTER;
  *parameters = nullptr;
  return Guard("GetReactionParameters", kChemistry, [&] {
    throw HostError(kECapeNoImpl, "reaction \"" + ReactionOf(id).id +
                                      "\" has no parameters to be set: the flowsheet file gives its numbers");
  });
}

HRESULT ReactionPackage::SetMaterial(IDispatch* given) {
  return Guard("SetMaterial", kContext, [&] {
    calculated.clear();
    material.reset();
    if (given) material = MakeMaterialReader(given);
  });
}

std::vector<std::size_t> ReactionPackage::Chosen(const VARIANT& ids, BSTR phase) const {
  const std::string wanted = com::ToUtf8(phase);
  std::vector<std::size_t> chosen;
  for (const std::string& id : ReadNames(ids)) {
    chosen.push_back(Find(id));
    const Reaction& reaction = reactions[chosen.back()];
    if (!IsOmitted(wanted) && !com::EqualNoCase(wanted, PhaseName(reaction.phase)))
      throw HostError(kECapeInvalidArgument, "reaction \"" + reaction.id + "\" takes place in phase \"" +
                                                 PhaseName(reaction.phase) + "\", not in \"" + wanted + '"');
  }
  if (chosen.empty()) throw HostError(kECapeInvalidArgument, "no reaction is named");
  return chosen;
}

HRESULT ReactionPackage::CalcReactionProp(VARIANT properties, BSTR phase, VARIANT ids, BSTR basis) {
  return Guard("CalcReactionProp", "ICapeReactionsRoutine", [&] {
    std::vector<ReactionProperty> wanted;
    for (const std::string& name : ReadNames(properties)) {
      wanted.push_back(ReactionPropertyByName(name));
      CheckBasis(basis, wanted.back());
    }
    const std::vector<std::size_t> chosen = Chosen(ids, phase);
    if (!material) throw HostError(kECapeBadInvOrder, "no material is set: reaction properties need SetMaterial first");
    ReactionConditions conditions(*material, *package);
    // After a failure no value of an earlier state must be left.
    for (const ReactionProperty property : wanted)
      for (const std::size_t i : chosen) calculated.erase({property, i});
    for (const ReactionProperty property : wanted)
      for (const std::size_t i : chosen)
        calculated[{property, i}] = calculator.Value(property, reactions[i], conditions.Of(reactions[i].phase));
  });
}

HRESULT ReactionPackage::GetReactionProp(BSTR property, BSTR phase, VARIANT ids, BSTR basis, VARIANT* values) {
  return Answer("GetReactionProp", kPropertiesInterface, values, [&] {
    const ReactionProperty wanted = ReactionPropertyByName(com::ToUtf8(property));
    CheckBasis(basis, wanted);
    std::vector<double> found;
    for (const std::size_t i : Chosen(ids, phase)) {
      const auto result = calculated.find({wanted, i});
      if (result == calculated.end())
        throw HostError(kECapeThrmPropertyNotAvailable, std::string(NameOf(wanted)) + " of reaction \"" +
                                                            reactions[i].id +
                                                            "\" is not calculated: CalcReactionProp comes first");
      found.push_back(result->second);
    }
    return com::MakeDoubles(found);
  });
}

HRESULT ReactionPackage::SetReactionProp(BSTR property, BSTR, VARIANT, BSTR, VARIANT) {
  return Guard("SetReactionProp", kPropertiesInterface, [&] {
    throw HostError(kECapeNoImpl, std::string(NameOf(ReactionPropertyByName(com::ToUtf8(property)))) +
                                      " is calculated and can't be set");
  });
}

}  // namespace morvelan::host
