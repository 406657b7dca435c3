#include "framework/BaseUnit.h"

#include <algorithm>

#include "framework/CUnitInfoPort.h"
#include "material/Names.h"
#include "morvelan.h"
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
    : Implements(unitDeclaration.name, unitDeclaration.description, __uuidof(DUnit)),
      declaration(unitDeclaration),
      parameterCollection(com::Make<CParamCollection>(this)),
      portCollection(com::Make<CPortCollection>(this)) {
  Invalidate();
}

BaseUnit::~BaseUnit() {
  parameterCollection->Orphan();
  portCollection->Orphan();
}

com::Ref<IUnknown> BaseUnit::KeepAlive() { return com::Ref<IUnknown>(com::Ref<ICapeUnit>::Share(this)); }

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
    *collection = DispatchOf(parameterCollection,
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
    thermo.AskHost(context, [&](const std::string& text) { LogToHost("Unit " + ComponentName() + ": " + text); });
    context.FindSimplifiedModelSupport();
  });
}

HRESULT BaseUnit::Initialize() {
  return Guard("Initialize", kUnitInterface, [&] {
    ForwardError("Initialize", kUnitInterface, [&] { EnsureCreated(); });
    initialized = true;
  });
}

void BaseUnit::EnsureCreated() {
  if (isCreated) return;
  inlets.clear();
  outlets.clear();
  parameters.clear();
  extraParameters.clear();
  reports = Reports();
  CreateObjects();
  thermo.ApplyPending();
  isCreated = true;
}

