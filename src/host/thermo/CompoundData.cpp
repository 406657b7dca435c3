#include "host/thermo/CompoundData.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace morvelan::host {

namespace {

using nlohmann::json;

[[noreturn]] void Fail(const std::string& place, const std::string& what) {
  throw std::runtime_error(place + ": " + what);
}

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

/// A JSON value and where it stands.
struct Node {
  const json& value;
  std::string place;

  [[noreturn]] void Expected(const std::string& what) const {
    Fail(place, "expected " + what + ", found " + value.type_name());
  }

  void RequireObject(std::initializer_list<std::string_view> keys) const {
    if (!value.is_object()) Expected("an object");
    for (const auto& [key, unused] : value.items()) {
      if (std::find(keys.begin(), keys.end(), key) == keys.end()) Fail(place, "unknown key \"" + key + "\"");
    }
  }

  /// The member, or nothing when it is missing or null.
  [[nodiscard]] std::optional<Node> Find(const char* key) const {
    const auto member = value.find(key);
    if (member == value.end() || member->is_null()) return std::nullopt;
    return Node{*member, place + ": " + key};
  }

  [[nodiscard]] Node At(const char* key) const {
    auto member = Find(key);
    if (!member) Fail(place, std::string("missing \"") + key + "\"");
    return *member;
  }

  /// The elements of an array member; none when it is missing.
  [[nodiscard]] std::vector<Node> Items(const char* key) const {
    std::vector<Node> items;
    const auto member = Find(key);
    if (!member) return items;
    if (!member->value.is_array()) member->Expected("an array");
    for (std::size_t i = 0; i < member->value.size(); ++i) {
      items.push_back({member->value[i], member->place + "[" + std::to_string(i) + "]"});
    }
    return items;
  }

  [[nodiscard]] double Number() const {
    if (!value.is_number()) Expected("a number");
    return value.get<double>();
  }

  [[nodiscard]] double Positive() const {
    const double number = Number();
    if (!(number > 0.0)) Fail(place, "must be above 0");
    return number;
  }

  [[nodiscard]] std::string Text() const {
    if (!value.is_string()) Expected("a string");
    const auto& text = value.get_ref<const std::string&>();
    if (text.empty()) Fail(place, "must not be empty");
    return text;
  }

  [[nodiscard]] std::string TextOr(const char* key) const {
    const auto member = Find(key);
    return member ? member->Text() : std::string();
  }

  [[nodiscard]] std::optional<double> NumberOr(const char* key) const {
    const auto member = Find(key);
    return member ? std::optional(member->Number()) : std::nullopt;
  }

  [[nodiscard]] std::optional<double> PositiveOr(const char* key) const {
    const auto member = Find(key);
    return member ? std::optional(member->Positive()) : std::nullopt;
  }
};

std::vector<Nasa7Range> ReadNasa7(const Node& owner, const char* key) {
  std::vector<Nasa7Range> ranges;
  const auto node = owner.Find(key);
  if (!node) return ranges;
  node->RequireObject({"model", "ranges"});
  if (const Node model = node->At("model"); model.Text() != "nasa7") Fail(model.place, "must be \"nasa7\"");
  for (const Node& item : node->Items("ranges")) {
    item.RequireObject({"Tmin", "Tmax", "phase", "a"});
    Nasa7Range range{item.At("Tmin").Positive(), item.At("Tmax").Positive(), {}};
    if (range.highest <= range.lowest) Fail(item.place, "Tmax must be above Tmin");
    if (!ranges.empty() && range.lowest != ranges.back().highest) {
      Fail(item.place, "must start where the range before it ends");
    }
    const std::vector<Node> coefficients = item.Items("a");
    if (coefficients.size() != range.a.size()) Fail(item.place + ": a", "must have seven coefficients");
    std::transform(coefficients.begin(), coefficients.end(), range.a.begin(),
                   [](const Node& coefficient) { return coefficient.Number(); });
    ranges.push_back(range);
  }
  if (ranges.empty()) Fail(node->place, "must have at least one range");
  return ranges;
}

std::optional<CriticalPoint> ReadCritical(const Node& node) {
  const auto T = node.PositiveOr("criticalTemperature");
  const auto P = node.PositiveOr("criticalPressure");
  const auto acentricFactor = node.NumberOr("acentricFactor");
  if (!T && !P && !acentricFactor) return std::nullopt;
  if (!T || !P || !acentricFactor) {
    Fail(node.place, "criticalTemperature, criticalPressure and acentricFactor belong together");
  }
  return CriticalPoint{*T, *P, *acentricFactor};
}

std::optional<Formation> ReadFormation(const Node& node, const char* enthalpyKey, const char* gibbsKey) {
  const auto enthalpy = node.NumberOr(enthalpyKey);
  const auto gibbsEnergy = node.NumberOr(gibbsKey);
  if (enthalpy.has_value() != gibbsEnergy.has_value()) {
    Fail(node.place, std::string(enthalpyKey) + " and " + gibbsKey + " belong together");
  }
  return enthalpy ? std::optional(Formation{*enthalpy, *gibbsEnergy}) : std::nullopt;
}

Compound ReadCompound(Node node) {
  if (!node.value.is_object()) node.Expected("an object");
  Compound compound;
  compound.name = node.At("name").Text();
  node.place += " \"" + compound.name + "\"";
  node.RequireObject({"name",
                      "formula",
                      "cas",
                      "aliases",
                      "elements",
                      "molecularWeight",
                      "criticalTemperature",
                      "criticalPressure",
                      "criticalVolume",
                      "acentricFactor",
                      "normalBoilingPoint",
                      "idealGas",
                      "enthalpyOfFormationGas",
                      "entropyGas",
                      "gibbsOfFormationGas",
                      "solid",
                      "enthalpyOfFormationSolid",
                      "entropySolid",
                      "gibbsOfFormationSolid",
                      "dataSource",
                      "note"});
  compound.formula = node.TextOr("formula");
  compound.cas = node.TextOr("cas");
  for (const Node& alias : node.Items("aliases")) compound.aliases.push_back(alias.Text());
  if (const auto elements = node.Find("elements")) {
    if (!elements->value.is_object()) elements->Expected("an object");
    for (const auto& [symbol, count] : elements->value.items()) {
      compound.elements.emplace_back(symbol, Node{count, elements->place + ": " + symbol}.Positive());
    }
  }
  compound.molecularWeight = node.At("molecularWeight").Positive();
  compound.critical = ReadCritical(node);
  compound.criticalVolume = node.PositiveOr("criticalVolume");
  compound.normalBoilingPoint = node.PositiveOr("normalBoilingPoint");
  compound.idealGas = ReadNasa7(node, "idealGas");
  compound.formationGas = ReadFormation(node, "enthalpyOfFormationGas", "gibbsOfFormationGas");
  compound.entropyGas = node.NumberOr("entropyGas");
  compound.solid = ReadNasa7(node, "solid");
  compound.formationSolid = ReadFormation(node, "enthalpyOfFormationSolid", "gibbsOfFormationSolid");
  compound.entropySolid = node.NumberOr("entropySolid");
  return compound;
}

/// A path in UTF-8 on every platform.
std::string PathText(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

json ReadFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) Fail(PathText(file), "cannot be opened");
  try {
    return json::parse(stream);
  } catch (const json::exception& error) {
    Fail(PathText(file), error.what());
  }
}

