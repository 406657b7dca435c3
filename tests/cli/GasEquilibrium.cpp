#include "tests/cli/GasEquilibrium.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace morvelan::test {
namespace {

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

/// By how much the flows change in a step of Newton's method towards the least Gibbs energy.
Amounts Step(const std::vector<GasReaction>& reactions, const std::vector<double>& lnConstants, const Amounts& flows,
             double P) {
  const auto n = static_cast<Eigen::Index>(reactions.size());
  const auto reaction = [&](Eigen::Index r) -> const GasReaction& { return reactions[static_cast<std::size_t>(r)]; };
  Eigen::MatrixXd matrix(n, n);
  Eigen::VectorXd right(n);
  for (Eigen::Index r = 0; r < n; ++r) {
    right[r] = lnConstants[static_cast<std::size_t>(r)] - LnGasQuotient(reaction(r), flows, P);
    for (Eigen::Index s = 0; s < n; ++s) matrix(r, s) = SecondDerivative(reaction(r), reaction(s), flows);
  }
  const Eigen::VectorXd extents = matrix.partialPivLu().solve(right);
  Amounts change;
  for (Eigen::Index r = 0; r < n; ++r) Perform(reaction(r), extents[r], change);
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
  std::vector<double> lnConstants;
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
