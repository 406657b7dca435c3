#pragma once

#include "framework/BaseUnit.h"

namespace morvelan {

/// The steps that units with material streams share.
class StreamUnit : public BaseUnit {
 public:
  using BaseUnit::BaseUnit;

  /// Numbers that specify the unit must be set.
  [[nodiscard]] bool ValidateUnit(std::string& message) override;

 protected:
  /// The outlet pressure [Pa] after a pressure drop [Pa]: not below 1 Pa, with a warning. In quiet mode it is
  /// not below 100 Pa nor a tenth of the pressure drop, without a warning.
  [[nodiscard]] double PressureAfterDrop(double inletPressure, double pressureDrop) const;

  // Overall properties of a port's material. Throw Failure.

  /// Enthalpy flow [W] of an inlet, calculated on a copy of its material.
  [[nodiscard]] double EnthalpyFlow(CUnitPort& inlet);
  /// Enthalpy flow [W] of an outlet as it was flashed.
  [[nodiscard]] double FlashedEnthalpyFlow(CUnitPort& outlet);
  /// Molar enthalpy [J/mol] of an inlet, calculated on a copy of its material.
  [[nodiscard]] double MolarEnthalpy(CUnitPort& inlet);
  /// Temperature [K] of an outlet as it was flashed; nothing when its material has none.
  [[nodiscard]] std::optional<double> StoredTemperature(CUnitPort& outlet);
  /// Writes the molar enthalpy [J/mol] at which a "PH" flash finds the outlet.
  void SetMolarEnthalpy(CUnitPort& outlet, double enthalpy);
  /// Writes the outlet's held state to its material and flashes it.
  void Flash(CUnitPort& outlet, com::Name flashType);

  // The report "Last run". Nothing happens in quiet mode.
  void StartReport();
  void ReportLine(const std::string& text);
  void ReportParameter(const CParameter& parameter);
  /// Closes the report with parameters that are no specifications, in list order.
  void ReportOptionalParameters(std::span<const std::size_t> positions);
};

/// The name of the report that these units write.
inline constexpr const char* kLastRun[] = {"Last run"};

}  // namespace morvelan
