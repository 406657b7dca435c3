#include "host/flowsheet/ThermoReader.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

#include "com/Text.h"
#include "host/file/Nearest.h"
#include "host/thermo/CompoundData.h"
#include "host/thermo/PackageFactory.h"

namespace morvelan::host {
namespace {

constexpr double kFractionTolerance = 1e-6;

CompoundData LoadData(const JsonNode& thermo, const std::filesystem::path& file,
                      const std::filesystem::path& dataFolder) {
  CompoundData data;
  data.AddCompounds(dataFolder / "compounds.json");
  data.AddInteractions(dataFolder / "binary-interaction.json");
  const auto own = thermo.Find("compoundData");
  if (!own) return data;
  if (own->Value().is_object()) {
    data.AddCompounds(*own);
    return data;
  }
  const auto ownFile = file.parent_path() / com::ToPath(own->Text());
  try {
    data.AddCompounds(ownFile);
  } catch (const FileError& error) {
    own->Fail(error.what());
  }
  return data;
}

std::vector<std::string> ReadCompoundNames(const CompoundData& data, const JsonNode& list) {
  std::vector<std::string> names;
  for (const JsonNode& item : list.Items()) {
    const std::string& name = data.Compounds()[data.Find(item)].name;
    if (std::ranges::find(names, name) != names.end()) item.Fail("compound \"" + name + "\" is listed twice");
    names.push_back(name);
  }
  if (names.empty()) list.Fail("at least one compound is needed");
  return names;
}

std::vector<BinaryInteraction> ReadInteractions(const CompoundData& data, const JsonNode& list,
                                                const std::vector<std::string>& compounds) {
  std::vector<BinaryInteraction> interactions;
  for (const JsonNode& item : list.Items()) {
    item.AllowKeys({"a", "b", "kij"});
    const auto member = [&](const char* key) {
      const JsonNode name = item.At(key);
      const std::string& compound = data.Compounds()[data.Find(name)].name;
      if (std::ranges::find(compounds, compound) == compounds.end())
        name.Fail("compound \"" + compound + "\" is not one of thermo/compounds");
      return compound;
    };
    BinaryInteraction interaction{member("a"), member("b"), item.At("kij").Number()};
    if (interaction.a == interaction.b) item.Fail("a and b are the same compound");
    const bool known = std::ranges::any_of(interactions, [&](const BinaryInteraction& other) {
      return std::minmax(other.a, other.b) == std::minmax(interaction.a, interaction.b);
    });
    if (known) item.Fail("the pair is listed twice");
    interactions.push_back(std::move(interaction));
  }
  return interactions;
}

}  // namespace

FlowsheetCompounds::FlowsheetCompounds(const JsonNode& thermo, const std::filesystem::path& file,
                                       const std::filesystem::path& dataFolder) {
  const CompoundData data = LoadData(thermo, file, dataFolder);
  PackageOptions options;
  if (const auto model = thermo.Find("model")) options.model = model->OneOf({"peng-robinson", "ideal-gas"});
  const JsonNode compounds = thermo.At("compounds");
  options.compounds = ReadCompoundNames(data, compounds);
  if (const auto pairs = thermo.Find("binaryInteraction"))
    options.interactions = ReadInteractions(data, *pairs, options.compounds);
  if (const auto builtIn = thermo.Find("builtInInteraction")) options.builtInInteraction = builtIn->Boolean();
  try {
    package = MakePropertyPackage(data, options);
  } catch (const std::runtime_error& error) {
    compounds.Fail(error.what());
  }
}

std::size_t FlowsheetCompounds::Find(const JsonNode& place, const std::string& name) const {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < package->CompoundCount(); ++i) {
    const Compound& compound = package->CompoundAt(i);
    const auto matches = [&](const std::string& known) { return com::EqualNoCase(known, name); };
    if (matches(compound.name) || matches(compound.cas) || std::ranges::any_of(compound.aliases, matches)) return i;
    names.push_back(compound.name);
  }
  place.Fail("compound \"" + name + "\" is not one of thermo/compounds" + Suggestion(name, names));
}

std::vector<double> FlowsheetCompounds::ReadComposition(const JsonNode& composition) const {
  std::vector<double> fractions(package->CompoundCount(), 0.0);
  std::vector<bool> given(fractions.size(), false);
  for (const auto& [name, node] : composition.Members()) {
    const std::size_t i = Find(node, name);
    if (given[i]) node.Fail("compound \"" + package->CompoundAt(i).name + "\" is given twice");
    given[i] = true;
    fractions[i] = node.NotNegative();
  }
  const double sum = std::accumulate(fractions.begin(), fractions.end(), 0.0);
  if (!(std::abs(sum - 1.0) <= kFractionTolerance))
    composition.Fail("the mole fractions must sum to 1 within 1e-6, their sum is " + Json(sum).dump());
  for (double& fraction : fractions) fraction /= sum;
  return fractions;
}

}  // namespace morvelan::host
