#include "units/reactors/CEquilibriumReactor.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

#include "framework/ReportFormat.h"
#include "units/reactors/Stoichiometry.h"

namespace morvelan {
namespace {

constexpr std::string_view kScope = "Calculate";
constexpr std::string_view kInterface = "ICapeUnit";
constexpr std::string_view kUnitKind = "EquilibriumReactor";

const std::vector<ParameterDeclaration> kParameters =
    ReactorParameters("Reactor pressure drop", "Reactor temperature", SolutionParameters());

const UnitDeclaration kDeclaration = {
    .name = "EquilibriumReactor",
    .description = "EquilibriumReactor - perform equilibrium reactions",
    .about =
        "The equilibrium reactor performs equilibrium reactions as well as a phase equilibrium. It either "
        "operates isothermally at specified temperature, or with a specified heat duty (0 for adiabatic).",
    .helpTopic = "equilibriumreactor",
    .ports = kReactorPorts,
    .parameters = kParameters,
    .reports = kLastRun,
};

}  // namespace

CEquilibriumReactor::CEquilibriumReactor() : BaseReactorConstrained(kDeclaration, kUnitKind) {}

// ---- Validation

void CEquilibriumReactor::ResolveAll() { ResolveSelected({.mustBeEquilibrium = true}, ""); }

std::string CEquilibriumReactor::FindDependence() const {
  std::string sets;
  std::size_t setCount = 0;
  std::vector<std::string> phases;
  for (const ReactionRecord& reaction : records)
    if (std::ranges::none_of(phases, [&](const auto& phase) { return com::EqualNoCase(phase, reaction.phase); }))
      phases.push_back(reaction.phase);
  for (const std::string& phase : phases) {
    std::vector<ReactionRecord> together;
    std::ranges::copy_if(records, std::back_inserter(together),
                         [&](const ReactionRecord& reaction) { return com::EqualNoCase(reaction.phase, phase); });
    for (const auto& set : DependentSets(StoichiometricMatrix(together, compounds.size()))) {
      sets += (setCount++ ? " and" : "") + (" of reactions " + JoinedNames(together, set)) + " in phase " + phase;
    }
  }
  if (setCount == 0) return {};
  return "The stoichiometric coefficients" + sets + " are linearly dependent. " +
         (setCount == 1 ? " One of these reactions must be removed" : " A reaction from each set must be removed.");
}

bool CEquilibriumReactor::ValidateUnit(std::string& message) {
  if (!HasMaterials(message)) return false;
  if (!HasReactionPackage())
    message = IsCalculating() ? kNoReactionPackage : "no reaction package selected";
  else if (SelectedReactions().empty())
    message = "No reaction specified";
  if (!message.empty() || !HasReactions(message) || !HasHeatSpecification(message)) return false;
  message = FindDependence();
  return message.empty() && BaseReactorConstrained::ValidateUnit(message);
}

// ---- Calculation

void CEquilibriumReactor::React() {
  const HeatDutyType type = HeatType();
  const HeatSource source = ReadHeatSource();
  Outlet(0).State().pressure = ReactorPressure(true);
  if (!HasFeed(type, source)) return;
  std::vector<ReactionRecord> reactions = ReactionsOfPresentPhases();
  LeaveOutIdle(reactions);

  const double feedEnthalpyFlow = FeedEnthalpyFlow();
  const bool countsHeats = EnthalpyKind() == kUseEnthalpyAndReaction;
  const std::vector<double> heats =
      countsHeats ? HeatsOfReaction(reactions) : std::vector<double>(reactions.size(), 0.0);
  const ExtentSolution solution = SolveEquilibrium(reactions, type, feedEnthalpyFlow + source.duty, heats);

  SetProductFlows(solution.trial.flows);
  const double heatOfReaction = std::inner_product(heats.begin(), heats.end(), solution.trial.extents.begin(), 0.0);
  const std::optional<double> duty = CloseHeatBalance(type, source, feedEnthalpyFlow, heatOfReaction,
                                                      "Failed to get temperature at solution from outlet port: ");
  WarnOfInfeasibleHeat(source, Outlet(0).State().temperature);
  PublishHeat(type, duty);
}

std::vector<ReactionRecord> CEquilibriumReactor::ReactionsOfPresentPhases() {
  const auto fractions = ForwardError(kScope, kInterface, [&] { return Inlet(0).GetPhaseFractions(); });
  std::vector<ReactionRecord> present;
  for (const ReactionRecord& reaction : records) {
    const bool isPresent = com::EqualNoCase(reaction.phase, "Overall") ||
                           std::ranges::any_of(fractions, [&](const material::PhaseFraction& phase) {
                             return phase.fraction > 0 && com::EqualNoCase(phase.phase, reaction.phase);
                           });
    if (isPresent)
      present.push_back(reaction);
    else
      Note("Reaction \"" + reaction.name + "\" is ignored: phase \"" + reaction.phase + "\" is not present");
  }
  return present;
}

ExtentSolution CEquilibriumReactor::SolveEquilibrium(const std::vector<ReactionRecord>& reactions, HeatDutyType type,
                                                     double enthalpyFlow, const std::vector<double>& heats) {
  ExtentEquations equations = EquationsOf(reactions);
  if (reactions.empty()) return {.trial = {.extents = {}, .flows = equations.inletFlows}};
  equations.temperature = GivenTemperature();
  equations.equilibriaOnly = true;
  ReactingMixture mixture = MixtureOfFeed();
  const double pressure = Outlet(0).State().pressure;
  const com::Name enthalpyProperty = EnthalpyProperty();
  std::vector<double> constants(reactions.size());
  Eigen::VectorXd evaluated;
  equations.residual = [&](const ExtentTrial& trial, std::span<double> f, std::string& why) {
    evaluated.resize(0);
    return Evaluated(why, [&] {
      const ClippedFlows flows = ClipNegativeFlows(trial, pressure);
      const double heatOfReaction = std::inner_product(heats.begin(), heats.end(), trial.extents.begin(), 0.0);
      if (type == kIsothermal)
        mixture.Material().FlashAtTemperature(flows.state);
      else
        mixture.Material().FlashAtEnthalpy(flows.state, (enthalpyFlow - heatOfReaction) / flows.state.totalFlow,
                                           enthalpyProperty);
      mixture.StateChanged();
      for (std::size_t r = 0; r < reactions.size(); ++r) {
        f[r] = mixture.LogActivityProduct(reactions[r], BasisOf(reactions[r]));
        constants[r] = mixture.EquilibriumConstant(reactions[r]);
        f[r] -= ClampedLog(constants[r]);
        if (!std::isfinite(f[r])) throw Failure("Iteration parameters are not finite");
        // The first residual takes the penalty once per reaction, away from zero.
        if (flows.penalty != 0) f[0] += f[0] < 0 ? -flows.penalty : flows.penalty;
      }
      evaluated = trial.extents;
    });
  };
  ExtentSolution solution = Solve(equations);
  std::vector<double> residuals(reactions.size());
  std::string why;
  const bool isAt = evaluated.size() == solution.trial.extents.size() && evaluated == solution.trial.extents;
  if (!isAt && !equations.residual(solution.trial, residuals, why))
    throw Failure("Solution failed: " + why, kScope, kInterface);
  for (std::size_t r = 0; r < reactions.size(); ++r) {
    const std::string quoted = "eaction \"" + reactions[r].name + "\":\t";
    ReportLine("Extent of r" + quoted +
               FormatValue(solution.trial.extents[static_cast<Eigen::Index>(r)], kMolarFlowDimension));
    ReportLine("Equilibrium constant r" + quoted + FormatNumber(constants[r]));
    ReportLine("basis for r" + quoted + BasisWord(reactions[r]));
  }
  return solution;
}

}  // namespace morvelan
