#include "units/States.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "framework/CalculationFailure.h"
#include "framework/ReportFormat.h"
#include "numerics/BracketedRoot.h"

namespace morvelan {
namespace {

constexpr double kR = 8.31446261815324;  // [J/(mol K)]
constexpr double kAgreement = 1e-6;
constexpr double kRootTolerance = 1e-10;
constexpr int kMostTemperatures = 100;
constexpr int kMostWidenings = 12;
constexpr double kFirstStep = 0.02;              // of the temperature looked near
constexpr double kJump = 1e-8;                   // to either side of a temperature, relative
constexpr double kLowest = 1, kHighest = 10000;  // [K]

/// One looking for a temperature at which a material has an enthalpy.
class TemperatureSearch {
 public:
  TemperatureSearch(Flashable& searched, const StreamState& at, double wantedEnthalpy)
      : material(searched), state(at), wanted(wantedEnthalpy), scale(at.temperature) {}

  [[nodiscard]] bool Agrees(double enthalpy, double temperature) const {
    return std::abs(enthalpy - wanted) <= kAgreement * (std::abs(wanted) + kR * temperature);
  }
  /// The molar enthalpy [J/mol] after a flash at a temperature [K].
  double EnthalpyAt(double temperature) {
    state.temperature = temperature;
    material.FlashAtTemperature(state);
    return material.MolarProperty(property::kEnthalpy);
  }
  /// The temperature [K] where the enthalpy is or jumps over that wanted; nothing when there is none.
  [[nodiscard]] std::optional<double> Find() {
    const auto residual = [&](double x, double& value, std::string& failure) {
      try {
        value = (EnthalpyAt(x * scale) - wanted) / (kR * scale);
        return true;
      } catch (const Failure& refused) {
        failure = refused.error.description;
        return false;
      }
    };
    std::string why;
    double here = 0, there = 0, x = 1;
    if (!residual(1, here, why)) return std::nullopt;
    double step = kFirstStep;
    for (int i = 0; i < kMostWidenings; ++i, step *= 2) {
      const double next = std::clamp(1 + (here < 0 ? step : -step), kLowest / scale, kHighest / scale);
      if (residual(next, there, why) && here * there <= 0) {
        const auto root = numerics::SolveBracketed(residual, x, next, kRootTolerance, kMostTemperatures);
        return (root.success ? root.x : next) * scale;
      }
      x = next;
    }
    return std::nullopt;
  }

 private:
  Flashable& material;
  StreamState state;
  double wanted, scale;
};

}  // namespace

double BringToEnthalpy(Flashable& material, StreamState state, double enthalpy, StateSearches& searches) {
  TemperatureSearch search(material, state, enthalpy);
  std::string failure = "the temperature after the PH flash is wrong";
  try {
    material.FlashAtEnthalpy(state, enthalpy);
    const double temperature = material.Temperature();
    if (std::isfinite(temperature) && temperature > 0 &&
        search.Agrees(material.MolarProperty(property::kEnthalpy), temperature))
      return temperature;
  } catch (const Failure& refused) {
    failure = refused.error.description;
  }
  if (searches.count++ == 0) searches.firstFailure = failure;
  if (const auto found = search.Find()) {
    if (search.Agrees(search.EnthalpyAt(*found), *found)) return *found;
    const double below = search.EnthalpyAt(*found * (1 - kJump));
    const double above = search.EnthalpyAt(*found * (1 + kJump));
    if (below < enthalpy && enthalpy < above) {
      state.temperature = *found;
      material.FlashAtVaporFraction(state, (enthalpy - below) / (above - below));
      return *found;
    }
  }
  throw CalculationFailure("no state found at " + FormatNumber(state.pressure, 8) + " Pa and " +
                           FormatNumber(enthalpy, 8) + " J/mol: " + failure);
}

FluidState ReadState(Flashable& material, const StreamState& state) {
  const auto optional = [&](const Property& which) -> std::optional<double> {
    try {
      return material.MolarProperty(which);
    } catch (const Failure&) {
      return std::nullopt;
    }
  };
  return {.temperature = material.Temperature(),
          .pressure = state.pressure,
          .enthalpy = material.MolarProperty(property::kEnthalpy),
          .entropy = optional(property::kEntropy),
          .volume = optional(property::kVolume)};
}

}  // namespace morvelan
