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
  const double duty = port.ReadHeat();
  std::optional<double> low = temperature(EnergyPort::End::kLow), high = temperature(EnergyPort::End::kHigh);
  if (low && high && *low > *high) {
    journal.WarnNamed(" warning: Tlow and Thigh are reversed at inlet heat stream; reversing values");
    std::swap(low, high);
  }
  const auto text = [](std::optional<double> value) {
    return FormatValue(value.value_or(kMissingValue), kTemperatureDimension);
  };
  journal.Line(std::string("Heat duty from inlet energy port:") + afterColon + FormatValue(duty, kPowerDimension) +
               (low ? " between " + text(low) + " and " + text(high) : " (no temperature range for heat transfer)"));
  return {duty, low, high};
}

}  // namespace morvelan
