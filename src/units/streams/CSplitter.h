#pragma once

#include "framework/Configuration.h"
#include "units/StreamUnit.h"

namespace morvelan {

/// Divides a stream into two or more of the same composition, by fractions of its flow. The last outlet takes
/// what the others leave. The configuration's "numberOfOutlets" says how many there are.
class CSplitter final : public Configurable<StreamUnit> {
 public:
  CSplitter();

  [[nodiscard]] int ThermoVersionParameterIndex() const override;
  [[nodiscard]] bool ValidateParameterValue(const CParameter& parameter, std::string& message,
                                            const ParameterValue& value) const override;
  void InputsChanged() override;
  [[nodiscard]] std::function<void()> LoadUnit(UnitReader& reader, int version,
                                               const std::vector<ParameterRecord>& records) override;
  void CalculateUnit(int compoundCount, std::optional<com::Name>& outletFlashSpec) override;

 protected:
  void CreateFace() override;
  [[nodiscard]] Json Configuration() const override;
  void Configure(const Json& configuration) override;

 private:
  /// Prepares the change to another number of outlets, which then can't fail.
  [[nodiscard]] std::function<void()> PlanOutlets(std::int32_t count);
  /// Split factors for another number of outlets: a new outlet gets nothing yet, and what a removed one had
  /// goes to the last.
  [[nodiscard]] std::vector<double> ResizedSplitFactors(std::size_t outletCount);
  /// The outlets' flows [mol/s].
  [[nodiscard]] std::vector<double> SplitFlow(double inletFlow);
  [[nodiscard]] bool IsFedWithOneCompound();

  double pressureDrop = 0;  // [Pa]
};

}  // namespace morvelan
