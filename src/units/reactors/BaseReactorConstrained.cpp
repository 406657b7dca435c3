#include "units/reactors/BaseReactorConstrained.h"

#include <algorithm>
#include <cmath>

#include "framework/ReportFormat.h"
#include "units/reactors/Stoichiometry.h"

namespace morvelan {
namespace {

constexpr std::string_view kScope = "Calculate";
constexpr std::string_view kInterface = "ICapeUnit";
constexpr const char* kNamesKey = "reactionNames";
constexpr double kPenaltyFactor = 1000;

constexpr const char* kInfeasible =
    "Infeasible system. Given the current feed, a linear combination of the reactions may take place with a "
    "rank less than the total number of the reactions; an insufficient number of individual reactions can be "
    "eliminated";

}  // namespace

std::vector<ParameterDeclaration> SolutionParameters() {
  return {{.name = "Tolerance",
           .description = "Relative termination tolerance on solution",
           .defaultValue = 1e-4,
           .lowerBound = 1e-10,
           .upperBound = 0.1},
          {.name = "Maximum iterations",
           .description = "Maximum iterations to obtain solution",
           .defaultValue = std::int32_t{100},
           .lowerBound = 10,
           .upperBound = 1000}};
}

ClippedFlows ClipNegativeFlows(const ExtentTrial& trial, double pressure) {
  if (!trial.extents.allFinite() || !trial.flows.allFinite()) throw Failure("Iteration parameters are not finite");
  ClippedFlows clipped{.state = {.pressure = pressure, .temperature = trial.temperature, .composition = {}}};
  for (const double flow : trial.flows) {
    clipped.state.composition.push_back(std::max(flow, 0.0));
    if (flow < 0) clipped.penalty += kPenaltyFactor * flow * flow;
    clipped.state.totalFlow += clipped.state.composition.back();
  }
  if (!(clipped.state.totalFlow > 0)) throw Failure("The reactions leave no flow at the outlet");
  for (double& fraction : clipped.state.composition) fraction /= clipped.state.totalFlow;
  return clipped;
}

// ---- Which reactions

Json BaseReactorConstrained::Configuration() const { return {{kNamesKey, selected}}; }

std::function<void()> BaseReactorConstrained::PlanConfiguration(const Json& configuration) {
  auto names = ReadConfiguredTexts(configuration, kNamesKey, selected);
  if (std::ranges::any_of(names, &std::string::empty)) throw Failure("empty strings");
  return [this, names = std::move(names)]() mutable {
    selected = std::move(names);
    records.clear();
  };
}

void BaseReactorConstrained::ResolveSelected(ReactionRequest request, const std::string& quote) {
  request.wantsConcentrationBasis = true;
  std::vector<ReactionRequest> requests(selected.size(), request);
  for (std::size_t r = 0; r < requests.size(); ++r) requests[r].name = selected[r];
  Resolve(requests, quote, [&](std::size_t, const ReactionRecord& reaction) {
    if (!FindActivityBasis(reaction.concentrationBasis))
      Warn("Warning: Unable to get reaction concentration basis for reaction " + reaction.name +
           " for unit operation " + ComponentName() + ". Assuming molar concentrations (molarity)");
    return std::string();
  });
}

ActivityBasis BaseReactorConstrained::BasisOf(const ReactionRecord& reaction) {
  return FindActivityBasis(reaction.concentrationBasis).value_or(ActivityBasis::kMolarity);
}

const char* BaseReactorConstrained::BasisWord(const ReactionRecord& reaction) {
  const bool isNamed = !reaction.concentrationBasis.empty();
  return ReportWord(isNamed ? FindActivityBasis(reaction.concentrationBasis) : BasisOf(reaction));
}

// ---- Calculation

void BaseReactorConstrained::Note(const std::string& text) {
  Warn(text);
  ReportLine(text);
}

bool BaseReactorConstrained::HasFeed(HeatDutyType type, const HeatSource& source) {
  const double flow = Inlet(0).State().totalFlow;
  if (flow < 0) throw Failure(UnitError{"underflow", "Negative or zero flow on inlet", kScope, kInterface});
  if (flow == 0) BypassFeed(type, source);
  return flow != 0;
}

Eigen::VectorXd BaseReactorConstrained::InletFlows() const {
  const material::StreamState& feed = inlets[0]->State();
  return feed.totalFlow *
         Eigen::Map<const Eigen::VectorXd>(feed.composition.data(), static_cast<Eigen::Index>(feed.composition.size()));
}

void BaseReactorConstrained::LeaveOutIdle(std::vector<ReactionRecord>& reactions) {
  for (bool changed = true; changed;) {
    auto [out, tied, direction] = FindFeasibility(StoichiometricMatrix(reactions, compounds.size()), InletFlows());
    // A rate through compounds of which there is none is none.
    const auto stays = std::ranges::partition(tied, [&](std::size_t r) { return reactions[r].type == CAPE_KINETIC; });
    out.insert(out.end(), tied.begin(), stays.begin());
    if (out.empty() && !tied.empty())
      throw Failure("Infeasible system: " + std::string(kInfeasible), kScope, kInterface);
    std::ranges::sort(out);
    for (const std::size_t r : out)
      Note("Reaction \"" + reactions[r].name + "\" is ignored: it can't take place with this feed");
    for (auto r = out.rbegin(); r != out.rend(); ++r)
      reactions.erase(reactions.begin() + static_cast<std::ptrdiff_t>(*r));
    changed = !out.empty();
  }
  if (reactions.empty()) Note("No reactions are possible");
}

ExtentEquations BaseReactorConstrained::EquationsOf(const std::vector<ReactionRecord>& reactions) const {
  return {.nu = StoichiometricMatrix(reactions, compounds.size()), .inletFlows = InletFlows()};
}

ReactingMixture BaseReactorConstrained::MixtureOfFeed() {
  const com::Ref<IDispatch> copy = ForwardError(kScope, kInterface, [&] { return Inlet(0).DuplicateMaterial(); });
  return {{copy, Inlet(0).ComponentName(), Emulation(), UsesThermo11(), compounds.size()}, ReactionPackage()};
}

ExtentSolution BaseReactorConstrained::Solve(const ExtentEquations& equations) {
  const auto end = static_cast<std::size_t>(ThermoVersionParameterIndex());
  ExtentSolution solution = SolveExtents(equations, std::get<double>(Parameter(end - 2).Value()),
                                         std::get<std::int32_t>(Parameter(end - 1).Value()));
  RequireUnchanged();
  if (!solution.success) {
    ReportLine("\r\n+++ no solution +++\r\n");
    throw Failure("Solution failed: " + solution.errorText, kScope, kInterface);
  }
  ReportLine("\r\n+++ solution +++\r\n");
  ReportLine("Solution converged in " + std::to_string(solution.iterations) + " iterations");
  ReportLine(std::string("Iterations started from:\t") + solution.start);
  return solution;
}

void BaseReactorConstrained::SetProductFlows(const Eigen::VectorXd& flows) {
  material::StreamState& product = Outlet(0).State();
  const Eigen::VectorXd clipped = flows.cwiseMax(0.0);
  product.totalFlow = clipped.sum();
  for (std::size_t j = 0; j < compounds.size(); ++j)
    product.composition[j] = clipped[static_cast<Eigen::Index>(j)] / product.totalFlow;
}

}  // namespace morvelan
