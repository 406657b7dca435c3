#include "host/flowsheet/ResultTable.h"

#include <algorithm>
#include <sstream>

#include "host/file/Nearest.h"
#include "host/file/NumberText.h"
#include "host/flowsheet/ColumnTable.h"
#include "host/unit/DimensionSymbol.h"

namespace morvelan::host {
namespace {

constexpr std::size_t kLineWidth = 100;
constexpr const char* kAbsent = "-";

struct NamedMaterial {
  const std::string* name;
  const MaterialResult* material;
};

std::string Cell(std::optional<double> value) { return value ? TableNumber(*value) : kAbsent; }

std::vector<NamedMaterial> MaterialsOf(const Results& results) {
  std::vector<NamedMaterial> materials;
  for (const StreamResult& stream : results.streams)
    if (const auto* material = std::get_if<MaterialResult>(&stream.state))
      materials.push_back({&stream.name, material});
  return materials;
}

const MaterialResult::PhaseResult* PhaseOf(const MaterialResult& material, const std::string& name) {
  const auto found = std::ranges::find(material.phases, name, &MaterialResult::PhaseResult::name);
  return found == material.phases.end() ? nullptr : &*found;
}

/// The moles of vapor per mole of stream; nothing when the stream is not at equilibrium.
std::optional<double> VaporFraction(const MaterialResult& material) {
  if (material.phases.empty()) return std::nullopt;
  const auto* vapor = PhaseOf(material, "Vapor");
  return vapor ? vapor->fraction : 0.0;
}

class StreamTable {
 public:
  explicit StreamTable(const Results& results)
      : compounds(results.compounds),
        materials(MaterialsOf(results)),
        table(NamesOf(materials, [](const NamedMaterial& stream) { return *stream.name; })) {
    AddState();
    AddComposition("Composition", [](const MaterialResult& material) { return &material.composition; });
    for (const char* phase : {"Vapor", "Liquid"}) AddPhase(phase);
  }

  [[nodiscard]] std::string Text() const { return materials.empty() ? "" : table.Text(kLineWidth); }

 private:
  /// A row of `value(material)` of each material.
  template <class Value>
  void AddRow(const std::string& label, const char* unit, Value value) {
    ColumnTable::Row row{label, unit, {}};
    for (const NamedMaterial& stream : materials) row.cells.push_back(Cell(value(*stream.material)));
    table.Add(std::move(row));
  }

  void AddState() {
    const auto energy = [](auto member) {
      return [member](const MaterialResult& m) -> std::optional<double> {
        if (!m.energies) return std::nullopt;
        return (*m.energies).*member;
      };
    };
    AddRow("Temperature", "K", [](const MaterialResult& m) { return m.temperature; });
    AddRow("Pressure", "Pa", [](const MaterialResult& m) { return m.pressure; });
    AddRow("Flow", "mol/s", [](const MaterialResult& m) { return m.flow; });
    AddRow("Vapour fraction", "mol/mol", VaporFraction);
    AddRow("Enthalpy", "J/mol", energy(&MaterialResult::Energies::enthalpy));
    AddRow("Entropy", "J/(mol K)", energy(&MaterialResult::Energies::entropy));
    AddRow("Enthalpy with formation", "J/mol", energy(&MaterialResult::Energies::enthalpyF));
  }

  /// A row for each compound. `fractionsOf(material)` points to the mole fractions, or nowhere.
  template <class FractionsOf>
  void AddComposition(const std::string& heading, FractionsOf fractionsOf) {
    table.Add({heading, "mol/mol", {}});
    for (std::size_t i = 0; i < compounds.size(); ++i)
      AddRow("  " + compounds[i], "", [&](const MaterialResult& material) -> std::optional<double> {
        const std::vector<double>* fractions = fractionsOf(material);
        return fractions && i < fractions->size() ? std::optional((*fractions)[i]) : std::nullopt;
      });
  }

  void AddPhase(const std::string& name) {
    const auto isThere = [&](const NamedMaterial& stream) { return PhaseOf(*stream.material, name); };
    if (std::ranges::none_of(materials, isThere)) return;
    AddComposition(name, [&](const MaterialResult& material) {
      const auto* phase = PhaseOf(material, name);
      return phase ? &phase->composition : nullptr;
    });
  }

