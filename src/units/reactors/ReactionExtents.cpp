#include "units/reactors/ReactionExtents.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "com/Text.h"
#include "framework/CalculationFailure.h"
#include "framework/ReportFormat.h"

namespace morvelan {
namespace {

/// What rounding leaves of a flow that is used up, relative to what was used.
constexpr double kConversionRounding = 10 * std::numeric_limits<double>::epsilon();

std::size_t Place(const Reaction& reaction, std::size_t i) {
  return static_cast<std::size_t>(reaction.compoundIndices[i]);
}

/// Position of a compound among the reaction's, or their number.
std::size_t Find(const Reaction& reaction, const std::string& compound) {
  const auto found =
      std::ranges::find_if(reaction.compoundIds, [&](const std::string& id) { return com::EqualNoCase(id, compound); });
  return static_cast<std::size_t>(found - reaction.compoundIds.begin());
}

double ExtentOf(const ConvertingReaction& reaction, const std::vector<double>& flows) {
  const Reaction& record = *reaction.record;
  const double keyFlow = flows.at(Place(record, Find(record, reaction.keyCompound)));
  return -reaction.conversion * keyFlow / CoefficientOf(record, reaction.keyCompound);
}

void Perform(const Reaction& reaction, double extent, std::vector<double>& flows) {
  for (std::size_t i = 0; i < reaction.coefficients.size(); ++i)
    flows.at(Place(reaction, i)) += reaction.coefficients[i] * extent;
}

}  // namespace

bool TakesPart(const Reaction& reaction, const std::string& compound) {
  return Find(reaction, compound) < reaction.compoundIds.size();
}

/// (A package may list a compound twice, as reactant and as product.)
double CoefficientOf(const Reaction& reaction, const std::string& compound) {
  const std::size_t place = Place(reaction, Find(reaction, compound));
  double sum = 0;
  for (std::size_t i = 0; i < reaction.coefficients.size(); ++i)
    if (Place(reaction, i) == place) sum += reaction.coefficients[i];
  return sum;
}

Converted ConvertInSeries(std::span<const ConvertingReaction> reactions, std::vector<double> inletFlows) {
  Converted result{.extents = {}, .flows = std::move(inletFlows)};
  for (const ConvertingReaction& reaction : reactions) {
    const Reaction& record = *reaction.record;
    const double extent = ExtentOf(reaction, result.flows);
    Perform(record, extent, result.flows);
    for (std::size_t i = 0; i < record.coefficients.size(); ++i) {
      double& flow = result.flows[Place(record, i)];
      // What rounding takes too much of a compound that is used up.
      if (flow < 0 && flow >= -kConversionRounding * std::abs(record.coefficients[i] * extent)) flow = 0;
      if (flow < 0)
        throw CalculationFailure("Conversion of " + FormatNumber(reaction.conversion) + " for compound " +
                                 reaction.keyCompound + " for reaction " + record.name.Text() +
                                 " caused negative concentrations of compound " + record.compoundIds[i]);
    }
    result.extents.push_back(extent);
  }
  return result;
}

Converted ConvertInParallel(std::span<const ConvertingReaction> reactions, const std::vector<double>& inletFlows,
                            std::span<const std::string> compounds) {
  Converted result{.extents = {}, .flows = inletFlows};
  for (const ConvertingReaction& reaction : reactions) {
    result.extents.push_back(ExtentOf(reaction, inletFlows));
    Perform(*reaction.record, result.extents.back(), result.flows);
  }
  const double band = kConversionRounding * std::accumulate(inletFlows.begin(), inletFlows.end(), 0.0);
  for (std::size_t j = 0; j < result.flows.size(); ++j) {
    double& flow = result.flows[j];
    if (flow < 0 && flow >= -band) flow = 0;
    if (flow < 0)
      throw CalculationFailure("Conversion too high",
                               "Specified conversions cause negative concentrations of compound " + compounds[j]);
  }
  return result;
}

}  // namespace morvelan
