#include "host/thermo/CompoundData.h"

#include <algorithm>
#include <fstream>

#include "host/file/Nearest.h"
#include "host/thermo/CompoundReader.h"

namespace morvelan::host {
namespace {

using NameIndex = std::map<std::string, std::size_t, std::less<>>;

JsonNode OpenFile(const std::filesystem::path& file) {
  if (!std::ifstream(file)) throw FileError({file.string()}, "cannot be opened");
  return JsonNode(std::make_shared<JsonFile>(file));
}

NameIndex IndexNames(const std::vector<Compound>& compounds, const JsonNode& place) {
  NameIndex byName;
  for (std::size_t i = 0; i < compounds.size(); ++i) {
    std::vector<std::string> keys = compounds[i].aliases;
    keys.push_back(compounds[i].name);
    if (!compounds[i].cas.empty()) keys.push_back(compounds[i].cas);
    for (const std::string& key : keys) {
      const auto [entry, isNew] = byName.emplace(LowerCase(key), i);
      if (!isNew && entry->second != i)
        place.Fail("\"" + key + "\" of compound \"" + compounds[i].name + "\" already belongs to compound \"" +
                   compounds[entry->second].name + "\"");
    }
  }
  return byName;
}

}  // namespace

void CompoundData::AddCompounds(const std::filesystem::path& file) { AddCompounds(OpenFile(file)); }

void CompoundData::AddCompounds(const JsonNode& object) {
  std::vector<Compound> extended = compounds;
  for (Compound& compound : ReadCompounds(object)) {
    const auto sameName = std::ranges::find(extended, LowerCase(compound.name),
                                            [](const Compound& other) { return LowerCase(other.name); });
    if (sameName == extended.end())
      extended.push_back(std::move(compound));
    else
      *sameName = std::move(compound);
  }
  byName = IndexNames(extended, object);
  compounds = std::move(extended);
}

void CompoundData::AddInteractions(const std::filesystem::path& file) { AddInteractions(OpenFile(file)); }

void CompoundData::AddInteractions(const JsonNode& object) {
  object.AllowKeys({"model", "source", "mixingRule", "notes", "pairs"});
  std::map<std::pair<std::size_t, std::size_t>, double> added;
  for (const JsonNode& node : object.At("pairs").Items()) {
    node.AllowKeys({"a", "b", "kij", "source", "note"});
    const auto pair = std::minmax({Find(node.At("a")), Find(node.At("b"))});
    if (pair.first == pair.second) node.Fail("the two compounds are the same");
    if (!added.emplace(pair, node.At("kij").Number()).second) node.Fail("the pair is listed twice");
  }
  added.merge(kij);  // keeps what is new
  kij = std::move(added);
}

std::optional<std::size_t> CompoundData::Find(std::string_view name) const {
  const auto entry = byName.find(LowerCase(name));
  return entry == byName.end() ? std::nullopt : std::optional(entry->second);
}

std::size_t CompoundData::Find(const JsonNode& name) const {
  const auto found = Find(name.Text());
  if (!found)
    name.Fail("compound " + Describe(name.Value()) + " is unknown" + Suggestion(name.Text(), NamesOf(compounds)));
  return *found;
}

double CompoundData::Kij(std::size_t i, std::size_t j) const {
  const auto entry = kij.find(std::minmax({i, j}));
  return entry == kij.end() ? 0.0 : entry->second;
}

}  // namespace morvelan::host
