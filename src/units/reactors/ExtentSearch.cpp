#include "units/reactors/ExtentSearch.h"

#include "framework/CalculationFailure.h"
#include "framework/ReportFormat.h"
#include "units/EnergyStream.h"

namespace morvelan {

void ExtentSearch::Declare(UnitDeclarations& declare) {
  declare.Parameter(tolerance, "Tolerance", "Relative termination tolerance on solution", 1e-4, {1e-10, 0.1});
  declare.Parameter(maxIterations, "Maximum iterations", "Maximum iterations to obtain solution", 100, 10, 1000);
}

ExtentSolution ExtentSearch::Solve(const ExtentEquations& equations) const {
  return SolveExtents(equations, tolerance, maxIterations);
}

void ExtentSearch::Report(const ExtentSolution& solution, Journal& journal) const {
  journal.Section(solution.success ? "solution" : "no solution");
  if (!solution.success) throw CalculationFailure("Solution failed: " + solution.errorText);
  journal.Line("Solution converged in " + std::to_string(solution.iterations) + " iterations");
  journal.Line(std::string("Iterations started from:\t") + solution.start);
}

void ReportExtent(const Reaction& reaction, double extent, double result, Journal& journal) {
  const std::string of = "reaction \"" + reaction.name.Text() + "\":\t";
  journal.Line("Extent of " + of + FormatValue(extent, kMolarFlowDimension));
  if (reaction.Is(ReactionType::kEquilibrium))
    journal.Line("Equilibrium constant " + of + FormatNumber(result));
  else
    journal.Line("Reaction rate " + of + FormatNumber(result) +
                 (reaction.rateBasis == RateBasis::kHeterogeneous ? " mol/s/kg catalyst" : " mol/s"));
}

void SetFlows(StreamState& state, const Eigen::VectorXd& flows) {
  const Eigen::VectorXd clipped = flows.cwiseMax(0.0);
  state.totalFlow = clipped.sum();
  for (std::size_t j = 0; j < state.composition.size(); ++j)
    state.composition[j] = clipped[static_cast<Eigen::Index>(j)] / state.totalFlow;
}

}  // namespace morvelan
