#pragma once

#include "framework/Configuration.h"
#include "units/StreamUnit.h"

namespace morvelan {

/// Mixes two or more streams adiabatically into one, at the lowest inlet pressure less a pressure drop. The
/// configuration's "numberOfInlets" says how many.
class CMixer final : public Configurable<StreamUnit> {
 public:
  CMixer();

  [[nodiscard]] int ThermoVersionParameterIndex() const override;
  void InputsChanged() override;
  [[nodiscard]] std::function<void()> LoadUnit(UnitReader& reader, int version,
                                               const std::vector<ParameterRecord>& records) override;
  void CalculateUnit(int compoundCount, std::optional<com::Name>& outletFlashSpec) override;

 protected:
  void CreateFace() override;
  [[nodiscard]] Json Configuration() const override;
  void Configure(const Json& configuration) override;

 private:
  /// What all inlets bring.
  struct Feed {
    double lowestPressure;              // [Pa]
    double flow;                        // [mol/s]
    double enthalpyFlow;                // [W]
    std::vector<double> compoundFlows;  // [mol/s], one per compound
  };

  /// Prepares the change to another number of inlets, which then can't fail.
  [[nodiscard]] std::function<void()> PlanInlets(std::int32_t count);
  [[nodiscard]] Feed CollectFeed(std::size_t compoundCount);

  double pressureDrop = 0;  // [Pa]
};

}  // namespace morvelan
