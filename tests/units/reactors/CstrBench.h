#pragma once

#include "tests/units/reactors/ReactorBench.h"

namespace morvelan::test {

/// First order: `rate` [mol/(m3 s)] or [mol/(kg s)] of the pure compound, which is the feed's at `compound`.
inline std::function<double(const FakeConditions&)> FirstOrder(double rate, std::size_t compound = 0) {
  return [=](const FakeConditions& tank) { return rate * tank.fractions.at(compound); };
}

/// Homogeneous K..., heterogeneous H... and reactions at equilibrium E..., from A to B (1) and from B to C
/// (2).
inline FakePackageState CstrPackage() {
  FakePackageState package = {
      .reactions = {AtRate("K1", {"A", "B"}, {-1, 1}, FirstOrder(1)),
                    AtRate("K2", {"B", "C"}, {-1, 1}, FirstOrder(3, 1)),
                    AtRate("H1", {"A", "B"}, {-1, 1}, FirstOrder(0.5), CAPE_HETEROGENEOUS),
                    AtRate("H2", {"B", "C"}, {-1, 1}, FirstOrder(0.25, 1), CAPE_HETEROGENEOUS),
                    AtEquilibrium("E1", {"A", "B"}, {-1, 1}, 4), AtEquilibrium("E2", {"B", "C"}, {-1, 1}, 1),
                    AtEquilibrium("D", {"A", "D"}, {-1, 1}, 1), AtEquilibrium("L", {"B", "C"}, {-1, 1}, 1)}};
  package.reactions.back().phase = "Liquid";
  return package;
}

/// An isothermal tank at 300 K that vapour fills, to the closest tolerance.
struct CstrBench : ReactorBench {
  explicit CstrBench(bool thermo11 = true, FakePackageState package = CstrPackage(), FakeState feed = ReactorFeed())
      : ReactorBench(thermo11, "CSTR", std::move(package), std::move(feed)) {
    Put("Heat duty type", "Isothermal");
    Put("Phase", "Vapor");
    Put("Tolerance", 1e-10);
  }
};

}  // namespace morvelan::test
