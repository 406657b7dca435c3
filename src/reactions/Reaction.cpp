#include "reactions/Reaction.h"

#include "com/Text.h"

namespace morvelan {
namespace {

struct BasisTexts {
  ActivityBasis basis;
  const char* packageName;
  const char* reportWord;
};

constexpr BasisTexts kBases[] = {
    {ActivityBasis::kMolarity, "Molarity", "molarity (molar density)"},
    {ActivityBasis::kConcentration, "Concentration", "concentration (mass density)"},
    {ActivityBasis::kMoleFraction, "MoleFraction", "mole fraction"},
    {ActivityBasis::kMassFraction, "MassFraction", "mass fraction"},
};

}  // namespace

std::optional<ActivityBasis> FindActivityBasis(const std::string& name) {
  for (const BasisTexts& texts : kBases)
    if (com::EqualNoCase(name, texts.packageName)) return texts.basis;
  return std::nullopt;
}

ActivityBasis Reaction::Basis() const {
  return FindActivityBasis(concentrationBasis).value_or(ActivityBasis::kMolarity);
}

const char* Reaction::BasisWord() const {
  const std::optional<ActivityBasis> named =
      concentrationBasis.empty() ? Basis() : FindActivityBasis(concentrationBasis);
  for (const BasisTexts& texts : kBases)
    if (named == texts.basis) return texts.reportWord;
  return "Unknown";
}

std::string JoinedNames(std::span<const Reaction> reactions, const std::vector<std::size_t>& places) {
  std::string names;
  for (const std::size_t r : places) names += (names.empty() ? "" : " and ") + reactions[r].name.Text();
  return names;
}

}  // namespace morvelan
