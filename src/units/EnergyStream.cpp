// How units read the energy stream that heats or cools them.

#include <cmath>
#include <utility>

#include "framework/ReportFormat.h"
#include "material/MissingValue.h"
#include "material/Reading.h"
#include "units/StreamUnit.h"

namespace morvelan {
namespace {

constexpr std::string_view kScope = "Calculate";
constexpr std::string_view kInterface = "ICapeUnit";

enum Item : std::size_t { kWork, kTemperatureLow, kTemperatureHigh };

double ReadHeat(CUnitInfoPort& port) {
  return ForwardError(kScope, kInterface, [&] {
    const auto explain = [](const std::string& why) { return Failure("heat flow of the energy stream: " + why); };
    const double heat = material::ReadOr([&] { return com::ReadDouble(port.ReadInformation(kWork).Get()); }, explain);
    if (IsMissing(heat)) throw explain("value is not set");
    if (!std::isfinite(heat)) throw explain("value is infinite");
    return heat;
  });
}

std::optional<double> ReadTemperature(CUnitInfoPort& port, std::size_t item) {
  if (!port.IsMatched(item)) return std::nullopt;
  const com::Variant value = port.ReadInformation(item);
  if (com::Borrow(value.Get()).vt == VT_EMPTY) return std::nullopt;
  const double temperature = material::ReadOr([&] { return com::ReadDouble(value.Get()); },
                                              [](const std::string& why) { return Failure(why); });
  return IsMissing(temperature) ? std::nullopt : std::optional(temperature);
}

}  // namespace

HeatSource StreamUnit::ReadEnergyStream(CUnitInfoPort* port, std::string_view kind, const char* afterColon) {
  if (!port || !port->IsConnected())
    throw Failure(UnitError{"Not connected", "Inlet energy port is not connected", kScope, kInterface});
  const auto temperature = [&](Item item) -> std::optional<double> {
    try {
      return ReadTemperature(*port, item);
    } catch (const Failure& failure) {
      Warn(kNoRangeCheck + failure.error.description);
      return std::nullopt;
    }
  };
  HeatSource source{ReadHeat(*port), temperature(kTemperatureLow), temperature(kTemperatureHigh)};
  if (source.lowTemperature && source.highTemperature && *source.lowTemperature > *source.highTemperature) {
    WarnAs(kind, " warning: Tlow and Thigh are reversed at inlet heat stream; reversing values");
    std::swap(source.lowTemperature, source.highTemperature);
  }
  ReportEnergyStream(source, afterColon);
  return source;
}

void StreamUnit::ReportEnergyStream(const HeatSource& source, const char* afterColon) {
  const auto text = [](std::optional<double> temperature) {
    return FormatValue(temperature.value_or(kMissingValue), kTemperatureDimension);
  };
  ReportLine(std::string("Heat duty from inlet energy port:") + afterColon + FormatValue(source.duty, kPowerDimension) +
             (source.lowTemperature ? " between " + text(source.lowTemperature) + " and " + text(source.highTemperature)
                                    : " (no temperature range for heat transfer)"));
}

}  // namespace morvelan
