#include "host/thermo/PengRobinson.h"

#include <cmath>

namespace morvelan::host {
namespace {

constexpr double kSqrt2 = 1.4142135623730950488;

/// The cubic in Z = p w: Z^3 + c2 Z^2 + c1 Z + c0.
struct Cubic {
  double c2, c1, c0;
  [[nodiscard]] double Value(double Z) const { return ((Z + c2) * Z + c1) * Z + c0; }
  [[nodiscard]] double Slope(double Z) const { return (3.0 * Z + 2.0 * c2) * Z + c1; }
};

/// Newton's method from a start outside all roots, from where it converges to the nearest root without passing it.
double NewtonFromOutside(const Cubic& cubic, double Z) {
  constexpr int kMaxSteps = 200;
  const double side = cubic.Value(Z) > 0.0 ? 1.0 : -1.0;
  for (int i = 0; i < kMaxSteps; ++i) {
    const double value = cubic.Value(Z);
    const double slope = cubic.Slope(Z);
    if (value * side <= 0.0 || slope <= 0.0) break;
    const double next = Z - value / slope;
    if (std::abs(next - Z) <= 1e-16 * std::abs(Z)) return next;
    Z = next;
  }
  return Z;
}

}  // namespace

CubicVolumes SolveCubic(double p, double e) {
  const Cubic cubic{p - 1.0, p * (e - 2.0 - 3.0 * p), -p * p * (e - 1.0 - p)};
  const double discriminant = cubic.c2 * cubic.c2 - 3.0 * cubic.c1;
  const double inflection = -cubic.c2 / 3.0;
  const double offset = discriminant > 0.0 ? std::sqrt(discriminant) / 3.0 : 0.0;
  const bool hasLargeRoot = cubic.Value(inflection + offset) <= 0.0;
  CubicVolumes volumes;
  if (!hasLargeRoot) {
    // All volumes exceed the covolume: Z > p.
    volumes.vapor = volumes.liquid = NewtonFromOutside(cubic, p) / p;
    return volumes;
  }
  // The repulsive term alone gives Z <= 1 + p.
  const double Z = NewtonFromOutside(cubic, 1.0 + p);
  volumes.vapor = volumes.liquid = Z / p;
  // The other two roots have the sum s and the product m in w. Division by the largest root keeps their precision.
  const double m = (e - 1.0 - p) / Z;
  const double s = (e - 2.0 - 3.0 * p - m * p) / Z;
  const double squared = s * s - 4.0 * m;
  if (offset > 0.0 && squared >= 0.0 && s > 2.0) {
    const double w = 2.0 * m / (s + std::sqrt(squared));
    if (w > 1.0 && w < volumes.vapor) {
      volumes.liquid = w;
      volumes.isLoop = true;
    }
  }
  return volumes;
}

AttractionTerm::AttractionTerm(double w) {
  const double q = w * w + 2.0 * w - 1.0;
  f = std::log1p(2.0 * kSqrt2 / (w + 1.0 - kSqrt2)) / (2.0 * kSqrt2);
  df = -1.0 / q;
  ddf = 2.0 * (w + 1.0) / (q * q);
}

double ResidualGibbs(double w, double p, double e) {
  return p * w - 1.0 - std::log(p * (w - 1.0)) - e * AttractionTerm(w).f;
}

}  // namespace morvelan::host
