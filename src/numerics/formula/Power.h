#pragma once

namespace morvelan::numerics {

/// The exponents, beside 2, for which a power is a product.
inline constexpr int kSmallestProductPower = 3;
inline constexpr int kLargestProductPower = 10;

[[nodiscard]] inline double Square(double x) { return x * x; }

/// The power with an exponent of that range, which is faster than the general one and as accurate: the
/// products' rounding errors are followed (S. Graillat, Accurate floating-point product and exponentiation,
/// IEEE Trans. Comput. 58, 994, 2009, algorithm CompLinPower).
[[nodiscard]] double ProductPower(double base, int exponent);

/// The operator "^".
[[nodiscard]] double Power(double base, double exponent);

}  // namespace morvelan::numerics