  const std::vector<std::string>& compounds;
  std::vector<NamedMaterial> materials;
  ColumnTable table;
};

std::string EnergyText(const EnergyResult& energy) {
  std::string text = Cell(energy.work) + " W";
  if (energy.temperatureLow && energy.temperatureHigh)
    return text + " between " + TableNumber(*energy.temperatureLow) + " K and " + TableNumber(*energy.temperatureHigh) +
           " K";
  if (energy.temperatureLow) text += " from " + TableNumber(*energy.temperatureLow) + " K";
  if (energy.temperatureHigh) text += " up to " + TableNumber(*energy.temperatureHigh) + " K";
  return text;
}

std::string InformationText(const InformationResult& information) {
  std::string text;
  for (const auto& value : information.values) {
    if (!text.empty()) text += ", ";
    if (information.values.size() > 1) text += value.name + " = ";
    text += Cell(value.value);
    if (const std::string symbol = UnitSymbol(value.dimensionality); !symbol.empty()) text += ' ' + symbol;
  }
  return text;
}

/// The streams of one kind, a line each.
template <class Kind, class Describe>
std::string Lines(const Results& results, const char* heading, Describe describe) {
  std::size_t width = 0;
  for (const StreamResult& stream : results.streams)
    if (std::holds_alternative<Kind>(stream.state)) width = std::max(width, CharacterCount(stream.name));
  std::string text;
  for (const StreamResult& stream : results.streams)
    if (const auto* state = std::get_if<Kind>(&stream.state))
      text += "  " + PadRight(stream.name, width) + "  " + describe(*state) + '\n';
  return text.empty() ? text : std::string("\n") + heading + '\n' + text;
}

/// Indents each line of a report. Lines end in "\n" or "\r\n".
std::string Indented(const std::string& text) {
  std::istringstream lines(text);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    line.erase(line.find_last_not_of(" \r\t") + 1);
    result += line.empty() ? "\n" : "    " + line + '\n';
  }
  return result;
}

std::string ValueText(const UnitResult::Parameter& parameter) {
  if (parameter.value.is_null()) return kAbsent;
  if (parameter.value.is_string()) return parameter.value.get<std::string>();
  const std::string value =
      parameter.value.is_number_float() ? PlainNumber(parameter.value.get<double>()) : parameter.value.dump();
  return parameter.symbol.empty() ? value : value + ' ' + parameter.symbol;
}

std::string UnitText(const UnitResult& unit) {
  std::string text = "\nUnit " + unit.name + " (" + unit.className + "): ";
  text += unit.solved ? unit.status : "NOT SOLVED";
  text += '\n';
  if (unit.error) {
    text += "  Error: " + unit.error->Text();
    if (!unit.error->scope.empty()) text += " (" + unit.error->scope + ", " + unit.error->interfaceName + ')';
    text += '\n';
  }
  std::size_t width = 0;
  for (const auto& parameter : unit.parameters) width = std::max(width, CharacterCount(parameter.name));
  for (const auto& parameter : unit.parameters)
    text += "  " + PadRight(parameter.name, width) + "  " + ValueText(parameter) +
            (parameter.isResult ? "  (result)" : "") + '\n';
  for (const UnitReport& report : unit.reports)
    if (report.name != "Status") text += "  Report \"" + report.name + "\"\n" + Indented(report.text);
  return text;
}

}  // namespace

std::string ToText(const Results& results) {
  std::string text = results.title + "\n\n" + StreamTable(results).Text();
  text += Lines<EnergyResult>(results, "Energy streams", EnergyText);
  text += Lines<InformationResult>(results, "Information streams", InformationText);
  if (!results.missingStreams.empty()) {
    text += "\nNot calculated:";
    for (const std::string& name : results.missingStreams) text += ' ' + name;
    text += '\n';
  }
  for (const UnitResult& unit : results.units) text += UnitText(unit);
  if (!results.log.empty()) {
    text += "\nLog\n";
    for (const std::string& line : results.log) text += Indented(line);
  }
  return text;
}

}  // namespace morvelan::host
