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

/// Which of the former variables each of the new ones continues: that of its name, at its own place if it can
/// be; otherwise that of its place unless another one continues it.
std::vector<std::optional<std::size_t>> FindFormer(const std::vector<CalculatorVariable>& variables,
                                                   const std::vector<CalculatorVariable>& former) {
  std::vector<std::optional<std::size_t>> found(variables.size());
  std::vector<bool> taken(former.size());
  const auto take = [&](std::size_t i, std::size_t place) {
    if (found[i] || place >= former.size() || taken[place]) return;
    found[i] = place;
    taken[place] = true;
  };
  const auto isNamesake = [&](std::size_t i, std::size_t place) {
    return place < former.size() && com::EqualNoCase(variables[i].name, former[place].name);
  };
  for (std::size_t i = 0; i < variables.size(); ++i)
    if (isNamesake(i, i)) take(i, i);
  for (std::size_t i = 0; i < variables.size(); ++i)
    for (std::size_t place = 0; place < former.size(); ++place)
      if (isNamesake(i, place)) take(i, place);
  for (std::size_t i = 0; i < variables.size(); ++i) take(i, i);
  return found;
}

std::string Line(const CalculatorVariable& variable, double value) {
  return variable.name + ":\t" + FormatNumber(value, kDigits) + UnitSuffix(variable.dimensionality) + "\r\n";
}

}  // namespace

CInformationCalculator::CInformationCalculator() : Configurable(kDeclaration) {
  checkConnections = false;  // what is missing is named below
}

void CInformationCalculator::CreateObjects() {
  Configurable::CreateObjects();
  Plan(CalculatorSetup())();
}

// ---- Variables and their ports

Json CInformationCalculator::Configuration() const { return ToJson(setup); }

void CInformationCalculator::Configure(const Json& configuration) { Plan(Changed(setup, configuration))(); }

CInformationCalculator::PlannedPorts CInformationCalculator::PlanPorts(
    const PortList& ports, const std::vector<CalculatorVariable>& former, CapePortDirection direction,
    const std::vector<CalculatorVariable>& variables) {
  const auto continued = FindFormer(variables, former);
  const char* description = direction == CAPE_INLET ? "Information inlet port" : "Information outlet port";
  PlannedPorts planned;
  for (std::size_t i = 0; i < variables.size(); ++i) {
    const CalculatorVariable& variable = variables[i];
    const std::size_t place = continued[i].value_or(ports.size());
    // The stream of a variable with another unit of measure does not fit it any more.
    if (place < ports.size() && former[place].dimensionality == variable.dimensionality) {
      planned.ports.push_back(ports[place]);
      // (A host may have given a port a name of its own.)
      if (variable.name != former[place].name)
        planned.renamings.push_back({ports[place], variable.name, variable.name});
    } else {
      const InformationItem item = {variable.name.c_str(), "Value", variable.dimensionality};
      planned.ports.push_back(MakePort({variable.name.c_str(), description, direction, CAPE_INFORMATION, {&item, 1}}));
    }
  }
  return planned;
}

std::function<void()> CInformationCalculator::Plan(CalculatorSetup planned) {
  PlannedPorts newInlets = PlanPorts(inlets, setup.inputs, CAPE_INLET, planned.inputs);
  PlannedPorts newOutlets = PlanPorts(outlets, {setup.output}, CAPE_OUTLET, {planned.output});
  return [this, planned = std::move(planned), newInlets = std::move(newInlets),
          newOutlets = std::move(newOutlets)]() mutable {
    checkedFormula.reset();
    std::swap(setup, planned);
    for (auto* renamings : {&newInlets.renamings, &newOutlets.renamings})
      for (Renaming& renaming : *renamings)
        dynamic_cast<CUnitInfoPort&>(*renaming.port).Rename(std::move(renaming.portName), std::move(renaming.itemName));
    ReplacePorts(std::move(newInlets.ports), std::move(newOutlets.ports));
  };
}

// ---- Validation

bool CInformationCalculator::ValidateUnit(std::string& message) {
  checkedFormula.reset();
  if (const CalculatorVariable* duplicate = FindDuplicate(setup))
    message = "Multiple input variables exist with name \"" + duplicate->name + '"';
  else if (const auto open = std::ranges::find_if(inlets, [](const auto& inlet) { return !inlet->IsConnected(); });
           open != inlets.end())
    message = "Inlet port \"" + (*open)->ComponentName() + "\" is not connected";
  else if (setup.formula.empty())
    message = "Please enter a formula for the output information";
  if (!message.empty()) return false;
  std::vector<std::string> names;
  for (const CalculatorVariable& input : setup.inputs) names.push_back(input.name);
  numerics::FormulaCheck check = numerics::CheckFormula(setup.formula, names);
  if (!check.formula) {
    message = "Parsing error for output formula: " + check.failure;
    return false;
  }
  checkedFormula = std::make_shared<const numerics::CalculatorFormula>(std::move(*check.formula));
  return true;
}

// ---- Calculation

void CInformationCalculator::CalculateUnit(int, std::optional<com::Name>&) {
  const auto formula = checkedFormula;  // whatever the host does while it is asked
  std::vector<double> values;
  for (std::size_t i = 0; i < inlets.size(); ++i) values.push_back(ReadInlet(i));
  RequireUnchanged();
  const numerics::Evaluation evaluation = formula->Evaluate(values);
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

std::function<void()> CInformationCalculator::LoadUnit(UnitReader& reader, int, const std::vector<ParameterRecord>&) {
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
