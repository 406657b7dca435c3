#include "tests/cli/GasEquilibrium.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace morvelan::test {
namespace {

using Vector = std::vector<double>;

double Total(const Amounts& flows) {
  double sum = 0;
  for (const auto& [compound, flow] : flows) sum += flow;
  return sum;
}

double MolesMade(const GasReaction& reaction) { return Total(reaction.coefficients); }

void Perform(const GasReaction& reaction, double extent, Amounts& flows) {
  for (const auto& [compound, nu] : reaction.coefficients) flows[compound] += nu * extent;
}

/// Performs each reaction to the middle of the extents it may take, until no compound is left at zero.
void MoveInside(const std::vector<GasReaction>& reactions, Amounts& flows) {
  for (std::size_t round = 0; round <= reactions.size(); ++round)
    for (const GasReaction& reaction : reactions) {
      double lowest = -std::numeric_limits<double>::infinity(), highest = -lowest;
      for (const auto& [compound, nu] : reaction.coefficients)
        if (nu > 0)
          lowest = std::max(lowest, -flows[compound] / nu);
        else
          highest = std::min(highest, flows[compound] / -nu);
      Perform(reaction, 0.5 * (lowest + highest), flows);
    }
}

/// d2G/(RT) by the extents of two reactions.
double SecondDerivative(const GasReaction& a, const GasReaction& b, const Amounts& flows) {
  double sum = -MolesMade(a) * MolesMade(b) / Total(flows);
  for (const auto& [compound, nu] : a.coefficients)
    if (const auto other = b.coefficients.find(compound); other != b.coefficients.end())
      sum += nu * other->second / flows.at(compound);
  return sum;
}

/// Elimination without pivots, which a positive definite matrix does not need.
Vector Solved(std::vector<Vector> matrix, Vector right) {
  const std::size_t n = right.size();
  for (std::size_t k = 0; k < n; ++k)
    for (std::size_t i = k + 1; i < n; ++i) {
      const double factor = matrix[i][k] / matrix[k][k];
      for (std::size_t j = k; j < n; ++j) matrix[i][j] -= factor * matrix[k][j];
      right[i] -= factor * right[k];
    }
  for (std::size_t k = n; k-- > 0;) {
    for (std::size_t j = k + 1; j < n; ++j) right[k] -= matrix[k][j] * right[j];
    right[k] /= matrix[k][k];
  }
  return right;
}

/// By how much the flows change in a step of Newton's method towards the least Gibbs energy.
Amounts Step(const std::vector<GasReaction>& reactions, const Vector& lnConstants, const Amounts& flows, double P) {
  const std::size_t n = reactions.size();
  std::vector<Vector> matrix(n, Vector(n));
  Vector right(n);
  for (std::size_t r = 0; r < n; ++r) {
    right[r] = lnConstants[r] - LnGasQuotient(reactions[r], flows, P);
    for (std::size_t s = 0; s < n; ++s) matrix[r][s] = SecondDerivative(reactions[r], reactions[s], flows);
  }
  const Vector extents = Solved(std::move(matrix), std::move(right));
  Amounts change;
  for (std::size_t r = 0; r < n; ++r) Perform(reactions[r], extents[r], change);
  return change;
}

}  // namespace

double LnGasConstant(const GasReaction& reaction, double T) {
  double sum = 0;
  for (const auto& [compound, nu] : reaction.coefficients) sum -= nu * GasGibbsEnergy(compound, T);
  return sum / (kGasConstant * T);
}

double LnGasQuotient(const GasReaction& reaction, const Amounts& flows, double P) {
  const double perFlow = P / (kStandardPressure * Total(flows));
  double sum = 0;
  for (const auto& [compound, nu] : reaction.coefficients) sum += nu * std::log(flows.at(compound) * perFlow);
  return sum;
}

Amounts Equilibrated(const Amounts& feed, const std::vector<GasReaction>& reactions, double T, double P) {
  constexpr int kMostSteps = 500;
  constexpr double kGoal = 1e-12;      // relative change of every flow that takes part
  constexpr double kLargestUse = 0.9;  // of a flow, in one step
  Vector lnConstants;
  for (const GasReaction& reaction : reactions) lnConstants.push_back(LnGasConstant(reaction, T));
  Amounts flows = feed;
  MoveInside(reactions, flows);
  for (int i = 0; i < kMostSteps; ++i) {
    const Amounts change = Step(reactions, lnConstants, flows, P);
    double part = 1, largest = 0;
    for (const auto& [compound, amount] : change) {
      const double relative = amount / flows[compound];
      largest = std::max(largest, std::abs(relative));
      if (relative < 0) part = std::min(part, kLargestUse / -relative);
    }
    for (const auto& [compound, amount] : change) flows[compound] += part * amount;
    if (largest < kGoal) return flows;
  }
  throw std::runtime_error("the reference equilibrium is not found at " + std::to_string(T) + " K");
}

GasMixture EquilibratedAdiabatically(const Amounts& feed, const std::vector<GasReaction>& reactions, double feedT,
                                     double P) {
  const double enthalpy = GasEnthalpyFlow(feed, feedT);
  double lower = 200, upper = 4000;  // the enthalpy at equilibrium rises with temperature
  for (int i = 0; i < 60; ++i) {
    const double T = 0.5 * (lower + upper);
    (GasEnthalpyFlow(Equilibrated(feed, reactions, T, P), T) < enthalpy ? lower : upper) = T;
  }
  return {lower, Equilibrated(feed, reactions, lower, P)};
}

}  // namespace morvelan::test
