#include "units/reactors/ExtentSolver.h"

#include <Eigen/LU>
#include <algorithm>
#include <numeric>
#include <vector>

#include "numerics/NonlinearSystem.h"
#include "units/reactors/ExtentStarts.h"

namespace morvelan {
namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

constexpr double kTemperatureScale = 100;  // [K] per unit of its unknown
/// The greatest negative flow of a compound at which equations are evaluated, relative to the feed.
constexpr double kLargestDeficit = 0.1;
/// The greatest negative flow of a compound that is rounding, relative to the feed.
constexpr double kFlowRounding = 1e-13;
/// The smallest scale of a flow, relative to the feed.
constexpr double kSmallestScale = 1e-280;

/// How unknowns of the order of one make a trial: the first ones make extents, a last one the temperature.
class Unknowns {
 public:
  /// Extents divided by the feed.
  explicit Unknowns(const ExtentEquations& problem)
      : equations(problem), scales(VectorXd::Constant(problem.nu.cols(), problem.inletFlows.sum())) {}
  /// The flows of the limiting compounds of a trial, divided by these flows. Reactions that depend on one another have
  /// too few of them: then the unknowns are their extents.
  Unknowns(const ExtentEquations& problem, const ExtentTrial& start) : Unknowns(problem) {
    limiting = LimitingCompounds(problem.nu, start.flows);
    if (Index(limiting.size()) < problem.nu.cols()) limiting.clear();
    if (limiting.empty()) return;
    const double feed = problem.inletFlows.sum();
    MatrixXd rows(problem.nu.cols(), problem.nu.cols());
    for (Index k = 0; k < rows.rows(); ++k) {
      rows.row(k) = problem.nu.row(limiting[static_cast<std::size_t>(k)]);
      scales[k] = std::max(start.flows[limiting[static_cast<std::size_t>(k)]], kSmallestScale * feed);
    }
    toExtents = rows.inverse();
    limitingFeed = problem.inletFlows(limiting);
    without = Remainder(problem.inletFlows, -problem.nu * toExtents * limitingFeed);
  }

  /// The trial at some unknowns. The last one is kept, because most are checked first and then evaluated.
  [[nodiscard]] const ExtentTrial& Trial(std::span<const double> x) {
    if (!std::ranges::equal(x, lastUnknowns)) {
      lastUnknowns.assign(x.begin(), x.end());
      last = MakeTrial(x);
    }
    return last;
  }

  [[nodiscard]] std::vector<double> At(const ExtentTrial& trial) const {
    const VectorXd values = limiting.empty() ? trial.extents : VectorXd(trial.flows(limiting));
    std::vector<double> x(static_cast<std::size_t>(scales.size()));
    for (std::size_t k = 0; k < x.size(); ++k) x[k] = values[Index(k)] / scales[Index(k)];
    if (equations.temperatureIsUnknown) x.push_back(trial.temperature / kTemperatureScale);
    return x;
  }

  [[nodiscard]] std::vector<std::size_t> Positive() const {
    std::vector<std::size_t> positive(limiting.size());
    std::iota(positive.begin(), positive.end(), std::size_t{0});
    if (equations.temperatureIsUnknown) positive.push_back(static_cast<std::size_t>(scales.size()));
    return positive;
  }

 private:
  [[nodiscard]] ExtentTrial MakeTrial(std::span<const double> x) const {
    const VectorXd scaled = Eigen::Map<const VectorXd>(x.data(), scales.size()).cwiseProduct(scales);
    const double temperature = equations.temperatureIsUnknown ? x.back() * kTemperatureScale : equations.temperature;
    if (limiting.empty()) return TrialAt(equations, scaled, temperature);
    // Flows are counted from the state without any limiting compound: a small flow is not the difference of large ones.
    const VectorXd difference = scaled - limitingFeed;
    const VectorXd extents = toExtents * scaled;
    ExtentTrial trial{.extents = toExtents * difference, .flows = without, .temperature = temperature};
    trial.flows.noalias() += equations.nu * extents;
    for (std::size_t k = 0; k < limiting.size(); ++k) trial.flows[limiting[k]] = scaled[Index(k)];
    return trial;
  }

  const ExtentEquations& equations;
  std::vector<Index> limiting;  // empty where the unknowns are extents
  VectorXd scales;              // [mol/s]
  MatrixXd toExtents;
  VectorXd limitingFeed;  // [mol/s]
  VectorXd without;       // [mol/s], the flows without any of the limiting compounds
  std::vector<double> lastUnknowns;
  ExtentTrial last;
};

ExtentSolution SolveFrom(const ExtentEquations& equations, Unknowns unknowns, const ExtentTrial& start,
                         double tolerance, std::int32_t maxIterations) {
  const double largestDeficit = kLargestDeficit * equations.inletFlows.sum();
  const numerics::NonlinearSystem system{
      .residual = [&](std::span<const double> x, std::span<double> residuals,
                      std::string& why) { return equations.model->Evaluate(unknowns.Trial(x), residuals, why); },
      .isValid =
          [&](std::span<const double> x) {
            const ExtentTrial& trial = unknowns.Trial(x);
            return trial.flows.minCoeff() >= -largestDeficit &&
                   (!equations.temperatureIsUnknown || trial.temperature > 0);
          },
  };
  std::vector<double> x = unknowns.At(start);
  const numerics::NonlinearResult result = numerics::SolveNonlinear(
      system, x, {.tolerance = tolerance, .maxIterations = maxIterations, .positiveUnknowns = unknowns.Positive()});
  if (!result.success) return {.errorText = result.errorText};
  ExtentTrial solution = unknowns.Trial(x);
  // The penalty is small where only a little is missing. (Some hosts' feeds lack a trace themselves.)
  const double missing = std::min(equations.inletFlows.minCoeff(), 0.0);
  if (solution.flows.minCoeff() < missing - kFlowRounding * equations.inletFlows.sum())
    return {.errorText = "the reactions would need more of a compound than there is"};
  return {.success = true, .trial = std::move(solution), .iterations = result.iterations};
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
      {SmallExtents, "every reaction hardly begun"}, {OneReactionAtATime, "one reaction after the other"}};
  for (const auto& [makeStart, name] : others) {
    const ExtentTrial start = makeStart(equations);
    ExtentSolution solution = SolveFrom(equations, Unknowns(equations, start), start, tolerance, maxIterations);
    if (solution.success) return reported(std::move(solution), name);
  }
  return first;
}

}  // namespace morvelan
