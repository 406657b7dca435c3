#include "units/EnergyStream.h"

#include <utility>

#include "framework/CalculationFailure.h"
#include "framework/ReportFormat.h"

namespace morvelan {

HeatSource ReadHeat(const EnergyPort& port, Journal& journal, const char* afterColon) {
  if (!port.IsInlet() || !port.IsConnected())
    throw CalculationFailure("Not connected", "Inlet energy port is not connected");
  const auto temperature = [&](EnergyPort::End end) -> std::optional<double> {
    try {
      return port.ReadTemperature(end);
    } catch (const Failure& failure) {
      journal.Warn(kNoRangeCheck + failure.error.description);
      return std::nullopt;
    }
  };
  HeatSource source{port.ReadHeat(), temperature(EnergyPort::End::kLow), temperature(EnergyPort::End::kHigh)};
  if (source.lowTemperature && source.highTemperature && *source.lowTemperature > *source.highTemperature) {
    journal.WarnNamed(" warning: Tlow and Thigh are reversed at inlet heat stream; reversing values");
    std::swap(source.lowTemperature, source.highTemperature);
  }
  const auto text = [](std::optional<double> value) {
    return FormatValue(value.value_or(kMissingValue), kTemperatureDimension);
  };
  journal.Line(
      std::string("Heat duty from inlet energy port:") + afterColon + FormatValue(source.duty, kPowerDimension) +
      (source.lowTemperature ? " between " + text(source.lowTemperature) + " and " + text(source.highTemperature)
                             : " (no temperature range for heat transfer)"));
  return source;
}

}  // namespace morvelan
