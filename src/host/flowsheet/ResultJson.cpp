#include "host/flowsheet/ResultJson.h"

#include <cmath>

namespace morvelan::host {
namespace {

Json Number(std::optional<double> value) { return value && std::isfinite(*value) ? Json(*value) : Json(); }

Json Composition(const std::vector<std::string>& compounds, const std::vector<double>& fractions) {
  Json object = Json::object();
  for (std::size_t i = 0; i < fractions.size(); ++i) object[compounds[i]] = Number(fractions[i]);
  return object;
}

Json StateJson(const MaterialResult& material, const std::vector<std::string>& compounds) {
  Json object = {{"type", "material"},
                 {"temperature", Number(material.temperature)},
                 {"pressure", Number(material.pressure)},
                 {"flow", Number(material.flow)},
                 {"composition", Composition(compounds, material.composition)}};
  if (material.energies) {
    object["enthalpy"] = Number(material.energies->enthalpy);
    object["entropy"] = Number(material.energies->entropy);
    object["enthalpyF"] = Number(material.energies->enthalpyF);
  }
  object["phases"] = Json::object();
  for (const auto& phase : material.phases)
    object["phases"][phase.name] = {{"fraction", Number(phase.fraction)},
                                    {"composition", Composition(compounds, phase.composition)}};
  return object;
}

Json StateJson(const EnergyResult& energy, const std::vector<std::string>&) {
  Json object = {{"type", "energy"}, {"work", Number(energy.work)}};
  if (energy.temperatureLow) object["temperatureLow"] = Number(energy.temperatureLow);
  if (energy.temperatureHigh) object["temperatureHigh"] = Number(energy.temperatureHigh);
  return object;
}

/// As the flowsheet file writes it: the ninth exponent only when it is not zero.
Json Dimensionality(const Exponents& exponents) {
  Json list = Json::array();
  for (std::size_t i = 0; i < exponents.size(); ++i)
    if (i + 1 < exponents.size() || exponents[i] != 0) list.push_back(exponents[i]);
  return list;
}

Json StateJson(const InformationResult& information, const std::vector<std::string>&) {
  Json object = {{"type", "information"}};
  for (const auto& value : information.values) {
    const Json entry = {{"value", Number(value.value)}, {"dimensionality", Dimensionality(value.dimensionality)}};
    if (information.values.size() == 1)
      object.update(entry);
    else
      object["values"][value.name] = entry;
  }
  return object;
}

Json UnitJson(const UnitResult& unit) {
  Json object = {{"class", unit.className}, {"solved", unit.solved}, {"status", unit.status}};
  if (unit.error)
    object["error"] = {{"name", unit.error->name},
                       {"description", unit.error->description},
                       {"scope", unit.error->scope},
                       {"interface", unit.error->interfaceName}};
  object["parameters"] = Json::object();
  for (const auto& parameter : unit.parameters) object["parameters"][parameter.name] = parameter.value;
  object["reports"] = Json::object();
  for (const UnitReport& report : unit.reports) object["reports"][report.name] = report.text;
  return object;
}

}  // namespace

Json ToJson(const Results& results) {
  Json root = {{"title", results.title}, {"solved", results.solved}};
  root["streams"] = Json::object();
  for (const StreamResult& stream : results.streams)
    root["streams"][stream.name] =
        std::visit([&](const auto& state) { return StateJson(state, results.compounds); }, stream.state);
  root["units"] = Json::object();
  for (const UnitResult& unit : results.units) root["units"][unit.name] = UnitJson(unit);
  root["log"] = results.log;
  return root;
}

}  // namespace morvelan::host
