#include "numerics/formula/Power.h"

#include <cmath>

namespace morvelan::numerics {
namespace {

/// The halves of a double, whose products are exact (Dekker 1971).
struct Halves {
  explicit Halves(double x) {
    const double scaled = 0x1.0000002p27 * x;
    high = scaled - (scaled - x);
    low = x - high;
  }
  double high;
  double low;
};

}  // namespace

double ProductPower(double base, int exponent) {
  // Within these limits neither a product nor its error leaves the range of numbers.
  const double size = std::fabs(base);
  if (!(size > 0x1p-80 && size < 0x1p80)) return std::pow(base, exponent);
  const Halves factor(base);
  double product = base, error = 0;
  for (int i = 1; i < exponent; ++i) {
    const Halves halves(product);
    product *= base;
    const double rounding =
        ((halves.high * factor.high - product) + halves.high * factor.low + halves.low * factor.high) +
        halves.low * factor.low;
    error = error * base + rounding;
  }
  return product + error;
}

double Power(double base, double exponent) {
  if (exponent == 2) return Square(base);
  if (exponent >= kSmallestProductPower && exponent <= kLargestProductPower && exponent == std::floor(exponent))
    return ProductPower(base, static_cast<int>(exponent));
  return std::pow(base, exponent);
}

}  // namespace morvelan::numerics
