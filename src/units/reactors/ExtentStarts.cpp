#include "units/reactors/ExtentStarts.h"

#include <Eigen/LU>
#include <Eigen/QR>
#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "errors/Failure.h"
#include "numerics/BracketedRoot.h"
#include "units/reactors/Stoichiometry.h"

namespace morvelan {
namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

/// Fractions of the greatest extents that the feed allows, tried in this order: large ones may take more heat than
/// the feed has.
constexpr double kBeginnings[] = {0.5, 1e-2, 1e-4, 1e-6};
constexpr double kTrace = 1e-2;

constexpr double kChangeRounding = 4 * std::numeric_limits<double>::epsilon();

// The line-search coordinate t of an extent: the extent is at the fraction 1 / (1 + exp(-t)) of its range.
constexpr double kLargestCoordinate = 600;
constexpr double kCoordinateTolerance = 0.02;
constexpr double kSmallestStep = 0.01;  // of t
constexpr int kMostSteps = 30;
constexpr int kMostTrials = 60;
constexpr int kMostRounds = 40;
constexpr double kClosestRounds = 0.1;     // of t
constexpr double kClosestTemperature = 1;  // [K]

ExtentTrial Balanced(const ExtentEquations& equations, ExtentTrial trial) {
  if (!equations.temperatureIsUnknown) return trial;
  try {
    trial.temperature = equations.model->BalancedTemperature(trial);
  } catch (const Failure&) {
    // The start keeps its temperature where the heat balance cannot be closed.
  }
  return trial;
}

/// The feed after a fraction of the greatest extents that use up no compound.
ExtentTrial Beginning(const ExtentEquations& equations, double part) {
  const VectorXd direction = FindFeasibility(equations.nu, equations.inletFlows).direction;
  const double most = RangeOfExtent(equations.nu * direction, equations.inletFlows).highest;
  return TrialAt(equations, part * most * direction, equations.temperature);
}

/// Every reaction at half its extent, so that every compound is present.
ExtentTrial HalfWay(const ExtentEquations& equations) {
  ExtentTrial trial = Beginning(equations, kBeginnings[0]);
  for (Index r = 0; r < equations.nu.cols(); ++r) {
    const VectorXd coefficients = equations.nu.col(r);
    const ExtentRange range = RangeOfExtent(coefficients, trial.flows);
    const double step = 0.5 * (range.lowest + range.highest);
    trial.extents[r] += step;
    trial.flows += step * coefficients;
  }
  return Balanced(equations, trial);
}

/// A line in the space of extents, between the two ends where a compound is used up.
class SearchLine {
 public:
  SearchLine(const ExtentTrial& trial, const VectorXd& extentsOfLine, const VectorXd& flowsOfLine)
      : start(trial), extents(extentsOfLine), flows(flowsOfLine), range(RangeOfExtent(flowsOfLine, trial.flows)) {
    lowEnd = Remainder(start.flows, range.lowest * flows);
    highEnd = Remainder(start.flows, range.highest * flows);
  }

  [[nodiscard]] bool HasLength() const { return range.highest > range.lowest; }
  [[nodiscard]] double StartCoordinate() const {
    const double t = std::log(-range.lowest / range.highest);
    return std::isnan(t) ? 0 : std::clamp(t, -kLargestCoordinate, kLargestCoordinate);
  }
  /// The state at a coordinate. Flows are measured from the nearer end of the line, because close to it they are too
  /// small to be differences of large numbers.
  [[nodiscard]] ExtentTrial At(double t) const {
    const double length = range.highest - range.lowest;
    const double fromEnd = length / (1 + std::exp(std::abs(t)));
    ExtentTrial trial = start;
    trial.extents += (t < 0 ? range.lowest + fromEnd : range.highest - fromEnd) * extents;
    trial.flows = t < 0 ? VectorXd(lowEnd + fromEnd * flows) : VectorXd(highEnd - fromEnd * flows);
    return trial;
  }

