#include "framework/BaseUnit.h"

#include <algorithm>

#include "com/ScopeExit.h"
#include "framework/UnitMaterials.h"
#include "framework/UnitValidation.h"
#include "material/Names.h"
#include "ui/MessageBox.h"

namespace morvelan {
namespace {

constexpr std::string_view kUnitInterface = "ICapeUnit";
constexpr std::string_view kReportInterface = "ICapeUnitReport";
constexpr std::string_view kPersistenceInterface = "IPersistStream";
constexpr std::string_view kConfigurationInterface = "IUnitConfiguration";
constexpr HRESULT kOutOfMemory = static_cast<HRESULT>(0x8007000Eu);

template <class Object>
IDispatch* DispatchOf(const com::Ref<Object>& object, const UnitError& failure) {
  com::Ref<IDispatch> dispatch = object.template As<IDispatch>();
  if (!dispatch) throw Failure(failure);
  return dispatch.Detach();
}

}  // namespace

BaseUnit::BaseUnit(const UnitDeclaration& identity)
    : Implements(identity.name, identity.description, __uuidof(DUnit)),
      journal(*this, identity.kind ? identity.kind : identity.name, context, reports, simplifiedModelRequested),
      declaration(identity),
      parameterCollection(com::Make<CParamCollection>(this)),
      portCollection(com::Make<CPortCollection>(this)) {}

BaseUnit::~BaseUnit() {
  parameterCollection->DetachFromUnit();
  portCollection->DetachFromUnit();
}

void* BaseUnit::FindInterface(REFIID iid) {
  if (iid == __uuidof(IPersist)) return static_cast<IPersistStream*>(this);
  if (iid == __uuidof(IUnitConfiguration) && declare.settings.IsEmpty()) return nullptr;
  return Implements::FindInterface(iid);
}

void BaseUnit::AppendFaces(std::vector<com::Face>& faces) {
  Implements::AppendFaces(faces);
  if (declare.settings.IsEmpty()) faces.pop_back();  // IUnitConfiguration
}

GUID BaseUnit::AutomationType() const {
  return declare.settings.IsEmpty() ? Implements::AutomationType() : __uuidof(DConfigurableUnit);
}

com::Ref<IUnknown> BaseUnit::KeepAlive() { return com::Ref<IUnknown>(com::Ref<ICapeUnit>::Share(this)); }

template <class Body>
HRESULT BaseUnit::Enter(std::string_view scope, Body&& body) {
  return Guard(scope, kUnitInterface, [&] {
    RequireInitialized();
    body();
  });
}

void BaseUnit::RequireInitialized() const {
  if (!initialized) throw Failure("Initialize not called");
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
  reports = Reports();
  CreateObjects();
  thermo.ApplyPending();
  isCreated = true;
}

void BaseUnit::CreateObjects() {
  declare.Create();
  for (const char* report : declaration.reports) reports.Add(report);
}

HRESULT BaseUnit::Terminate() {
  return Guard("Terminate", "ICapeUtilities", [&] {
    // The host may have connected a port that it kept, or passed a context, while the unit was not initialized.
    for (const auto& port : declare.ports.All()) port->ReleaseConnection();
    context = SimulationContext();
    status.Invalidate();
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

HRESULT BaseUnit::get_ValStatus(CapeValidationStatus* validity) {
  if (!validity) return E_POINTER;
  return Enter("get_ValStatus", [&] { *validity = status.Validity(); });
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
    ReplaceText(text, selected == 0 ? status.Text() : reports.At(selected).text);
  });
}

HRESULT BaseUnit::GetClassInfo(ITypeInfo** info) {
  if (!info) return E_POINTER;
  *info = nullptr;
  return com::TypeInfoOf(classId, info);
}

void BaseUnit::ShowError(const std::string& text) const {
  if (!context.PopUpMessage(text)) ui::ShowMessageBox(text.c_str(), "Unit Operation error:", ui::Icon::kExclamation);
}

void BaseUnit::NotifyInputs() {
  declare.Refresh();
  if (isCreated) ArrangePorts();
  InputsChanged();
}

void BaseUnit::ConnectionChanged() {
  status.Invalidate();
  NotifyInputs();
}

void BaseUnit::ParameterChanged() {
  status.Invalidate();
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

CParameter* BaseUnit::FindThermoVersion() const {
  const int index = ThermoVersionParameterIndex();
  const auto& parameters = declare.parameters.List();
  if (index < 0 || static_cast<std::size_t>(index) >= parameters.size()) return nullptr;
  return parameters[static_cast<std::size_t>(index)].Get();
}

void BaseUnit::ArrangePorts() { CommitPorts(declare.ports.Prepare()); }

void BaseUnit::CommitPorts(DeclaredPorts::Prepared prepared) noexcept {
  if (!prepared.IsChange()) return;
  const DeclaredPorts::PortList gone = declare.ports.Commit(std::move(prepared));
  status.Invalidate();
  // What a host does as its stream is released happens to a unit that is whole.
  for (const auto& port : gone) port->DetachFromUnit();
}

void BaseUnit::CommitSettings(const SettingsChange& change) {
  const auto swap = [&]() noexcept {
    for (Setting* setting : change.settings) setting->Swap();
  };
  swap();
  try {
    DeclaredPorts::Prepared prepared = declare.ports.Prepare();
    SettingsChanged(change);
    CommitPorts(std::move(prepared));
  } catch (...) {
    swap();
    throw;
  }
}

HRESULT BaseUnit::GetConfiguration(BSTR* json) {
  if (!json) return E_POINTER;
  *json = nullptr;
  return Guard("GetConfiguration", kConfigurationInterface, [&] {
    RequireInitialized();
    *json = com::ToBstr(declare.settings.ConfigurationText()).Detach();
  });
}

HRESULT BaseUnit::SetConfiguration(BSTR json) {
  return Guard("SetConfiguration", kConfigurationInterface, [&] {
    RequireInitialized();
    status.RequireIdle();
    const UnitStatus::Activity busy(status, "configured");
    CommitSettings({SettingsChange::Source::kHost, declare.settings.StageText(com::ToUtf8(json))});
    ParameterChanged();
  });
}

HRESULT BaseUnit::Validate(BSTR* message, VARIANT_BOOL* isValid) {
  if (!message || !isValid) return E_POINTER;
  *isValid = VARIANT_FALSE;
  return Enter("Validate", [&] {
    // A unit that a host validates while it calls back would lose what it is working with.
    status.RequireIdleToBe("validated");
    ReplaceText(message, {});
    const Verdict verdict = ValidateAll();
    ReplaceText(message, verdict.fault);
    if (verdict.failure) throw Failure(*verdict.failure);
    *isValid = com::ToVariantBool(verdict.fault.empty());
  });
}

BaseUnit::Verdict BaseUnit::ValidateAll() {
  const UnitStatus::Activity busy(status, "validated");
  status.SetValidity(CAPE_INVALID);
  thermo.Refresh();
  UnitValidation validation(*this, declare, {checkConnections, checkCompounds}, ComponentName());
  Verdict verdict;
  try {
    verdict.fault = ForwardError("Validate", kUnitInterface, [&] {
      return Recorded("Validate", kUnitInterface, [&] { return validation.FindFault(); });
    });
    validatedCompoundCount = validation.CompoundCount();
    // A host that calls back while it answers may change what has been checked already.
    if (verdict.fault.empty() && status.Validity() != CAPE_INVALID)
      verdict.fault = "the unit was changed while it was validated";
  } catch (const Failure& failure) {
    verdict.failure = failure;
    verdict.fault = failure.error.description.empty() ? "the validation failed" : failure.error.description;
  }
  if (verdict.fault.empty())
    status.Set(CAPE_VALID, "unit specification complete");
  else
    status.Set(CAPE_INVALID, verdict.fault);
  return verdict;
}

HRESULT BaseUnit::Calculate() {
  return Enter("Calculate", [&] {
    status.RequireIdleToBe(UnitStatus::kCalculated);
    const UnitStatus::Activity busy(status, UnitStatus::kCalculated);
    const com::ScopeExit done([&] { simplifiedModelRequested = false; });
    int compoundCount = 0;
    const HRESULT outcome = Guard("Calculate", kUnitInterface, [&] { RunCalculation(compoundCount); });
    FinishCalculation(compoundCount, SUCCEEDED(outcome));
  });
}

void BaseUnit::RunCalculation(int& compoundCount) {
  thermo.Refresh();
  validatedCompoundCount.reset();
  if (status.Validity() != CAPE_VALID) {
    const Verdict verdict = ValidateAll();
    if (!verdict.fault.empty()) throw Failure(verdict.fault, "Calculate", kUnitInterface);
  }
  changesBefore = status.Changes();
  compoundCount = UnitMaterials(declare.ports, checkCompounds).ReadInlets(validatedCompoundCount);
  RequireUnchanged();
  simplifiedModelRequested = context.SimplifiedModelRequested();
  ResultValues formerResults = Results();
  const com::ScopeExit takeBack([&] {
    for (auto& [parameter, value] : formerResults) parameter->SetResult(std::move(value));
  });
  for (const auto& outlet : declare.ports.Outlets()) outlet->LeaveFor({});
  OutletFlashSpec outletFlashSpec = names::kTP;
  CalculateUnit(compoundCount, outletFlashSpec);
  if (outletFlashSpec) UnitMaterials(declare.ports, checkCompounds).FlashOutlets(*outletFlashSpec);
  if (!initialized) throw Failure("The unit was terminated while it was calculated");
  formerResults.clear();
}

void BaseUnit::RequireUnchanged() const {
  if (status.Changes() != changesBefore) throw Failure("The unit was changed while it was calculated");
}

BaseUnit::ResultValues BaseUnit::Results() const {
  ResultValues results;
  for (const auto& parameter : declare.parameters.List())
    if (parameter->IsResult()) results.emplace_back(parameter, parameter->Value());
  return results;
}

void BaseUnit::FinishCalculation(int compoundCount, bool success) {
  const Failure outcome(LastError());
  const std::string& reason = outcome.error.description;
  if (!success)
    status.SetText("Calculation failed:\r\n" + (reason.empty() ? "Unknown" : reason) + "\r\n");
  else if (status.Validity() == CAPE_VALID)  // unless the host changed the unit meanwhile
    status.SetText("unit is solved");
  // What the unit does at the end changes nothing about the outcome.
  (void)Guard("Calculate", kUnitInterface, [&] { OnCalculateDone(compoundCount, success); });
  SetError(outcome.error);
  if (!success) throw outcome;
}

double BaseUnit::HFromPSFlash(double pressure, double entropy) {
  try {
    const auto& inlets = declare.ports.Inlets();
    const auto first = std::ranges::find_if(inlets, [](const auto& port) { return port->Type() == CAPE_MATERIAL; });
    if (first == inlets.end() || !(*first)->IsConnected())
      throw Failure(UnitError{"Failed to get material", "Failed to get material connected to inlet port", {}, {}});
    const com::Ref<CUnitPort> inlet = *first;
    return material::ThermoInForce(thermo.Uses11())
        .HFromPSFlash({inlet->ConnectedObject(), inlet->ComponentName(), emulation}, pressure, entropy);
  } catch (Failure& failure) {
    failure.error.scope = IsCalculating() ? "Calculate" : "HFromPSFlash";
    failure.error.interfaceName = IsCalculating() ? kUnitInterface : "BaseUnit";
    throw;
  }
}

HRESULT BaseUnit::GetClassID(CLSID* clsid) {
  if (!clsid) return E_POINTER;
  *clsid = classId;
  return S_OK;
}

HRESULT BaseUnit::GetSizeMax(ULARGE_INTEGER* size) {
  if (!size) return E_POINTER;
  size->QuadPart = 0;
  return Guard("GetSizeMax", kPersistenceInterface, [&] {
    EnsureCreated();
    UnitWriter counter(nullptr);
    WriteParameters(counter, declare.parameters.List());
    SaveUnit(counter);
    WriteReports(counter, reports);
    size->QuadPart = counter.Count();
  });
}

HRESULT BaseUnit::Save(IStream* stream, BOOL clearDirty) {
  if (!stream) return E_POINTER;
  SaveOutcome outcome = kSaved;
  const HRESULT hr = Guard("Save", kPersistenceInterface, [&] {
    EnsureCreated();
    const auto target = com::Ref<IStream>::Share(stream);
    const UnitStatus::Activity busy(status, "saved");
    UnitWriter writer(stream);
    WriteParameters(writer, declare.parameters.List());
    writer.Flush();
    outcome = SaveUnit(writer);
    if (outcome != kSaved) return;
    writer.Flush();  // a unit whose data can't be written stays dirty
    if (clearDirty) dirty = false;
    WriteReports(writer, reports);
    writer.Flush();
  });
  return FAILED(hr) ? hr : outcome;
}

SaveOutcome BaseUnit::SaveUnit(UnitWriter& writer) {
  declare.settings.Write(writer);
  return kSaved;
}

HRESULT BaseUnit::Load(IStream* stream) {
  if (!stream) return E_POINTER;
  bool outOfMemory = false;
  const HRESULT hr = Guard("Load", kPersistenceInterface, [&] {
    status.RequireIdle();
    const UnitStatus::Activity busy(status, "loaded");
    const auto source = com::Ref<IStream>::Share(stream);
    UnitReader reader(*stream);
    try {
      EnsureCreated();
      SavedUnit saved = ReadSavedUnit(reader, *this, declare.parameters.List(), declaration.reports);
      declare.parameters.Reserve(saved.further.size());
      TakeOver(std::move(saved));
    } catch (const std::bad_alloc&) {
      outOfMemory = true;
      throw;
    }
  });
  return outOfMemory ? kOutOfMemory : hr;
}

std::function<void()> BaseUnit::LoadUnit(UnitReader& reader, int, const std::vector<ParameterRecord>& records) {
  return [this, loaded = declare.settings.Read(reader, records)]() mutable {
    for (auto& [parameter, text] : loaded.options) parameter->SetResult(std::move(text));
    CommitSettings({SettingsChange::Source::kStream, loaded.staged});
  };
}

void BaseUnit::TakeOver(SavedUnit saved) {
  const auto& parameters = declare.parameters.List();
  std::vector<ParameterRecord> former;
  for (std::size_t i = 0; i < saved.records.size(); ++i) former.push_back(parameters[i]->Record());
  for (std::size_t i = 0; i < saved.records.size(); ++i) parameters[i]->Restore(std::move(saved.records[i]));
  try {
    if (saved.takeOverUnitData) saved.takeOverUnitData();
  } catch (...) {  // of memory that ran out, or of settings that do not go together
    for (std::size_t i = 0; i < former.size(); ++i) parameters[i]->Restore(std::move(former[i]));
    throw;
  }
  declare.parameters.Append(saved.further);
  thermo.Forget();
  if (saved.namedReports) reports.Replace(std::move(*saved.namedReports));
  status.Invalidate();
  dirty = false;
  NotifyInputs();
}

}  // namespace morvelan
