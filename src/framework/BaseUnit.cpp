#include "framework/BaseUnit.h"

#include "framework/CUnitInfoPort.h"
#include "material/Names.h"
#include "ui/MessageBox.h"

namespace morvelan {
namespace {

constexpr std::string_view kUnitInterface = "ICapeUnit";
constexpr std::string_view kReportInterface = "ICapeUnitReport";
constexpr const char* kThermoVersion = "Thermo Version";

template <class Object>
IDispatch* DispatchOf(const com::Ref<Object>& object, const UnitError& failure) {
  com::Ref<IDispatch> dispatch = object.template As<IDispatch>();
  if (!dispatch) throw Failure(failure);
  return dispatch.Detach();
}

}  // namespace

ParameterDeclaration ThermoVersionParameter() {
  return {.name = kThermoVersion,
          .description = "Thermodynamics CAPE-OPEN Interface version",
          .defaultValue = "1.0",
          .options = {"1.0", "1.1"}};
}

BaseUnit::BaseUnit(const UnitDeclaration& unitDeclaration)
    : Implements(unitDeclaration.name, unitDeclaration.description),
      declaration(unitDeclaration),
      parameterCollection(com::Make<CParamCollection>(this)),
      portCollection(com::Make<CPortCollection>(this)) {
  Invalidate();
}

BaseUnit::~BaseUnit() {
  parameterCollection->Orphan();
  portCollection->Orphan();
  for (const auto& parameter : AllParameters()) parameter->Orphan();
  for (const auto& port : AllPorts()) port->Orphan();
}

template <class Body>
HRESULT BaseUnit::Enter(std::string_view scope, Body&& body) {
  return Guard(scope, kUnitInterface, [&] {
    RequireInitialized();
    body();
  });
}

HRESULT BaseUnit::get_parameters(IDispatch** collection) {
  if (!collection) return E_POINTER;
  *collection = nullptr;
  return Enter("get_parameters", [&] {
    *collection =
        DispatchOf(parameterCollection,
                   {"interface failed",
                    "failed to obtain IDispatch interface from parameter collection of unit operation",
                    {},
                    {}});
  });
}

HRESULT BaseUnit::get_ports(IDispatch** collection) {
  if (!collection) return E_POINTER;
  *collection = nullptr;
  return Enter("get_ports", [&] {
    const std::string text = "Failed to obtain IDispatch for port collection: No such interface supported";
    *collection = DispatchOf(portCollection, {text, text, {}, {}});
  });
}

HRESULT BaseUnit::put_simulationContext(IDispatch* hostContext) {
  return Guard("put_simulationContext", "ICapeUtilities", [&] {
    context = SimulationContext();
    if (!hostContext) return;
    const auto dispatch = com::Query<IDispatch>(hostContext);
    if (!dispatch)
      throw Failure(UnitError{"could not obtain IDispatch from simulation context",
                              "could not obtain IDispatch from simulation context in put_simulationContext",
                              {},
                              {}});
    context = SimulationContext(dispatch);
    if (!thermoVersionFixed) ReadDefaultThermoVersion();
    context.FindSimplifiedModelSupport();
  });
}

HRESULT BaseUnit::Initialize() {
  return Guard("Initialize", kUnitInterface, [&] {
    if (!faceCreated) {
      inlets.clear();
      outlets.clear();
      parameters.clear();
      extraParameters.clear();
      reports = Reports();
      ForwardError("Initialize", kUnitInterface, [&] { CreateFace(); });
      if (!pendingThermoVersion.empty()) ChooseThermoVersion(pendingThermoVersion);
      faceCreated = true;
    }
    initialized = true;
  });
}

HRESULT BaseUnit::Terminate() {
  return Guard("Terminate", "ICapeUtilities", [&] {
    if (!initialized) return;
    for (const auto& port : AllPorts()) port->ReleaseConnection();
    context = SimulationContext();
    Invalidate();
    initialized = false;
  });
}

HRESULT BaseUnit::Edit() {
  return Enter("Edit", [&] {
    if (!ui::HasWindows())
      throw Failure("No window can be shown here to edit unit " + ComponentName() +
                    "; set its parameters through the host instead");
    ui::ShowMessageBox(declaration.about, ComponentName(), ui::Icon::kInformation);
  });
}

HRESULT BaseUnit::get_ValStatus(CapeValidationStatus* status) {
  if (!status) return E_POINTER;
  return Enter("get_ValStatus", [&] { *status = valStatus; });
}

HRESULT BaseUnit::get_reports(VARIANT* names) {
  if (!names) return E_POINTER;
  VariantInit(names);
  return Enter("get_reports", [&] { *names = com::MakeStrings(reports.Names()).Detach(); });
}

HRESULT BaseUnit::get_selectedReport(BSTR* name) {
  if (!name) return E_POINTER;
  *name = nullptr;
  return Enter("get_selectedReport",
               [&] { *name = com::ToBstr(reports.Names()[reports.Selected()]).Detach(); });
}

HRESULT BaseUnit::put_selectedReport(BSTR name) {
  return Enter("put_selectedReport", [&] {
    if (!reports.Select(com::ToUtf8(name)))
      throw Failure(
          UnitError{"unknown report", "unknown report name in put_selectedReport", {}, kReportInterface});
  });
}

HRESULT BaseUnit::ProduceReport(BSTR* text) {
  if (!text) return E_POINTER;
  return Enter("ProduceReport", [&] {
    const std::size_t selected = reports.Selected();
    ReplaceText(text, selected == 0 ? calcStatusText : reports.At(selected).text);
  });
}

void BaseUnit::RequireInitialized() const {
  if (!initialized) throw Failure("Initialize not called");
}

std::vector<com::Ref<CUnitPort>> BaseUnit::AllPorts() const {
  std::vector<com::Ref<CUnitPort>> ports = inlets;
  ports.insert(ports.end(), outlets.begin(), outlets.end());
  return ports;
}

std::vector<com::Ref<CParameter>> BaseUnit::AllParameters() const {
  std::vector<com::Ref<CParameter>> all = parameters;
  all.insert(all.end(), extraParameters.begin(), extraParameters.end());
  return all;
}

void BaseUnit::Invalidate() {
  valStatus = CAPE_NOT_VALIDATED;
  calcStatusText = "unit not validated";
}

void BaseUnit::ConnectionChanged() {
  Invalidate();
  InputsChanged();
}

void BaseUnit::ParameterChanged() {
  Invalidate();
  InputsChanged();
  dirty = true;
}

void BaseUnit::ParameterPut(const CParameter& parameter) {
  ParameterChanged();
  if (!com::EqualNoCase(parameter.ComponentName(), kThermoVersion)) return;
  RefreshThermoVersion();
  thermoVersionFixed = true;
}

void BaseUnit::RefreshThermoVersion() {
  const int index = ThermoVersionParameterIndex();
  if (index < 0) useThermo11 = false;
  if (index < 0 || static_cast<std::size_t>(index) >= parameters.size()) return;
  const auto* version = std::get_if<std::string>(&parameters[static_cast<std::size_t>(index)]->Value());
  useThermo11 = version && *version == "1.1";
}

void BaseUnit::MatchThermoVersion(bool thermo11) {
  const int index = ThermoVersionParameterIndex();
  if (index < 0 || static_cast<std::size_t>(index) >= parameters.size()) return;
  CParameter& parameter = *parameters[static_cast<std::size_t>(index)];
  const std::string version = thermo11 ? "1.1" : "1.0";
  const auto* current = std::get_if<std::string>(&parameter.Value());
  if (!current || !com::EqualNoCase(*current, version)) parameter.Put(version);
}

void BaseUnit::ChooseThermoVersion(const std::string& version) {
  const int index = ThermoVersionParameterIndex();
  if (index >= 0 && static_cast<std::size_t>(index) < parameters.size()) {
    parameters[static_cast<std::size_t>(index)]->Put(version);
    pendingThermoVersion.clear();
  } else {
    pendingThermoVersion = version;
  }
  thermoVersionFixed = true;
}

void BaseUnit::ReadDefaultThermoVersion() {
  if (ThermoVersionParameterIndex() < 0 || !context.Lists(names::kDefaultThermoVersion)) return;
  const auto value = context.NamedValue(names::kDefaultThermoVersion);
  if (!value) return;
  const auto warn = [&](const std::string& text) { LogToHost("Unit " + ComponentName() + ": " + text); };
  const VARIANT given = com::Borrow(value->Get());
  if (given.vt != VT_BSTR)
    return warn("unexpected format for named value \"DefaultThermoVersion\": expected a string value");
  const std::string version = com::ToUtf8(given.bstrVal);
  if (version != "1.0" && version != "1.1")
    return warn("unrecognized named value for \"DefaultThermoVersion\": \"" + version +
                "\"; only values of \"1.0\" and \"1.1\" are supported");
  ChooseThermoVersion(version);
}

void BaseUnit::LogToHost(const std::string& text) const { context.LogMessage(text); }

void BaseUnit::ShowError(const std::string& text) const {
  if (!context.PopUpMessage(text)) ui::ShowMessageBox(text, "Unit Operation error:", ui::Icon::kExclamation);
}

void BaseUnit::Warn(const std::string& text) const {
  if (!simplifiedModelRequested) LogToHost(text);
}

void BaseUnit::SetReportText(std::size_t reportIndex, std::string text) {
  if (!simplifiedModelRequested) reports.At(reportIndex).text = std::move(text);
}

void BaseUnit::AddReportText(std::size_t reportIndex, const std::string& text) {
  if (!simplifiedModelRequested) reports.At(reportIndex).text += text;
}

void BaseUnit::AddReportWarning(std::size_t reportIndex, const std::string& text) {
  AddReportText(reportIndex, "WARNING: " + text + "\r\n");
}

void BaseUnit::CreateFace() {
  for (const PortDeclaration& port : declaration.ports) AddPort(port);
  for (const ParameterDeclaration& parameter : declaration.parameters) CreateParameter(parameter);
  for (const char* report : declaration.reports) reports.Add(report);
}

CUnitPort& BaseUnit::AddPort(const PortDeclaration& port) {
  auto& ports = port.direction == CAPE_INLET ? inlets : outlets;
  if (port.type == CAPE_MATERIAL)
    ports.push_back(com::Make<CUnitPort>(port, *this));
  else
    ports.push_back(com::Make<CUnitInfoPort>(port, *this));
  return *ports.back();
}

CParameter& BaseUnit::CreateParameter(const ParameterDeclaration& parameter) {
  parameters.push_back(com::Make<CParameter>(parameter, this));
  return *parameters.back();
}

CParameter& BaseUnit::CreateRealParameter(const char* name, const char* description, CapeParamMode mode,
                                          double defaultValue, double lower, double upper,
                                          const Dimensionality& dimensionality) {
  return CreateParameter({.name = name,
                          .description = description,
                          .mode = mode,
                          .defaultValue = defaultValue,
                          .lowerBound = lower,
                          .upperBound = upper,
                          .dimensionality = dimensionality});
}

}  // namespace morvelan
