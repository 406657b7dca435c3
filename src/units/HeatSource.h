#pragma once

#include <optional>

namespace morvelan {

/// Heat [W] offered to a unit, and the temperatures [K] between which an energy stream offers it.
struct HeatSource {
  double duty = 0;
  std::optional<double> lowTemperature = {};
  std::optional<double> highTemperature = {};
};

}  // namespace morvelan
