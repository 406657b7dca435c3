#include "units/StreamUnit.h"

#include <algorithm>

#include "framework/UnitMaterials.h"

namespace morvelan {
namespace {

constexpr double kLowestPressure = 1;              // [Pa]
constexpr double kLowestSimplifiedPressure = 100;  // [Pa]
constexpr double kSimplifiedDropFraction = 0.1;

}  // namespace

bool StreamUnit::ValidateUnit(std::string& message) { return HasMaterials(message) && HasNumbers(message); }

bool StreamUnit::HasMaterials(std::string& message) const {
  const auto isOpen = [](const auto& port) { return port->Type() == CAPE_MATERIAL && !port->IsConnected(); };
  if (std::ranges::any_of(declare.ports.All(), isOpen)) message = "not all material ports are connected";
  return message.empty();
}

bool StreamUnit::HasNumbers(std::string& message) const {
  if (const CParameter* unset = declare.parameters.FindUnset())
    message = "parameter " + unset->ComponentName() + " has no value";
  return message.empty();
}

void StreamUnit::CalculateUnit(int, OutletFlashSpec& outletFlashSpec) {
  outletFlashSpec.reset();  // each outlet is left in a state of its own
  journal.Start();
  Solve();
  UnitMaterials(declare.ports, checkCompounds).FlashLeftOutlets();
}

double StreamUnit::PressureAfterDrop(double inletPressure, double pressureDrop) const {
  const double pressure = inletPressure - pressureDrop;
  if (journal.IsQuiet()) return std::max({kSimplifiedDropFraction * pressureDrop, kLowestSimplifiedPressure, pressure});
  if (pressure > kLowestPressure) return pressure;
  journal.Warn(ComponentName() + " warning: limiting outlet pressure to 1 Pa");
  return kLowestPressure;
}

}  // namespace morvelan
