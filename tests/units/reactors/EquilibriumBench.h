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

/// With the reactions "R1", ... and isothermal at 300 K, to the closest tolerance.
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

}  // namespace morvelan::test
