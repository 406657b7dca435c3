#pragma once

namespace morvelan::host {

// The ranges that flashes search and accept.
inline constexpr double kLowestTemperature = 1.0;      // [K]
inline constexpr double kHighestTemperature = 6000.0;  // [K], where the NASA-7 tables end
inline constexpr double kLowestPressure = 1e-30;       // [Pa], below the vapour pressure of cold heavy compounds
inline constexpr double kHighestPressure = 1e10;       // [Pa]

}  // namespace morvelan::host
