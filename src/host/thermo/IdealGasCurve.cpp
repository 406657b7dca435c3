#include "host/thermo/IdealGasCurve.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace morvelan::host {
namespace {

constexpr double kTangentLength = 100.0;    // [K]
constexpr double kLeastHeatCapacity = 2.5;  // cp/R of a gas without rotation and vibration

double HeatCapacity(const Nasa7Range& range, double T) {
  const auto& a = range.a;
  return a[0] + T * (a[1] + T * (a[2] + T * (a[3] + T * a[4])));
}

double HeatCapacitySlope(const Nasa7Range& range, double T) {
  const auto& a = range.a;
  return a[1] + T * (2.0 * a[2] + T * (3.0 * a[3] + T * 4.0 * a[4]));
}

IdealGasValues Evaluate(const Nasa7Range& range, double T, double lnT) {
  const auto& a = range.a;
  IdealGasValues values;
  values.heatCapacity = HeatCapacity(range, T);
  values.enthalpy = a[5] + T * (a[0] + T * (a[1] / 2.0 + T * (a[2] / 3.0 + T * (a[3] / 4.0 + T * a[4] / 5.0))));
  values.entropy = a[6] + a[0] * lnT + T * (a[1] + T * (a[2] / 2.0 + T * (a[3] / 3.0 + T * a[4] / 4.0)));
  return values;
}

/// Sets the integration constants of a range so that it has the given enthalpy and entropy at T.
void Anchor(Nasa7Range& range, double T, const IdealGasValues& target) {
  range.a[5] = range.a[6] = 0.0;
  const IdealGasValues values = Evaluate(range, T, std::log(T));
  range.a[5] = target.enthalpy - values.enthalpy;
  range.a[6] = target.entropy - values.entropy;
}

/// Where the tangent that leaves the curve at T towards T + length ends.
double TangentEnd(double T, double length, double heatCapacity, double slope) {
  double end = T + length;
  if (heatCapacity + slope * length < kLeastHeatCapacity) {
    const double reach = (kLeastHeatCapacity - heatCapacity) / slope;
    end = heatCapacity > kLeastHeatCapacity ? T + reach : T;
  }
  return end;
}

}  // namespace

IdealGasCurve::IdealGasCurve(std::span<const Nasa7Range> given) {
  const Nasa7Range& first = given.front();
  const Nasa7Range& last = given.back();
  const auto line = [](double from, double to, double T, double heatCapacity, double slope) {
    return Nasa7Range{from, to, {heatCapacity - slope * T, slope, 0.0, 0.0, 0.0, 0.0, 0.0}};
  };

  const double lowest = first.lowest;
  const double lowCp = HeatCapacity(first, lowest);
  const double lowSlope = HeatCapacitySlope(first, lowest);
  const double lowEnd = TangentEnd(lowest, -std::min(kTangentLength, 0.5 * lowest), lowCp, lowSlope);
  ranges.push_back(line(0.0, lowEnd, lowEnd, lowCp + lowSlope * (lowEnd - lowest), 0.0));
  ranges.push_back(line(lowEnd, lowest, lowest, lowCp, lowSlope));
  ranges.insert(ranges.end(), given.begin(), given.end());
  const double highest = last.highest;
  const double highCp = HeatCapacity(last, highest);
  const double highSlope = HeatCapacitySlope(last, highest);
  const double highEnd = TangentEnd(highest, kTangentLength, highCp, highSlope);
  ranges.push_back(line(highest, highEnd, highest, highCp, highSlope));
  ranges.push_back(
      line(highEnd, std::numeric_limits<double>::infinity(), highEnd, highCp + highSlope * (highEnd - highest), 0.0));

  const auto reference = std::find_if(ranges.begin(), ranges.end(),
                                      [](const Nasa7Range& range) { return range.highest >= kReferenceTemperature; });
  Anchor(*reference, kReferenceTemperature, {});
  for (auto range = reference; range + 1 != ranges.end(); ++range)
    Anchor(*(range + 1), range->highest, Evaluate(*range, range->highest, std::log(range->highest)));
  for (auto range = reference; range != ranges.begin(); --range)
    Anchor(*(range - 1), range->lowest, Evaluate(*range, range->lowest, std::log(range->lowest)));
}

IdealGasValues IdealGasCurve::At(double T) const {
  auto range = ranges.begin();
  while (T > range->highest) ++range;
  return Evaluate(*range, T, std::log(T));
}

}  // namespace morvelan::host
