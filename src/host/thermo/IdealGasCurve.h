#pragma once

#include <span>
#include <vector>

#include "host/thermo/Compound.h"

namespace morvelan::host {

/// Caloric properties of a pure ideal gas, divided by R, at the standard pressure of 1 bar.
struct IdealGasValues {
  double enthalpy = 0.0;      // h/R [K], zero at 298.15 K
  double entropy = 0.0;       // s/R [1], zero at 298.15 K
  double heatCapacity = 0.0;  // cp/R [1]
};

/// Heat capacity, enthalpy and entropy over all temperatures from NASA-7 ranges.
///
/// The heat capacity is that of the polynomials. Enthalpy and entropy are its integrals from 298.15 K, so that they
/// have no steps where ranges meet (the tables' own constants leave steps of the size of rounding errors). Outside the
/// tabulated temperatures the heat capacity follows its tangent for 100 K, but not below 5/2 R, the lowest value of a
/// gas, and is constant beyond that. A polynomial outside its range would soon become negative.
class IdealGasCurve {
 public:
  explicit IdealGasCurve(std::span<const Nasa7Range> ranges);  // ascending, at least one

  /// Values at T [K] > 0.
  [[nodiscard]] IdealGasValues At(double T) const;

 private:
  std::vector<Nasa7Range> ranges;  // ascending, covering all T > 0
};

}  // namespace morvelan::host
