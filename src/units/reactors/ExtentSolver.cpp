#include "units/reactors/ExtentSolver.h"

#include <Eigen/LU>
#include <Eigen/QR>
#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "errors/Failure.h"
#include "numerics/BracketedRoot.h"
#include "numerics/NonlinearSystem.h"
#include "units/reactors/Stoichiometry.h"

namespace morvelan {
namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

constexpr double kTemperatureScale = 100;  // [K] per unit of its unknown
/// How much of the feed may be missing of a compound where equations are tried.
constexpr double kLargestDeficit = 0.1;
/// What a compound's flow may be at least, relative to the feed, to measure others by it.
constexpr double kSmallestScale = 1e-30;

// Solving for one reaction after the other. Its extent is at the fraction 1 / (1 + exp(-t)) of its range.
constexpr double kLargestT = 30;  // leaves 1e-13 of the range
constexpr double kToleranceOfT = 0.02;
constexpr int kMostTrials = 60;
constexpr int kMostRounds = 40;
constexpr double kClosestRounds = 0.2;     // of t
constexpr double kClosestTemperature = 1;  // [K]

Index Signed(std::size_t i) { return static_cast<Index>(i); }

ExtentTrial TrialAt(const ExtentEquations& equations, const VectorXd& extents, double temperature) {
  return {
      .extents = extents, .flows = equations.inletFlows + equations.nu * extents, .temperature = temperature};
}

// ---- The unknowns that Newton's method works on

/// How unknowns of the order of one make a trial: the first ones make extents, a last one the temperature.
class Unknowns {
 public:
  /// Extents divided by the feed.
  explicit Unknowns(const ExtentEquations& problem)
      : equations(problem), scales(VectorXd::Constant(problem.nu.cols(), problem.inletFlows.sum())) {}
  /// The flows of the compounds of which there is least in a trial, divided by what there is. (Reactions that
  /// depend on one another need their extents.)
  Unknowns(const ExtentEquations& problem, const ExtentTrial& start) : Unknowns(problem) {
    ChooseScarce(start.flows);
    if (Signed(scarce.size()) < problem.nu.cols()) scarce.clear();
    if (scarce.empty()) return;
    const double feed = problem.inletFlows.sum();
    MatrixXd rows(problem.nu.cols(), problem.nu.cols());
    for (Index k = 0; k < rows.rows(); ++k) {
      rows.row(k) = problem.nu.row(scarce[static_cast<std::size_t>(k)]);
      scales[k] = std::max(start.flows[scarce[static_cast<std::size_t>(k)]], kSmallestScale * feed);
    }
    toExtents = rows.inverse();
  }

  [[nodiscard]] ExtentTrial Trial(std::span<const double> x) const {
    const VectorXd scaled = Eigen::Map<const VectorXd>(x.data(), scales.size()).cwiseProduct(scales);
    const double temperature =
        equations.temperatureIsUnknown ? x.back() * kTemperatureScale : equations.temperature;
    if (scarce.empty()) return TrialAt(equations, scaled, temperature);
    const VectorXd changes = scaled - equations.inletFlows(scarce);
    ExtentTrial trial = TrialAt(equations, toExtents * changes, temperature);
    trial.flows(scarce) = scaled;  // exactly: they may be the difference of much greater numbers
    return trial;
  }

  [[nodiscard]] std::vector<double> At(const ExtentTrial& trial) const {
    const VectorXd values = scarce.empty() ? trial.extents : VectorXd(trial.flows(scarce));
    std::vector<double> x(static_cast<std::size_t>(scales.size()));
    for (std::size_t k = 0; k < x.size(); ++k) x[k] = values[Signed(k)] / scales[Signed(k)];
    if (equations.temperatureIsUnknown) x.push_back(trial.temperature / kTemperatureScale);
    return x;
  }

  [[nodiscard]] std::vector<std::size_t> Positive() const {
    std::vector<std::size_t> positive(scarce.size());
    std::iota(positive.begin(), positive.end(), std::size_t{0});
    if (equations.temperatureIsUnknown) positive.push_back(static_cast<std::size_t>(scales.size()));
    return positive;
  }

 private:
  /// As many compounds as there are reactions, so that their flows determine the extents.
  void ChooseScarce(const VectorXd& flows) {
    std::vector<Index> ascending(static_cast<std::size_t>(flows.size()));
    std::iota(ascending.begin(), ascending.end(), Index{0});
    std::ranges::stable_sort(ascending, {}, [&](Index j) { return flows[j]; });
    MatrixXd rows(0, equations.nu.cols());
    for (const Index j : ascending) {
      if (rows.rows() == equations.nu.cols()) break;
      MatrixXd more(rows.rows() + 1, rows.cols());
      more << rows, equations.nu.row(j);
      if (more.colPivHouseholderQr().rank() < more.rows()) continue;
      rows = std::move(more);
      scarce.push_back(j);
    }
  }

