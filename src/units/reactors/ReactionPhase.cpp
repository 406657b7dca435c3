#include "units/reactors/ReactionPhase.h"

#include <utility>

#include "framework/CalculationFailure.h"
#include "units/EnergyStream.h"

namespace morvelan {
namespace {

const std::vector<std::string> kUsualPhases = {"Vapor", "Liquid"};

}  // namespace

void ReactionPhase::Declare(UnitDeclarations& declare) {
  declare.Parameter(option, "Phase", "Phase of reactor volume in which the reactions take place", kUsualPhases, 1)
      .Unrestricted();
}

void ReactionPhase::FollowFeed(const InletStream& feed, bool usesThermo11) {
  if (!option.Exists()) return;  // a host may connect before the unit is initialized
  const void* const material = feed.Identity();
  if (material == listedMaterial && usesThermo11 == listedThermo11) return;
  std::vector<std::string> phases;
  try {
    if (material) phases = feed.PhaseLabels();
  } catch (const Failure&) {
    // A material that does not list its phases leaves the usual ones.
  }
  listedMaterial = phases.empty() ? nullptr : material;  // one without phases may have some later
  listedThermo11 = usesThermo11;
  option.SetChoices(phases.empty() ? kUsualPhases : std::move(phases));
}

PhaseLabel ReactionPhase::Label() const {
  if (option.Text().empty()) throw CalculationFailure("Expected a string value for reaction phase identifier");
  return PhaseLabel(option.Text());
}

void ReactionPhase::RequireOf(const std::vector<Reaction>& reactions) const {
  const PhaseLabel wanted = Label();
  for (const Reaction& reaction : reactions)
    if (reaction.phase != wanted)
      throw CalculationFailure("Phase for reaction \"" + reaction.name.Text() + "\" is \"" + reaction.phase.Text() +
                               "\"; the reactor is specified to operate in phase \"" + wanted.Text() +
                               "\". The reaction should not be selected for this reactor.");
}

void ReactionPhase::NoteOtherPhases(OutletStream& product, bool isIsothermal, Journal& journal) const {
  if (journal.IsQuiet()) return;
  const PhaseLabel wanted = Label();
  bool isPresent = false, hasOthers = false;
  for (const PhaseFraction& found : product.Phases()) (wanted.Is(found.phase) ? isPresent : hasOthers) = true;
  if (!isPresent)
    journal.Note("WARNING: Reaction phase \"" + wanted.Text() +
                 "\" is not present after equilibrium calculation at outlet");
  if (hasOthers)
    journal.Note("WARNING: Phases other than reaction phase \"" + wanted.Text() +
                 "\" are present at the reactor outlet after the equilibrium calculation");
  if ((!isPresent || hasOthers) && !isIsothermal)
    journal.Note("WARNING: Enthalpy balance may be incorrect due to phase equilibrium");
}

}  // namespace morvelan
