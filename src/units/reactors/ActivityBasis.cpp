#include "units/reactors/ActivityBasis.h"

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

const char* ReportWord(std::optional<ActivityBasis> basis) {
  for (const BasisTexts& texts : kBases)
    if (basis == texts.basis) return texts.reportWord;
  return "Unknown";
}

}  // namespace morvelan
