#include "units/reactors/CCSTR.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "framework/ReportFormat.h"
#include "units/reactors/Stoichiometry.h"

namespace morvelan {
namespace {

/// What rounding leaves of a sum of stoichiometric coefficients.
constexpr double kEqualMoles = 1e-12;

/// Densities cancel out of the activity product of as many products as reactants.
ActivityBasis ReducedBasis(const Reaction& reaction) {
  const ActivityBasis basis = reaction.Basis();
  const auto& nu = reaction.coefficients;
  if (!reaction.Is(ReactionType::kEquilibrium)) return basis;
  if (std::abs(std::accumulate(nu.begin(), nu.end(), 0.0)) > kEqualMoles) return basis;
  if (basis == ActivityBasis::kMolarity) return ActivityBasis::kMoleFraction;
  if (basis == ActivityBasis::kConcentration) return ActivityBasis::kMassFraction;
  return basis;
}

}  // namespace

CCSTR::CCSTR()
    : BaseReactor({.name = "CSTR",
                   .description = "Continuously stirred tank reactor - single phase mixed reactor for "
                                  "equilibrium and kinetic reactions",
                   .about = "The CSTR reactor performs kinetic and equilibrium reactions in a single specified "
                            "phase. It either operates isothermally at specified temperature, or with a "
                            "specified heat duty (0 for adiabatic).",
                   .helpTopic = "cstr"}) {
  BeginDeclaration("Reactor pressure drop", "Reactor temperature");
  catalyst.Declare(declare);
  phase.Declare(declare);
  search.Declare(declare);
  EndDeclaration();
}

void CCSTR::InputsChanged() { phase.FollowFeed(feed, UsesThermo11()); }

bool CCSTR::ValidateUnit(std::string& message) {
  if (!HasMaterials(message)) return false;
  if (reactions.Selected().empty())
    message = "No reaction specified";
  else if (IsCalculating() && !package)
    message = kNoReactionPackage;
  return message.empty() && HasReactions(message) && HasIndependentReactions(message) &&
         heat.HasSpecification(message) && HasCatalyst(message) && HasNumbers(message);
}

void CCSTR::ResolveAll() {
  ResolveWithBases({.wantsKind = true}, "\"");
  phase.RequireOf(reactions.Resolved());
}

bool CCSTR::HasIndependentReactions(std::string& message) const {
  const std::vector<Reaction>& all = reactions.Resolved();
  std::string sets;
  std::size_t setCount = 0;
  for (const auto& set : DependentSets(StoichiometricMatrix(all, reactions.Compounds().size()))) {
    // Rates tell how far each of several kinetic reactions goes, however they depend on one another.
    if (std::ranges::any_of(set, [&](std::size_t r) { return all[r].Is(ReactionType::kEquilibrium); }))
      sets += (setCount++ ? " and" : "") + (" of reactions " + JoinedNames(all, set));
  }
  if (setCount > 0)
    message =
        "The stoichiometric coefficients" + sets +
        " are linearly dependent and contain at least one equilibrium reaction." +
        (setCount == 1 ? " One of these reactions must be removed" : " A reaction from each set must be removed.");
  return message.empty();
}

bool CCSTR::HasCatalyst(std::string& message) const {
  const auto has = [&](RateBasis basis) {
    return std::ranges::any_of(reactions.Resolved(), [&](const Reaction& reaction) {
      return reaction.Is(ReactionType::kKinetic) && reaction.rateBasis == basis;
    });
  };
  message = catalyst.Given().FindFault(has(RateBasis::kHomogeneous), has(RateBasis::kHeterogeneous));
  return message.empty();
}

void CCSTR::React() {
  const HeatSource source = heat.ReadSource("\t");
  StirredTank tank{.phase = phase.Label()};
  journal.Line("Reaction phase:\t" + tank.phase.Text());
  StreamState out = feed.State();
  out.pressure = tank.pressure = PressureAfterDrop(true);
  if (!HasFlow()) return heat.Bypass(out.pressure, source);
  const CatalystSpecification completed = catalyst.Given().Completed();
  tank.volume = completed.EffectiveVolume().value_or(0);
  tank.catalystMass = completed.mass.value_or(0);
  Report(completed, journal);
  std::vector<Reaction> possible = reactions.Resolved();
  reactions.LeaveOutInactive(possible);

  const double feedEnthalpyFlow = heat.FeedEnthalpyFlow();
  tank.feedFlow = out.totalFlow;
  tank.temperatureIsGiven = heat.IsIsothermal();
  tank.temperature = tank.temperatureIsGiven ? heat.GivenTemperature() : out.temperature;
  tank.enthalpyFlow = feedEnthalpyFlow + source.duty;
  tank.enthalpy = &heat.Enthalpy();
  tank.heats = heat.CountsReactions() ? reactions.HeatsAtFeed(possible) : std::vector<double>(possible.size());
  ReportBases(possible);
  for (const Reaction& reaction : possible) tank.bases.push_back(ReducedBasis(reaction));

  std::optional<double> duty;
  if (possible.empty()) {
    SetFlows(out, reactions.FeedFlows());
    duty = heat.Close(out, source, feedEnthalpyFlow, 0);
  } else {
    const ExtentTrial solution = SolveTank(possible, tank);
    const double heatOfReaction = tank.HeatOfReaction(solution);
    if (heat.CountsReactions()) journal.Line("total heat of reaction:\t" + FormatNumber(heatOfReaction, 6) + " W");
    SetFlows(out, solution.flows);
    out.temperature = solution.temperature;
    duty = FlashSolution(out, source, feedEnthalpyFlow, heatOfReaction);
    phase.NoteOtherPhases(product, heat.IsIsothermal(), journal);
  }
  heat.WarnOfInfeasibility(source);
  heat.Publish(duty);
}

void CCSTR::ReportBases(const std::vector<Reaction>& possible) {
  for (const Reaction& reaction : possible) {
    std::string words = reaction.BasisWord();
    if (reaction.Is(ReactionType::kKinetic))
      words += reaction.rateBasis == RateBasis::kHeterogeneous ? ", heterogeneous" : ", homogeneous";
    journal.Line("basis for reaction \"" + reaction.name.Text() + "\":\t" + words);
    if (ReducedBasis(reaction) != reaction.Basis())
      journal.Note(reaction.Basis() == ActivityBasis::kMolarity
                       ? "Reducing molarity basis to moleFraction basis; all densities cancel out"
                       : "Reducing concentration basis to massFraction basis; all densities cancel out");
  }
}

ExtentTrial CCSTR::SolveTank(const std::vector<Reaction>& possible, const StirredTank& tank) {
  ReactingMixture mixture(feed.Copy(), package);
  StirredTankEquations model(possible, tank, mixture);
  const ExtentSolution solution =
      search.Solve({.nu = StoichiometricMatrix(possible, reactions.Compounds().size()),
                    .inletFlows = reactions.FeedFlows(),
                    .temperature = tank.temperature,
                    .temperatureIsUnknown = !tank.temperatureIsGiven,
                    .equilibriaOnly = std::ranges::none_of(
                        possible, [](const Reaction& reaction) { return reaction.Is(ReactionType::kKinetic); }),
                    .model = &model});
  RequireUnchanged();
  search.Report(solution, journal);
  model.Settle(solution.trial);
  for (std::size_t r = 0; r < possible.size(); ++r)
    ReportExtent(possible[r], solution.trial.extents[static_cast<Eigen::Index>(r)], model.Results()[r], journal);
  return solution.trial;
}

std::optional<double> CCSTR::FlashSolution(StreamState out, const HeatSource& source, double feedEnthalpyFlow,
                                           double heatOfReaction) {
  try {
    product.FlashAtTemperature(out);
  } catch (Failure& failure) {
    failure.error.description = "TP flash failed: " + failure.error.description;
    throw;
  }
  product.TakeOverTemperature("Failed to get temperature at solution from outlet port: ");
  if (!heat.IsIsothermal()) return source.duty;
  try {
    return heat.ProductEnthalpyFlow() - feedEnthalpyFlow + heatOfReaction;
  } catch (const Failure& failure) {
    journal.Note("Warning: Failed to get " + heat.Enthalpy().Text() + " from outlet: " + failure.error.description);
    return std::nullopt;
  }
}

}  // namespace morvelan
