// Values of a flowsheet file on their way into a unit's parameters, of every kind.

#include "host/unit/ParameterSetting.h"

#include <gtest/gtest.h>

#include "host/unit/DimensionSymbol.h"
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

struct Setting {
  const char* parameter;
  const char* given;
  const char* stored;  // as JSON; empty when the value is refused
  std::vector<const char*> words = {};
};

const Setting kSettings[] = {
    {"Pressure drop", "2.5e4", "25000.0"},
    {"Pressure drop", "3", "3.0"},
    {"Pressure drop", "-1", "", {"json:2: p: ", "-1 is refused", "out of bounds", "from 0 to 1e+10"}},
    {"Pressure drop", "\"3\"", "", {"a number is expected, \"3\" found"}},
    {"Stages", "5", "5"},
    {"Stages", "5.0", "5"},
    {"Stages", "5.5", "", {"an integer is expected, 5.5 found"}},
    {"Stages", "1e10", "", {"an integer is expected"}},
    {"Stages", "21", "", {"21 is refused", "from 1 to 20"}},
    {"Type", "\"Temperature\"", "\"Temperature\""},
    {"Type", "\"Heat\"", "", {"\"Heat\" is refused", "\"Heat duty\", \"Temperature\""}},
    {"Formula", "\"2+2\"", "\"2+2\""},
    {"Adiabatic", "true", "true"},
    {"Adiabatic", "1", "", {"true or false is expected, 1 found"}},
    {"Split factors", "[0.25, 0.5, 0.25]", "[0.25, 0.5, 0.25]"},
    {"Split factors", "[0.25, \"x\"]", "", {"p[1]: ", "a number is expected"}},
    {"Split factors", "0.5", "", {"an array is expected, 0.5 found"}},
    {"Split factors", "[2]", "", {"an array is refused", "out of bounds"}},
    {"Duty", "1", "", {"is a result of the unit"}},
};

TEST(ParameterSetting, TurnsValuesIntoTheParametersKind) {
  for (const Setting& setting : kSettings) {
    const auto unit = com::Make<TestUnit>(kUnit);
    ASSERT_EQ(unit->Initialize(), S_OK);
    const auto parameter = ReadParameter(*unit, setting.parameter);
    const Json before = host::ParameterValue(parameter);
    const std::string what = std::string(setting.parameter) + " = " + setting.given;
    std::string refusal;
    try {
      host::PutParameter(parameter, NodeOf(setting.given));
    } catch (const host::FileError& error) {
      refusal = error.what();
    }
    EXPECT_EQ(refusal.empty(), *setting.stored != 0) << what << ": " << refusal;
    for (const char* word : setting.words) EXPECT_NE(refusal.find(word), std::string::npos) << what << ": " << refusal;
    EXPECT_EQ(host::ParameterValue(parameter), *setting.stored ? Json::parse(setting.stored) : before) << what;
  }
}

TEST(ParameterSetting, DescribesParameters) {
  const auto unit = com::Make<TestUnit>(kUnit);
  ASSERT_EQ(unit->Initialize(), S_OK);
  struct {
    const char* parameter;
    const char* kind;
    const char* defaultValue;
    const char* allowed;
  } const cases[] = {{"Pressure drop", "real", "0", "from 0 to 1e+10"},
                     {"Stages", "integer", "2", "from 1 to 20"},
                     {"Type", "option", "Heat duty", "\"Heat duty\", \"Temperature\""},
                     {"Formula", "option", "", "\"1\" or any other text"},
                     {"Adiabatic", "boolean", "false", ""},
                     {"Split factors", "array", "", ""},
                     {"Duty", "real", "12.5", ""}};
  for (const auto& c : cases) {
    const auto parameter = ReadParameter(*unit, c.parameter);
    EXPECT_STREQ(host::KindName(parameter.kind), c.kind);
    EXPECT_EQ(host::DefaultValue(parameter), c.defaultValue) << c.parameter;
    EXPECT_EQ(host::AllowedValues(parameter), c.allowed) << c.parameter;
  }
}

TEST(ParameterSetting, NamesUnits) {
  struct {
    host::Exponents exponents;
    const char* symbol;
  } const cases[] = {{{}, ""},
                     {{0, 0, 0, 0, 1, 0, 0, 0, 1}, "K"},
                     {{-1, 1, -2, 0, 0, 0, 0, 0, 1}, "Pa"},
                     {{2, 1, -3}, "W"},
                     {{2, 1, -2, 0, -1, -1}, "J/(mol K)"},
                     {{0, 0, -1, 0, 0, 1}, "mol/s"},
                     {{3}, "m^3"},
                     {{0, 0, -1}, "1/s"},
                     {{-3, 0, -1, 0, 0, 1}, "mol/(m^3 s)"},
                     {{0.5}, "m^0.5"}};
  for (const auto& c : cases) EXPECT_EQ(host::UnitSymbol(c.exponents), c.symbol);
}

}  // namespace morvelan::test::parameter_setting