/// The polynomials hold for one gas constant and reference state only.
void CheckUnits(const Node& root) {
  const auto units = root.Find("units");
  if (!units || !units->value.is_object()) return;
  const auto require = [&](const char* key, double ours) {
    const auto given = units->NumberOr(key);
    if (given && std::abs(*given - ours) > 1e-9 * ours) Fail(units->place, std::string(key) + " is not supported");
  };
  require("gasConstant", kGasConstant);
  require("referenceTemperature", kReferenceTemperature);
  require("referencePressure", kReferencePressure);
}

std::map<std::string, std::size_t, std::less<>> IndexNames(const std::vector<Compound>& compounds,
                                                           const std::string& place) {
  std::map<std::string, std::size_t, std::less<>> byName;
  for (std::size_t i = 0; i < compounds.size(); ++i) {
    std::vector<std::string> keys = compounds[i].aliases;
    keys.push_back(compounds[i].name);
    if (!compounds[i].cas.empty()) keys.push_back(compounds[i].cas);
    for (const std::string& key : keys) {
      const auto [entry, isNew] = byName.emplace(LowerCase(key), i);
      if (!isNew && entry->second != i) {
        Fail(place, "\"" + key + "\" of compound \"" + compounds[i].name + "\" already belongs to compound \"" +
                        compounds[entry->second].name + "\"");
      }
    }
  }
  return byName;
}

}  // namespace

void CompoundData::AddCompounds(const std::filesystem::path& file) {
  AddCompounds(ReadFile(file), PathText(file.filename()));
}

void CompoundData::AddCompounds(const json& object, const std::string& place) {
  const Node root{object, place};
  root.RequireObject({"units", "notes", "sources", "compounds"});
  CheckUnits(root);
  (void)root.At("compounds");
  std::vector<Compound> extended = compounds;
  const std::size_t oldCount = extended.size();
  for (const Node& node : root.Items("compounds")) {
    Compound compound = ReadCompound(node);
    const auto sameName = std::find_if(extended.begin(), extended.end(), [&](const Compound& other) {
      return LowerCase(other.name) == LowerCase(compound.name);
    });
    if (sameName == extended.end()) {
      extended.push_back(std::move(compound));
    } else if (sameName - extended.begin() < static_cast<std::ptrdiff_t>(oldCount)) {
      *sameName = std::move(compound);
    } else {
      Fail(node.place, "compound \"" + compound.name + "\" is listed twice");
    }
  }
  byName = IndexNames(extended, place);
  compounds = std::move(extended);
}

void CompoundData::AddInteractions(const std::filesystem::path& file) {
  AddInteractions(ReadFile(file), PathText(file.filename()));
}

void CompoundData::AddInteractions(const json& object, const std::string& place) {
  const Node root{object, place};
  root.RequireObject({"model", "source", "mixingRule", "notes", "pairs"});
  (void)root.At("pairs");
  auto extended = kij;
  std::map<std::pair<std::size_t, std::size_t>, double> added;
  for (const Node& node : root.Items("pairs")) {
    node.RequireObject({"a", "b", "kij", "source", "note"});
    const auto find = [&](const char* key) {
      const Node name = node.At(key);
      const auto index = Find(name.Text());
      if (!index) Fail(name.place, "unknown compound \"" + name.Text() + "\"");
      return *index;
    };
    const auto pair = std::minmax({find("a"), find("b")});
    if (pair.first == pair.second) Fail(node.place, "the two compounds are the same");
    const double value = node.At("kij").Number();
    if (!added.emplace(pair, value).second) Fail(node.place, "the pair is listed twice");
    extended[pair] = value;
  }
  kij = std::move(extended);
}

std::optional<std::size_t> CompoundData::Find(std::string_view name) const {
  const auto entry = byName.find(LowerCase(name));
  return entry == byName.end() ? std::nullopt : std::optional(entry->second);
}

double CompoundData::Kij(std::size_t i, std::size_t j) const {
  const auto entry = kij.find(std::minmax({i, j}));
  return entry == kij.end() ? 0.0 : entry->second;
}

}  // namespace morvelan::host
