#include <algorithm>

#include "host/flowsheet/Flowsheet.h"
#include "host/flowsheet/ReactionReader.h"
#include "host/flowsheet/ThermoReader.h"

namespace morvelan::host {
namespace {

MaterialFeed ReadMaterialFeed(const JsonNode& node, const FlowsheetCompounds& compounds) {
  node.AllowKeys({"type", "temperature", "pressure", "flow", "composition"});
  return {.temperature = node.At("temperature").Positive(),
          .pressure = node.At("pressure").Positive(),
          .flow = node.At("flow").NotNegative(),
          .composition = compounds.ReadComposition(node.At("composition"))};
}

EnergyFeed ReadEnergyFeed(const JsonNode& node) {
  node.AllowKeys({"type", "work", "temperatureLow", "temperatureHigh"});
  EnergyFeed feed{.work = node.At("work").Number()};
  if (const auto low = node.Find("temperatureLow")) feed.temperatureLow = low->Positive();
  if (const auto high = node.Find("temperatureHigh")) feed.temperatureHigh = high->Positive();
  return feed;
}

InformationFeed ReadInformationFeed(const JsonNode& node) {
  node.AllowKeys({"type", "value", "dimensionality"});
  InformationFeed feed{.value = node.At("value").Number()};
  if (const auto list = node.Find("dimensionality")) {
    const std::vector<JsonNode> exponents = list->Items();
    if (exponents.size() != feed.dimensionality.size() - 1 && exponents.size() != feed.dimensionality.size())
      list->Fail("eight exponents (m, kg, s, A, K, mol, cd, rad) are expected, or nine with the difference flag; " +
                 std::to_string(exponents.size()) + " found");
    std::ranges::transform(exponents, feed.dimensionality.begin(), &JsonNode::Number);
  }
  return feed;
}

StreamSpecification ReadStream(const std::string& name, const JsonNode& node, const FlowsheetCompounds& compounds) {
  if (name.empty()) node.Fail("a stream needs a name");
  StreamSpecification stream{.name = name, .state = {}, .node = node};
  const std::string type = node.At("type").OneOf({"material", "energy", "information"});
  if (type == "material")
    stream.state = ReadMaterialFeed(node, compounds);
  else if (type == "energy")
    stream.state = ReadEnergyFeed(node);
  else
    stream.state = ReadInformationFeed(node);
  return stream;
}

UnitSpecification ReadUnit(const std::string& name, const JsonNode& node) {
  if (name.empty()) node.Fail("a unit needs a name");
  node.AllowKeys({"class", "ports", "parameters", "configuration"});
  UnitSpecification unit{.name = name, .className = node.At("class").Text(), .node = node};
  if (const auto ports = node.Find("ports"))
    for (const auto& [port, stream] : ports->Members()) {
      unit.connections.push_back({port, stream.Text(), stream});
      if (stream.Text().empty()) stream.Fail("the name of a stream is expected");
    }
  if (const auto parameters = node.Find("parameters"))
    for (const auto& [parameter, value] : parameters->Members()) unit.settings.push_back({parameter, value});
  if (const auto configuration = node.Find("configuration"); configuration && !configuration->Members().empty())
    unit.configuration = configuration;
  return unit;
}

}  // namespace

Flowsheet ReadFlowsheet(const std::filesystem::path& file, const std::filesystem::path& dataFolder) {
  const JsonNode root(std::make_shared<JsonFile>(file));
  root.AllowKeys({"title", "thermo", "reactions", "streams", "units"});
  Flowsheet flowsheet;
  const auto title = root.Find("title");
  flowsheet.title = title ? title->Text() : file.stem().string();

  const JsonNode thermo = root.At("thermo");
  thermo.AllowKeys({"interface", "model", "compounds", "binaryInteraction", "builtInInteraction", "compoundData"});
  if (const auto generation = thermo.Find("interface"))
    flowsheet.thermoInterface = ThermoOfferByName(generation->OneOf({"1.0", "1.1", "both"}));
  const FlowsheetCompounds compounds(thermo, file, dataFolder);
  flowsheet.package = compounds.Package();

  if (const auto reactions = root.Find("reactions")) flowsheet.reactions = ReadReactions(*reactions, compounds);
  if (const auto streams = root.Find("streams"))
    for (const auto& [name, node] : streams->Members()) flowsheet.streams.push_back(ReadStream(name, node, compounds));
  if (const auto units = root.Find("units"))
    for (const auto& [name, node] : units->Members()) flowsheet.units.push_back(ReadUnit(name, node));
  return flowsheet;
}

}  // namespace morvelan::host
