#pragma once

#include <array>

namespace morvelan {

/// Exponents of metre, kilogram, second, ampere, kelvin, mole, candela and radian, and a ninth element that
/// is 1 for a quantity that is a difference (a pressure drop) and 0 otherwise.
using Dimensionality = std::array<float, 9>;

inline constexpr Dimensionality kDimensionless{};
inline constexpr Dimensionality kPressureDimension{-1, 1, -2, 0, 0, 0, 0, 0, 0};
inline constexpr Dimensionality kPressureDropDimension{-1, 1, -2, 0, 0, 0, 0, 0, 1};
inline constexpr Dimensionality kTemperatureDimension{0, 0, 0, 0, 1, 0, 0, 0, 0};
inline constexpr Dimensionality kPowerDimension{2, 1, -3, 0, 0, 0, 0, 0, 0};
inline constexpr Dimensionality kMolarFlowDimension{0, 0, -1, 0, 0, 1, 0, 0, 0};
inline constexpr Dimensionality kVolumeDimension{3, 0, 0, 0, 0, 0, 0, 0, 0};
inline constexpr Dimensionality kMassDimension{0, 1, 0, 0, 0, 0, 0, 0, 0};
inline constexpr Dimensionality kMassDensityDimension{-3, 1, 0, 0, 0, 0, 0, 0, 0};
inline constexpr Dimensionality kMolarEnergyDimension{2, 1, -2, 0, 0, -1, 0, 0, 0};
inline constexpr Dimensionality kSpecificEnergyDimension{2, 0, -2, 0, 0, 0, 0, 0, 0};

}  // namespace morvelan
