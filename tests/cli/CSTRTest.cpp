// Stirred tanks against closed forms: which steady state of an exothermic reaction is found, and a boiling liquid.

#include <gtest/gtest.h>

#include <cmath>

#include "tests/cli/Flowsheets.h"

namespace morvelan::test::cstr {

constexpr double kFlow = 1;  // [mol/s]

Json FirstOrder(const char* id, const char* reactant, const char* phase, const char* basis, Json stoichiometry,
                double preExponential, double activationEnergy) {
  return {{"id", id},
          {"type", "kinetic"},
          {"phase", phase},
          {"basis", basis},
          {"rateBasis", "homogeneous"},
          {"stoichiometry", stoichiometry},
          {"rate",
           {{"preExponential", preExponential}, {"activationEnergy", activationEnergy}, {"orders", {{reactant, 1}}}}}};
}

Json Tank(const char* reaction, double volume, Json parameters) {
  parameters.update({{"Reactor volume", volume}, {"Tolerance", 1e-9}});
  return {{"class", "CSTR"},
          {"configuration", {{"reactionNames", Json::array({reaction})}}},
          {"parameters", std::move(parameters)}};
}

constexpr double kFeedT = 300;             // [K]
constexpr double kP = 1e5;                 // [Pa]
constexpr double kHeatCapacity = 100;      // of both compounds [J/(mol K)]
constexpr double kRise = 300;              // of the temperature when all of A has reacted [K]
constexpr double kPreExponential = 1e10;   // [1/s]
constexpr double kActivationEnergy = 8e4;  // [J/mol]

struct SizedTank {
  double volume;  // [m3]
  std::size_t steadyStates;
};

/// Extinguished, with all three, and ignited; two are next to where the lower states end.
constexpr SizedTank kTanks[] = {{1e-5, 1}, {0.01, 3}, {1, 3}, {2.5, 3}, {2.9, 1}, {10, 1}, {1000, 1}};

/// The temperature less that which the heat balance gives for the conversion at this temperature [K]. With the mean
/// residence time t = V P / (F R T) in the tank the conversion is k t / (1 + k t).
double Excess(double T, double volume) {
  const double number =
      kPreExponential * std::exp(-kActivationEnergy / (kGasConstant * T)) * volume * kP / (kFlow * kGasConstant * T);
  return T - kFeedT - kRise * number / (1 + number);
}

/// All temperatures at which that is zero [K], ascending.
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

// Iterations start from the feed, which is cold: where there are three states the lowest is next to it.
TEST(CSTR, FindsTheSteadyStateNextToItsFeed) {
  Json flowsheet =
      GasFlowsheet({"A", "B"}, Json::array({FirstOrder("turning", "A", "Vapor", "Molarity", {{"A", -1}, {"B", 1}},
                                                       kPreExponential, kActivationEnergy)}));
  flowsheet["thermo"]["compoundData"]["compounds"] = {SimpleGas("A", 50, kHeatCapacity, 0),
                                                      SimpleGas("B", 50, kHeatCapacity, -kRise * kHeatCapacity)};
  const Json types = {"Use EnthalpyF", "Use Enthalpy and heat of reaction"};
  for (const auto& [volume, steadyStates] : kTanks)
    for (const Json& type : types)
      AddUnit(flowsheet, Named(volume, " m3, ", type),
              Tank("turning", volume, {{"Phase", "Vapor"}, {"Enthalpy Type", type}}),
              Material(kFeedT, kP, kFlow, {{"A", 1}}));
  const Json results = SolvedResults(flowsheet);
  for (const auto& [volume, steadyStates] : kTanks) {
    const std::vector<double> temperatures = SteadyStates(volume);
    ASSERT_EQ(temperatures.size(), steadyStates) << volume;
    for (const Json& type : types) {
      const std::string name = Named(volume, " m3, ", type);
      if (!results["units"].contains(name)) continue;  // it has failed
      SCOPED_TRACE(testing::Message() << name << ", states at " << testing::PrintToString(temperatures));
      const Json& product = ProductOf(results, name);
      const double T = product["temperature"];
      EXPECT_NEAR(T, temperatures.front(), 1e-3);
      EXPECT_NEAR(product["composition"]["B"].get<double>(), (T - kFeedT) / kRise, 1e-8) << "heat balance";
    }
  }
}

// In a liquid, methyl tert-butyl ether splits into isobutene and methanol, which are more volatile.

constexpr double kVolume = 1.5;  // [m3]
constexpr const char* kEther = "methyl tert-butyl ether";

/// X = number (1 - X) / (1 + X), as one mole splits into two: the rate is 1 mol/(m3 s) times the fraction.
double Conversion() {
  const double number = kVolume / kFlow;
  return (std::sqrt((1 + number) * (1 + number) + 4 * number) - 1 - number) / 2;
}

Json LiquidResults(double T, double P, Json parameters) {
  const Json splitting = FirstOrder("splitting", kEther, "Liquid", "MoleFraction",
                                    {{kEther, -1}, {"isobutene", 1}, {"methanol", 1}}, 1, 0);
  Json flowsheet = {{"thermo", {{"compounds", {kEther, "isobutene", "methanol"}}}},
                    {"reactions", Json::array({splitting})}};
  AddUnit(flowsheet, "tank", Tank("splitting", kVolume, std::move(parameters)), Material(T, P, kFlow, {{kEther, 1}}));
  return SolvedResults(flowsheet);
}

// Splitting takes heat: without any the tank cools and stays liquid. Its conversion is the same, as the rate does not
// depend on temperature.
TEST(CSTR, ReactsInItsLiquidAndTellsWhatElseIsThere) {
  const Json others =
      "WARNING: Phases other than reaction phase \"Liquid\" are present at the reactor outlet after the equilibrium "
      "calculation";
  const Json absent = "WARNING: Reaction phase \"Liquid\" is not present after equilibrium calculation at outlet";
  const Json isothermal = {{"Heat duty type", "Isothermal"}, {"Temperature", 345}};
  struct {
    double T, P;  // of the feed, which is liquid [K], [Pa]
    Json parameters;
    std::vector<std::string> phases;  // of the product
    Json log = Json::array();
  } const cases[] = {{345, 3e6, isothermal, {"Liquid"}},
                     {345, 3e5, isothermal, {"Liquid", "Vapor"}, Json::array({others})},
                     {345, 2e5, isothermal, {"Vapor"}, Json::array({absent, others})},
                     {420, 5e6, Json::object(), {"Liquid"}}};
  for (const auto& [T, P, parameters, phases, log] : cases) {
    SCOPED_TRACE(P);
    const Json results = LiquidResults(T, P, parameters);
    if (!results["units"].contains("tank")) continue;  // it has failed
    const Json& product = ProductOf(results, "tank");
    EXPECT_EQ(PhasesOf(FeedOf(results, "tank")), std::vector<std::string>{"Liquid"});
    EXPECT_EQ(PhasesOf(product), phases);
    EXPECT_LE(product["temperature"].get<double>(), 400);
    const Amounts flows = FlowsOf(product);
    EXPECT_NEAR(flows.at("isobutene"), kFlow * Conversion(), 1e-7);
    EXPECT_NEAR(flows.at("methanol"), kFlow * Conversion(), 1e-7);
    EXPECT_NEAR(flows.at(kEther), kFlow * (1 - Conversion()), 1e-7);
    EXPECT_EQ(results["log"], log);
  }
}

}  // namespace morvelan::test::cstr
