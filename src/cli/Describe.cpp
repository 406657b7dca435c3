#include <iostream>
#include <stdexcept>
#include <vector>

#include "cli/Commands.h"
#include "com/Text.h"
#include "host/flowsheet/ColumnTable.h"
#include "host/unit/DimensionSymbol.h"
#include "host/unit/ParameterSetting.h"

namespace morvelan::cli {
namespace {

using Lines = std::vector<std::vector<std::string>>;

/// Prints lines of cells under a heading. Each column is as wide as its widest cell.
void Print(const char* heading, const Lines& lines) {
  std::vector<std::size_t> widths;
  for (const auto& line : lines) {
    widths.resize(std::max(widths.size(), line.size()));
    for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], host::CharacterCount(line[i]));
  }
  if (*heading) std::cout << '\n' << heading << '\n';
  for (const auto& line : lines) {
    std::string text = *heading ? "  " : "";
    for (std::size_t i = 0; i < line.size(); ++i) text += host::PadRight(line[i], widths[i]) + "  ";
    text.erase(text.find_last_not_of(' ') + 1);
    std::cout << text << '\n';
  }
}

const char* DirectionName(CapePortDirection direction) {
  return direction == CAPE_INLET ? "inlet" : direction == CAPE_OUTLET ? "outlet" : "inlet or outlet";
}

const char* TypeName(CapePortType type) {
  switch (type) {
    case CAPE_MATERIAL:
      return "material";
    case CAPE_ENERGY:
      return "energy";
    case CAPE_INFORMATION:
      return "information";
    default:
      return "any";
  }
}

const char* ModeName(CapeParamMode mode) {
  return mode == CAPE_INPUT ? "input" : mode == CAPE_OUTPUT ? "output" : "input and output";
}

Lines PortLines(const host::HostedUnit& unit) {
  Lines lines;
  for (const host::UnitPort& port : unit.Ports()) {
    lines.push_back({port.name, DirectionName(port.direction), TypeName(port.type), port.description});
    for (const host::PortItem& item : port.items)
      lines.push_back({"  " + item.name, "", host::UnitSymbol(item.dimensions), ""});
  }
  return lines;
}

Lines ParameterLines(const host::HostedUnit& unit) {
  Lines lines = {{"name", "kind", "mode", "default", "unit", "allowed", "description"}};
  for (const host::UnitParameter& parameter : unit.Parameters())
    lines.push_back({parameter.name, host::KindName(parameter.kind), ModeName(parameter.mode),
                     host::DefaultValue(parameter), host::UnitSymbol(parameter.dimensions),
                     host::AllowedValues(parameter), parameter.description});
  return lines;
}

}  // namespace

int ListUnits() {
  Lines lines = {{"NAME", "PROGID", "CLSID", "DESCRIPTION"}};
  for (const com::PublishedClass& unit : com::PublishedClasses())
    lines.push_back({unit.name, unit.progId, com::ToText(unit.clsid), unit.description});
  if (lines.size() == 1) throw std::runtime_error("no unit classes are registered");
  Print("", lines);
  return kSolved;
}

int Describe(const std::string& className) {
  const com::PublishedClass unitClass = host::RequireUnitClass(className, com::PublishedClasses());
  host::HostedUnit unit(unitClass);
  Print("", {{unitClass.name, unitClass.progId, com::ToText(unitClass.clsid)}});
  std::cout << unitClass.description << '\n';
  Print("Ports", PortLines(unit));
  Print("Parameters", ParameterLines(unit));
  Lines reports;
  for (const host::UnitReport& report : unit.Reports()) reports.push_back({report.name});
  Print("Reports", reports);
  return kSolved;
}

}  // namespace morvelan::cli
