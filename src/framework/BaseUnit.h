#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "framework/BaseObject.h"
#include "framework/CParamCollection.h"
#include "framework/CParameter.h"
#include "framework/CPortCollection.h"
#include "framework/CUnitPort.h"
#include "framework/Declarations.h"
#include "framework/Journal.h"
#include "framework/ParameterRecord.h"
#include "framework/Reports.h"
#include "framework/SimulationContext.h"
#include "framework/ThermoChoice.h"
#include "framework/UnitDeclarations.h"
#include "framework/UnitSlots.h"
#include "framework/UnitStream.h"

namespace morvelan {

/// Base of all units: what the host sees of a unit, and everything that runs around a unit's own validation
/// and calculation. A concrete unit declares its ports and parameters and overrides the operations below.
class BaseUnit : public com::Implements<BaseObject, ICapeUtilities, ICapeUnit, ICapeUnitReport, IProvideClassInfo,
                                        IPersistStream, IPersistStreamInit>,
                 public UnitSlots {
 public:
  explicit BaseUnit(const UnitDeclaration& unitDeclaration);
  ~BaseUnit() override;

  // ICapeUtilities
  HRESULT get_parameters(IDispatch** collection) override;
  HRESULT put_simulationContext(IDispatch* hostContext) override;
  HRESULT Initialize() override;
  HRESULT Terminate() override;
  HRESULT Edit() override;
  // ICapeUnit
  HRESULT get_ports(IDispatch** collection) override;
  HRESULT get_ValStatus(CapeValidationStatus* status) override;
  HRESULT Calculate() override;
  HRESULT Validate(BSTR* message, VARIANT_BOOL* isValid) override;
  // ICapeUnitReport
  HRESULT get_reports(VARIANT* names) override;
  HRESULT get_selectedReport(BSTR* name) override;
  HRESULT put_selectedReport(BSTR name) override;
  HRESULT ProduceReport(BSTR* text) override;
  // IProvideClassInfo
  HRESULT GetClassInfo(ITypeInfo** info) override;

  // IPersistStream and IPersistStreamInit
  HRESULT GetClassID(CLSID* clsid) override;
  HRESULT IsDirty() override;
  HRESULT Load(IStream* stream) override;
  HRESULT Save(IStream* stream, BOOL clearDirty) override;
  HRESULT GetSizeMax(ULARGE_INTEGER* size) override;
  HRESULT InitNew() override;

  /// Tells the unit under which class identifier hosts made it.
  void SetClassId(const CLSID& clsid) { classId = clsid; }

  // UnitSlots
  [[nodiscard]] int ThermoVersionParameterIndex() const override {
    return declare.IsDeclared() ? declare.ThermoVersionPosition() : 0;
  }
  HRESULT SaveUnit(UnitWriter& writer) override {
    declare.WriteSettings(writer);
    return S_OK;
  }
  [[nodiscard]] std::function<void()> LoadUnit(UnitReader& reader, int version,
                                               const std::vector<ParameterRecord>& records) override;

  // For the unit's own objects.

  /// Throws "Initialize not called" unless the unit is initialized.
  void RequireInitialized() const;
  /// Inlets, then outlets.
  [[nodiscard]] std::vector<com::Ref<CUnitPort>> AllPorts() const;
  /// The unit's list, then the parameters kept apart from it.
  [[nodiscard]] std::vector<com::Ref<CParameter>> AllParameters() const;
  [[nodiscard]] const std::vector<com::Ref<CParameter>>& Parameters() const { return parameters; }
  // UnitOwner
  [[nodiscard]] com::Ref<IUnknown> KeepAlive() override;
  [[nodiscard]] bool UsesThermo11() const override { return thermo.Uses11(); }
  [[nodiscard]] material::OverallEmulation& Emulation() override { return emulation; }
  void ConnectionChanged() override;
  void ParameterChanged() override;
  void ParameterPut(const CParameter& parameter) override;
  void MatchThermoVersion(bool thermo11) override;
  void LogToHost(const std::string& text) const override;

  /// Shows a text in the host's pop-up, or in a message box when the host has none.
  void ShowError(const std::string& text) const;

 protected:
  void* FindInterface(REFIID iid) override;

  /// Creates ports, parameters and reports.
  virtual void CreateObjects();

  using PortList = UnitDeclarations::PortList;

  [[nodiscard]] com::Ref<CUnitPort> MakePort(const PortDeclaration& port);
  CUnitPort& AddPort(const PortDeclaration& port);
  CParameter& CreateParameter(const ParameterDeclaration& parameter);

  /// A list with ports added or taken off at its end so that it has `count`; a new port is named by `nameOf`
  /// its number, from 1. Nothing of the unit changes yet.
  [[nodiscard]] PortList ResizedPorts(const PortList& ports, std::size_t count, const PortDeclaration& added,
                                      const std::function<std::string(std::size_t)>& nameOf);
  /// Puts other ports in place. Those that stay keep their connections; those that go are disconnected, and
  /// of no use to a host that keeps them. Does not fail.
  void ReplacePorts(PortList newInlets, PortList newOutlets) noexcept;

  /// Throws when the host has changed the unit, by calling back, since its calculation began: what has been
  /// read then is no longer what the unit is connected to.
  void RequireUnchanged() const;
  /// Throws while the unit is busy with something that a change would upset.
  void RequireIdle() const;
  /// A validation may be one of its own, or the beginning of a calculation.
  [[nodiscard]] bool IsCalculating() const;
  /// Says what the unit is busy with as long as it exists; within another activity that one prevails.
  class Activity {
   public:
    Activity(BaseUnit& busyUnit, const char* participle) : unit(busyUnit), outer(busyUnit.activity) {
      if (!outer) unit.activity = participle;
    }
    ~Activity() { unit.activity = outer; }
    Activity(const Activity&) = delete;
    Activity& operator=(const Activity&) = delete;

   private:
    BaseUnit& unit;
    const char* outer;
  };

  [[nodiscard]] CUnitPort& Inlet(std::size_t i) { return *inlets.at(i); }
  [[nodiscard]] CUnitPort& Outlet(std::size_t i) { return *outlets.at(i); }
  [[nodiscard]] CParameter& Parameter(std::size_t i) { return *parameters.at(i); }

  /// Logs a warning of a calculation; nothing happens in quiet mode.
  void Warn(const std::string& text) const;
  // Named reports count from 1. Nothing happens in quiet mode.
  void SetReportText(std::size_t reportIndex, std::string text);
  void AddReportText(std::size_t reportIndex, const std::string& text);
  void AddReportWarning(std::size_t reportIndex, const std::string& text);

  /// Molar enthalpy [J/mol] of the first material inlet's material brought to a pressure [Pa] and a molar
  /// entropy [J/(mol K)].
  [[nodiscard]] double HFromPSFlash(double pressure, double entropy);

  /// Brings ports in line with options and settings.
  void ArrangePorts();
  void CommitPorts(UnitDeclarations::PreparedPorts plan) noexcept;
  /// Puts staged settings in force, and ports with them; all or nothing.
  void CommitSettings(const std::vector<Setting*>& staged, SettingsFrom source);

  UnitDeclarations declare{*this};
  // (For units that do not declare their faces.)
  PortList& inlets = declare.inlets;
  PortList& outlets = declare.outlets;
  std::vector<com::Ref<CParameter>>& extraParameters = declare.extraParameters;
  bool checkConnections = true;
  bool checkCompounds = true;
  bool simplifiedModelRequested = false;  // quiet mode, for the duration of one calculation
  /// What its calculations say.
  [[nodiscard]] Journal MakeJournal();

 private:
  template <class Body>
  HRESULT Enter(std::string_view scope, Body&& body);
  void Invalidate();
  void NotifyInputs();
  [[nodiscard]] CParameter* FindThermoVersion() const;

  /// The outcome of a validation: what is wrong, if anything, and the failure if it could not be carried out.
  struct Verdict {
    std::string fault;
    std::optional<Failure> failure;
  };

  /// Creates them unless they exist.
  void EnsureCreated();
  void WriteParameters(UnitWriter& writer) const;
  void WriteReports(UnitWriter& writer) const;
  /// What a stream holds, read as a whole before the unit takes it over.
  struct Saved;
  [[nodiscard]] Saved ReadSaved(UnitReader& reader);
  void TakeOver(Saved saved);

  // Validation
  [[nodiscard]] Verdict ValidateAll();

  // Calculation
  void RunCalculation(int& compoundCount);
  /// The parameters that are results, with their values, which a failed calculation does not change.
  [[nodiscard]] std::vector<std::pair<com::Ref<CParameter>, ParameterValue>> Results() const;
  void FinishCalculation(int compoundCount, bool success);

  const UnitDeclaration declaration;
  CLSID classId{};
  bool initialized = false;
  bool isCreated = false;
  unsigned changes = 0;            // that made the unit not validated
  unsigned changesBefore = 0;      // a calculation
  const char* activity = nullptr;  // what a host that calls back must not disturb
  bool dirty = false;
  ThermoChoice thermo{[this] { return ThermoVersionParameterIndex(); }, [this] { return FindThermoVersion(); }};
  CapeValidationStatus valStatus = CAPE_NOT_VALIDATED;
  std::string calcStatusText;  // empty for "unit not validated"
  SimulationContext context;
  Reports reports;
  std::vector<com::Ref<CParameter>>& parameters = declare.parameters;
  com::Ref<CParamCollection> parameterCollection;
  com::Ref<CPortCollection> portCollection;
  material::OverallEmulation emulation;
  std::optional<std::size_t> validatedCompoundCount;  // of the first material inlet, within one calculation
};

}  // namespace morvelan