 private:
  const ExtentTrial& start;
  const VectorXd& extents;
  const VectorXd& flows;
  ExtentRange range;
  VectorXd lowEnd, highEnd;
};

/// The coordinate where a residual that rises with t changes its sign, or the last one where it can be evaluated; empty
/// if it cannot be evaluated at the start.
template <class Residual>
std::optional<double> FindRise(double t, Residual&& residual) {
  std::string why;
  double value = 0;
  if (!residual(t, value, why)) return std::nullopt;
  const double sign = value > 0 ? -1 : 1;
  double step = 1;
  for (int i = 0; i < kMostSteps && step > kSmallestStep && sign * t < kLargestCoordinate; ++i) {
    const double next = std::clamp(t + sign * step, -kLargestCoordinate, kLargestCoordinate);
    double nextValue = 0;
    if (!residual(next, nextValue, why)) {
      step *= 0.25;
      continue;
    }
    if (sign * nextValue > 0) {
      const auto root = numerics::SolveBracketed(residual, t, next, kCoordinateTolerance, kMostTrials);
      return root.success ? root.x : next;
    }
    t = next;
    step *= 2;
  }
  return t;
}

/// Solves for one extent, and returns by how much its t changed.
double SolveOne(const ExtentEquations& equations, const VectorXd& direction, ExtentTrial& trial) {
  const VectorXd flows = WithoutRounding(equations.nu * direction);
  const SearchLine line(trial, direction, flows);
  if (!line.HasLength()) return 0;
  VectorXd residuals(equations.nu.cols() + (equations.temperatureIsUnknown ? 1 : 0));
  const auto residual = [&](double t, double& value, std::string& why) {
    if (!equations.model->Evaluate(line.At(t), {residuals.data(), static_cast<std::size_t>(residuals.size())}, why))
      return false;
    value = direction.dot(residuals.head(direction.size()));
    return true;
  };
  const double before = line.StartCoordinate();
  const std::optional<double> after = FindRise(before, residual);
  if (!after) return 0;
  trial = line.At(*after);
  return std::abs(*after - before);
}

/// The directions in which extents are solved for: each reaction's own, or for equilibria those that change
/// one limiting compound each.
MatrixXd Directions(const ExtentEquations& equations, const ExtentTrial& trial) {
  const MatrixXd own = MatrixXd::Identity(equations.nu.cols(), equations.nu.cols());
  if (!equations.equilibriaOnly) return own;
  const std::vector<Index> limiting = LimitingCompounds(equations.nu, trial.flows);
  if (limiting.size() < static_cast<std::size_t>(own.cols())) return own;
  return equations.nu(limiting, Eigen::all).inverse();
}

bool CanBeEvaluated(const ExtentEquations& equations, const ExtentTrial& trial) {
  std::vector<double> residuals(static_cast<std::size_t>(equations.nu.cols()) +
                                (equations.temperatureIsUnknown ? 1 : 0));
  std::string why;
  return equations.model->Evaluate(trial, residuals, why);
}

}  // namespace

ExtentTrial TrialAt(const ExtentEquations& equations, const VectorXd& extents, double temperature) {
  return {.extents = extents, .flows = equations.inletFlows + equations.nu * extents, .temperature = temperature};
}

VectorXd Remainder(const VectorXd& flows, const VectorXd& change) {
  VectorXd left = flows + change;
  for (Index j = 0; j < left.size(); ++j)
    if (std::abs(left[j]) <= kChangeRounding * std::abs(flows[j])) left[j] = 0;
  return left;
}

std::vector<Index> LimitingCompounds(const MatrixXd& nu, const VectorXd& flows) {
  std::vector<Index> ascending(static_cast<std::size_t>(flows.size()));
  std::iota(ascending.begin(), ascending.end(), Index{0});
  std::ranges::stable_sort(ascending, {}, [&](Index j) { return flows[j]; });
  std::vector<Index> limiting;
  MatrixXd rows(0, nu.cols());
  for (const Index j : ascending) {
    if (rows.rows() == nu.cols()) break;
    MatrixXd more(rows.rows() + 1, rows.cols());
    more << rows, nu.row(j);
    if (more.colPivHouseholderQr().rank() < more.rows()) continue;
    rows = std::move(more);
    limiting.push_back(j);
  }
  return limiting;
}

ExtentTrial SmallExtents(const ExtentEquations& equations) { return Beginning(equations, kTrace); }

ExtentTrial OneReactionAtATime(const ExtentEquations& equations) {
  ExtentTrial trial = HalfWay(equations);
  for (const double part : kBeginnings)
    if (!CanBeEvaluated(equations, trial)) trial = Balanced(equations, Beginning(equations, part));
  for (int round = 0; round < kMostRounds; ++round) {
    const double temperatureBefore = trial.temperature;
    double change = 0;
    const MatrixXd directions = Directions(equations, trial);
    for (Index k = 0; k < directions.cols(); ++k)
      change = std::max(change, SolveOne(equations, directions.col(k), trial));
    trial = Balanced(equations, trial);
    if (change < kClosestRounds && std::abs(trial.temperature - temperatureBefore) < kClosestTemperature) break;
  }
  return trial;
}

}  // namespace morvelan
