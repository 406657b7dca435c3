#include "units/reactors/CFixedConversionReactor.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "framework/ReportFormat.h"
#include "material/MissingValue.h"
#include "material/Names.h"

namespace morvelan {
namespace {

constexpr std::string_view kScope = "Calculate";
constexpr std::string_view kInterface = "ICapeUnit";
constexpr std::string_view kUnitKind = "FixedConversionReactor";

const std::vector<ParameterDeclaration> kParameters =
    ReactorParameters("Pressure drop over the reactor", "Reactor effluent temperature");

const UnitDeclaration kDeclaration = {
    .name = "FixedConversionReactor",
    .description = "FixedConversionReactor - perform reactions using a specified conversion",
    .about =
        "The fixed conversion reactor performs one or more reactions using a specified conversion. The "
        "reactions are performed either serial (conversions apply to concentrations after previous reaction) "
        "or parallel (conversions apply to inlet concentrations). It either operates isothermally at "
        "specified temperature, or with a specified heat duty (0 for adiabatic).",
    .helpTopic = "fixedconversionreactor",
    .ports = kReactorPorts,
    .parameters = kParameters,
    .reports = kLastRun,
};

}  // namespace

CFixedConversionReactor::CFixedConversionReactor() : BaseReactor(kDeclaration, kUnitKind) {}

// ---- Validation

void CFixedConversionReactor::ResolveAll() {
  std::vector<ReactionRequest> requests(selection.size());
  for (std::size_t r = 0; r < requests.size(); ++r) requests[r].name = selection[r].name;
  Resolve(requests, "", [&](std::size_t r, const ReactionRecord& record) {
    selection.at(r).conversion->SetUnavailable(nullptr);
    return FindFault(selection[r], record);
  });
}

std::string CFixedConversionReactor::FindFault(const SelectedReaction& selected, const ReactionRecord& record) {
  if (selected.keyCompound.empty()) return "no compound specified to which conversion applies";
  if (!TakesPart(record, selected.keyCompound))
    return "compound specified to which conversion applies does not take part in reaction";
  if (CoefficientOf(record, selected.keyCompound) == 0)
    return "compound specified to which conversion applies does not take part in reaction (zero "
           "stoichiometric coefficient)";
  const double conversion = selected.Conversion();
  return conversion >= 0 && conversion <= 1 ? "" : "conversion must be between zero and unity";
}

bool CFixedConversionReactor::ValidateUnit(std::string& message) {
  if (!HasMaterials(message)) return false;
  if (!HasReactionPackage())
    message = IsCalculating() ? kNoReactionPackage : "A reaction package has not been selected";
  else if (selection.empty())
    message = "No reaction specified";
  return message.empty() && HasReactions(message) && HasHeatSpecification(message) &&
         BaseReactor::ValidateUnit(message);
}

// ---- Calculation

void CFixedConversionReactor::React() {
  const HeatDutyType type = HeatType();
  const HeatSource source = ReadHeatSource();
  const material::StreamState& feed = Inlet(0).State();
  if (feed.totalFlow < 0) throw Failure(UnitError{"underflow", "Negative flow on inlet", kScope, kInterface});
  material::StreamState& product = Outlet(0).State();
  product.pressure = ReactorPressure(false);
  if (feed.totalFlow == 0) return BypassFeed(type, source);

  const Converted converted = Convert();
  ReportReactions(converted);
  product.totalFlow = std::accumulate(converted.flows.begin(), converted.flows.end(), 0.0);
  if (!(product.totalFlow > 0) || !std::isfinite(product.totalFlow))
    throw Failure("The reactions leave no flow at the outlet", kScope, kInterface);
  for (std::size_t j = 0; j < compounds.size(); ++j) product.composition[j] = converted.flows[j] / product.totalFlow;

  // All is read before the outlet is written, so that a failure leaves it as it was.
  const double feedEnthalpyFlow = FeedEnthalpyFlow();
  const double heatOfReaction = TotalHeatOfReaction(converted.extents);
  const std::optional<double> duty = CloseHeatBalance(type, source, feedEnthalpyFlow, heatOfReaction);
  WarnOfInfeasibleHeat(source, product.temperature);
  PublishHeat(type, duty);
  NotePhases();
}

Converted CFixedConversionReactor::Convert() const {
  const material::StreamState& feed = inlets[0]->State();
  std::vector<double> flows;
  for (const double fraction : feed.composition) flows.push_back(fraction * feed.totalFlow);
  std::vector<ConvertingReaction> reactions;
  for (std::size_t r = 0; r < records.size(); ++r)
    reactions.push_back({&records[r], selection[r].keyCompound, selection[r].Conversion()});
  if (serialReactions || reactions.size() == 1) return ConvertInSeries(reactions, std::move(flows));
  return ConvertInParallel(reactions, flows, compounds);
}

void CFixedConversionReactor::ReportReactions(const Converted& converted) {
  ReportLine(std::string("\r\n+++ reactions, ") + (serialReactions ? "serial" : "parallel") + " +++\r\n");
  for (std::size_t r = 0; r < records.size(); ++r) {
    ReportParameter(*selection[r].conversion);
    ReportLine("Extent of reaction \"" + records[r].name + "\":\t" +
               FormatValue(converted.extents[r], kMolarFlowDimension));
  }
}

double CFixedConversionReactor::TotalHeatOfReaction(const std::vector<double>& extents) {
  if (EnthalpyKind() != kUseEnthalpyAndReaction) return 0;
  const std::vector<double> heats = HeatsOfReaction(records);
  return std::inner_product(extents.begin(), extents.end(), heats.begin(), 0.0);
}

/// Says where the phases at the outlet are not those in which the reactions are thought to take place.
void CFixedConversionReactor::NotePhases() {
  if (simplifiedModelRequested) return;
  std::vector<std::string> present;
  for (const material::PhaseFraction& phase :
       ForwardError(kScope, kInterface, [&] { return Outlet(0).GetPhaseFractions(); }))
    if (phase.fraction > 0) present.push_back(phase.phase);
  if (present.size() > 1) {
    std::string list;
    for (const std::string& phase : present) list += (list.empty() ? "" : ", ") + phase;
    WarnAs(Kind(), " warning: Multiple phases (" + list +
                       ") are present in reactor. All reactions will be performed on OVERALL phase.");
  }
  if (present.size() != 1) return;
  for (const ReactionRecord& reaction : records)
    if (!com::EqualNoCase(reaction.phase, present[0]) && !com::EqualNoCase(reaction.phase, "Overall"))
      // (Worded so, and without a blank in front: hosts search their logs for it.)
      WarnAs(Kind(), "warning: phase defined for reaction " + reaction.name + " is " + reaction.phase +
                         " but phase present is " + present[0] + ". Reaction is be performed anyway.");
}

}  // namespace morvelan
