#pragma once

#include <string>
#include <string_view>

#include "framework/BaseUnit.h"
#include "framework/CUnitInfoPort.h"
#include "material/Names.h"
#include "units/HeatSource.h"

namespace morvelan {

/// The steps that units with material streams share.
class StreamUnit : public BaseUnit {
 public:
  using BaseUnit::BaseUnit;

  /// Numbers that specify the unit must be set.
  [[nodiscard]] bool ValidateUnit(std::string& message) override;

 protected:
  /// Whether a unit can do without a value of the parameter at a position of the list.
  [[nodiscard]] virtual bool MayBeUnset(std::size_t) const { return false; }

  /// The outlet pressure [Pa] after a pressure drop [Pa]: not below 1 Pa, with a warning. In quiet mode it is
  /// not below 100 Pa nor a tenth of the pressure drop, without a warning.
  [[nodiscard]] double PressureAfterDrop(double inletPressure, double pressureDrop) const;

  // Overall properties of a port's material. Throw Failure.

  /// Enthalpy flow [W] of an inlet, calculated on a copy of its material.
  [[nodiscard]] double EnthalpyFlow(CUnitPort& inlet);
  /// Enthalpy flow [W] of an outlet as it was flashed.
  [[nodiscard]] double FlashedEnthalpyFlow(CUnitPort& outlet);
  // The enthalpy below is `enthalpy` or `enthalpyF`, which includes the heat of formation.

  /// Molar enthalpy [J/mol] of an inlet, calculated on a copy of its material.
  [[nodiscard]] double MolarEnthalpy(CUnitPort& inlet, com::Name property = names::kEnthalpy);
  /// Molar enthalpy [J/mol] of an outlet as it was flashed.
  [[nodiscard]] double FlashedMolarEnthalpy(CUnitPort& outlet, com::Name property = names::kEnthalpy);
  /// Temperature [K] of an outlet as it was flashed; nothing when its material has none.
  [[nodiscard]] std::optional<double> StoredTemperature(CUnitPort& outlet);
  /// Writes the molar enthalpy [J/mol] at which a "PH" or "PHF" flash finds the outlet.
  void SetMolarEnthalpy(CUnitPort& outlet, double enthalpy, com::Name property = names::kEnthalpy);
  /// Writes the outlet's held state to its material and flashes it.
  void Flash(CUnitPort& outlet, com::Name flashType);
  /// Flashes the outlet at its pressure and a molar enthalpy [J/mol], and takes over the temperature found.
  /// `noTemperature` begins the text of a failure to find that out.
  void FlashAtEnthalpy(CUnitPort& outlet, double enthalpy, com::Name property = names::kEnthalpy,
                       const char* noTemperature = "");
  /// Takes over the temperature at which an outlet was flashed. A failure's text begins with `opening`.
  void TakeOverTemperature(CUnitPort& outlet, const std::string& opening);

  /// What the energy stream at an inlet port offers, with its temperatures in order; it is put in the report.
  /// `kind` names the kind of unit in warnings. Throws Failure, also when there is no port or no stream.
  [[nodiscard]] HeatSource ReadEnergyStream(CUnitInfoPort* port, std::string_view kind, const char* afterColon = " ");
  /// Logs a warning that begins with the kind and the quoted name of the unit.
  void WarnAs(std::string_view kind, const std::string& text) const;

  // The report "Last run". Nothing happens in quiet mode.
  void StartReport();
  void ReportLine(const std::string& text);
  void ReportParameter(const CParameter& parameter);
  /// Closes the report with parameters that are no specifications, in list order.
  void ReportOptionalParameters(std::span<const std::size_t> positions);

 private:
  void ReportEnergyStream(const HeatSource& source, const char* afterColon);
};

/// Begins the warning that the temperatures of an energy stream are left out of account.
inline constexpr const char* kNoRangeCheck = "Warning: cannot do range check on temperature: ";

/// Declares the "Pressure drop" [Pa] of a unit.
[[nodiscard]] inline ParameterDeclaration PressureDropParameter(const char* description) {
  return {.name = "Pressure drop",
          .description = description,
          .defaultValue = 0.0,
          .lowerBound = 0,
          .upperBound = 1e10,
          .dimensionality = kPressureDropDimension};
}

/// The name of the report that these units write.
inline constexpr const char* kLastRun[] = {"Last run"};

}  // namespace morvelan
