// Values of a flowsheet file on their way into a unit's parameters, of every kind.

#include "host/unit/ParameterSetting.h"

#include <gtest/gtest.h>

#include "host/unit/DimensionSymbol.h"
#include "tests/support/Approved.h"
#include "tests/support/TestUnit.h"

namespace morvelan::test::parameter_setting {

using host::Json;
using host::JsonNode;

const ParameterDeclaration kParameters[] = {
    {.name = "Pressure drop",
     .description = "",
     .defaultValue = 0.0,
     .lowerBound = 0,
     .upperBound = 1e10,
     .dimensionality = kPressureDropDimension},
    {.name = "Stages", .description = "", .defaultValue = std::int32_t{2}, .lowerBound = 1, .upperBound = 20},
    {.name = "Type", .description = "", .defaultValue = "Heat duty", .options = {"Heat duty", "Temperature"}},
    {.name = "Formula", .description = "", .defaultValue = "", .options = {"1"}, .restrictedToList = false},
    {.name = "Adiabatic", .description = "", .defaultValue = false},
    {.name = "Split factors",
     .description = "",
     .defaultValue = std::vector<double>{0.5, 0.5},
     .lowerBound = 0,
     .upperBound = 1},
    {.name = "Duty", .description = "", .mode = CAPE_OUTPUT, .defaultValue = 12.5},
};
const TestDeclaration kUnit = {.name = "Test", .description = "", .about = "", .ports = {}, .parameters = kParameters};

/// A parameter as the host reads it from the unit.
host::UnitParameter ReadParameter(const TestUnit& unit, const std::string& name) {
  for (const auto& parameter : unit.Declarations().parameters.All())
    if (parameter->ComponentName() == name)
      return {name, "", parameter->Kind(), parameter->Mode(), {}, com::Ref<ICapeParameter>(parameter)};
  throw std::runtime_error("no parameter " + name);
}

JsonNode NodeOf(const std::string& value) {
  return JsonNode(std::make_shared<host::JsonFile>("a.json", "{\n\"p\": " + value + "}")).At("p");
}

struct Settings {
  const char* parameter;
  std::vector<const char*> given;  // values of the file
};

const Settings kSettings[] = {
    {"Pressure drop", {"2.5e4", "3", "-1", "\"3\""}},
    {"Stages", {"5", "5.0", "5.5", "1e10", "21"}},
    {"Type", {"\"Temperature\"", "\"Heat\""}},
    {"Formula", {"\"2+2\""}},
    {"Adiabatic", {"true", "1"}},
    {"Split factors", {"[0.25, 0.5, 0.25]", "[0.25, \"x\"]", "0.5", "[2]"}},
    {"Duty", {"1"}},
};

/// The value that the parameter has after a value was given, or why that was refused.
std::string Outcome(const host::UnitParameter& parameter, const char* given) {
  const Json before = host::ParameterValue(parameter);
  try {
    host::PutParameter(parameter, NodeOf(given));
    return host::ParameterValue(parameter).dump();
  } catch (const host::FileError& error) {
    EXPECT_EQ(host::ParameterValue(parameter), before) << given << " changed by a refused value";
    return error.what();
  }
}

TEST(ParameterSetting, DescribesParametersAndTurnsValuesIntoTheirKind) {
  std::string text;
  for (const Settings& settings : kSettings) {
    for (const char* given : settings.given) {
      const auto unit = com::Make<TestUnit>(kUnit);
      ASSERT_EQ(unit->Initialize(), S_OK);
      const auto parameter = ReadParameter(*unit, settings.parameter);
      if (given == settings.given.front())
        text += std::string(settings.parameter) + ": " + host::KindName(parameter.kind) + ", default <" +
                host::DefaultValue(parameter) + ">, allowed <" + host::AllowedValues(parameter) + ">\n";
      text += std::string("  ") + given + ": " + Outcome(parameter, given) + '\n';
    }
  }
  ExpectApproved("host/parameter-settings", text);
}

TEST(ParameterSetting, NamesUnits) {
  const std::pair<host::Exponents, const char*> cases[] = {{{}, ""},
                                                           {{2, 1, -2, 0, -1, -1}, "J/(mol K)"},
                                                           {{0, 0, -1, 0, 0, 1}, "mol/s"},
                                                           {{0, 0, -1}, "1/s"},
                                                           {{-3, 0, -1, 0, 0, 1}, "mol/(m^3 s)"},
                                                           {{0.5}, "m^0.5"}};
  for (const auto& [exponents, symbol] : cases) EXPECT_EQ(host::UnitSymbol(exponents), symbol);
}

}  // namespace morvelan::test::parameter_setting
