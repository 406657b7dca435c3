#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "framework/BaseUnit.h"
#include "framework/CUnitInfoPort.h"

namespace morvelan::test {

inline const ParameterDeclaration kThermoVersionParameter = {
    .name = kThermoVersion,
    .description = "Thermodynamics CAPE-OPEN Interface version",
    .defaultValue = "1.0",
    .options = {"1.0", "1.1"}};

/// A unit's ports and parameters as tables, which tests of what every unit shares find easier to walk than rows.
struct TestDeclaration {
  const char* name;
  const char* description;
  const char* about = "";
  std::span<const PortDeclaration> ports = {};
  std::span<const ParameterDeclaration> parameters = {};
  std::span<const char* const> reports = {};
};

/// A unit whose ports, parameters and behavior a test chooses, to reach what no real unit shows.
class TestUnit final : public BaseUnit {
 public:
  explicit TestUnit(const TestDeclaration& table)
      : BaseUnit(
            {.name = table.name, .description = table.description, .about = table.about, .reports = table.reports}) {
    for (const PortDeclaration& port : table.ports)
      declare.ports.Add(portHandle, port.direction, port.type, port.name, port.description, port.items)
          .While([this, port] { return hasOutlets || port.direction == CAPE_INLET; });
    for (const ParameterDeclaration& parameter : table.parameters)
      declare.parameters.Add(parameterHandles.emplace_back(), parameter);
  }

  int ThermoVersionParameterIndex() const override { return thermoVersionIndex; }
  bool ValidateUnit(std::string& message) override { return onValidate ? onValidate(message) : true; }
  void InputsChanged() override {
    ++inputChanges;
    if (onInputsChanged) onInputsChanged();
  }
  void ParameterRequested(std::size_t index) override { requested.push_back(index); }
  void CalculateUnit(int compoundCount, OutletFlashSpec& outletFlashSpec) override {
    calculatedCount = compoundCount;
    if (onCalculate) onCalculate(outletFlashSpec);
  }
  std::vector<std::string> RequiredProperties() const override { return requiredProperties; }
  bool ValidateParameterValue(const CParameter& parameter, std::string& message,
                              const ParameterValue& value) const override {
    return onParameterValue ? onParameterValue(parameter, message, value) : true;
  }
  void OnCalculateDone(int compoundCount, bool success) override {
    done = std::pair(compoundCount, success);
    if (onDone) onDone();
  }
  SaveOutcome SaveUnit(UnitWriter& writer) override { return onSave ? onSave(writer) : S_OK; }
  std::function<void()> LoadUnit(UnitReader& reader, int version, const std::vector<ParameterRecord>&) override {
    loadedVersion = version;
    return onLoad ? onLoad(reader) : nullptr;
  }

  [[nodiscard]] CUnitPort& Inlet(std::size_t i) { return *declare.ports.Inlets().at(i); }
  [[nodiscard]] CUnitPort& Outlet(std::size_t i) { return *declare.ports.Outlets().at(i); }
  [[nodiscard]] CParameter& Parameter(std::size_t i) { return *declare.parameters.List().at(i); }
  void AddParameter(const ParameterDeclaration& parameter) {
    declare.parameters.Append({com::Make<CParameter>(parameter, this)});
  }
  void RemoveOutlets() {
    hasOutlets = false;
    ConnectionChanged();
  }
  void SetReportText(std::size_t report, std::string text) { reports.At(report).text = std::move(text); }

  // What a derived unit may use.
  using BaseUnit::checkCompounds;
  using BaseUnit::checkConnections;
  using BaseUnit::declare;
  using BaseUnit::HFromPSFlash;
  using BaseUnit::journal;
  using BaseUnit::simplifiedModelRequested;

  int thermoVersionIndex = 0;
  std::function<void()> onInputsChanged;
  std::function<void()> onDone;
  std::function<HRESULT(UnitWriter&)> onSave;
  std::function<std::function<void()>(UnitReader&)> onLoad;
  std::function<bool(std::string&)> onValidate;
  std::function<void(std::optional<com::Name>&)> onCalculate;
  std::function<bool(const CParameter&, std::string&, const ParameterValue&)> onParameterValue;
  std::vector<std::string> requiredProperties;

  int inputChanges = 0;
  std::vector<std::size_t> requested;
  int calculatedCount = -99;
  int loadedVersion = -99;
  std::optional<std::pair<int, bool>> done;

 private:
  class AnyPorts final : public PortHandle {
    void Attach(std::span<CUnitPort* const>) noexcept override {}
  };

  AnyPorts portHandle;
  std::deque<ParameterHandle> parameterHandles;
  bool hasOutlets = true;
};

inline constexpr PortDeclaration kOneInOneOut[] = {
    {"Inlet", "feed", CAPE_INLET},
    {"Outlet", "product", CAPE_OUTLET},
};
inline const ParameterDeclaration kOnlyThermoVersion[] = {kThermoVersionParameter};
inline const TestDeclaration kTestUnit = {.name = "Test",
                                          .description = "A unit under test",
                                          .about = "",
                                          .ports = kOneInOneOut,
                                          .parameters = kOnlyThermoVersion,
                                          .reports = kLastRun};

}  // namespace morvelan::test
