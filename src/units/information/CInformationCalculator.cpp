#include "units/information/CInformationCalculator.h"

#include "framework/CalculationFailure.h"
#include "framework/ReportFormat.h"

namespace morvelan {
namespace {

constexpr int kDigits = 6;

std::vector<WantedPort> PortsOf(std::span<const CalculatorVariable> variables) {
  std::vector<WantedPort> ports;
  for (const CalculatorVariable& variable : variables) ports.push_back({variable.name, variable.dimensionality});
  return ports;
}

std::string Line(const CalculatorVariable& variable, double value) {
  return variable.name + ":\t" + FormatNumber(value, kDigits) + UnitSuffix(variable.dimensionality);
}

}  // namespace

CInformationCalculator::CInformationCalculator()
    : BaseUnit({.name = "InformationCalculator",
                .description = "InformationCalculator - calculate output information stream from one or more input "
                               "information streams",
                .about = "The information calculator calculates a value from those of information streams by a formula",
                .helpTopic = "infocalc"}) {
  checkConnections = false;  // the validation names what is missing
  declare.InformationPorts(inputs, CAPE_INLET, "Information inlet port",
                           [this] { return PortsOf(inputVariables.Variables()); });
  declare.InformationPorts(output, CAPE_OUTLET, "Information outlet port",
                           [this] { return PortsOf(std::span(&outputVariable.Variable(), 1)); });

  declare.Setting(formula, "formula").Label("Formula", "The value of the output variable, from the input variables");
  declare.Setting(outputVariable, "outputVariable").Label("Output variable");
  declare.Setting(inputVariables, "inputVariables").Label("Input variables", "Each has an inlet port of its name");
}

void CInformationCalculator::SettingsChanged(const SettingsChange& change) {
  if (!change.IsFromStream()) {
    CheckNames(outputVariable.Variable(), inputVariables.Variables(), change.Includes(inputVariables));
    if (FindDuplicate(inputVariables.Variables())) throw Failure("All input variables must have unique names");
  }
  checkedFormula.reset();
}

bool CInformationCalculator::ValidateUnit(std::string& message) {
  checkedFormula.reset();
  const std::vector<CalculatorVariable>& variables = inputVariables.Variables();
  if (const CalculatorVariable* duplicate = FindDuplicate(variables))
    message = "Multiple input variables exist with name \"" + duplicate->name + '"';
  for (std::size_t i = 0; i < inputs.size() && message.empty(); ++i)
    if (!inputs.IsConnected(i)) message = "Inlet port \"" + inputs.Name(i) + "\" is not connected";
  const std::string& text = formula;
  if (message.empty() && text.empty()) message = "Please enter a formula for the output information";
  if (!message.empty()) return false;

  std::vector<std::string> names;
  for (const CalculatorVariable& variable : variables) names.push_back(variable.name);
  numerics::FormulaCheck check = numerics::CheckFormula(text, names);
  if (check.formula)
    checkedFormula = std::make_shared<const numerics::CalculatorFormula>(std::move(*check.formula));
  else
    message = "Parsing error for output formula: " + check.failure;
  return message.empty();
}

void CInformationCalculator::CalculateUnit(int, OutletFlashSpec&) {
  const auto checked = checkedFormula;  // whatever the host does while it is asked
  std::vector<double> values;
  for (std::size_t i = 0; i < inputs.size(); ++i)
    values.push_back(inputs.Read(i, "Failed to get value for inlet port \"" + inputs.Name(i) + "\": "));
  RequireUnchanged();
  const numerics::Evaluation evaluation = checked->Evaluate(values);
  if (!evaluation.failure.empty()) throw CalculationFailure("CalculationError", evaluation.failure);
  output.Write(0, evaluation.value);
  Report(values, evaluation.value);
}

void CInformationCalculator::Report(const std::vector<double>& values, double result) {
  journal.Start("input values");
  for (std::size_t i = 0; i < values.size(); ++i) journal.Line(Line(inputVariables.Variables()[i], values[i]));
  journal.Heading("Formula");
  journal.Line(static_cast<const std::string&>(formula));
  journal.Heading("Result");
  journal.Line(Line(outputVariable.Variable(), result));
}

SaveOutcome CInformationCalculator::SaveUnit(UnitWriter& writer) try {
  Write(writer, {formula, outputVariable.Variable(), inputVariables.Variables()});
  writer.Flush();
  return kSaved;
} catch (const Failure&) {
  throw SaveFailure("Write error", "failed to save: write error");
}

std::function<void()> CInformationCalculator::LoadUnit(UnitReader& reader, int,
                                                       const std::vector<ParameterRecord>&) try {
  SavedCalculator saved = ReadCalculator(reader);
  formula.StageText(std::move(saved.formula));
  outputVariable.StageVariable(std::move(saved.output));
  inputVariables.StageVariables(std::move(saved.inputs));
  return [this] { CommitSettings({SettingsChange::Source::kStream, {&formula, &outputVariable, &inputVariables}}); };
} catch (const Failure& failure) {
  if (failure.error.description == "read error") throw LoadFailure("Read error", "failed to load: read error");
  throw LoadFailure(failure.error.description, failure.error.description);
}

}  // namespace morvelan
