#include "units/information/CalculatorVariables.h"

#include <algorithm>
#include <set>

#include "com/Text.h"
#include "framework/DimensionText.h"

namespace morvelan {
namespace {

constexpr const char* kFormulaKey = "formula";
constexpr const char* kOutputKey = "outputVariable";
constexpr const char* kInputsKey = "inputVariables";
constexpr const char* kNameKey = "name";
constexpr const char* kUnitKey = "unit";

constexpr std::int32_t kNewestVersion = 1;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// ---- The rules of naming

void CheckName(const std::string& name) {
  if (name.empty()) throw Failure("Name cannot be empty");
  if (!std::ranges::all_of(name, [](char c) { return IsLetter(c) || IsDigit(c) || c == '_'; }))
    throw Failure(
        "Invalid character in variable name; please use only alphanumeric characters and underscores");
  if (IsDigit(name.front()))
    throw Failure("Invalid character in variable name; the first character cannot be a number");
}

void CheckNames(const CalculatorSetup& setup, bool inputsAreNew) {
  CheckName(setup.output.name);
  for (const CalculatorVariable& input : setup.inputs) {
    CheckName(input.name);
    if (com::EqualNoCase(input.name, setup.output.name))
      throw Failure(inputsAreNew ? "Input variables must be different from output variable name"
                                 : "Output variable name cannot be the same as an input variable name");
  }
  if (FindDuplicate(setup)) throw Failure("All input variables must have unique names");
}

// ---- The configuration

Json ToJson(const CalculatorVariable& variable) {
  return {{kNameKey, variable.name}, {kUnitKey, FormatDimension(variable.dimensionality)}};
}

std::string Text(const Json& value, const std::string& what) {
  if (!value.is_string()) throw Failure(what + " of the configuration must be a text");
  return value.get<std::string>();
}

CalculatorVariable ReadVariable(const Json& given, const std::string& where) {
  if (!given.is_object())
    throw Failure(where + R"( of the configuration must be an object with "name" and "unit")");
  for (const auto& entry : given.items())
    if (entry.key() != kNameKey && entry.key() != kUnitKey)
      throw Failure("unknown key \"" + entry.key() + "\" in " + where +
                    R"( of the configuration; known are "name", "unit")");
  if (!given.contains(kNameKey)) throw Failure(where + " of the configuration has no \"name\"");
  CalculatorVariable variable{Text(given[kNameKey], where + "/name")};
  const std::string unit = given.contains(kUnitKey) ? Text(given[kUnitKey], where + "/unit") : "";
  try {
    variable.dimensionality = ParseDimension(unit);
  } catch (const Failure& failure) {
    throw Failure(
        failure.error.description + " in " + where + "/unit of the configuration: \"" + unit +
        R"("; a unit of measure is written as "m^2 kg^1 s^-3", that of a difference as "K^1;Delta")");
  }
  return variable;
}

std::vector<CalculatorVariable> ReadVariables(const Json& given) {
  const std::string where = std::string("\"") + kInputsKey + '"';
  if (!given.is_array()) throw Failure(where + " of the configuration must be a list");
  std::vector<CalculatorVariable> variables;
  for (const Json& variable : given)
    variables.push_back(ReadVariable(variable, where + '/' + std::to_string(variables.size())));
  return variables;
}

// ---- The stream

void Write(UnitWriter& writer, const CalculatorVariable& variable) {
  writer.WriteText(variable.name);
  writer.WriteText(FormatDimension(variable.dimensionality));
}

CalculatorVariable ReadVariable(UnitReader& reader) {
  std::string name = reader.ReadText();
  return {std::move(name), ParseDimension(reader.ReadText())};
}

void ReadEntry(UnitReader& reader, const std::string& key, CalculatorSetup& setup) {
  if (key.empty()) throw Failure("empty parameter name");
  if (key == kFormulaKey)
    setup.formula = reader.ReadText();
  else if (key == kOutputKey)
    setup.output = ReadVariable(reader);
  else if (key == kInputsKey)
    for (std::size_t left = reader.ReadCount(); left > 0; --left)
      setup.inputs.push_back(ReadVariable(reader));
  else
    throw Failure("unknown parameter '" + key + "'");
}

}  // namespace

Json ToJson(const CalculatorSetup& setup) {
  Json inputs = Json::array();
  for (const CalculatorVariable& input : setup.inputs) inputs.push_back(ToJson(input));
  return {{kFormulaKey, setup.formula}, {kOutputKey, ToJson(setup.output)}, {kInputsKey, std::move(inputs)}};
}

CalculatorSetup Changed(CalculatorSetup setup, const Json& configuration) {
  const bool inputsAreNew = configuration.contains(kInputsKey);
  if (configuration.contains(kFormulaKey)) setup.formula = Text(configuration[kFormulaKey], "\"formula\"");
  if (configuration.contains(kOutputKey))
    setup.output = ReadVariable(configuration[kOutputKey], "\"outputVariable\"");
  if (inputsAreNew) setup.inputs = ReadVariables(configuration[kInputsKey]);
  CheckNames(setup, inputsAreNew);
  return setup;
}

const CalculatorVariable* FindDuplicate(const CalculatorSetup& setup) {
  for (std::size_t i = 0; i < setup.inputs.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      if (com::EqualNoCase(setup.inputs[i].name, setup.inputs[j].name)) return &setup.inputs[i];
  return nullptr;
}

void Write(UnitWriter& writer, const CalculatorSetup& setup) {
  writer.Write(kNewestVersion);
  writer.Write(std::int32_t{3});
  writer.WriteText(kFormulaKey);
  writer.WriteText(setup.formula);
  writer.WriteText(kOutputKey);
  Write(writer, setup.output);
  writer.WriteText(kInputsKey);
  writer.Write(static_cast<std::int32_t>(setup.inputs.size()));
  for (const CalculatorVariable& input : setup.inputs) Write(writer, input);
}

CalculatorSetup ReadSetup(UnitReader& reader) {
  if (reader.Read<std::int32_t>() > kNewestVersion)
    throw Failure("Unit was saved with a newer version than available on this system");
  CalculatorSetup setup;
  std::set<std::string> keys;
  for (std::size_t left = reader.ReadCount(); left > 0; --left) {
    const std::string key = reader.ReadText();
    if (!keys.insert(key).second) throw Failure("duplicate parameter '" + key + "'");
    ReadEntry(reader, key, setup);
  }
  return setup;
}

}  // namespace morvelan
