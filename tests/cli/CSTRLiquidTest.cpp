// A stirred tank of a boiling liquid: methyl tert-butyl ether splits into isobutene and methanol.

#include <gtest/gtest.h>

#include <cmath>

#include "tests/cli/ReactorFlowsheet.h"

namespace morvelan::test::cstr_liquid {

constexpr double kT = 345;       // [K]
constexpr double kFlow = 1;      // [mol/s]
constexpr double kVolume = 1.5;  // [m3]

constexpr const char* kOtherPhases =
    "WARNING: Phases other than reaction phase \"Liquid\" are present at the reactor outlet after the "
    "equilibrium calculation";
constexpr const char* kReactionPhaseAbsent =
    "WARNING: Reaction phase \"Liquid\" is not present after equilibrium calculation at outlet";

/// The ether is liquid at all of these pressures; what it becomes is more volatile.
struct Pressure {
  double P;
  std::vector<std::string> phases;  // of the product, which the pressure was chosen for
  std::vector<const char*> warnings;
};

const Pressure kPressures[] = {
    {3e6, {"Liquid"}, {}}, {3e5, {"Liquid", "Vapor"}, {kOtherPhases}}, {2e5, {"Vapor"}, {kReactionPhaseAbsent}}};

std::vector<std::string> PhasesOf(const Json& stream) {
  std::vector<std::string> phases;
  for (const auto& [phase, state] : stream["phases"].items()) phases.push_back(phase);
  return phases;
}

Json Flowsheet() {
  return {
      {"thermo", {{"model", "peng-robinson"}, {"compounds", {"methyl tert-butyl ether", "isobutene", "methanol"}}}},
      {"reactions",
       {{{"id", "splitting"},
         {"type", "kinetic"},
         {"phase", "Liquid"},
         {"basis", "MoleFraction"},
         {"rateBasis", "homogeneous"},
         {"stoichiometry", {{"methyl tert-butyl ether", -1}, {"isobutene", 1}, {"methanol", 1}}},
         {"rate", {{"preExponential", 1}, {"activationEnergy", 0}, {"orders", {{"methyl tert-butyl ether", 1}}}}}}}}};
}

/// In the phase in which the tank reacts unless it is told otherwise.
Json Reactor(Json parameters) {
  parameters["Reactor volume"] = kVolume;
  parameters["Tolerance"] = 1e-9;
  return {
      {"class", "CSTR"}, {"configuration", {{"reactionNames", {"splitting"}}}}, {"parameters", std::move(parameters)}};
}

/// X = number (1 - X) / (1 + X), as one mole splits into two: the rate is 1 mol/(m3 s) times the fraction.
double Conversion() {
  const double number = kVolume / kFlow;
  return (std::sqrt((1 + number) * (1 + number) + 4 * number) - 1 - number) / 2;
}

TEST(CSTRLiquid, ReactsInItsPhaseAndTellsWhatElseIsThere) {
  for (const auto& [P, phases, warnings] : kPressures) {
    SCOPED_TRACE(P);
    Json flowsheet = Flowsheet();
    AddReactor(flowsheet, "tank", Reactor({{"Heat duty type", "Isothermal"}, {"Temperature", kT}}),
               Material(kT, P, kFlow, {{"methyl tert-butyl ether", 1}}));
    const Json results = ResultsOfBoth(flowsheet);
    if (!results["units"].contains("tank")) continue;  // it has failed
    EXPECT_EQ(PhasesOf(FeedOf(results, "tank")), std::vector<std::string>{"Liquid"});
    const Json& product = ProductOf(results, "tank");
    EXPECT_EQ(PhasesOf(product), phases);
    const Amounts flows = FlowsOf(product);
    EXPECT_NEAR(flows.at("isobutene"), kFlow * Conversion(), 1e-7);
    EXPECT_NEAR(flows.at("methanol"), kFlow * Conversion(), 1e-7);
    EXPECT_NEAR(flows.at("methyl tert-butyl ether"), kFlow * (1 - Conversion()), 1e-7);
    for (const char* warning : warnings) EXPECT_TRUE(IsLogged(results, warning)) << results["log"];
    if (warnings.empty()) EXPECT_FALSE(IsLogged(results, "WARNING")) << results["log"];
  }
}

// Splitting takes heat: the tank cools and stays liquid, and its conversion, whose rate knows no temperature,
// is the same.
TEST(CSTRLiquid, KeepsItsEnthalpyWithoutHeat) {
  Json flowsheet = Flowsheet();
  AddReactor(flowsheet, "tank", Reactor(Json::object()), Material(420, 5e6, kFlow, {{"methyl tert-butyl ether", 1}}));
  const Json results = ResultsOfBoth(flowsheet);
  ASSERT_TRUE(results["units"].contains("tank"));
  const Json& feed = FeedOf(results, "tank");
  const Json& product = ProductOf(results, "tank");
  EXPECT_EQ(PhasesOf(product), std::vector<std::string>{"Liquid"});
  EXPECT_LT(product["temperature"].get<double>(), 400);
  EXPECT_NEAR(FlowsOf(product).at("isobutene"), kFlow * Conversion(), 1e-7);
  const double before = kFlow * feed["enthalpyF"].get<double>();
  EXPECT_NEAR(product["flow"].get<double>() * product["enthalpyF"].get<double>(), before, 1e-8 * std::abs(before));
  EXPECT_FALSE(IsLogged(results, "WARNING")) << results["log"];
}

}  // namespace morvelan::test::cstr_liquid
