#include "units/reactors/CEquilibriumReactor.h"

#include <algorithm>
#include <iterator>

#include "units/reactors/Stoichiometry.h"

namespace morvelan {

CEquilibriumReactor::CEquilibriumReactor()
    : BaseReactor({.name = "EquilibriumReactor",
                   .description = "EquilibriumReactor - perform equilibrium reactions",
                   .about = "The equilibrium reactor performs equilibrium reactions as well as a phase "
                            "equilibrium. It either operates isothermally at specified temperature, or with a "
                            "specified heat duty (0 for adiabatic).",
                   .helpTopic = "equilibriumreactor"}) {
  BeginDeclaration("Reactor pressure drop", "Reactor temperature");
  search.Declare(declare);
  EndDeclaration();
}

bool CEquilibriumReactor::ValidateUnit(std::string& message) {
  if (!HasMaterials(message)) return false;
  if (!package)
    message = IsCalculating() ? kNoReactionPackage : "no reaction package selected";
  else if (reactions.Selected().empty())
    message = "No reaction specified";
  return message.empty() && HasReactions(message) && heat.HasSpecification(message) &&
         HasIndependentReactions(message) && HasNumbers(message);
}

void CEquilibriumReactor::ResolveAll() { ResolveWithBases({.mustBeEquilibrium = true}, ""); }

bool CEquilibriumReactor::HasIndependentReactions(std::string& message) const {
  std::string sets;
  std::size_t setCount = 0;
  std::vector<PhaseLabel> phases;
  for (const Reaction& reaction : reactions.Resolved())
    if (std::ranges::find(phases, reaction.phase) == phases.end()) phases.push_back(reaction.phase);
  for (const PhaseLabel& phase : phases) {
    std::vector<Reaction> together;
    std::ranges::copy_if(reactions.Resolved(), std::back_inserter(together),
                         [&](const Reaction& reaction) { return reaction.phase == phase; });
    for (const auto& set : DependentSets(StoichiometricMatrix(together, reactions.Compounds().size())))
      sets +=
          (setCount++ ? " and" : "") + (" of reactions " + JoinedNames(together, set)) + " in phase " + phase.Text();
  }
  if (setCount > 0)
    message =
        "The stoichiometric coefficients" + sets + " are linearly dependent. " +
        (setCount == 1 ? " One of these reactions must be removed" : " A reaction from each set must be removed.");
  return message.empty();
}

void CEquilibriumReactor::React() {
  const HeatSource source = heat.ReadSource();
  StreamState out = feed.State();
  out.pressure = PressureAfterDrop(true);
  if (!HasFlow()) return heat.Bypass(out.pressure, source);
  std::vector<Reaction> possible = ReactionsOfPresentPhases();
  reactions.LeaveOutInactive(possible);

  const double feedEnthalpyFlow = heat.FeedEnthalpyFlow();
  const EquilibriumConditions conditions = {
      .pressure = out.pressure,
      .isIsothermal = heat.IsIsothermal(),
      .enthalpyFlow = feedEnthalpyFlow + source.duty,
      .enthalpy = &heat.Enthalpy(),
      .heats = heat.CountsReactions() ? reactions.HeatsAtFeed(possible) : std::vector<double>(possible.size())};
  const ExtentTrial equilibrium = FindEquilibrium(possible, conditions);

  SetFlows(out, equilibrium.flows);
  const std::optional<double> duty = heat.Close(out, source, feedEnthalpyFlow, conditions.HeatOfReaction(equilibrium),
                                                "Failed to get temperature at solution from outlet port: ");
  heat.WarnOfInfeasibility(source);
  heat.Publish(duty);
}

std::vector<Reaction> CEquilibriumReactor::ReactionsOfPresentPhases() {
  const std::vector<PhaseFraction> phases = feed.Phases();
  std::vector<Reaction> present;
  for (const Reaction& reaction : reactions.Resolved()) {
    const auto isIts = [&](const PhaseFraction& phase) { return reaction.phase.Is(phase.phase); };
    if (reaction.phase.IsOverall() || std::ranges::any_of(phases, isIts))
      present.push_back(reaction);
    else
      journal.Note("Reaction \"" + reaction.name.Text() + "\" is ignored: phase \"" + reaction.phase.Text() +
                   "\" is not present");
  }
  return present;
}

ExtentTrial CEquilibriumReactor::FindEquilibrium(const std::vector<Reaction>& possible,
                                                 const EquilibriumConditions& conditions) {
  if (possible.empty()) return {.extents = {}, .flows = reactions.FeedFlows()};
  ReactingMixture mixture(feed.Copy(), package);
  EquilibriumEquations model(possible, conditions, mixture);
  const ExtentSolution solution = search.Solve({.nu = StoichiometricMatrix(possible, reactions.Compounds().size()),
                                                .inletFlows = reactions.FeedFlows(),
                                                .temperature = heat.GivenTemperature(),
                                                .equilibriaOnly = true,
                                                .model = &model});
  RequireUnchanged();
  search.Report(solution, journal);
  model.Settle(solution.trial);
  for (std::size_t r = 0; r < possible.size(); ++r) {
    const double extent = solution.trial.extents[static_cast<Eigen::Index>(r)];
    ReportExtent(possible[r], extent, model.Results()[r], journal);
    journal.Line("basis for reaction \"" + possible[r].name.Text() + "\":\t" + possible[r].BasisWord());
  }
  return solution.trial;
}

}  // namespace morvelan
