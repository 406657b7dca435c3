#include "units/reactors/ExtentModel.h"

#include <algorithm>

#include "framework/CalculationFailure.h"

namespace morvelan {
namespace {

constexpr double kPenaltyFactor = 1000;

}  // namespace

ClippedFlows ClipNegativeFlows(const ExtentTrial& trial, double pressure) {
  if (!trial.extents.allFinite() || !trial.flows.allFinite()) throw Failure("Iteration parameters are not finite");
  ClippedFlows clipped{.state = {.pressure = pressure, .temperature = trial.temperature, .composition = {}}};
  clipped.state.composition.reserve(static_cast<std::size_t>(trial.flows.size()));
  for (const double flow : trial.flows) {
    clipped.state.composition.push_back(std::max(flow, 0.0));
    if (flow < 0) clipped.penalty += kPenaltyFactor * flow * flow;
    clipped.state.totalFlow += clipped.state.composition.back();
  }
  if (!(clipped.state.totalFlow > 0)) throw Failure("The reactions leave no flow at the outlet");
  for (double& fraction : clipped.state.composition) fraction /= clipped.state.totalFlow;
  return clipped;
}

bool ExtentModel::Evaluate(const ExtentTrial& trial, std::span<double> residuals, std::string& why) try {
  evaluated.extents.resize(0);
  residualCount = residuals.size();
  Compute(trial, residuals);
  evaluated = trial;
  return true;
} catch (const Failure& failure) {
  why = failure.error.description;
  return false;
}

void ExtentModel::Settle(const ExtentTrial& solution) {
  const bool isThere = evaluated.extents.size() == solution.extents.size() && evaluated.extents == solution.extents &&
                       evaluated.temperature == solution.temperature;
  std::vector<double> residuals(residualCount);
  std::string why;
  if (!isThere && !Evaluate(solution, residuals, why)) throw CalculationFailure("Solution failed: " + why);
}

}  // namespace morvelan
