#include "units/reactors/CCSTR.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "framework/ReportFormat.h"
#include "material/MissingValue.h"
#include "units/reactors/Stoichiometry.h"

namespace morvelan {
namespace {

constexpr std::string_view kScope = "Calculate";
constexpr std::string_view kInterface = "ICapeUnit";
constexpr std::string_view kUnitKind = "CSTR";

/// What rounding leaves of a sum of stoichiometric coefficients.
constexpr double kEqualMoles = 1e-12;

enum CstrParameter : std::size_t {
  kReactorVolume = kFirstOwnParameter,
  kCatalystMass,
  kCatalystVolume,
  kCatalystDensity,
  kPhase
};

const std::vector<std::string>& UsualPhases() {
  static const std::vector<std::string> phases = {"Vapor", "Liquid"};
  return phases;
}

ParameterDeclaration NotSpecified(const char* name, double lowest, double highest, const Dimensionality& dimension) {
  return {.name = name,
          .description = name,
          .defaultValue = kMissingValue,
          .lowerBound = lowest,
          .upperBound = highest,
          .dimensionality = dimension};
}

std::vector<ParameterDeclaration> OwnParameters() {
  std::vector<ParameterDeclaration> own = {
      NotSpecified("Reactor volume", 0, 1e5, kVolumeDimension),
      NotSpecified("Catalyst mass", 0, 1e8, kMassDimension),
      NotSpecified("Catalyst volume", 0, 1e5, kVolumeDimension),
      NotSpecified("Catalyst density", 10, 1e5, kMassDensityDimension),
      {.name = "Phase",
       .description = "Phase of reactor volume in which the reactions take place",
       .defaultValue = "Liquid",
       .options = UsualPhases(),
       .restrictedToList = false},
  };
  std::ranges::move(SolutionParameters(), std::back_inserter(own));
  return own;
}

const std::vector<ParameterDeclaration> kParameters =
    ReactorParameters("Reactor pressure drop", "Reactor temperature", OwnParameters());

const UnitDeclaration kDeclaration = {
    .name = "CSTR",
    .description =
        "Continuously stirred tank reactor - single phase mixed reactor for equilibrium and kinetic "
        "reactions",
    .about =
        "The CSTR reactor performs kinetic and equilibrium reactions in a single specified phase. It either "
        "operates isothermally at specified temperature, or with a specified heat duty (0 for adiabatic).",
    .helpTopic = "cstr",
    .ports = kReactorPorts,
    .parameters = kParameters,
    .reports = kLastRun,
};

bool IsKinetic(const ReactionRecord& reaction, CapeReactionRateBasis basis) {
  return reaction.type == CAPE_KINETIC && reaction.rateBasis == basis;
}

/// Densities cancel out of the activity product of as many products as reactants.
ActivityBasis Reduced(ActivityBasis basis, const ReactionRecord& reaction) {
  const auto& nu = reaction.coefficients;
  const double sum = std::accumulate(nu.begin(), nu.end(), 0.0);
  if (reaction.type != CAPE_EQUILIBRIUM || std::abs(sum) > kEqualMoles) return basis;
  if (basis == ActivityBasis::kMolarity) return ActivityBasis::kMoleFraction;
  if (basis == ActivityBasis::kConcentration) return ActivityBasis::kMassFraction;
  return basis;
}

}  // namespace

CCSTR::CCSTR() : BaseReactorConstrained(kDeclaration, kUnitKind) {}

// ---- What is given

/// The phases to choose from are those of the feed, once there is one; others are possible.
void CCSTR::InputsChanged() {
  BaseReactorConstrained::InputsChanged();
  if (Parameters().size() <= kPhase) return;  // the host is early: there is no face yet
  IDispatch* const material = Inlet(0).ConnectedObject().Get();
  if (material == listedMaterial && UsesThermo11() == listedThermo11) return;
  std::vector<std::string> phases;
  try {
    if (material) phases = Inlet(0).GetPhaseLabels();
  } catch (const Failure&) {
    // A material that can't tell leaves the usual ones.
  }
  listedMaterial = phases.empty() ? nullptr : material;  // one without phases may have some later
  listedThermo11 = UsesThermo11();
  Parameter(kPhase).SetOptions(phases.empty() ? UsualPhases() : std::move(phases));
}

bool CCSTR::MayBeUnset(std::size_t position) const {
  return position >= kReactorVolume && position <= kCatalystDensity;
}

std::string CCSTR::Phase() {
  const auto* phase = std::get_if<std::string>(&Parameter(kPhase).Value());
  if (!phase || phase->empty())
    throw Failure("Expected a string value for reaction phase identifier", kScope, kInterface);
  return *phase;
}

CatalystSpecification CCSTR::Catalyst() {
  const auto given = [&](std::size_t position) -> std::optional<double> {
    const double value = std::get<double>(Parameter(position).Value());
    return IsMissing(value) ? std::nullopt : std::optional(value);
  };
  return {.reactorVolume = given(kReactorVolume),
          .mass = given(kCatalystMass),
          .volume = given(kCatalystVolume),
          .density = given(kCatalystDensity)};
}

// ---- Validation

void CCSTR::ResolveAll() {
  ResolveSelected({.wantsKind = true}, "\"");
  if (const std::string fault = FindForeignPhase(); !fault.empty()) throw Failure(fault, kScope, kInterface);
}

std::string CCSTR::FindForeignPhase() {
  const std::string phase = Phase();
  for (const ReactionRecord& reaction : records)
    if (!com::EqualNoCase(reaction.phase, phase))
      return "Phase for reaction \"" + reaction.name + "\" is \"" + reaction.phase +
             "\"; the reactor is specified to operate in phase \"" + phase +
             "\". The reaction should not be selected for this reactor.";
  return {};
}

std::string CCSTR::FindDependence() const {
  std::string sets;
  std::size_t setCount = 0;
  for (const auto& set : DependentSets(StoichiometricMatrix(records, compounds.size()))) {
    // Rates tell how far each of several kinetic reactions goes, however they depend on one another.
    if (std::ranges::none_of(set, [&](std::size_t r) { return records[r].type == CAPE_EQUILIBRIUM; })) continue;
    sets += (setCount++ ? " and" : "") + (" of reactions " + JoinedNames(records, set));
  }
  if (setCount == 0) return {};
  return "The stoichiometric coefficients" + sets +
         " are linearly dependent and contain at least one equilibrium reaction." +
         (setCount == 1 ? " One of these reactions must be removed" : " A reaction from each set must be removed.");
}

std::string CCSTR::FindCatalystFault() {
  const auto has = [&](CapeReactionRateBasis basis) {
    return std::ranges::any_of(records, [&](const ReactionRecord& reaction) { return IsKinetic(reaction, basis); });
  };
  return Catalyst().FindFault(has(CAPE_HOMOGENEOUS), has(CAPE_HETEROGENEOUS));
}

bool CCSTR::ValidateUnit(std::string& message) {
  if (!HasMaterials(message)) return false;
  if (SelectedReactions().empty())
    message = "No reaction specified";
  else if (IsCalculating() && !HasReactionPackage())
    message = kNoReactionPackage;
  if (!message.empty() || !HasReactions(message)) return false;
  message = FindDependence();
  if (!message.empty() || !HasHeatSpecification(message)) return false;
  message = FindCatalystFault();
  return message.empty() && BaseReactorConstrained::ValidateUnit(message);
}

// ---- Calculation

void CCSTR::React() {
  const HeatDutyType type = HeatType();
  const HeatSource source = ReadHeatSource("\t");
  StirredTank tank{.phase = Phase()};
  ReportLine("Reaction phase:\t" + tank.phase);
  tank.pressure = ReactorPressure(true);
  Outlet(0).State().pressure = tank.pressure;
  if (!HasFeed(type, source)) return;
  const CatalystSpecification catalyst = Catalyst().Completed();
  tank.volume = catalyst.EffectiveVolume().value_or(0);
  tank.catalystMass = catalyst.mass.value_or(0);
  ReportVolumes(catalyst);
  std::vector<ReactionRecord> reactions = records;
  LeaveOutIdle(reactions);

  const double feedEnthalpyFlow = FeedEnthalpyFlow();
  tank.temperatureIsGiven = type == kIsothermal;
  tank.temperature = tank.temperatureIsGiven ? GivenTemperature() : Inlet(0).State().temperature;
  tank.enthalpyFlow = feedEnthalpyFlow + source.duty;
  tank.enthalpyProperty = EnthalpyProperty();
  const bool countsHeats = EnthalpyKind() == kUseEnthalpyAndReaction;
  tank.heats = countsHeats ? HeatsOfReaction(reactions) : std::vector<double>(reactions.size(), 0.0);
  ReportReactions(reactions);
  for (const ReactionRecord& reaction : reactions) tank.bases.push_back(Reduced(BasisOf(reaction), reaction));

  std::optional<double> duty;
  if (reactions.empty()) {
    SetProductFlows(EquationsOf(reactions).inletFlows);
    duty = CloseHeatBalance(type, source, feedEnthalpyFlow, 0);
  } else {
    const ExtentTrial solution = SolveTank(reactions, tank);
    const double heatOfReaction =
        std::inner_product(tank.heats.begin(), tank.heats.end(), solution.extents.begin(), 0.0);
    if (countsHeats) ReportLine("total heat of reaction:\t" + FormatNumber(heatOfReaction, 6) + " W");
    SetProductFlows(solution.flows);
    duty = FlashSolution(type, source, solution.temperature, feedEnthalpyFlow, heatOfReaction);
    WarnOfOtherPhases(type);
  }
  WarnOfInfeasibleHeat(source, Outlet(0).State().temperature);
  PublishHeat(type, duty);
}

void CCSTR::ReportVolumes(const CatalystSpecification& catalyst) {
  const auto line = [&](const char* what, std::optional<double> value, const Dimensionality& dimension) {
    if (value) ReportLine(std::string(what) + ":\t" + FormatValue(*value, dimension));
  };
  line("Reactor volume", catalyst.reactorVolume, kVolumeDimension);
  line("Volume occupied by catalyst", catalyst.volume, kVolumeDimension);
  line("Effective reactor volume", catalyst.EffectiveVolume(), kVolumeDimension);
  line("Catalyst mass", catalyst.mass, kMassDimension);
}

void CCSTR::ReportReactions(const std::vector<ReactionRecord>& reactions) {
  for (const ReactionRecord& reaction : reactions) {
    const ActivityBasis basis = BasisOf(reaction);
    std::string words = BasisWord(reaction);
    if (reaction.type == CAPE_KINETIC)
      words += reaction.rateBasis == CAPE_HETEROGENEOUS ? ", heterogeneous" : ", homogeneous";
    ReportLine("basis for reaction \"" + reaction.name + "\":\t" + words);
    if (Reduced(basis, reaction) != basis)
      Note(basis == ActivityBasis::kMolarity
               ? "Reducing molarity basis to moleFraction basis; all densities cancel out"
               : "Reducing concentration basis to massFraction basis; all densities cancel out");
  }
}

ExtentTrial CCSTR::SolveTank(const std::vector<ReactionRecord>& reactions, const StirredTank& tank) {
  ReactingMixture mixture = MixtureOfFeed();
  StirredTankEquations tankEquations(reactions, tank, mixture, Inlet(0).State().totalFlow);
  ExtentEquations equations = EquationsOf(reactions);
  equations.temperature = tank.temperature;
  equations.temperatureIsUnknown = !tank.temperatureIsGiven;
  equations.equilibriaOnly =
      std::ranges::none_of(reactions, [](const auto& reaction) { return reaction.type == CAPE_KINETIC; });
  equations.residual = [&](const ExtentTrial& trial, std::span<double> residuals, std::string& why) {
    return tankEquations.Evaluate(trial, residuals, why);
  };
  equations.balancedTemperature = [&](const ExtentTrial& trial) { return tankEquations.BalancedTemperature(trial); };
  const ExtentTrial solution = Solve(equations).trial;
  std::vector<double> residuals(reactions.size() + 1);
  std::string why;
  if (!tankEquations.IsAt(solution) && !tankEquations.Evaluate(solution, residuals, why))
    throw Failure("Solution failed: " + why, kScope, kInterface);
  for (std::size_t r = 0; r < reactions.size(); ++r) {
    const std::string quoted = "reaction \"" + reactions[r].name + "\":\t";
    const double result = tankEquations.Results()[r];
    ReportLine("Extent of " + quoted +
               FormatValue(solution.extents[static_cast<Eigen::Index>(r)], kMolarFlowDimension));
    if (reactions[r].type == CAPE_EQUILIBRIUM)
      ReportLine("Equilibrium constant " + quoted + FormatNumber(result));
    else
      ReportLine("Reaction rate " + quoted + FormatNumber(result) +
                 (IsKinetic(reactions[r], CAPE_HETEROGENEOUS) ? " mol/s/kg catalyst" : " mol/s"));
  }
  return solution;
}

std::optional<double> CCSTR::FlashSolution(HeatDutyType type, const HeatSource& source, double temperature,
                                           double feedEnthalpyFlow, double heatOfReaction) {
  Outlet(0).State().temperature = temperature;
  try {
    Flash(Outlet(0), names::kTP);
  } catch (Failure& failure) {
    failure.error.description = "TP flash failed: " + failure.error.description;
    throw;
  }
  TakeOverTemperature(Outlet(0), "Failed to get temperature at solution from outlet port: ");
  if (type != kIsothermal) return source.duty;
  try {
    return ProductEnthalpyFlow() - feedEnthalpyFlow + heatOfReaction;
  } catch (const Failure& failure) {
    Note("Warning: Failed to get " + com::ToUtf8(EnthalpyProperty()) + " from outlet: " + failure.error.description);
    return std::nullopt;
  }
}

void CCSTR::WarnOfOtherPhases(HeatDutyType type) {
  if (simplifiedModelRequested) return;
  const std::string phase = Phase();
  bool isPresent = false, hasOthers = false;
  for (const material::PhaseFraction& found :
       ForwardError(kScope, kInterface, [&] { return Outlet(0).GetPhaseFractions(); })) {
    if (!(found.fraction > 0)) continue;
    (com::EqualNoCase(found.phase, phase) ? isPresent : hasOthers) = true;
  }
  if (!isPresent)
    Note("WARNING: Reaction phase \"" + phase + "\" is not present after equilibrium calculation at outlet");
  if (hasOthers)
    Note("WARNING: Phases other than reaction phase \"" + phase +
         "\" are present at the reactor outlet after the equilibrium calculation");
  if ((!isPresent || hasOthers) && type != kIsothermal)
    Note("WARNING: Enthalpy balance may be incorrect due to phase equilibrium");
}

}  // namespace morvelan
