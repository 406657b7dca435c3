#include "units/reactors/StirredTankEquations.h"

#include <cmath>
#include <numeric>

#include "com/Text.h"
#include "units/reactors/BaseReactorConstrained.h"

namespace morvelan {
namespace {

constexpr double kEnthalpyScale = 1e4;  // [J/mol] per unit of the heat balance's residual

}  // namespace

bool StirredTankEquations::Evaluate(const ExtentTrial& trial, std::span<double> residuals, std::string& why) {
  evaluated = {};
  return Evaluated(why, [&] {
    const ClippedFlows flows = ClipNegativeFlows(trial, tank.pressure);
    SetState(flows.state);
    results.assign(reactions.size(), 0);
    for (std::size_t r = 0; r < reactions.size(); ++r) {
      residuals[r] = ResidualOf(r, trial.extents[static_cast<Eigen::Index>(r)]);
      if (!std::isfinite(residuals[r])) throw Failure("Iteration parameters are not finite");
      // The first residual takes the penalty once per reaction, away from zero; zero itself goes down, where
      // that of the equilibrium reactor goes up.
      if (flows.penalty != 0) residuals[0] += residuals[0] <= 0 ? -flows.penalty : flows.penalty;
    }
    for (std::size_t r = 0; r < reactions.size(); ++r)
      if (reactions[r].type == CAPE_KINETIC) residuals[r] /= feed;
    if (!tank.temperatureIsGiven)
      residuals.back() = HeatImbalance(trial, flows.state.totalFlow) / (feed * kEnthalpyScale);
    evaluated = trial;
  });
}

void StirredTankEquations::SetState(const material::StreamState& state) {
  if (state.temperature == 0) throw Failure("Zero temperature");
  if (!std::isfinite(state.temperature)) throw Failure("Temperature it not finite");  // (worded so)
  mixture.Material().SetSinglePhase(state, tank.phase);
  mixture.StateChanged();
}

double StirredTankEquations::ResidualOf(std::size_t r, double extent) {
  const ReactionRecord& reaction = reactions[r];
  if (reaction.type == CAPE_EQUILIBRIUM) {
    const double logQ = mixture.LogActivityProduct(reaction, tank.bases[r]);
    results[r] = mixture.EquilibriumConstant(reaction);
    return logQ - ClampedLog(results[r]);
  }
  const bool isHeterogeneous = reaction.rateBasis == CAPE_HETEROGENEOUS;
  const double rate = mixture.Rate(reaction);
  results[r] = isHeterogeneous ? rate : rate * tank.volume;
  return extent - rate * (isHeterogeneous ? tank.catalystMass : tank.volume);
}

double StirredTankEquations::HeatOfReaction(const ExtentTrial& trial) const {
  return std::inner_product(tank.heats.begin(), tank.heats.end(), trial.extents.begin(), 0.0);
}

double StirredTankEquations::HeatImbalance(const ExtentTrial& trial, double totalFlow) {
  const std::string name = com::ToUtf8(tank.enthalpyProperty);
  const double enthalpy = mixture.Material().Property(tank.enthalpyProperty, tank.phase, names::kMole,
                                                      "Failed to get " + name + " for phase " + tank.phase + ": ",
                                                      "Invalid values for " + name + ": ");
  return totalFlow * enthalpy - tank.enthalpyFlow + HeatOfReaction(trial);
}

double StirredTankEquations::BalancedTemperature(const ExtentTrial& trial) {
  const ClippedFlows flows = ClipNegativeFlows(trial, tank.pressure);
  mixture.Material().FlashAtEnthalpy(flows.state, (tank.enthalpyFlow - HeatOfReaction(trial)) / flows.state.totalFlow,
                                     tank.enthalpyProperty);
  return mixture.Material().Temperature();
}

}  // namespace morvelan
