#include "host/reactions/ReactionProperties.h"

#include <algorithm>
#include <cmath>

#include "com/Text.h"
#include "host/file/Nearest.h"
#include "host/file/NumberText.h"
#include "host/objects/HostError.h"

namespace morvelan::host {
namespace {

struct NamedProperty {
  ReactionProperty property;
  const char* name;
};

constexpr NamedProperty kReactionProperties[] = {
    {ReactionProperty::kRate, "reactionRate"},
    {ReactionProperty::kEquilibriumConstant, "chemicalEquilibriumConstant"},
    {ReactionProperty::kEnthalpy, "enthalpyOfReaction"}};

[[noreturn]] void FailKind(const Reaction& reaction, ReactionProperty property) {
  throw HostError(kECapeInvalidArgument, "reaction \"" + reaction.id + "\" is " +
                                             (reaction.IsKinetic() ? "a kinetic" : "an equilibrium") +
                                             " reaction and has no " + NameOf(property));
}

double Finite(double value, const Reaction& reaction, ReactionProperty property) {
  if (!std::isfinite(value))
    throw HostError(kECapeSolvingError, std::string(NameOf(property)) + " of reaction \"" + reaction.id +
                                            "\" is not finite at these conditions");
  return value;
}

double RateOf(const RateLaw& law, ConcentrationBasis basis, PhaseConditions& conditions) {
  double rate = law.preExponential * std::exp(-law.activationEnergy / (kGasConstant * conditions.Temperature()));
  for (const auto& [compound, order] : law.orders) {
    if (order == 0) continue;
    const double x = conditions.MoleFractions()[compound];
    rate *= std::pow(x * conditions.AmountPerFraction(basis, compound), order);
  }
  return rate;
}

double NetRate(const Reaction& reaction, PhaseConditions& conditions) {
  const auto* kinetics = std::get_if<Kinetics>(&reaction.law);
  if (!kinetics) FailKind(reaction, ReactionProperty::kRate);
  (void)conditions.MoleFractions();  // fails without the phase, also for a reaction of order zero
  double rate = RateOf(kinetics->forward, reaction.basis, conditions);
  if (kinetics->reverse) rate -= RateOf(*kinetics->reverse, reaction.basis, conditions);
  return rate;
}

}  // namespace

ReactionProperty ReactionPropertyByName(const std::string& name) {
  const auto* found = std::ranges::find_if(
      kReactionProperties, [&](const NamedProperty& known) { return com::EqualNoCase(known.name, name); });
  if (found != std::end(kReactionProperties)) return found->property;
  throw HostError(kECapeInvalidArgument,
                  "reaction property \"" + name + "\" is unknown; known are " + Joined(NamesOf(kReactionProperties)));
}

const char* NameOf(ReactionProperty property) {
  return std::ranges::find(kReactionProperties, property, &NamedProperty::property)->name;
}

double ReactionCalculator::Value(ReactionProperty property, const Reaction& reaction,
                                 PhaseConditions& conditions) const {
  if (property == ReactionProperty::kEnthalpy) return Finite(Enthalpy(reaction, conditions), reaction, property);
  if (property == ReactionProperty::kRate) return Finite(NetRate(reaction, conditions), reaction, property);
  const double lnK = Finite(LnEquilibriumConstant(reaction, conditions), reaction, property);
  const double K = std::exp(lnK);
  if (!std::isnormal(K))
    throw HostError(kECapeSolvingError, std::string(NameOf(property)) + " of reaction \"" + reaction.id +
                                            "\" is beyond the range of numbers: its logarithm is " + NumberText(lnK));
  return K;
}

/// The Gibbs energies give K of ideal gases, Kp = exp(-sum of nu_i g_i / (R T)), in the activities y_i P / 1 bar. The
/// ratio of the amounts in the reaction's basis to these activities converts it to that basis, so that a mixture is at
/// equilibrium in all bases or in none.
double ReactionCalculator::LnEquilibriumConstant(const Reaction& reaction, PhaseConditions& conditions) const {
  if (reaction.IsKinetic()) FailKind(reaction, ReactionProperty::kEquilibriumConstant);
  const double T = conditions.Temperature();
  if (const auto* given = std::get_if<LnKCoefficients>(&reaction.law)) {
    const auto& [a, b, c, d] = given->values;
    return a + b / T + c * std::log(T) + d * T;
  }
  RequireFormation(reaction, ReactionProperty::kEquilibriumConstant);
  double lnK = -gases.GibbsEnergy(reaction.stoichiometry, T) / (kGasConstant * T);
  const double lnActivityPerFraction = std::log(conditions.Pressure() / kReferencePressure);
  for (const auto& [compound, nu] : reaction.stoichiometry)
    lnK += nu * (std::log(conditions.AmountPerFraction(reaction.basis, compound)) - lnActivityPerFraction);
  return lnK;
}

double ReactionCalculator::Enthalpy(const Reaction& reaction, PhaseConditions& conditions) const {
  if (reaction.enthalpy) return *reaction.enthalpy;
  RequireFormation(reaction, ReactionProperty::kEnthalpy);
  return gases.Enthalpy(reaction.stoichiometry, conditions.Temperature());
}

void ReactionCalculator::RequireFormation(const Reaction& reaction, ReactionProperty property) const {
  for (const auto& [compound, nu] : reaction.stoichiometry)
    if (!gases.HasFormation(compound))
      throw HostError(kECapeThrmPropertyNotAvailable, std::string(NameOf(property)) + " of reaction \"" + reaction.id +
                                                          "\" is not available: no formation properties are known of " +
                                                          thermodynamics.CompoundAt(compound).name);
}

}  // namespace morvelan::host
