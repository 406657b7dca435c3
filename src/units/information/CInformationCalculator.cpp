#include "units/information/CInformationCalculator.h"

#include <algorithm>

#include "framework/ReportFormat.h"
#include "material/MissingValue.h"

namespace morvelan {
namespace {

constexpr std::string_view kPersistence = "IPersistStream";
constexpr std::size_t kLastRunReport = 1;
constexpr int kDigits = 6;

constexpr const char* kReports[] = {"Last run"};

const UnitDeclaration kDeclaration = {
    .name = "InformationCalculator",
    .description =
        "InformationCalculator - calculate output information stream from one or more input "
        "information streams",
    .about = "The information calculator calculates a value from those of information streams by a formula",
    .helpTopic = "infocalc",
    .ports = {},
    .parameters = {},
    .reports = kReports,
};

/// Which of the former variables each of the new ones continues: that of its name, otherwise that of its
/// place if it is gone under its own name; but not one of another unit of measure, whose stream would not
/// fit.
std::vector<std::optional<std::size_t>> FindFormer(const std::vector<CalculatorVariable>& variables,
                                                   const std::vector<CalculatorVariable>& former) {
  const auto placeOf = [](const auto& list, const std::string& name) {
    return static_cast<std::size_t>(
        std::ranges::find_if(list, [&](const auto& v) { return com::EqualNoCase(v.name, name); }) -
        list.begin());
  };
  std::vector<std::optional<std::size_t>> found;
  for (std::size_t i = 0; i < variables.size(); ++i) {
    std::size_t place = placeOf(former, variables[i].name);
    if (place == former.size() && i < former.size() && placeOf(variables, former[i].name) == variables.size())
      place = i;
    const bool fits = place < former.size() && former[place].dimensionality == variables[i].dimensionality &&
                      std::ranges::find(found, place) == found.end();
    found.push_back(fits ? std::optional(place) : std::nullopt);
  }
  return found;
}

std::string Line(const CalculatorVariable& variable, double value) {
  return variable.name + ":\t" + FormatNumber(value, kDigits) + UnitSuffix(variable.dimensionality) + "\r\n";
}

}  // namespace

CInformationCalculator::CInformationCalculator() : Configurable(kDeclaration) {
  checkConnections = false;  // what is missing is named below
}

void CInformationCalculator::CreateFace() {
  Configurable::CreateFace();
  Plan(CalculatorSetup())();
}

// ---- Variables and their ports

Json CInformationCalculator::Configuration() const { return ToJson(setup); }

void CInformationCalculator::Configure(const Json& configuration) { Plan(Changed(setup, configuration))(); }

CInformationCalculator::PortList CInformationCalculator::PlanPorts(
    const PortList& ports, const std::vector<CalculatorVariable>& former, CapePortDirection direction,
    const std::vector<CalculatorVariable>& variables) {
  const auto continued = FindFormer(variables, former);
  const char* description = direction == CAPE_INLET ? "Information inlet port" : "Information outlet port";
  PortList planned;
  for (std::size_t i = 0; i < variables.size(); ++i) {
    const char* name = variables[i].name.c_str();
    const InformationItem item = {name, "Value", variables[i].dimensionality};
    const bool stays = continued[i] && *continued[i] < ports.size();
    planned.push_back(stays ? ports[*continued[i]]
                            : MakePort({name, description, direction, CAPE_INFORMATION, {&item, 1}}));
  }
  return planned;
}

std::function<void()> CInformationCalculator::Plan(CalculatorSetup planned) {
  PortList newInlets = PlanPorts(inlets, setup.inputs, CAPE_INLET, planned.inputs);
  PortList newOutlets = PlanPorts(outlets, {setup.output}, CAPE_OUTLET, {planned.output});
  CalculatorSetup portNames = planned;
  CalculatorSetup itemNames = planned;
  return
      [this, planned = std::move(planned), portNames = std::move(portNames), itemNames = std::move(itemNames),
       newInlets = std::move(newInlets), newOutlets = std::move(newOutlets)]() mutable {
        checkedFormula.reset();
        std::swap(setup, planned);
        const auto rename = [](const com::Ref<CUnitPort>& port, CalculatorVariable& name,
                               CalculatorVariable& item) {
          dynamic_cast<CUnitInfoPort&>(*port).Rename(std::move(name.name), std::move(item.name));
        };
        for (std::size_t i = 0; i < newInlets.size(); ++i)
          rename(newInlets[i], portNames.inputs[i], itemNames.inputs[i]);
        rename(newOutlets[0], portNames.output, itemNames.output);
        ReplacePorts(inlets, std::move(newInlets));
        ReplacePorts(outlets, std::move(newOutlets));
      };
}

// ---- Validation

bool CInformationCalculator::ValidateUnit(std::string& message) {
  checkedFormula.reset();
  if (const CalculatorVariable* duplicate = FindDuplicate(setup))
    message = "Multiple input variables exist with name \"" + duplicate->name + '"';
  else if (const auto open =
               std::ranges::find_if(inlets, [](const auto& inlet) { return !inlet->IsConnected(); });
           open != inlets.end())
    message = "Inlet port \"" + (*open)->ComponentName() + "\" is not connected";
  else if (setup.formula.empty())
    message = "Please enter a formula for the output information";
  if (!message.empty()) return false;
  std::vector<std::string> names;
  for (const CalculatorVariable& input : setup.inputs) names.push_back(input.name);
  numerics::FormulaCheck check = numerics::CheckFormula(setup.formula, names);
  if (!check.formula) message = "Parsing error for output formula: " + check.failure;
  checkedFormula = std::move(check.formula);
  return message.empty();
}

// ---- Calculation

void CInformationCalculator::CalculateUnit(int, std::optional<com::Name>&) {
  std::vector<double> values;
  for (std::size_t i = 0; i < inlets.size(); ++i) values.push_back(ReadInlet(i));
  const numerics::Evaluation evaluation = checkedFormula.value().Evaluate(values);
  if (!evaluation.failure.empty())
    throw Failure(UnitError{"CalculationError", evaluation.failure, "Calculate", "ICapeUnit"});
  ForwardError("Calculate", "ICapeUnit",
               [&] { dynamic_cast<CUnitInfoPort&>(Outlet(0)).WriteInformation(0, evaluation.value); });
  Report(values, evaluation.value);
}

double CInformationCalculator::ReadInlet(std::size_t i) {
  const std::string failure = "Failed to get value for inlet port \"" + Inlet(i).ComponentName() + "\": ";
  com::Variant value;
  try {
    value = InletPort(i).ReadInformation(0);
  } catch (const Failure& reason) {
    throw Failure(failure + reason.error.description, "Calculate", "ICapeUnit");
  }
  const VARIANT held = com::Borrow(value.Get());
  if (held.vt != VT_R8 && held.vt != VT_R4)
    throw Failure(failure + "invalid data type (real value expected)", "Calculate", "ICapeUnit");
  const double number = com::ReadDouble(held);
  if (IsMissing(number)) throw Failure(failure + "value is not set", "Calculate", "ICapeUnit");
  return number;
}

void CInformationCalculator::Report(const std::vector<double>& values, double result) {
  std::string text = "+++ input values +++\r\n\r\n";
  for (std::size_t i = 0; i < values.size(); ++i) text += Line(setup.inputs[i], values[i]);
  text += "\r\n+++ Formula +++\r\n" + setup.formula + "\r\n";
  text += "\r\n+++ Result +++\r\n" + Line(setup.output, result);
  SetReportText(kLastRunReport, std::move(text));
}

// ---- Persistence

HRESULT CInformationCalculator::SaveUnit(UnitWriter& writer) try {
  Write(writer, setup);
  writer.Flush();
  return S_OK;
} catch (const Failure&) {
  throw Failure(UnitError{"Write error", "failed to save: write error", "Save", kPersistence});
}

std::function<void()> CInformationCalculator::LoadUnit(UnitReader& reader, int,
                                                       const std::vector<ParameterRecord>&) {
  std::optional<CalculatorSetup> loaded;
  try {
    loaded = ReadSetup(reader);
  } catch (const Failure& failure) {
    if (failure.error.description == "read error")
      throw Failure(UnitError{"Read error", "failed to load: read error", "Load", kPersistence});
    throw Failure(failure.error.description, "Load", kPersistence);
  }
  return Plan(std::move(*loaded));
}

}  // namespace morvelan
