// The tables of docs/units against what a new unit declares to its host: ports, parameters with kind, unit and default
// in their order, and the configuration.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "morvelan.h"
#include "tests/support/Persistence.h"
#include "tests/support/Published.h"

namespace morvelan::test::documentation {

using Row = std::vector<std::string>;

/// The rows of the first table of a page whose first heading is `title`; cells without surrounding spaces.
std::vector<Row> TableOf(const std::string& unit, const std::string& title) {
  std::ifstream page(std::string(MORVELAN_DOCS) + "/units/" + unit + ".md");
  EXPECT_TRUE(page) << unit;
  std::vector<Row> rows;
  bool isInside = false;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("| " + title + " |")) {
      isInside = true;
    } else if (isInside && !line.starts_with("|")) {
      break;
    } else if (isInside && !line.starts_with("|---")) {
      Row row;
      std::istringstream cells(line.substr(1));
      for (std::string cell; std::getline(cells, cell, '|');) {
        const auto first = cell.find_first_not_of(' '), last = cell.find_last_not_of(' ');
        row.push_back(first == std::string::npos ? "" : cell.substr(first, last - first + 1));
      }
      rows.push_back(std::move(row));
    }
  }
  return rows;
}

void CheckPorts(const std::string& unit, const UnitDoor& door) {
  const std::vector<Row> rows = TableOf(unit, "port");
  for (const auto& port : ItemsOf<ICapeUnitPort>(door.Ports())) {
    const std::string name = TextFrom(port.Get(), &ICapeIdentification::get_ComponentName);
    CapePortDirection direction = CAPE_INLET_OUTLET;
    CapePortType type = CAPE_ANY;
    EXPECT_EQ(port->get_direction(&direction), S_OK);
    EXPECT_EQ(port->get_portType(&type), S_OK);
    const auto row = std::ranges::find_if(
        rows, [&](const Row& candidate) { return candidate[0] == name || candidate[0].starts_with(name + ", or"); });
    ASSERT_NE(row, rows.end()) << unit << ": port " << name << " is not documented";
    EXPECT_TRUE((*row)[1].starts_with(direction == CAPE_INLET ? "inlet" : "outlet")) << unit << ", " << name;
    const std::map<CapePortType, std::string> types = {
        {CAPE_MATERIAL, "material"}, {CAPE_ENERGY, "energy"}, {CAPE_INFORMATION, "information"}};
    EXPECT_TRUE((*row)[2].starts_with(types.at(type))) << unit << ", " << name;
  }
}

/// Kind and unit, as "real, Pa".
std::string KindOf(const com::Ref<ICapeParameter>& parameter) {
  com::Ref<IDispatch> object;
  EXPECT_EQ(parameter->get_Specification(object.Put()), S_OK);
  const auto specification = object.As<ICapeParameterSpec>();
  CapeParamType type = CAPE_REAL;
  com::Variant dimensionality;
  EXPECT_EQ(specification->get_Type(&type), S_OK);
  EXPECT_EQ(specification->get_Dimensionality(dimensionality.Put()), S_OK);
  std::vector<double> exponents;
  if (dimensionality.Get().vt & VT_ARRAY) exponents = com::ReadDoubles(dimensionality.Get());
  if (exponents.size() > 8) exponents.resize(8);  // without the mark of a difference
  while (!exponents.empty() && exponents.back() == 0) exponents.pop_back();
  const std::map<std::vector<double>, std::string> units = {{{}, ""},
                                                            {{0, 0, 0, 0, 1}, ", K"},
                                                            {{2, 1, -3}, ", W"},
                                                            {{-1, 1, -2}, ", Pa"},
                                                            {{0, 1}, ", kg"},
                                                            {{3}, ", m3"},
                                                            {{-3, 1}, ", kg/m3"},
                                                            {{0, 0, 0, 0, 0, 1}, ", mol"},
                                                            {{2, 1, -2, 0, 0, -1}, ", J/mol"}};
  const char* const kinds[] = {"real", "integer", "option", "boolean", "array"};
  const auto unit = units.find(exponents);
  return kinds[type] + (unit == units.end() ? ", " + testing::PrintToString(exponents) : unit->second);
}

/// Whether a default stands in a table as it is.
bool IsDefault(const std::string& cell, const VARIANT& value) {
  if (value.vt == VT_BSTR) return cell == com::ReadString(value);
  if (value.vt == VT_BOOL) return cell == (com::ReadBoolean(value) ? "true" : "false");
  const double number = value.vt & VT_ARRAY ? com::ReadDoubles(value).at(0) : com::ReadDouble(value);
  if (std::isnan(number) || number == std::numeric_limits<double>::lowest()) return cell == "not specified";
  return !cell.empty() && std::strtod(cell.c_str(), nullptr) == number;
}

void CheckParameters(const std::string& unit, const UnitDoor& door) {
  const std::vector<Row> rows = TableOf(unit, "parameter");
  const auto parameters = ItemsOf<ICapeParameter>(door.Parameters());
  ASSERT_GE(rows.size(), parameters.size()) << unit;
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    const std::string name = TextFrom(parameters[i].Get(), &ICapeIdentification::get_ComponentName);
    SCOPED_TRACE(unit + ", " + name);
    EXPECT_EQ(rows[i][0], name);
    EXPECT_EQ(rows[i][1], KindOf(parameters[i]));
    com::Variant value;
    EXPECT_EQ(parameters[i]->get_value(value.Put()), S_OK);
    EXPECT_TRUE(IsDefault(rows[i][2], value.Get())) << rows[i][2];
  }
  for (std::size_t i = parameters.size(); i < rows.size(); ++i)
    EXPECT_NE(rows[i][0].find("KEY"), std::string::npos) << unit << " has no parameter " << rows[i][0];
}

void CheckConfiguration(const std::string& unit, const UnitDoor& door) {
  const std::vector<Row> rows = TableOf(unit, "configuration");
  const auto configuration = door.unit.As<IUnitConfiguration>();
  EXPECT_EQ(rows.empty(), !configuration) << unit;
  if (!configuration) return;
  com::Bstr json;
  EXPECT_EQ(configuration->GetConfiguration(json.Put()), S_OK);
  const auto keys = nlohmann::ordered_json::parse(com::ToUtf8(json.Get()));
  ASSERT_EQ(rows.size(), keys.size()) << unit;
  std::size_t i = 0;
  for (const auto& [key, value] : keys.items()) {
    EXPECT_EQ(rows[i][0], key) << unit;
    std::string cell = rows[i++][1];
    if (cell == "(empty)") cell.clear();
    if (value.is_string())
      EXPECT_EQ(cell, value.get<std::string>()) << unit << ", " << key;
    else
      EXPECT_EQ(nlohmann::ordered_json::parse(cell), value) << unit << ", " << key;
  }
}

TEST(Documentation, ShowsWhatEveryUnitDeclares) {
  for (const com::PublishedClass& published : com::PublishedClasses()) {
    const UnitDoor door(com::CreateObject(published.clsid));
    EXPECT_EQ(door.utilities->Initialize(), S_OK);
    CheckPorts(published.name, door);
    CheckParameters(published.name, door);
    CheckConfiguration(published.name, door);
  }
}

}  // namespace morvelan::test::documentation
