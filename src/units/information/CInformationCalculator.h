#pragma once

#include <memory>

#include "framework/BaseUnit.h"
#include "numerics/formula/CalculatorFormula.h"
#include "units/information/CalculatorVariables.h"

namespace morvelan {

/// Calculates the value of an outlet information stream from those of its inlets:
///
///     y = f(x_1, x_2, ...)      all values in SI units
///
/// The formula, the output variable and the input variables, each with its port, are the configuration. Units of
/// measure are those of the streams; the formula is not checked for them.
class CInformationCalculator final : public BaseUnit {
 public:
  CInformationCalculator();

  [[nodiscard]] bool ValidateUnit(std::string& message) override;
  void CalculateUnit(int compoundCount, OutletFlashSpec& outletFlashSpec) override;
  SaveOutcome SaveUnit(UnitWriter& writer) override;
  [[nodiscard]] std::function<void()> LoadUnit(UnitReader& reader, int version,
                                               const std::vector<ParameterRecord>& records) override;
  void SettingsChanged(const SettingsChange& change) override;

 private:
  void Report(const std::vector<double>& values, double result);

  TextSetting formula;
  VariableSetting outputVariable{{"output"}};
  VariablesSetting inputVariables;
  InformationPorts inputs;
  InformationPorts output;
  std::shared_ptr<const numerics::CalculatorFormula> checkedFormula;  // since the last validation
};

}  // namespace morvelan
