#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "framework/BaseObject.h"
#include "framework/CParamCollection.h"
#include "framework/CPortCollection.h"
#include "framework/Declarations.h"
#include "framework/Journal.h"
#include "framework/Reports.h"
#include "framework/SimulationContext.h"
#include "framework/ThermoChoice.h"
#include "framework/UnitDeclarations.h"
#include "framework/UnitSlots.h"
#include "framework/UnitStatus.h"
#include "framework/UnitStorage.h"
#include "morvelan.h"

namespace morvelan {

/// Base of all units: what the host sees of a unit, and everything that runs around a unit's own validation and
/// calculation. A concrete unit declares its ports, parameters and settings in its constructor and overrides
/// operations of `UnitSlots`.
class BaseUnit : public com::Implements<BaseObject, ICapeUtilities, ICapeUnit, ICapeUnitReport, IProvideClassInfo,
                                        IPersistStream, IPersistStreamInit, IUnitConfiguration>,
                 public UnitSlots {
 public:
  explicit BaseUnit(const UnitDeclaration& identity);
  ~BaseUnit() override;

  // ICapeUtilities
  HRESULT get_parameters(IDispatch** collection) override;
  HRESULT put_simulationContext(IDispatch* hostContext) override;
  HRESULT Initialize() override;
  HRESULT Terminate() override;
  HRESULT Edit() override;
  // ICapeUnit
  HRESULT get_ports(IDispatch** collection) override;
  HRESULT get_ValStatus(CapeValidationStatus* validity) override;
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
  HRESULT IsDirty() override { return dirty ? S_OK : S_FALSE; }
  HRESULT Load(IStream* stream) override;
  HRESULT Save(IStream* stream, BOOL clearDirty) override;
  HRESULT GetSizeMax(ULARGE_INTEGER* size) override;
  HRESULT InitNew() override { return S_OK; }
  // IUnitConfiguration, which only units with settings offer
  HRESULT GetConfiguration(BSTR* json) override;
  HRESULT SetConfiguration(BSTR json) override;

  /// Tells the unit under which class identifier hosts made it.
  void SetClassId(const CLSID& clsid) { classId = clsid; }

  // UnitSlots
  [[nodiscard]] int ThermoVersionParameterIndex() const override { return declare.ThermoVersionPosition(); }
  SaveOutcome SaveUnit(UnitWriter& writer) override;
  [[nodiscard]] std::function<void()> LoadUnit(UnitReader& reader, int version,
                                               const std::vector<ParameterRecord>& records) override;

  // UnitOwner
  [[nodiscard]] com::Ref<IUnknown> KeepAlive() override;
  [[nodiscard]] bool UsesThermo11() const override { return thermo.Uses11(); }
  [[nodiscard]] material::OverallEmulation& Emulation() override { return emulation; }
  void ConnectionChanged() override;
  void ParameterChanged() override;
  void ParameterPut(const CParameter& parameter) override;
  void MatchThermoVersion(bool thermo11) override { thermo.Match(thermo11); }
  void LogToHost(const std::string& text) const override { context.LogMessage(text); }

  // For the unit's collections.

  /// Throws "Initialize not called" unless the unit is initialized.
  void RequireInitialized() const;
  [[nodiscard]] const UnitDeclarations& Declarations() const { return declare; }

  /// Shows a text in the host's pop-up, or in a message box when the host has none.
  void ShowError(const std::string& text) const;

 protected:
  void* FindInterface(REFIID iid) override;
  void AppendFaces(std::vector<com::Face>& faces) override;
  [[nodiscard]] GUID AutomationType() const override;

  /// Creates ports, parameters and reports.
  virtual void CreateObjects();

  /// Runs a step of a validation; its failure stays as the unit's last error too.
  template <class Step>
  auto InValidation(Step&& step) {
    return Recorded("Validate", "ICapeUnit", std::forward<Step>(step));
  }
  /// Throws when the host has changed the unit, by calling back, since its calculation began: what has been read
  /// then is no longer what the unit is connected to.
  void RequireUnchanged() const;
  [[nodiscard]] bool IsCalculating() const { return status.IsCalculating(); }

  /// Molar enthalpy [J/mol] of the first material inlet's material brought to a pressure [Pa] and a molar
  /// entropy [J/(mol K)].
  [[nodiscard]] double HFromPSFlash(double pressure, double entropy);

  /// Puts staged settings in force, and ports with them; all or nothing.
  void CommitSettings(const SettingsChange& change);

  UnitDeclarations declare{*this};
  Reports reports;
  bool checkConnections = true;
  bool checkCompounds = true;
  bool simplifiedModelRequested = false;  // quiet mode, for the duration of one calculation
  /// What its calculations say.
  Journal journal;

 private:
  template <class Body>
  HRESULT Enter(std::string_view scope, Body&& body);

  /// Creates them unless they exist.
  void EnsureCreated();
  [[nodiscard]] CParameter* FindThermoVersion() const;
  void NotifyInputs();
  void ArrangePorts();
  void CommitPorts(DeclaredPorts::Prepared prepared) noexcept;
  void TakeOver(SavedUnit saved);

  /// The outcome of a validation: what is wrong, if anything, and the failure if it could not be carried out.
  struct Verdict {
    std::string fault;
    std::optional<Failure> failure;
  };
  [[nodiscard]] Verdict ValidateAll();

  void RunCalculation(int& compoundCount);
  using ResultValues = std::vector<std::pair<com::Ref<CParameter>, ParameterValue>>;
  /// The parameters that are results, with their values, which a failed calculation does not change.
  [[nodiscard]] ResultValues Results() const;
  void FinishCalculation(int compoundCount, bool success);

  const UnitDeclaration declaration;
  CLSID classId{};
  bool initialized = false;
  bool isCreated = false;
  bool dirty = false;
  UnitStatus status;
  unsigned changesBefore = 0;  // a calculation
  ThermoChoice thermo{[this] { return ThermoVersionParameterIndex(); }, [this] { return FindThermoVersion(); }};
  SimulationContext context;
  com::Ref<CParamCollection> parameterCollection;
  com::Ref<CPortCollection> portCollection;
  material::OverallEmulation emulation;
  std::optional<std::size_t> validatedCompoundCount;  // of the first material inlet, within one calculation
};

}  // namespace morvelan
