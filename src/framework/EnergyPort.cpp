#include "framework/EnergyPort.h"

#include <cmath>

#include "framework/CalculationFailure.h"
#include "material/Reading.h"

namespace morvelan {
namespace {

enum Item : std::size_t { kWork, kTemperatureLow, kTemperatureHigh };

}  // namespace

double EnergyPort::ReadHeat() const {
  return InCalculation([&] {
    const auto explain = [](const std::string& why) { return Failure("heat flow of the energy stream: " + why); };
    const double heat = material::ReadOr([&] { return com::ReadDouble(port->ReadInformation(kWork).Get()); }, explain);
    if (IsMissing(heat)) throw explain("value is not set");
    if (!std::isfinite(heat)) throw explain("value is infinite");
    return heat;
  });
}

std::optional<double> EnergyPort::ReadTemperature(End end) const {
  const Item item = end == End::kLow ? kTemperatureLow : kTemperatureHigh;
  if (!port->IsMatched(item)) return std::nullopt;
  const com::Variant value = port->ReadInformation(item);
  if (com::Borrow(value.Get()).vt == VT_EMPTY) return std::nullopt;
  const double temperature = material::ReadOr([&] { return com::ReadDouble(value.Get()); },
                                              [](const std::string& why) { return Failure(why); });
  return IsMissing(temperature) ? std::nullopt : std::optional(temperature);
}

void EnergyPort::WriteHeat(double heat) {
  if (port) InCalculation([&] { port->WriteInformation(kWork, heat); });
}

}  // namespace morvelan
