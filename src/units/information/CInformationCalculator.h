#pragma once

#include <memory>

#include "framework/CUnitInfoPort.h"
#include "framework/Configuration.h"
#include "numerics/formula/CalculatorFormula.h"
#include "units/information/CalculatorVariables.h"

namespace morvelan {

/// Calculates the value of an outlet information stream from those of its inlets:
///
///     y = f(x_1, x_2, ...)      all values in SI units
///
/// The formula, the output variable and the input variables, each with its port, are the configuration. Units
/// of measure are those of the streams; the formula is not checked for them.
class CInformationCalculator final : public Configurable<BaseUnit> {
 public:
  CInformationCalculator();

  [[nodiscard]] int ThermoVersionParameterIndex() const override { return -1; }
  [[nodiscard]] bool ValidateUnit(std::string& message) override;
  void CalculateUnit(int compoundCount, std::optional<com::Name>& outletFlashSpec) override;
  HRESULT SaveUnit(UnitWriter& writer) override;
  [[nodiscard]] std::function<void()> LoadUnit(UnitReader& reader, int version,
                                               const std::vector<ParameterRecord>& records) override;

 protected:
  void CreateObjects() override;
  [[nodiscard]] Json Configuration() const override;
  void Configure(const Json& configuration) override;

 private:
  /// Prepares the change to other variables and another formula, which then can't fail.
  [[nodiscard]] std::function<void()> Plan(CalculatorSetup planned);
  struct Renaming {
    com::Ref<CUnitPort> port;
    std::string portName;
    std::string itemName;
  };
  struct PlannedPorts {
    PortList ports;
    std::vector<Renaming> renamings;
  };
  /// The ports of variables: those of the former variables that they continue, and new ones.
  [[nodiscard]] PlannedPorts PlanPorts(const PortList& ports, const std::vector<CalculatorVariable>& former,
                                       CapePortDirection direction, const std::vector<CalculatorVariable>& variables);
  [[nodiscard]] CUnitInfoPort& InletPort(std::size_t i) { return dynamic_cast<CUnitInfoPort&>(Inlet(i)); }
  [[nodiscard]] double ReadInlet(std::size_t i);
  void Report(const std::vector<double>& values, double result);

  CalculatorSetup setup;
  std::shared_ptr<const numerics::CalculatorFormula> checkedFormula;  // since the last validation
};

}  // namespace morvelan
