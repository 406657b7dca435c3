// An adiabatic stirred tank with an exothermic reaction: which of its steady states is found.

#include <gtest/gtest.h>

#include <cmath>

#include "tests/cli/ReactorFlowsheet.h"

namespace morvelan::test::cstr_steady_state {

constexpr double kFeedT = 300;                  // [K]
constexpr double kP = 1e5;                      // [Pa]
constexpr double kFlow = 1;                     // [mol/s]
constexpr double kHeatCapacity = 100;           // of both compounds [J/(mol K)]
constexpr double kRise = 300;                   // of the temperature when all of A has turned [K]
constexpr double kPreExponential = 1e10;        // [1/s]
constexpr double kActivationEnergy = 8e4;       // [J/mol]
constexpr double kTemperatureTolerance = 1e-3;  // [K]

constexpr const char* kEnthalpyTypes[] = {"Use EnthalpyF", "Use Enthalpy and heat of reaction"};

struct Tank {
  double volume;  // [m3]
  std::size_t steadyStates;
};

/// Extinguished, with all three, and ignited; two are next to where the lower states end.
const Tank kTanks[] = {{1e-5, 1}, {1e-4, 1}, {0.01, 3}, {0.1, 3}, {1, 3},
                       {2.5, 3},  {2.9, 1},  {10, 1},   {100, 1}, {1000, 1}};

/// By how much the temperature exceeds what the conversion at this temperature makes: with the mean residence
/// time t = V P / (F R T) in the tank, X = k t / (1 + k t).
double Excess(double T, double volume) {
  const double number =
      kPreExponential * std::exp(-kActivationEnergy / (kGasConstant * T)) * volume * kP / (kFlow * kGasConstant * T);
  return T - kFeedT - kRise * number / (1 + number);
}

/// All temperatures without excess [K], ascending.
std::vector<double> SteadyStates(double volume) {
  constexpr int kSteps = 30000;
  std::vector<double> found;
  for (int i = 0; i < kSteps; ++i) {
    double lower = kFeedT + kRise * i / kSteps, upper = kFeedT + kRise * (i + 1) / kSteps;
    const bool rises = Excess(lower, volume) < 0;
    if (rises == (Excess(upper, volume) < 0)) continue;
    for (int j = 0; j < 60; ++j) {
      const double middle = 0.5 * (lower + upper);
      ((Excess(middle, volume) < 0) == rises ? lower : upper) = middle;
    }
    found.push_back(lower);
  }
  return found;
}

Json Flowsheet() {
  Json flowsheet = GasFlowsheet({"A", "B"}, Json::array());
  flowsheet["thermo"]["compoundData"]["compounds"] = {SimpleGas("A", 50, kHeatCapacity, 0),
                                                      SimpleGas("B", 50, kHeatCapacity, -kRise * kHeatCapacity)};
  flowsheet["reactions"].push_back(
      {{"id", "turning"},
       {"type", "kinetic"},
       {"phase", "Vapor"},
       {"basis", "Molarity"},
       {"rateBasis", "homogeneous"},
       {"stoichiometry", {{"A", -1}, {"B", 1}}},
       {"rate",
        {{"preExponential", kPreExponential}, {"activationEnergy", kActivationEnergy}, {"orders", {{"A", 1}}}}}});
  return flowsheet;
}

Json Reactor(double volume, const char* enthalpyType) {
  return {{"class", "CSTR"},
          {"configuration", {{"reactionNames", {"turning"}}}},
          {"parameters",
           {{"Phase", "Vapor"}, {"Reactor volume", volume}, {"Enthalpy Type", enthalpyType}, {"Tolerance", 1e-9}}}};
}

// Iterations start from the feed, which is cold: where there are three states the lowest is next to it.
TEST(CSTRSteadyState, IsTheOneNextToTheFeed) {
  Json flowsheet = Flowsheet();
  for (const auto& [volume, steadyStates] : kTanks)
    for (const char* enthalpyType : kEnthalpyTypes)
      AddReactor(flowsheet, Named(volume, " m3, ", enthalpyType), Reactor(volume, enthalpyType),
                 Material(kFeedT, kP, kFlow, {{"A", 1}}));
  const Json results = ResultsOfBoth(flowsheet);
  ExpectSame(SolvedResults(flowsheet, "--thermo 1.1"), results, 0, "the second time");
  for (const auto& [volume, steadyStates] : kTanks) {
    const std::vector<double> temperatures = SteadyStates(volume);
    ASSERT_EQ(temperatures.size(), steadyStates) << volume;
    for (const char* enthalpyType : kEnthalpyTypes) {
      const std::string name = Named(volume, " m3, ", enthalpyType);
      if (!results["units"].contains(name)) continue;  // it has failed
      SCOPED_TRACE(testing::Message() << name << ", states at " << testing::PrintToString(temperatures));
      const Json& product = ProductOf(results, name);
      const double T = product["temperature"];
      EXPECT_NEAR(T, temperatures.front(), kTemperatureTolerance);
      EXPECT_NEAR(product["composition"]["B"].get<double>(), (T - kFeedT) / kRise, 1e-8) << "heat balance";
      EXPECT_EQ(results["units"][name]["parameters"]["Temperature"], T);
    }
  }
}

}  // namespace morvelan::test::cstr_steady_state
