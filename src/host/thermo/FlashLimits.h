#pragma once

namespace morvelan::host {

// The ranges of T and P for flashes.
inline constexpr double kLowestTemperature = 1.0;      // [K]
inline constexpr double kHighestTemperature = 6000.0;  // [K], where the NASA-7 tables end
inline constexpr double kLowestPressure = 1e-30;       // [Pa], below the vapor pressure of cold heavy compounds
inline constexpr double kHighestPressure = 1e10;       // [Pa]

// ln K and ln of mole numbers are limited to it, so that exp() and its products with traces are normal numbers.
inline constexpr double kLnLimit = 600.0;

}  // namespace morvelan::host
