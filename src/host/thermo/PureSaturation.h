#pragma once

#include <optional>

#include "host/thermo/Mixture.h"

namespace morvelan::host {

/// Saturation pressure [Pa] at T of a mixture of one compound; nothing at and above its critical temperature.
[[nodiscard]] std::optional<double> SaturationPressure(Mixture& mixture, double T);

/// Saturation temperature [K] at P of a mixture of one compound; nothing at and above its critical pressure.
[[nodiscard]] std::optional<double> SaturationTemperature(Mixture& mixture, double P);

}  // namespace morvelan::host
