#include "units/reactors/CFixedConversionReactor.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "framework/ReportFormat.h"

namespace morvelan {
namespace {

// A conversion out of range is for the validation to explain.
constexpr double kLargestConversion = 1e20;
constexpr const char* kNotValidated = "unit not validated";
constexpr const char* kTable = "Reactions in order";

}  // namespace

CFixedConversionReactor::CFixedConversionReactor()
    : BaseReactor({.name = "FixedConversionReactor",
                   .description = "FixedConversionReactor - perform reactions using a specified conversion",
                   .about = "The fixed conversion reactor performs one or more reactions using a specified "
                            "conversion. The reactions are performed either serial (conversions apply to "
                            "concentrations after previous reaction) or parallel (conversions apply to inlet "
                            "concentrations). It either operates isothermally at specified temperature, or with "
                            "a specified heat duty (0 for adiabatic).",
                   .helpTopic = "fixedconversionreactor"}) {
  BeginDeclaration("Pressure drop over the reactor", "Reactor effluent temperature");
  EndDeclaration().MayHaveEmpty().ColumnOf(kTable);
  declare.Setting(keyCompounds, "reactionCompounds").MayHaveEmpty().ColumnOf(kTable).Label("Key compound");
  declare.Setting(conversions, "reactionConversions").ColumnOf(kTable).Label("Conversion");
  declare.Setting(isSerial, "serialReactions")
      .Label("In series", "Conversions apply to what the reaction before leaves");
}

void CFixedConversionReactor::SettingsChanged(const SettingsChange& change) {
  const Names& names = reactions.Selected();
  if (keyCompounds.size() != names.size() || conversions.size() != names.size()) throw Failure("array size mismatch");
  if (std::ranges::any_of(names, &std::string::empty)) throw Failure("empty strings");
  std::vector<DeclaredParameters::Further> wanted;
  for (std::size_t r = 0; r < names.size(); ++r)
    wanted.push_back({"Conversion " + keyCompounds[r] + " reaction " + names[r],
                      "Conversion of " + keyCompounds[r] + " in reaction " + names[r],
                      {-kLargestConversion, kLargestConversion}});
  declare.parameters.ReplaceFurther(wanted, kNotValidated);
  BaseReactor::SettingsChanged(change);
  for (std::size_t r = 0; r < names.size(); ++r) {
    CParameter& conversion = *declare.parameters.FurtherList()[r];
    conversion.SetResult(conversions[r]);
    // The reactions of a loaded selection are still to be found, also where the unit had them before.
    if (change.IsFromStream()) conversion.SetUnavailable(kNotValidated);
  }
}

void CFixedConversionReactor::InputsChanged() {
  const auto& parameters = declare.parameters.FurtherList();
  for (std::size_t r = 0; r < parameters.size(); ++r) conversions.Set(r, std::get<double>(parameters[r]->Value()));
}

void CFixedConversionReactor::ResolveAll() {
  Resolve({}, "", [&](std::size_t r, const Reaction& reaction) {
    declare.parameters.FurtherList().at(r)->SetUnavailable(nullptr);
    return FindFault(r, reaction);
  });
}

std::string CFixedConversionReactor::FindFault(std::size_t r, const Reaction& reaction) const {
  const std::string& key = keyCompounds[r];
  if (key.empty()) return "no compound specified to which conversion applies";
  if (!TakesPart(reaction, key)) return "compound specified to which conversion applies does not take part in reaction";
  if (CoefficientOf(reaction, key) == 0)
    return "compound specified to which conversion applies does not take part in reaction (zero "
           "stoichiometric coefficient)";
  return conversions[r] >= 0 && conversions[r] <= 1 ? "" : "conversion must be between zero and unity";
}

bool CFixedConversionReactor::ValidateUnit(std::string& message) {
  if (!HasMaterials(message)) return false;
  if (!package)
    message = IsCalculating() ? kNoReactionPackage : "A reaction package has not been selected";
  else if (reactions.Selected().empty())
    message = "No reaction specified";
  return message.empty() && HasReactions(message) && heat.HasSpecification(message) && HasNumbers(message);
}

void CFixedConversionReactor::React() {
  const HeatSource source = heat.ReadSource();
  StreamState out = feed.State();
  if (out.totalFlow < 0) throw CalculationFailure("underflow", "Negative flow on inlet");
  out.pressure = PressureAfterDrop(false);
  if (out.totalFlow == 0) return heat.Bypass(out.pressure, source);

  const Converted converted = Convert();
  ReportReactions(converted);
  out.totalFlow = std::accumulate(converted.flows.begin(), converted.flows.end(), 0.0);
  if (!(out.totalFlow > 0) || !std::isfinite(out.totalFlow))
    throw CalculationFailure("The reactions leave no flow at the outlet");
  for (std::size_t j = 0; j < out.composition.size(); ++j) out.composition[j] = converted.flows[j] / out.totalFlow;

  // All is read before the outlet is written, so that a failure leaves it as it was.
  const double feedEnthalpyFlow = heat.FeedEnthalpyFlow();
  double heatOfReaction = 0;
  if (heat.CountsReactions()) {
    const std::vector<double> heats = reactions.HeatsAtFeed(reactions.Resolved());
    heatOfReaction = std::inner_product(converted.extents.begin(), converted.extents.end(), heats.begin(), 0.0);
  }
  const std::optional<double> duty = heat.Close(out, source, feedEnthalpyFlow, heatOfReaction);
  heat.WarnOfInfeasibility(source);
  heat.Publish(duty);
  NotePhases();
}

Converted CFixedConversionReactor::Convert() const {
  const StreamState& in = feed.State();
  std::vector<double> flows;
  for (const double fraction : in.composition) flows.push_back(fraction * in.totalFlow);
  std::vector<ConvertingReaction> converting;
  for (std::size_t r = 0; r < reactions.Resolved().size(); ++r)
    converting.push_back({&reactions.Resolved()[r], keyCompounds[r], conversions[r]});
  if (isSerial || converting.size() == 1) return ConvertInSeries(converting, std::move(flows));
  return ConvertInParallel(converting, flows, reactions.Compounds());
}

void CFixedConversionReactor::ReportReactions(const Converted& converted) {
  journal.Section(std::string("reactions, ") + (isSerial ? "serial" : "parallel"));
  for (std::size_t r = 0; r < converted.extents.size(); ++r) {
    journal.Parameter(*declare.parameters.FurtherList()[r]);
    journal.Line("Extent of reaction \"" + reactions.Selected()[r] + "\":\t" +
                 FormatValue(converted.extents[r], kMolarFlowDimension));
  }
}

/// Says where the phases at the outlet are not those in which the reactions are thought to take place.
void CFixedConversionReactor::NotePhases() {
  if (journal.IsQuiet()) return;
  const std::vector<PhaseFraction> present = product.Phases();
  if (present.size() > 1) {
    std::string list;
    for (const PhaseFraction& phase : present) list += (list.empty() ? "" : ", ") + phase.phase;
    journal.WarnNamed(" warning: Multiple phases (" + list +
                      ") are present in reactor. All reactions will be performed on OVERALL phase.");
  }
  if (present.size() != 1) return;
  for (const Reaction& reaction : reactions.Resolved())
    if (!reaction.phase.Is(present[0].phase) && !reaction.phase.IsOverall())
      // (Worded so, and without a blank in front: hosts search their logs for it.)
      journal.WarnNamed("warning: phase defined for reaction " + reaction.name.Text() + " is " + reaction.phase.Text() +
                        " but phase present is " + present[0].phase + ". Reaction is be performed anyway.");
}

}  // namespace morvelan
