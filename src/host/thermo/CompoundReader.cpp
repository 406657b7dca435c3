#include "host/thermo/CompoundReader.h"

#include <algorithm>
#include <cmath>

#include "host/file/Nearest.h"

namespace morvelan::host {
namespace {

const std::vector<std::string> kCompoundKeys = {"name",
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
                                                "note"};

/// A member of an object, absent also when it is null.
std::optional<JsonNode> FindKnown(const JsonNode& node, const char* key) {
  auto member = node.Find(key);
  return member && member->Value().is_null() ? std::nullopt : member;
}

std::optional<double> KnownNumber(const JsonNode& node, const char* key) {
  const auto member = FindKnown(node, key);
  return member ? std::optional(member->Number()) : std::nullopt;
}

std::optional<double> KnownPositive(const JsonNode& node, const char* key) {
  const auto member = FindKnown(node, key);
  return member ? std::optional(member->Positive()) : std::nullopt;
}

std::string FilledText(const JsonNode& node) {
  if (node.Text().empty()) node.Fail("must not be empty");
  return node.Text();
}

std::string KnownText(const JsonNode& node, const char* key) {
  const auto member = FindKnown(node, key);
  return member ? FilledText(*member) : std::string();
}

std::vector<std::string> ReadAliases(const JsonNode& compound) {
  std::vector<std::string> aliases;
  if (const auto list = FindKnown(compound, "aliases"))
    for (const JsonNode& alias : list->Items()) aliases.push_back(FilledText(alias));
  return aliases;
}

std::vector<std::pair<std::string, double>> ReadElements(const JsonNode& compound) {
  std::vector<std::pair<std::string, double>> elements;
  if (const auto counts = FindKnown(compound, "elements"))
    for (const auto& [symbol, count] : counts->Members()) elements.emplace_back(symbol, count.Positive());
  return elements;
}

std::vector<Nasa7Range> ReadNasa7(const JsonNode& compound, const char* key) {
  std::vector<Nasa7Range> ranges;
  const auto node = FindKnown(compound, key);
  if (!node) return ranges;
  node->AllowKeys({"model", "ranges"});
  if (const JsonNode model = node->At("model"); model.Text() != "nasa7") model.Fail("must be \"nasa7\"");
  for (const JsonNode& item : node->At("ranges").Items()) {
    item.AllowKeys({"Tmin", "Tmax", "phase", "a"});
    Nasa7Range range{item.At("Tmin").Positive(), item.At("Tmax").Positive(), {}};
    if (range.highest <= range.lowest) item.Fail("Tmax must be above Tmin");
    if (!ranges.empty() && range.lowest != ranges.back().highest)
      item.Fail("must start where the range before it ends");
    const std::vector<JsonNode> coefficients = item.At("a").Items();
    if (coefficients.size() != range.a.size()) item.At("a").Fail("must have seven coefficients");
    std::ranges::transform(coefficients, range.a.begin(), &JsonNode::Number);
    ranges.push_back(range);
  }
  if (ranges.empty()) node->Fail("must have at least one range");
  return ranges;
}

std::optional<CriticalPoint> ReadCritical(const JsonNode& node) {
  const auto T = KnownPositive(node, "criticalTemperature");
  const auto P = KnownPositive(node, "criticalPressure");
  const auto acentricFactor = KnownNumber(node, "acentricFactor");
  if (!T && !P && !acentricFactor) return std::nullopt;
  if (!T || !P || !acentricFactor)
    node.Fail("criticalTemperature, criticalPressure and acentricFactor belong together");
  return CriticalPoint{*T, *P, *acentricFactor};
}

std::optional<Formation> ReadFormation(const JsonNode& node, const char* enthalpyKey, const char* gibbsKey) {
  const auto enthalpy = KnownNumber(node, enthalpyKey);
  const auto gibbsEnergy = KnownNumber(node, gibbsKey);
  if (enthalpy.has_value() != gibbsEnergy.has_value())
    node.Fail(std::string(enthalpyKey) + " and " + gibbsKey + " belong together");
  return enthalpy ? std::optional(Formation{*enthalpy, *gibbsEnergy}) : std::nullopt;
}

Compound ReadCompound(const JsonNode& node) {
  node.AllowKeys(kCompoundKeys);
  return {.name = FilledText(node.At("name")),
          .formula = KnownText(node, "formula"),
          .cas = KnownText(node, "cas"),
          .aliases = ReadAliases(node),
          .elements = ReadElements(node),
          .molecularWeight = node.At("molecularWeight").Positive(),
          .critical = ReadCritical(node),
          .criticalVolume = KnownPositive(node, "criticalVolume"),
          .normalBoilingPoint = KnownPositive(node, "normalBoilingPoint"),
          .idealGas = ReadNasa7(node, "idealGas"),
          .formationGas = ReadFormation(node, "enthalpyOfFormationGas", "gibbsOfFormationGas"),
          .entropyGas = KnownNumber(node, "entropyGas"),
          .solid = ReadNasa7(node, "solid"),
          .formationSolid = ReadFormation(node, "enthalpyOfFormationSolid", "gibbsOfFormationSolid"),
          .entropySolid = KnownNumber(node, "entropySolid")};
}

/// The polynomials hold for one gas constant and reference state only.
void CheckUnits(const JsonNode& object) {
  const auto units = object.Find("units");
  if (!units || !units->Value().is_object()) return;
  const auto require = [&](const char* key, double expected) {
    const auto given = KnownNumber(*units, key);
    if (given && std::abs(*given - expected) > 1e-9 * expected) units->Fail(std::string(key) + " is not supported");
  };
  require("gasConstant", kGasConstant);
  require("referenceTemperature", kReferenceTemperature);
  require("referencePressure", kReferencePressure);
}

}  // namespace

std::vector<Compound> ReadCompounds(const JsonNode& object) {
  object.AllowKeys({"units", "notes", "sources", "compounds"});
  CheckUnits(object);
  std::vector<Compound> compounds;
  for (const JsonNode& node : object.At("compounds").Items()) {
    Compound compound = ReadCompound(node);
    const auto hasName = [&](const Compound& other) { return LowerCase(other.name) == LowerCase(compound.name); };
    if (std::ranges::any_of(compounds, hasName)) node.Fail("compound \"" + compound.name + "\" is listed twice");
    compounds.push_back(std::move(compound));
  }
  return compounds;
}

}  // namespace morvelan::host
