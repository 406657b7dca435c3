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
#include "framework/ParameterRecord.h"
#include "framework/Reports.h"
#include "framework/SimulationContext.h"
#include "framework/UnitStream.h"

namespace morvelan {

/// Base of all units: what the host sees of a unit, and everything that runs around a unit's own validation
/// and calculation. A concrete unit declares its ports and parameters and overrides the operations below.
class BaseUnit : public com::Implements<BaseObject, ICapeUtilities, ICapeUnit, ICapeUnitReport, IProvideClassInfo,
                                        IPersistStream, IPersistStreamInit> {
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

  // What a concrete unit supplies.

  /// Position of "Thermo Version" in the parameter list; negative when the unit has none.
  [[nodiscard]] virtual int ThermoVersionParameterIndex() const { return 0; }
  /// The unit's own checks after the common ones; false with a message when something is wrong.
  [[nodiscard]] virtual bool ValidateUnit(std::string&) { return true; }
  /// Called whenever a parameter is put or reset and whenever a port is connected or disconnected.
  virtual void InputsChanged() {}
  /// Called before the host receives the parameter at `index` of the list, to bring its value up to date.
  virtual void ParameterRequested(std::size_t) {}
  /// The unit's calculation, from the inlets' states to the outlets'. `compoundCount` is -1 when each port
  /// keeps its own. A unit that leaves `outletFlashSpec` empty keeps the framework from flashing its outlets.
  virtual void CalculateUnit(int compoundCount, std::optional<com::Name>& outletFlashSpec) = 0;
  /// Properties that the unit will ask of its feed.
  [[nodiscard]] virtual std::vector<std::string> RequiredProperties() const { return {}; }
  /// The unit's own check of a value for one of its parameters; false with a message to refuse it.
  [[nodiscard]] virtual bool ValidateParameterValue(const CParameter&, std::string&, const ParameterValue&) const {
    return true;
  }
  /// Called at the end of each calculation, after the status text is set. The count is 0 when it was not yet
  /// known.
  virtual void OnCalculateDone(int, bool) {}

  /// Writes what the unit keeps beyond its parameters; a result other than S_OK ends the save with it.
  virtual HRESULT SaveUnit(UnitWriter&) { return S_OK; }
  /// Reads what `SaveUnit` wrote, for a format version from 1 to 7, and prepares what follows from the
  /// records of the unit's parameters, of which there may be fewer than the unit has. Nothing of the unit
  /// changes: what is returned makes the change once the parameters are loaded, and may not fail. Throws
  /// Failure.
  [[nodiscard]] virtual std::function<void()> LoadUnit(UnitReader&, int, const std::vector<ParameterRecord>&) {
    return {};
  }

  // For the unit's own objects.

  /// Throws "Initialize not called" unless the unit is initialized.
  void RequireInitialized() const;
  /// Inlets, then outlets.
  [[nodiscard]] std::vector<com::Ref<CUnitPort>> AllPorts() const;
  /// The unit's list, then the parameters kept apart from it.
  [[nodiscard]] std::vector<com::Ref<CParameter>> AllParameters() const;
  [[nodiscard]] const std::vector<com::Ref<CParameter>>& Parameters() const { return parameters; }
  [[nodiscard]] bool UsesThermo11() const { return useThermo11; }
  [[nodiscard]] material::OverallEmulation& Emulation() { return emulation; }
  /// A port was connected or disconnected.
  void ConnectionChanged();
  /// A parameter was reset.
  void ParameterChanged();
  /// A value was put into a parameter.
  void ParameterPut(const CParameter& parameter);
  /// A material was connected: "Thermo Version" follows it.
  void MatchThermoVersion(bool thermo11);

  /// Writes a line to the host's log, if there is one.
  void LogToHost(const std::string& text) const;
  /// Shows a text in the host's pop-up, or in a message box when the host has none.
  void ShowError(const std::string& text) const;

 protected:
  void* FindInterface(REFIID iid) override;

  /// Creates the ports, parameters and reports of the declaration. A unit whose face varies adds to it.
  virtual void CreateFace();

  using PortList = std::vector<com::Ref<CUnitPort>>;

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

  PortList inlets;
  PortList outlets;
  std::vector<com::Ref<CParameter>> extraParameters;  // kept apart from the list, and not saved with it
  bool checkConnections = true;
  bool checkCompounds = true;
  bool simplifiedModelRequested = false;  // quiet mode, for the duration of one calculation

 private:
  template <class Body>
  HRESULT Enter(std::string_view scope, Body&& body);
  void Invalidate();
  [[nodiscard]] CParameter* FindThermoVersion() const;
  void RefreshThermoVersion();
  void ChooseThermoVersion(const std::string& version);
  void ReadDefaultThermoVersion();

  /// The outcome of a validation: what is wrong, if anything, and the failure if it could not be carried out.
  struct Verdict {
    std::string fault;
    std::optional<Failure> failure;
  };

  /// Creates the face unless it exists.
  void EnsureFace();
  void WriteParameters(UnitWriter& writer) const;
  void WriteReports(UnitWriter& writer) const;
  /// What a stream holds, read as a whole before the unit takes it over.
  struct Saved;
  [[nodiscard]] Saved ReadSaved(UnitReader& reader);
  void TakeOver(Saved saved);

  // Validation
  [[nodiscard]] Verdict ValidateAll();
  [[nodiscard]] std::string FindFault();
  [[nodiscard]] std::string FindUnconnectedPort() const;
  [[nodiscard]] std::string FindCompoundMismatch();
  [[nodiscard]] std::string FindInvalidParameter() const;
  [[nodiscard]] std::string FindMissingProperty();

  // Calculation
  [[nodiscard]] CUnitPort* FirstConnectedMaterialInlet() const;
  void RunCalculation(int& compoundCount);
  /// The parameters that are results, with their values, which a failed calculation does not change.
  [[nodiscard]] std::vector<std::pair<com::Ref<CParameter>, ParameterValue>> Results() const;
  [[nodiscard]] int PreparePorts();
  void PrepareWithOwnCompounds();
  [[nodiscard]] int PrepareWithCommonCompounds();
  void FlashOutlets(com::Name flashType);
  void FinishCalculation(int compoundCount, bool success);

  const UnitDeclaration declaration;
  CLSID classId{};
  bool initialized = false;
  bool faceCreated = false;
  unsigned changes = 0;            // that made the unit not validated
  unsigned changesBefore = 0;      // a calculation
  const char* activity = nullptr;  // what a host that calls back must not disturb
  bool dirty = false;
  bool useThermo11 = false;
  bool thermoVersionFixed = false;
  std::string pendingThermoVersion;  // chosen by the host before the parameter exists
  CapeValidationStatus valStatus = CAPE_NOT_VALIDATED;
  std::string calcStatusText;  // empty for "unit not validated"
  SimulationContext context;
  Reports reports;
  std::vector<com::Ref<CParameter>> parameters;
  com::Ref<CParamCollection> parameterCollection;
  com::Ref<CPortCollection> portCollection;
  material::OverallEmulation emulation;
  std::optional<std::size_t> validatedCompoundCount;  // of the first material inlet, within one calculation
};

/// Declares the "Thermo Version" option of a material unit.
[[nodiscard]] ParameterDeclaration ThermoVersionParameter();

}  // namespace morvelan
