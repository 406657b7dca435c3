#include "units/reactors/ReactingMixture.h"

#include <algorithm>
#include <cmath>

#include "com/Text.h"
#include "material/Names.h"

namespace morvelan {
namespace {

constexpr double kSmallest = 1e-47;
constexpr double kGreatest = 1e200;

constexpr const char* kNoMaterial = "Failed to pass the material to the reaction package: ";

/// a^nu, for the usual coefficients without rounding errors of their own.
double Raised(double product, double a, double nu) {
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

ReactingMixture::ReactingMixture(TrialMaterial content, const com::Ref<ICapeReactionProperties>& package)
    : material(std::move(content)), properties(package, material.Object(), kNoMaterial) {}

void ReactingMixture::StateChanged() {
  known.clear();
  properties.HandOver(kNoMaterial);
}

double ReactingMixture::LogActivityProduct(const ReactionRecord& reaction, ActivityBasis basis) {
  const std::vector<double>& a = ActivitiesIn(reaction.phase, basis);
  double product = 1;
  for (std::size_t i = 0; i < reaction.coefficients.size(); ++i)
    product = Raised(product, a.at(static_cast<std::size_t>(reaction.compoundIndices[i])), reaction.coefficients[i]);
  return ClampedLog(product);
}

const std::vector<double>& ReactingMixture::ActivitiesIn(const std::string& phase, ActivityBasis basis) {
  const auto found = std::ranges::find_if(known, [&](const Activities& activities) {
    return activities.basis == basis && com::EqualNoCase(activities.phase, phase);
  });
  if (found != known.end()) return found->values;
  const bool byMass = basis == ActivityBasis::kConcentration || basis == ActivityBasis::kMassFraction;
  std::vector<double> values = material.Fractions(
      phase, byMass ? names::kMass : names::kMole,
      std::string("Failed to get ") + (byMass ? "mass" : "mole") + " fractions for phase " + phase + ": ");
  if (basis == ActivityBasis::kMolarity || basis == ActivityBasis::kConcentration) {
    const double density = Density(phase, basis);
    for (double& value : values) value *= density;
  }
  known.push_back({phase, basis, std::move(values)});
  return known.back().values;
}

double ReactingMixture::Density(const std::string& phase, ActivityBasis basis) {
  const bool byMass = basis == ActivityBasis::kConcentration;
  const std::string opening =
      std::string("Failed to calculate ") + (byMass ? "mass " : "") + "density for phase " + phase + ": ";
  const std::string invalid =
      std::string("Invalid value for ") + (byMass ? "" : "molar ") + "density for phase " + phase + ": ";
  std::string where = phase;
  if (com::EqualNoCase(phase, "Overall")) {
    // Hosts know densities of phases only; that of a mixture of them would mean little to a reaction.
    const std::vector<std::string> present = material.PresentPhases();
    if (present.size() != 1) throw Failure(opening + "the mixture is not a single phase");
    where = present[0];
  }
  const double density =
      material.Property(names::kDensity, where, byMass ? names::kMass : names::kMole, opening, invalid);
  if (density <= 0) throw Failure(invalid + "value is not positive");
  return density;
}

double ReactingMixture::ReactionProperty(com::Name property, const ReactionRecord& reaction) {
  const std::string which = com::ToUtf8(property) + " for reaction " + reaction.name + ": ";
  return properties.Read(property, reaction.phase, reaction.name,
                         {"Failed to obtain " + which, "Invalid format for " + which});
}

double ReactingMixture::EquilibriumConstant(const ReactionRecord& reaction) {
  return ReactionProperty(names::kChemicalEquilibriumConstant, reaction);
}

double ReactingMixture::Rate(const ReactionRecord& reaction) {
  return ReactionProperty(names::kReactionRate, reaction);
}

}  // namespace morvelan
