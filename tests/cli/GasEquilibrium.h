#pragma once

#include <string>
#include <vector>

#include "tests/cli/IdealGases.h"

namespace morvelan::test {

struct GasReaction {
  std::string name;
  Amounts coefficients;  // negative for reactants
};

/// Logarithm of the constant of a reaction of ideal gases whose activities are y P / 1 bar.
[[nodiscard]] double LnGasConstant(const GasReaction& reaction, double T);
/// Logarithm of the product of these activities, each to the power of its coefficient.
[[nodiscard]] double LnGasQuotient(const GasReaction& reaction, const Amounts& flows, double P);

/// What a feed of ideal gases becomes at T and P: the least Gibbs energy over the extents of the reactions,
/// by Newton's method with the exact second derivatives. Each reaction must be possible with the feed, or
/// with what those before it make of it.
[[nodiscard]] Amounts Equilibrated(const Amounts& feed, const std::vector<GasReaction>& reactions, double T, double P);

struct GasMixture {
  double T;  // [K]
  Amounts flows;
};

/// The same without heat: the temperature too follows, from the enthalpy of the feed, which is at feedT.
[[nodiscard]] GasMixture EquilibratedAdiabatically(const Amounts& feed, const std::vector<GasReaction>& reactions,
                                                   double feedT, double P);

}  // namespace morvelan::test
