#include "units/reactors/ReactingMixture.h"

#include <algorithm>
#include <cmath>

namespace morvelan {
namespace {

using Basis = TrialMaterial::Basis;

constexpr double kSmallest = 1e-47;
constexpr double kGreatest = 1e200;

constexpr const char* kNoMaterial = "Failed to pass the material to the reaction package: ";

/// product * a^nu, for the usual coefficients without rounding errors of their own.
double TimesPower(double product, double a, double nu) {
  if (nu == 1) return product * a;
  if (nu == -1) return product / a;
  if (nu == 2) return product * (a * a);
  if (nu == -2) return product / (a * a);
  return product * std::pow(a, nu);
}

}  // namespace

double ClampedLog(double value) {
  if (value < kSmallest) return std::log(kSmallest);
  if (value > kGreatest) return std::log(kGreatest);
  return std::log(value);
}

ReactingMixture::ReactingMixture(TrialMaterial content, const ReactionPackage& package)
    : material(std::move(content)), properties(package, material, kNoMaterial) {}

void ReactingMixture::StateChanged() {
  for (Activities& known : activities) known.isCurrent = false;
  properties.HandOver(kNoMaterial);
}

double ReactingMixture::LogActivityProduct(const Reaction& reaction, ActivityBasis basis) {
  const std::vector<double>& a = ActivitiesIn(reaction.phase, basis);
  double product = 1;
  for (std::size_t i = 0; i < reaction.coefficients.size(); ++i)
    product =
        TimesPower(product, a.at(static_cast<std::size_t>(reaction.compoundIndices[i])), reaction.coefficients[i]);
  return ClampedLog(product);
}

const std::vector<double>& ReactingMixture::ActivitiesIn(const PhaseLabel& phase, ActivityBasis basis) {
  auto known = std::ranges::find_if(
      activities, [&](const Activities& candidate) { return candidate.basis == basis && candidate.phase == phase; });
  if (known == activities.end()) known = activities.insert(known, Activities{.phase = phase, .basis = basis});
  if (known->isCurrent) return known->values;
  const bool byMass = basis == ActivityBasis::kConcentration || basis == ActivityBasis::kMassFraction;
  const Basis amounts = byMass ? Basis::kMass : Basis::kMole;
  material.ReadFractions(phase, amounts, known->values, [&] {
    return std::string("Failed to get ") + (byMass ? "mass" : "mole") + " fractions for phase " + phase.Text() + ": ";
  });
  if (basis == ActivityBasis::kMolarity || basis == ActivityBasis::kConcentration) {
    const double density = Density(phase, amounts);
    for (double& value : known->values) value *= density;
  }
  known->isCurrent = true;
  return known->values;
}

double ReactingMixture::Density(const PhaseLabel& phase, Basis basis) {
  const bool byMass = basis == Basis::kMass;
  const auto opening = [&] {
    return std::string("Failed to calculate ") + (byMass ? "mass " : "") + "density for phase " + phase.Text() + ": ";
  };
  const auto invalid = [&] {
    return std::string("Invalid value for ") + (byMass ? "" : "molar ") + "density for phase " + phase.Text() + ": ";
  };
  PhaseLabel only;
  if (phase.IsOverall()) {
    // Hosts give the density of a phase, but not of several phases together.
    const std::vector<PhaseFraction> present = material.Phases();
    if (present.size() != 1) throw Failure(opening() + "the mixture is not a single phase");
    only = PhaseLabel(present[0].phase);
  }
  const double density =
      material.PhaseProperty(property::kDensity, phase.IsOverall() ? only : phase, basis, opening, invalid);
  if (density <= 0) throw Failure(invalid() + "value is not positive");
  return density;
}

double ReactingMixture::ReactionProperty(const Property& which, const Reaction& reaction) {
  const auto what = [&] { return which.Text() + " for reaction " + reaction.name.Text() + ": "; };
  return properties.Read(
      which, reaction, [&] { return "Failed to obtain " + what(); }, [&] { return "Invalid format for " + what(); });
}

double ReactingMixture::EquilibriumConstant(const Reaction& reaction) {
  return ReactionProperty(property::kChemicalEquilibriumConstant, reaction);
}

double ReactingMixture::Rate(const Reaction& reaction) { return ReactionProperty(property::kReactionRate, reaction); }

}  // namespace morvelan
