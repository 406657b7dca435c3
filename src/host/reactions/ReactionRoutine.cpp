// The properties that a reaction package calculates for a material.

#include "com/Text.h"
#include "host/material/MaterialObject.h"
#include "host/reactions/ReactionPackage.h"

namespace morvelan::host {
namespace {

constexpr const char* kContext = "ICapeThermoMaterialContext";
constexpr const char* kProperties = "ICapeReactionProperties";

bool IsOmitted(const std::string& text) { return text.empty() || com::EqualNoCase(text, "UNDEFINED"); }

/// Extents count in moles; the equilibrium constant has its reaction's own basis and takes any.
void CheckBasis(BSTR basis, ReactionProperty property) {
  const std::string text = com::ToUtf8(basis);
  if (IsOmitted(text) || com::EqualNoCase(text, "Mole")) return;
  if (!com::EqualNoCase(text, "Mass"))
    throw HostError(kECapeInvalidArgument, "basis \"" + text + "\" is unknown; known are Mole and Mass");
  if (property != ReactionProperty::kEquilibriumConstant)
    throw HostError(kECapeLimitedImpl, std::string(NameOf(property)) + " is given on basis \"Mole\" only");
}

}  // namespace

HRESULT ReactionPackage::SetMaterial(IDispatch* given) {
  return Guard("SetMaterial", kContext, [&] {
    calculated.clear();
    material.reset();
    if (given) material = ReadMaterial(given);
  });
}

HRESULT ReactionPackage::UnsetMaterial() { return SetMaterial(nullptr); }

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
    // What a failure leaves uncalculated must not be read from an earlier state.
    for (const ReactionProperty property : wanted)
      for (const std::size_t i : chosen) calculated.erase({property, i});
    for (const ReactionProperty property : wanted)
      for (const std::size_t i : chosen)
        calculated[{property, i}] = calculator.Value(property, reactions[i], conditions.Of(reactions[i].phase));
  });
}

HRESULT ReactionPackage::GetReactionProp(BSTR property, BSTR phase, VARIANT ids, BSTR basis, VARIANT* values) {
  return Answer("GetReactionProp", kProperties, values, [&] {
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
  return Guard("SetReactionProp", kProperties, [&] {
    throw HostError(kECapeNoImpl, std::string(NameOf(ReactionPropertyByName(com::ToUtf8(property)))) +
                                      " is calculated and can't be set");
  });
}

}  // namespace morvelan::host