HRESULT BaseUnit::Terminate() {
  return Guard("Terminate", "ICapeUtilities", [&] {
    // The host may have connected a port that it kept, or passed a context, while the unit was not
    // initialized.
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
    ui::ShowMessageBox(declaration.about, ComponentName().c_str(), ui::Icon::kInformation);
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
  return Enter("get_selectedReport", [&] { *name = com::ToBstr(reports.Names()[reports.Selected()]).Detach(); });
}

HRESULT BaseUnit::put_selectedReport(BSTR name) {
  return Enter("put_selectedReport", [&] {
    if (!reports.Select(com::ToUtf8(name)))
      throw Failure(UnitError{"unknown report", "unknown report name in put_selectedReport", {}, kReportInterface});
  });
}

HRESULT BaseUnit::ProduceReport(BSTR* text) {
  if (!text) return E_POINTER;
  return Enter("ProduceReport", [&] {
    const std::size_t selected = reports.Selected();
    if (selected == 0)
      ReplaceText(text, calcStatusText.empty() ? "unit not validated" : calcStatusText);
    else
      ReplaceText(text, reports.At(selected).text);
  });
}

HRESULT BaseUnit::GetClassInfo(ITypeInfo** info) {
  if (!info) return E_POINTER;
  *info = nullptr;
  return com::TypeInfoOf(classId, info);
}

void BaseUnit::RequireInitialized() const {
  if (!initialized) throw Failure("Initialize not called");
}

std::vector<com::Ref<CUnitPort>> BaseUnit::AllPorts() const { return declare.AllPorts(); }

std::vector<com::Ref<CParameter>> BaseUnit::AllParameters() const { return declare.AllParameters(); }

void BaseUnit::Invalidate() {
  valStatus = CAPE_NOT_VALIDATED;
  calcStatusText.clear();
  ++changes;
}

void BaseUnit::NotifyInputs() {
  declare.Refresh();
  if (isCreated) ArrangePorts();
  InputsChanged();
}

void BaseUnit::ArrangePorts() {
  if (declare.IsDeclared()) CommitPorts(declare.PreparePorts());
}

void BaseUnit::CommitSettings(const std::vector<Setting*>& staged, SettingsFrom source) {
  const auto swap = [&]() noexcept {
    for (Setting* setting : staged) setting->Swap();
  };
  swap();
  try {
    UnitDeclarations::PreparedPorts plan = declare.PreparePorts();
    SettingsChanged(source);
    CommitPorts(std::move(plan));
  } catch (...) {
    swap();
    throw;
  }
}

void BaseUnit::CommitPorts(UnitDeclarations::PreparedPorts plan) noexcept {
  if (!plan.IsChange()) return;
  const PortList gone = declare.Commit(std::move(plan));
  Invalidate();
  // What a host does as its stream is released happens to a unit that is whole.
  for (const auto& port : gone) port->Orphan();
}

void BaseUnit::ConnectionChanged() {
  Invalidate();
  NotifyInputs();
}

void BaseUnit::ParameterChanged() {
  Invalidate();
  dirty = true;
  NotifyInputs();
}

void BaseUnit::ParameterPut(const CParameter& parameter) {
  if (com::EqualNoCase(parameter.ComponentName(), kThermoVersion)) {
    thermo.Refresh();
    thermo.Fix();
  }
  ParameterChanged();
}

void BaseUnit::MatchThermoVersion(bool thermo11) { thermo.Match(thermo11); }

CParameter* BaseUnit::FindThermoVersion() const {
  const int index = ThermoVersionParameterIndex();
  if (index < 0 || static_cast<std::size_t>(index) >= parameters.size()) return nullptr;
  return parameters[static_cast<std::size_t>(index)].Get();
}

void BaseUnit::LogToHost(const std::string& text) const { context.LogMessage(text); }

void BaseUnit::ShowError(const std::string& text) const {
  if (!context.PopUpMessage(text)) ui::ShowMessageBox(text.c_str(), "Unit Operation error:", ui::Icon::kExclamation);
}

void BaseUnit::Warn(const std::string& text) const {
  if (!simplifiedModelRequested) LogToHost(text);
}

Journal BaseUnit::MakeJournal() {
  return Journal(*this, declaration.kind ? declaration.kind : declaration.name, context, reports,
                 simplifiedModelRequested);
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

void BaseUnit::CreateObjects() {
  for (const PortDeclaration& port : declaration.ports) AddPort(port);
  for (const ParameterDeclaration& parameter : declaration.parameters) CreateParameter(parameter);
  for (const char* report : declaration.reports) reports.Add(report);
  if (declare.IsDeclared()) declare.Create();
}

com::Ref<CUnitPort> BaseUnit::MakePort(const PortDeclaration& port) {
  if (port.type == CAPE_MATERIAL) return com::Make<CUnitPort>(port, *this);
  return com::Make<CUnitInfoPort>(port, *this);
}

CUnitPort& BaseUnit::AddPort(const PortDeclaration& port) {
  auto& ports = port.direction == CAPE_INLET ? inlets : outlets;
  ports.push_back(MakePort(port));
  return *ports.back();
}

BaseUnit::PortList BaseUnit::ResizedPorts(const PortList& ports, std::size_t count, const PortDeclaration& added,
                                          const std::function<std::string(std::size_t)>& nameOf) {
  PortList resized(ports.begin(), ports.begin() + static_cast<std::ptrdiff_t>(std::min(count, ports.size())));
  const PortList others = AllPorts();
  const auto isTaken = [&](const std::string& name) {
    const auto hasName = [&](const auto& port) { return com::EqualNoCase(port->ComponentName(), name); };
    return std::ranges::any_of(others, hasName) || std::ranges::any_of(resized, hasName);
  };
  while (resized.size() < count) {
    std::size_t number = resized.size() + 1;
    while (isTaken(nameOf(number))) ++number;  // a host may have renamed a port
    const std::string name = nameOf(number);
    PortDeclaration port = added;
    port.name = name.c_str();
    resized.push_back(MakePort(port));
  }
  return resized;
}

void BaseUnit::ReplacePorts(PortList newInlets, PortList newOutlets) noexcept {
  std::swap(inlets, newInlets);
  std::swap(outlets, newOutlets);
  Invalidate();
  const auto stays = [&](const auto& former) {
    const auto isIt = [&](const auto& port) { return port.Get() == former.Get(); };
    return std::ranges::any_of(inlets, isIt) || std::ranges::any_of(outlets, isIt);
  };
  // What a host does as its stream is released happens to a unit that is whole.
  for (const auto* formerPorts : {&newInlets, &newOutlets})
    for (const auto& former : *formerPorts)
      if (!stays(former)) former->Orphan();
}

void BaseUnit::RequireUnchanged() const {
  if (changes != changesBefore) throw Failure("The unit was changed while it was calculated");
}

void BaseUnit::RequireIdle() const {
  if (activity) throw Failure(std::string("The unit can't be changed while it is ") + activity);
}

CParameter& BaseUnit::CreateParameter(const ParameterDeclaration& parameter) {
  parameters.push_back(com::Make<CParameter>(parameter, this));
  return *parameters.back();
}

}  // namespace morvelan
