#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "framework/BaseUnit.h"
#include "framework/CUnitInfoPort.h"

namespace morvelan::test {

/// A unit whose face and behaviour a test chooses, to reach what no real unit shows.
class TestUnit final : public BaseUnit {
 public:
  explicit TestUnit(const UnitDeclaration& declaration) : BaseUnit(declaration) {}

  int ThermoVersionParameterIndex() const override { return thermoVersionIndex; }
  bool ValidateUnit(std::string& message) override { return onValidate ? onValidate(message) : true; }
  void InputsChanged() override {
    ++inputChanges;
    if (onInputsChanged) onInputsChanged();
  }
  void ParameterRequested(std::size_t index) override { requested.push_back(index); }
  void CalculateUnit(int compoundCount, std::optional<com::Name>& outletFlashSpec) override {
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
  HRESULT SaveUnit(UnitWriter& writer) override { return onSave ? onSave(writer) : S_OK; }
  std::function<void()> LoadUnit(UnitReader& reader, int version, const std::vector<ParameterRecord>&) override {
    loadedVersion = version;
    return onLoad ? onLoad(reader) : nullptr;
  }

  // What a derived unit may use.
  using BaseUnit::AddReportText;
  using BaseUnit::AddReportWarning;
  using BaseUnit::checkCompounds;
  using BaseUnit::checkConnections;
  using BaseUnit::CreateParameter;
  using BaseUnit::extraParameters;
  using BaseUnit::HFromPSFlash;
  using BaseUnit::Inlet;
  using BaseUnit::inlets;
  using BaseUnit::Outlet;
  using BaseUnit::Parameter;
  using BaseUnit::ReplacePorts;
  using BaseUnit::SetReportText;
  using BaseUnit::simplifiedModelRequested;
  using BaseUnit::Warn;

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
};

inline constexpr PortDeclaration kOneInOneOut[] = {
    {"Inlet", "feed", CAPE_INLET},
    {"Outlet", "product", CAPE_OUTLET},
};
inline const ParameterDeclaration kOnlyThermoVersion[] = {ThermoVersionParameter()};
inline constexpr const char* kLastRun[] = {"Last run"};
inline const UnitDeclaration kTestUnit = {.name = "Test",
                                          .description = "A unit under test",
                                          .about = "",
                                          .ports = kOneInOneOut,
                                          .parameters = kOnlyThermoVersion,
                                          .reports = kLastRun};

}  // namespace morvelan::test
