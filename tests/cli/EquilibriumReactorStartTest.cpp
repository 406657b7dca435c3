// That the equilibrium reactor solves from where iterations start badly: nothing of a compound in the feed,
// hardly anything of it, hardly anything left of it, very small and very large flows; and what it does with
// reactions that can't take place.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <span>

#include "tests/cli/GasEquilibrium.h"
#include "tests/cli/ReactorFlowsheet.h"

namespace morvelan::test::equilibrium_reactor_start {

constexpr double kFlows[] = {1e-8, 1, 1e4};  // [mol/s]
constexpr double kUnknownDigits = 1e-10;     // of ln K and of fractions, as this test and the reactor have them

/// A reaction of ideal gases: K from Gibbs energies, or a given constant of mole fractions.
struct Equilibrium {
  GasReaction reaction;
  double givenConstant = 0;  // none
};

const GasReaction kReforming = {"reforming", {{"methane", -1}, {"water", -1}, {"carbon monoxide", 1}, {"hydrogen", 3}}};
const GasReaction kShift = {"shift", {{"carbon monoxide", -1}, {"water", -1}, {"carbon dioxide", 1}, {"hydrogen", 1}}};
const GasReaction kAmmonia = {"ammonia", {{"nitrogen", -1}, {"hydrogen", -3}, {"ammonia", 2}}};
const GasReaction kCombustion = {"combustion", {{"methane", -1}, {"oxygen", -2}, {"carbon dioxide", 1}, {"water", 2}}};
const Amounts kTurning = {{"n-butane", -1}, {"isobutane", 1}};

const Equilibrium kEquilibria[] = {{kReforming},
                                   {kShift},
                                   {kAmmonia},
                                   {kCombustion},
                                   {{"to 1e6", kTurning}, 1e6},
                                   {{"to 1e10", kTurning}, 1e10},
                                   {{"to 1e-10", kTurning}, 1e-10},
                                   {{"shift to 1e10", kShift.coefficients}, 1e10}};

const Equilibrium& Find(const std::string& name) {
  return *std::ranges::find_if(kEquilibria, [&](const Equilibrium& each) { return each.reaction.name == name; });
}

/// ln Q - ln K in a product.
double Residual(const Equilibrium& equilibrium, const Json& product) {
  const auto& [reaction, given] = equilibrium;
  const double T = product["temperature"], P = product["pressure"];
  const Amounts flows = FlowsOf(product);
  if (given == 0) return LnGasQuotient(reaction, flows, P) - LnGasConstant(reaction, T);
  // At 1 bar activities are mole fractions.
  return LnGasQuotient(reaction, flows, kStandardPressure) - std::log(given);
}

Json Flowsheet() {
  Json reactions = Json::array();
  for (const auto& [reaction, given] : kEquilibria) {
    reactions.push_back({{"id", reaction.name},
                         {"type", "equilibrium"},
                         {"phase", "Vapor"},
                         {"basis", "MoleFraction"},
                         {"stoichiometry", reaction.coefficients}});
    if (given > 0)
      reactions.back()["lnK"] = {std::log(given), 0, 0, 0};
    else
      reactions.back()["equilibrium"] = "gibbs";
  }
  return GasFlowsheet({"methane", "water", "carbon monoxide", "carbon dioxide", "hydrogen", "nitrogen", "oxygen",
                       "ammonia", "n-butane", "isobutane"},
                      std::move(reactions));
}

Json Reactor(const std::vector<std::string>& reactions, double tolerance) {
  return {{"class", "EquilibriumReactor"},
          {"configuration", {{"reactionNames", reactions}}},
          {"parameters", {{"Tolerance", tolerance}}}};
}

Json Isothermal(Json reactor, double T) {
  reactor["parameters"].update({{"Heat duty type", "Isothermal"}, {"Temperature", T}});
  return reactor;
}

/// Where hardly anything is left of a compound, its flow is what rounding of the others leaves of its digits:
/// the tolerance of those cases is as coarse.
struct Start {
  const char* title;
  std::vector<std::string> reactions;
  double T;  // [K], of the feed; of the reactor too when it is isothermal
  double P;  // [Pa]
  double tolerance;
  Json feed;
};

const Start kIsothermalStarts[] = {
    {"reactants only", {"shift"}, 700, 1e5, 1e-9, {{"carbon monoxide", 0.5}, {"water", 0.5}}},
    {"products only", {"shift"}, 700, 1e5, 1e-9, {{"carbon dioxide", 0.5}, {"hydrogen", 0.5}}},
    {"a reactant absent", {"shift"}, 700, 1e5, 1e-9, {{"carbon dioxide", 0.2}, {"hydrogen", 0.3}, {"water", 0.5}}},
    {"hydrogen absent", {"ammonia"}, 700, 1e7, 1e-9, {{"nitrogen", 0.4}, {"ammonia", 0.6}}},
    {"a trace of a reactant and none of a product",
     {"shift"},
     700,
     1e5,
     1e-9,
     {{"carbon monoxide", 1e-10}, {"water", 0.6}, {"hydrogen", 0.4}}},
    {"a trace of a product",
     {"shift"},
     700,
     1e5,
     1e-9,
     {{"carbon monoxide", 0.5}, {"water", 0.5}, {"carbon dioxide", 1e-10}}},
    {"a trace of what has to turn", {"to 1e6"}, 400, 1e5, 1e-8, {{"n-butane", 1e-10}, {"nitrogen", 1}}},
    {"almost complete", {"to 1e6"}, 400, 1e5, 1e-8, {{"n-butane", 1}}},
    {"complete but for rounding", {"to 1e10"}, 400, 1e5, 1e-4, {{"n-butane", 1}}},
    {"almost complete from its product", {"to 1e-10"}, 400, 1e5, 1e-4, {{"isobutane", 1}}},
    {"hardly begun", {"to 1e-10"}, 400, 1e5, 1e-9, {{"n-butane", 1}}},
    {"almost complete of two reactants", {"shift to 1e10"}, 400, 1e5, 1e-8, {{"carbon monoxide", 0.5}, {"water", 0.5}}},
    {"complete but for rounding with an excess",
     {"shift to 1e10"},
     400,
     1e5,
     1e-4,
     {{"carbon monoxide", 0.2}, {"water", 0.8}}},
    {"ammonia that is not stable", {"ammonia"}, 900, 1e5, 1e-9, {{"ammonia", 1}}},
    {"ammonia that is", {"ammonia"}, 300, 1e7, 1e-9, {{"nitrogen", 0.25}, {"hydrogen", 0.75}}},
    {"the second reaction needs the first",
     {"reforming", "shift"},
     1000,
     1e5,
     1e-9,
     {{"methane", 0.5}, {"water", 0.5}}},
    {"the first reaction needs the second",
     {"shift", "reforming"},
     1000,
     1e5,
     1e-9,
     {{"methane", 0.25}, {"water", 0.75}}},
    {"from the products of both", {"reforming", "shift"}, 900, 2e6, 1e-9, {{"carbon dioxide", 0.2}, {"hydrogen", 0.8}}},
    {"from the products of one",
     {"reforming", "shift"},
     900,
     2e6,
     1e-9,
     {{"carbon monoxide", 0.25}, {"hydrogen", 0.75}}},
    {"a trace of steam to begin with",
     {"reforming", "shift"},
     1100,
     1e5,
     1e-9,
     {{"methane", 0.5}, {"carbon dioxide", 0.5}, {"water", 1e-10}}},
};

const Start kAdiabaticStarts[] = {
    {"heating itself", {"shift"}, 400, 1e5, 1e-9, {{"carbon monoxide", 0.5}, {"water", 0.5}}},
    {"cooling itself", {"reforming", "shift"}, 1100, 1e5, 1e-9, {{"methane", 0.4}, {"water", 0.6}}},
    {"from products, heating itself",
     {"reforming", "shift"},
     600,
     2e6,
     1e-9,
     {{"carbon monoxide", 0.2}, {"hydrogen", 0.8}}},
    {"cold synthesis", {"ammonia"}, 300, 2e7, 1e-9, {{"nitrogen", 0.25}, {"hydrogen", 0.75}}},
};

/// K falls from 1e140 in the feed to 1e20 and 1e17 in the flame: so little methane is left.
const Start kFlames[] = {
    {"flame", {"combustion"}, 298.15, 1e5, 1e-4, {{"methane", 0.08}, {"oxygen", 0.1932}, {"nitrogen", 0.7268}}},
    {"flame without excess of air",
     {"combustion"},
     298.15,
     1e5,
     1e-4,
     {{"methane", 0.1}, {"oxygen", 0.2}, {"nitrogen", 0.7}}},
};

std::string NameOf(const Start& start, double flow) { return Named(start.title, ' ', flow, " mol/s"); }

void ExpectEquilibrium(const Json& results, const Start& start, double flow, bool isAdiabatic) {
  const std::string name = NameOf(start, flow);
  if (!results["units"].contains(name)) return;  // it has failed
  SCOPED_TRACE(name);
  const Json& feed = FeedOf(results, name);
  const Json& product = ProductOf(results, name);
  for (const auto& [compound, fraction] : product["composition"].items())
    EXPECT_GE(fraction.get<double>(), 0) << compound;
  for (const std::string& reaction : start.reactions)
    EXPECT_LE(std::abs(Residual(Find(reaction), product)), start.tolerance + kUnknownDigits) << reaction;
  if (isAdiabatic) {
    const double before = flow * feed["enthalpyF"].get<double>();
    EXPECT_NEAR(product["flow"].get<double>() * product["enthalpyF"].get<double>(), before,
                1e-8 * (std::abs(before) + flow * kGasConstant * start.T));
  } else {
    EXPECT_EQ(product["temperature"], start.T);
  }
}

/// Of every start, at every flow, under both generations.
void ExpectEquilibria(std::span<const Start> starts, bool isAdiabatic) {
  Json flowsheet = Flowsheet();
  for (const Start& start : starts)
    for (const double flow : kFlows) {
      const Json reactor = Reactor(start.reactions, start.tolerance);
      AddReactor(flowsheet, NameOf(start, flow), isAdiabatic ? reactor : Isothermal(reactor, start.T),
                 Material(start.T, start.P, flow, start.feed));
    }
  for (const char* options : {"--thermo 1.0", "--thermo 1.1"}) {
    SCOPED_TRACE(options);
    const Json results = SolvedResults(flowsheet, options);
    for (const Start& start : starts)
      for (const double flow : kFlows) ExpectEquilibrium(results, start, flow, isAdiabatic);
  }
}

TEST(EquilibriumReactorStart, ReachesEquilibriumAtATemperature) { ExpectEquilibria(kIsothermalStarts, false); }

TEST(EquilibriumReactorStart, ReachesEquilibriumWithoutHeat) { ExpectEquilibria(kAdiabaticStarts, true); }

TEST(EquilibriumReactorStart, Burns) { ExpectEquilibria(kFlames, true); }

// Each of the two reactions would need water, which only both together make: CH4 + CO2 = 2 CO + 2 H2.
TEST(EquilibriumReactorStart, PerformsReactionsThatArePossibleTogetherOnly) {
  const Start starts[] = {
      {"dry reforming", {"reforming", "shift"}, 1100, 1e5, 1e-9, {{"methane", 0.5}, {"carbon dioxide", 0.5}}}};
  ExpectEquilibria(starts, false);
}

TEST(EquilibriumReactorStart, LeavesOutWhatCannotTakePlace) {
  Json flowsheet = Flowsheet();
  const Json gases = {{"nitrogen", 0.25}, {"hydrogen", 0.75}};
  AddReactor(flowsheet, "synthesis", Isothermal(Reactor({"shift", "ammonia"}, 1e-9), 700),
             Material(700, 1e7, 2, gases));
  const Json results = ResultsOfBoth(flowsheet);
  ASSERT_TRUE(results["units"].contains("synthesis"));
  const Json& product = ProductOf(results, "synthesis");
  const Amounts flows = FlowsOf(product);
  // Of ammonia alone
  for (const auto& [compound, flow] : Equilibrated({{"nitrogen", 0.5}, {"hydrogen", 1.5}}, {kAmmonia}, 700, 1e7))
    EXPECT_NEAR(flows.at(compound), flow, 1e-6 * flow) << compound;
  for (const char* absent : {"carbon monoxide", "carbon dioxide", "water"}) EXPECT_EQ(flows.at(absent), 0);
  EXPECT_TRUE(IsLogged(results, "\"shift\"")) << results["log"];
  EXPECT_FALSE(IsLogged(results, "\"ammonia\"")) << results["log"];
}

TEST(EquilibriumReactorStart, PassesAFeedWithoutPossibleReactions) {
  Json flowsheet = Flowsheet();
  const Json feed = {{"nitrogen", 0.5}, {"carbon monoxide", 0.5}};
  AddReactor(flowsheet, "idle", Isothermal(Reactor({"shift", "to 1e6"}, 1e-4), 700), Material(600, 1e5, 2, feed));
  const Json results = ResultsOfBoth(flowsheet);
  ASSERT_TRUE(results["units"].contains("idle"));
  const Json& product = ProductOf(results, "idle");
  EXPECT_EQ(product["composition"], FeedOf(results, "idle")["composition"]);
  EXPECT_EQ(product["flow"], 2);
  EXPECT_EQ(product["temperature"], 700);
  EXPECT_TRUE(IsLogged(results, "No reactions are possible")) << results["log"];
}

}  // namespace morvelan::test::equilibrium_reactor_start