  const ExtentEquations& equations;
  std::vector<Index> scarce;  // empty where the unknowns are extents
  VectorXd scales;            // [mol/s]
  MatrixXd toExtents;
};

ExtentSolution SolveFrom(const ExtentEquations& equations, const Unknowns& unknowns, const ExtentTrial& start,
                         double tolerance, std::int32_t maxIterations) {
  const double largestDeficit = kLargestDeficit * equations.inletFlows.sum();
  const numerics::NonlinearSystem system{
      .residual = [&](std::span<const double> x, std::span<double> residuals,
                      std::string& why) { return equations.residual(unknowns.Trial(x), residuals, why); },
      .isValid =
          [&](std::span<const double> x) {
            const ExtentTrial trial = unknowns.Trial(x);
            return trial.flows.minCoeff() >= -largestDeficit &&
                   (!equations.temperatureIsUnknown || trial.temperature > 0);
          },
  };
  std::vector<double> x = unknowns.At(start);
  const numerics::NonlinearResult result = numerics::SolveNonlinear(
      system, x,
      {.tolerance = tolerance, .maxIterations = maxIterations, .positiveUnknowns = unknowns.Positive()});
  if (!result.success) return {.errorText = result.errorText};
  return {.success = true, .trial = unknowns.Trial(x), .iterations = result.iterations};
}

// ---- Starts

ExtentTrial Balanced(const ExtentEquations& equations, const ExtentTrial& trial) {
  if (!equations.temperatureIsUnknown) return trial;
  try {
    return TrialAt(equations, trial.extents, equations.balancedTemperature(trial));
  } catch (const Failure&) {
    return trial;  // a start need not be a good one
  }
}

/// Every reaction in the middle of its range, in turn; more than once, for reactions may make what others
/// need.
ExtentTrial HalfWay(const ExtentEquations& equations) {
  ExtentTrial trial = TrialAt(equations, VectorXd::Zero(equations.nu.cols()), equations.temperature);
  for (Index round = 0; round <= equations.nu.cols(); ++round)
    for (Index r = 0; r < equations.nu.cols(); ++r) {
      const ExtentRange range = RangeOfExtent(equations.nu.col(r), trial.flows);
      const double step = 0.5 * (range.lowest + range.highest);
      trial.extents[r] += step;
      trial.flows += step * equations.nu.col(r);
    }
  return Balanced(equations, trial);
}

/// Solves the equation of one reaction with the others as they are; gives how far its t is from the middle,
/// or nothing when there is no solution.
std::optional<double> SolveOne(const ExtentEquations& equations, Index reaction, ExtentTrial& trial) {
  const ExtentRange range = RangeOfExtent(equations.nu.col(reaction), trial.flows);
  if (!(range.highest > range.lowest)) return std::nullopt;
  const ExtentTrial before = trial;
  const auto stepAt = [&](double t) {
    return range.lowest + (range.highest - range.lowest) / (1 + std::exp(-t));
  };
  const auto move = [&](double t) {
    trial.extents[reaction] = before.extents[reaction] + stepAt(t);
    trial.flows = before.flows + stepAt(t) * equations.nu.col(reaction);
  };
  std::vector<double> residuals(static_cast<std::size_t>(equations.nu.cols()) +
                                (equations.temperatureIsUnknown ? 1 : 0));
  const auto residual = [&](double t, double& value, std::string& why) {
    move(t);
    if (!equations.residual(trial, residuals, why)) return false;
    value = residuals[static_cast<std::size_t>(reaction)];
    return true;
  };
  const numerics::BracketedRoot root =
      numerics::SolveBracketed(residual, -kLargestT, kLargestT, kToleranceOfT, kMostTrials);
  if (!root.success) {
    trial = before;
    return std::nullopt;
  }
  move(root.x);
  return root.x;
}

ExtentTrial OneAfterTheOther(const ExtentEquations& equations) {
  ExtentTrial trial = HalfWay(equations);
  std::vector<double> positions(static_cast<std::size_t>(equations.nu.cols()), 0);
  for (int round = 0; round < kMostRounds; ++round) {
    const double temperatureBefore = trial.temperature;
    double change = 0;
    for (std::size_t r = 0; r < positions.size(); ++r) {
      const double position = SolveOne(equations, Signed(r), trial).value_or(positions[r]);
      change = std::max(change, std::abs(position - positions[r]));
      positions[r] = position;
    }
    trial = Balanced(equations, trial);
    if (change < kClosestRounds && std::abs(trial.temperature - temperatureBefore) < kClosestTemperature)
      break;
  }
  return trial;
}

}  // namespace

ExtentSolution SolveExtents(const ExtentEquations& equations, double tolerance, std::int32_t maxIterations) {
  const auto reported = [](ExtentSolution solution, const char* start) {
    solution.start = start;
    return solution;
  };
  const ExtentTrial feed = TrialAt(equations, VectorXd::Zero(equations.nu.cols()), equations.temperature);
  ExtentSolution first = SolveFrom(equations, Unknowns(equations), feed, tolerance, maxIterations);
  if (first.success) return reported(std::move(first), "no reaction");
  const std::pair<ExtentTrial (*)(const ExtentEquations&), const char*> others[] = {
      {HalfWay, "every reaction half way"}, {OneAfterTheOther, "one reaction after the other"}};
  for (const auto& [makeStart, name] : others) {
    const ExtentTrial start = makeStart(equations);
    ExtentSolution solution =
        SolveFrom(equations, Unknowns(equations, start), start, tolerance, maxIterations);
    if (solution.success) return reported(std::move(solution), name);
  }
  return first;
}

}  // namespace morvelan
