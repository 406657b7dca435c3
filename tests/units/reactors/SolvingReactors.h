#pragma once

#include "tests/units/reactors/ReactorBench.h"

namespace morvelan::test {

inline FakeReaction In(const char* phase, FakeReaction reaction) {
  reaction.phase = phase;
  return reaction;
}

/// What the tests of the EquilibriumReactor choose from.
inline FakePackageState EquilibriumPackage() {
  const auto aToB = [](const char* id) { return AtEquilibrium(id, {"A", "B"}, {-1, 1}, 4); };
  const auto twice = [](const char* id) { return AtEquilibrium(id, {"A", "B"}, {-2, 2}, 16); };
  return {.reactions = {aToB("R1"), AtEquilibrium("R2", {"B", "C"}, {-1, 1}, 0.5),
                        AtEquilibrium("R3", {"A", "C"}, {-1, 1}, 2), In("vapor", twice("R4")), In("Liquid", aToB("L1")),
                        In("Liquid", AtEquilibrium("L2", {"B", "C"}, {-1, 1}, 1)), In("Liquid", twice("L3")),
                        AtEquilibrium("D", {"A", "D"}, {-1, 1}, 1),
                        AtRate("K", {"A", "B"}, {-1, 1}, [](const FakeConditions&) { return 1.0; })}};
}

/// An EquilibriumReactor with the reaction "R1", isothermal at 300 K, to the closest tolerance.
struct EquilibriumBench : ReactorBench {
  explicit EquilibriumBench(bool thermo11 = true, FakePackageState package = EquilibriumPackage(),
                            FakeState feed = ReactorFeed())
      : ReactorBench(thermo11, "EquilibriumReactor", std::move(package), std::move(feed)) {
    Put("Heat duty type", "Isothermal");
    Put("Tolerance", 1e-10);
    Select(R"("R1")");
  }
  /// Of the one reaction "R1".
  EquilibriumBench(bool thermo11, FakeReaction reaction, FakeState feed = ReactorFeed())
      : EquilibriumBench(thermo11, FakePackageState{.reactions = {std::move(reaction)}}, std::move(feed)) {}
};

/// First order: `rate` [mol/(m3 s)] or [mol/(kg s)] of the pure compound, which is the feed's at `compound`.
inline std::function<double(const FakeConditions&)> FirstOrder(double rate, std::size_t compound = 0) {
  return [=](const FakeConditions& tank) { return rate * tank.fractions.at(compound); };
}

/// Homogeneous K..., heterogeneous H... and reactions at equilibrium E..., from A to B (1) and from B to C (2).
inline FakePackageState CstrPackage() {
  return {.reactions = {
              AtRate("K1", {"A", "B"}, {-1, 1}, FirstOrder(1)), AtRate("K2", {"B", "C"}, {-1, 1}, FirstOrder(3, 1)),
              AtRate("H1", {"A", "B"}, {-1, 1}, FirstOrder(0.5), CAPE_HETEROGENEOUS),
              AtRate("H2", {"B", "C"}, {-1, 1}, FirstOrder(0.25, 1), CAPE_HETEROGENEOUS),
              AtEquilibrium("E1", {"A", "B"}, {-1, 1}, 4), AtEquilibrium("E2", {"B", "C"}, {-1, 1}, 1),
              AtEquilibrium("D", {"A", "D"}, {-1, 1}, 1), In("Liquid", AtEquilibrium("L", {"B", "C"}, {-1, 1}, 1))}};
}

/// An isothermal tank at 300 K that vapor fills, to the closest tolerance.
struct CstrBench : ReactorBench {
  explicit CstrBench(bool thermo11 = true, FakePackageState package = CstrPackage(), FakeState feed = ReactorFeed())
      : ReactorBench(thermo11, "CSTR", std::move(package), std::move(feed)) {
    Put("Heat duty type", "Isothermal");
    Put("Phase", "Vapor");
    Put("Tolerance", 1e-10);
  }
};

/// Gives a reactor the reactions "R1", A + C = B, and "R2", A2 + C = B, and a feed of A and A2 alone: they exchange A
/// for A2 through compounds of which there are none.
inline void Exchange(ReactorBench& bench) {
  bench.package->state.reactions = {AtEquilibrium("R1", {"A", "C", "B"}, {-1, -1, 1}, 1),
                                    AtEquilibrium("R2", {"A2", "C", "B"}, {-1, -1, 1}, 1)};
  for (auto& [port, material] : bench.materials) {
    material->state.compounds = {"A", "A2", "B", "C"};
    material->state.casNumbers = {"1", "2", "3", "4"};
    material->state.molecularWeights = {10, 10, 20, 10};
    material->state.formationEnthalpies = {0, 0, 0, 0};
  }
  bench.At("Inlet").fractions = {0.5, 0.5, 0, 0};
  bench.Select(R"("R1", "R2")");
}

/// A reactor of this class with reactions that it can calculate.
inline std::unique_ptr<ReactorBench> MakeReactor(const std::string& unit, bool thermo11 = true) {
  if (unit == "EquilibriumReactor") return std::make_unique<EquilibriumBench>(thermo11);
  if (unit == "CSTR") {
    auto bench = std::make_unique<CstrBench>(thermo11);
    bench->Select(R"("E1")");
    return bench;
  }
  auto bench = std::make_unique<ReactorBench>(thermo11);
  bench->Select(R"("A to B")", R"("A")", "0.5");
  return bench;
}

inline constexpr const char* kReactors[] = {"FixedConversionReactor", "EquilibriumReactor", "CSTR"};

}  // namespace morvelan::test
