#pragma once

#include <vector>

namespace morvelan::host {

enum class PhaseKind { kVapor, kLiquid };

/// A phase of an equilibrium.
struct Phase {
  PhaseKind kind = PhaseKind::kVapor;
  double fraction = 0.0;  // moles of the phase per mole of mixture
  std::vector<double> x;  // mole fractions, one per compound
};

/// Result of a flash: one phase, or vapor and liquid in this order.
struct Equilibrium {
  double T = 0.0;  // [K]
  double P = 0.0;  // [Pa]
  std::vector<Phase> phases;

  [[nodiscard]] double VaporFraction() const {
    return phases.front().kind == PhaseKind::kVapor ? phases.front().fraction : 0.0;
  }
};

}  // namespace morvelan::host
