#pragma once

#include <span>
#include <string>
#include <vector>

#include "units/reactors/ExtentSolver.h"
#include "units/reactors/ReactingMixture.h"

namespace morvelan {

/// A tank and what is fed to it.
struct StirredTank {
  std::string phase;                      // in which everything takes place
  double pressure = 0;                    // [Pa]
  double volume = 0;                      // [m3], on which homogeneous rates act
  double catalystMass = 0;                // [kg], on which heterogeneous rates act
  bool temperatureIsGiven = false;        // else the heat balance makes it
  double temperature = 0;                 // [K], given or that of the feed
  double enthalpyFlow = 0;                // [W], of the feed and of what heats the tank
  com::Name enthalpyProperty = {};        // `enthalpy` or `enthalpyF`
  std::vector<double> heats = {};         // [J/mol], of the reactions, as they count in the balance
  std::vector<ActivityBasis> bases = {};  // of the reactions
};

/// The equations of a stirred tank, as CCSTR gives them, in the order of the reactions with the heat balance
/// last. The solver gets differences of kinetic reactions [mol/s] divided by the feed, and that of the heat
/// balance [W] divided by 1e4 J/mol times the feed; penalties for negative flows count before that.
class StirredTankEquations {
 public:
  /// All must live longer.
  StirredTankEquations(const std::vector<ReactionRecord>& tankReactions, const StirredTank& stirredTank,
                       ReactingMixture& content, double feedFlow)
      : reactions(tankReactions), tank(stirredTank), mixture(content), feed(feedFlow) {}

  [[nodiscard]] bool Evaluate(const ExtentTrial& trial, std::span<double> residuals, std::string& why);
  /// The temperature [K] at which the heat balance of a trial closes at phase equilibrium. Throws Failure.
  [[nodiscard]] double BalancedTemperature(const ExtentTrial& trial);

  /// Of each reaction at the trial evaluated last: its equilibrium constant, or its rate [mol/s], which of a
  /// heterogeneous reaction is that of one kg of catalyst.
  [[nodiscard]] const std::vector<double>& Results() const { return results; }
  [[nodiscard]] bool IsAt(const ExtentTrial& trial) const {
    return evaluated.extents.size() == trial.extents.size() && evaluated.extents == trial.extents &&
           evaluated.temperature == trial.temperature;
  }

 private:
  void SetState(const material::StreamState& state);
  [[nodiscard]] double ResidualOf(std::size_t r, double extent);
  [[nodiscard]] double HeatOfReaction(const ExtentTrial& trial) const;
  [[nodiscard]] double HeatImbalance(const ExtentTrial& trial, double totalFlow);

  const std::vector<ReactionRecord>& reactions;
  const StirredTank& tank;
  ReactingMixture& mixture;
  double feed;  // [mol/s]
  std::vector<double> results;
  ExtentTrial evaluated;
};

}  // namespace morvelan
