// The compositions and temperatures that the equilibrium reactor finds for ideal gases, against the least Gibbs energy;
// and that it solves where iterations start badly: without a compound, with hardly any of it, with hardly any left.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "tests/cli/Flowsheets.h"
#include "tests/cli/GasEquilibrium.h"

namespace morvelan::test::equilibrium_reactor {

constexpr const char* kCO = "carbon monoxide";
constexpr const char* kCO2 = "carbon dioxide";
constexpr const char* kButane = "n-butane";

const GasReaction kReforming = {"reforming", {{"methane", -1}, {"water", -1}, {kCO, 1}, {"hydrogen", 3}}};
const GasReaction kShift = {"shift", {{kCO, -1}, {"water", -1}, {kCO2, 1}, {"hydrogen", 1}}};
const GasReaction kAmmonia = {"ammonia", {{"nitrogen", -1}, {"hydrogen", -3}, {"ammonia", 2}}};
const GasReaction kButanes = {"butanes", {{kButane, -1}, {"isobutane", 1}}};
const GasReaction kCombustion = {"combustion", {{"methane", -1}, {"oxygen", -2}, {kCO2, 1}, {"water", 2}}};

const Json kCompounds = {"methane",  "water",  kCO,       kCO2,    "hydrogen",
                         "nitrogen", "oxygen", "ammonia", kButane, "isobutane"};
constexpr const char* kBases[] = {"MoleFraction", "Molarity", "Concentration", "MassFraction"};

Json Reaction(const std::string& id, const GasReaction& reaction, const char* basis) {
  return {{"id", id},
          {"type", "equilibrium"},
          {"phase", "Vapor"},
          {"basis", basis},
          {"stoichiometry", reaction.coefficients}};
}

/// Without heat unless it has a temperature.
Json Reactor(const std::vector<std::string>& reactions, double tolerance, std::optional<double> T) {
  Json reactor = {{"class", "EquilibriumReactor"},
                  {"configuration", {{"reactionNames", reactions}}},
                  {"parameters", {{"Tolerance", tolerance}}}};
  if (T) reactor["parameters"].update({{"Heat duty type", "Isothermal"}, {"Temperature", *T}});
  return reactor;
}

constexpr double kFlow = 2;                  // [mol/s]
constexpr double kFractionTolerance = 1e-6;  // relative, with room for what the solution is sensitive to

struct System {
  std::vector<GasReaction> reactions;
  Json feed;
  std::array<double, 2> temperatures;  // of isothermal reactors, and of the feed of adiabatic ones [K]
};

const System kSystems[] = {
    {{kShift}, {{kCO, 0.3}, {"water", 0.5}, {"nitrogen", 0.2}}, {500, 900}},
    {{kReforming, kShift}, {{"methane", 0.2}, {"water", 0.8}}, {800, 1100}},
    {{kAmmonia}, {{"nitrogen", 0.25}, {"hydrogen", 0.75}}, {550, 750}},
    {{kButanes}, {{kButane, 0.9}, {"isobutane", 0.1}}, {300, 500}},
};

struct Case {
  std::string name;
  const System& system;
  double T;
  double P;
  const char* basis;
  bool isAdiabatic;
};

/// Every system at both temperatures with and without heat; unless tests are long, in one of the bases and at one of
/// the pressures, which change from case to case.
std::vector<Case> Cases() {
  std::vector<Case> cases;
  std::size_t number = 0;
  for (const System& system : kSystems)
    for (const double T : system.temperatures)
      for (const bool isAdiabatic : {false, true}) {
        for (std::size_t k = 0; k < 8; ++k) {
          if (!ShortOrLong(false, true) && k != number % 8) continue;
          const double P = k < 4 ? 1e5 : 5e6;
          cases.push_back({Named(system.reactions.front().name, ' ', T, " K ", P, " Pa ", kBases[k % 4],
                                 isAdiabatic ? " adiabatic" : " isothermal"),
                           system, T, P, kBases[k % 4], isAdiabatic});
        }
        number += 3;
      }
  return cases;
}

/// The isothermal feeds are colder than the reactor; an adiabatic reactor is at its feed's enthalpy.
void AddCase(Json& flowsheet, const Case& each) {
  std::vector<std::string> reactions;
  for (const GasReaction& reaction : each.system.reactions) reactions.push_back(Named(reaction.name, ' ', each.basis));
  AddUnit(flowsheet, each.name, Reactor(reactions, 1e-9, each.isAdiabatic ? std::nullopt : std::optional(each.T)),
          Material(each.isAdiabatic ? each.T : each.T - 50, each.P, kFlow, each.system.feed));
}

void ExpectMixture(const Json& product, const GasMixture& expected) {
  EXPECT_NEAR(product["temperature"].get<double>(), expected.T, 1e-6 * expected.T);
  double total = 0;
  for (const auto& [compound, flow] : expected.flows) total += flow;
  EXPECT_NEAR(product["flow"].get<double>(), total, kFractionTolerance * total);
  for (const auto& [compound, flow] : expected.flows)
    EXPECT_NEAR(product["composition"][compound].get<double>(), flow / total, kFractionTolerance * flow / total)
        << compound;
}

TEST(EquilibriumReactor, FindsTheLeastGibbsEnergy) {
  Json reactions = Json::array();
  for (const GasReaction& reaction : {kReforming, kShift, kAmmonia, kButanes})
    for (const char* basis : kBases) {
      reactions.push_back(Reaction(Named(reaction.name, ' ', basis), reaction, basis));
      reactions.back()["equilibrium"] = "gibbs";
    }
  Json flowsheet = GasFlowsheet(kCompounds, std::move(reactions));
  const std::vector<Case> cases = Cases();
  for (const Case& each : cases) AddCase(flowsheet, each);
  const Json results = SolvedResults(flowsheet);
  for (const auto& [name, system, T, P, basis, isAdiabatic] : cases) {
    if (!results["units"].contains(name)) continue;  // it has failed
    SCOPED_TRACE(name);
    Amounts feed;
    for (const auto& [compound, fraction] : system.feed.items()) feed[compound] = kFlow * fraction.get<double>();
    ExpectMixture(ProductOf(results, name), isAdiabatic ? EquilibratedAdiabatically(feed, system.reactions, T, P)
                                                        : GasMixture{T, Equilibrated(feed, system.reactions, T, P)});
  }
}

constexpr double kFlows[] = {1e-8, 1, 1e4};  // [mol/s]
constexpr double kUnknownDigits = 1e-10;     // of ln K and of fractions, as this test and the reactor have them

/// A reaction with K from Gibbs energies, or with a given constant of mole fractions.
struct Equilibrium {
  GasReaction reaction;
  double givenConstant = 0;  // none
};

const Equilibrium kEquilibria[] = {{kReforming},
                                   {kShift},
                                   {kAmmonia},
                                   {kCombustion},
                                   {{"to 1e6", kButanes.coefficients}, 1e6},
                                   {{"to 1e10", kButanes.coefficients}, 1e10},
                                   {{"to 1e-10", kButanes.coefficients}, 1e-10},
                                   {{"shift to 1e10", kShift.coefficients}, 1e10}};

/// ln Q - ln K in a product.
double Residual(const std::string& name, const Json& product) {
  const auto& [reaction, given] =
      *std::ranges::find_if(kEquilibria, [&](const Equilibrium& each) { return each.reaction.name == name; });
  const double T = product["temperature"], P = product["pressure"];
  const Amounts flows = FlowsOf(product);
  if (given == 0) return LnGasQuotient(reaction, flows, P) - LnGasConstant(reaction, T);
  // At 1 bar activities are mole fractions.
  return LnGasQuotient(reaction, flows, kStandardPressure) - std::log(given);
}

/// Where hardly anything is left of a compound, its flow is what rounding of the others leaves of its digits: the
/// tolerance of those cases is as coarse.
struct Start {
  const char* title;
  std::vector<std::string> reactions;
  double T;  // of the feed, and of the reactor when it is isothermal [K]
  double P;  // [Pa]
  double tolerance;
  Json feed;
  bool isAdiabatic = false;
};

const Start kStarts[] = {
    {"reactants only", {"shift"}, 700, 1e5, 1e-9, {{kCO, 0.5}, {"water", 0.5}}},
    {"products only", {"shift"}, 700, 1e5, 1e-9, {{kCO2, 0.5}, {"hydrogen", 0.5}}},
    {"a reactant absent", {"shift"}, 700, 1e5, 1e-9, {{kCO2, 0.2}, {"hydrogen", 0.3}, {"water", 0.5}}},
    {"a trace of a product", {"shift"}, 700, 1e5, 1e-9, {{kCO, 0.5}, {"water", 0.5}, {kCO2, 1e-10}}},
    {"a trace of a reactant", {"shift"}, 700, 1e5, 1e-9, {{kCO, 1e-10}, {"water", 0.6}, {"hydrogen", 0.4}}},
    {"a trace of all that reacts", {"to 1e6"}, 400, 1e5, 1e-8, {{kButane, 1e-10}, {"nitrogen", 1}}},
    {"almost complete", {"shift to 1e10"}, 400, 1e5, 1e-8, {{kCO, 0.5}, {"water", 0.5}}},
    {"complete but for rounding", {"to 1e10"}, 400, 1e5, 1e-4, {{kButane, 1}}},
    {"complete with an excess", {"shift to 1e10"}, 400, 1e5, 1e-4, {{kCO, 0.2}, {"water", 0.8}}},
    {"almost complete from its product", {"to 1e-10"}, 400, 1e5, 1e-4, {{"isobutane", 1}}},
    {"hardly any reaction", {"to 1e-10"}, 400, 1e5, 1e-9, {{kButane, 1}}},
    {"ammonia that is not stable", {"ammonia"}, 900, 1e5, 1e-9, {{"ammonia", 1}}},
    {"ammonia that is stable", {"ammonia"}, 300, 1e7, 1e-9, {{"nitrogen", 0.25}, {"hydrogen", 0.75}}},
    {"in the wrong order", {"shift", "reforming"}, 1000, 1e5, 1e-9, {{"methane", 0.25}, {"water", 0.75}}},
    {"from the products of both", {"reforming", "shift"}, 900, 2e6, 1e-9, {{kCO2, 0.2}, {"hydrogen", 0.8}}},
    {"from the products of one", {"reforming", "shift"}, 900, 2e6, 1e-9, {{kCO, 0.25}, {"hydrogen", 0.75}}},
    // Each of the two needs water, which only both together make: CH4 + CO2 = 2 CO + 2 H2.
    {"possible together only", {"reforming", "shift"}, 1100, 1e5, 1e-9, {{"methane", 0.5}, {kCO2, 0.5}}},
    {"a trace of water", {"reforming", "shift"}, 1100, 1e5, 1e-9, {{"methane", 0.5}, {kCO2, 0.5}, {"water", 1e-10}}},
    {"heats itself", {"shift"}, 400, 1e5, 1e-9, {{kCO, 0.5}, {"water", 0.5}}, true},
    {"cools itself", {"reforming", "shift"}, 1100, 1e5, 1e-9, {{"methane", 0.4}, {"water", 0.6}}, true},
    {"from products, heats itself", {"reforming", "shift"}, 600, 2e6, 1e-9, {{kCO, 0.2}, {"hydrogen", 0.8}}, true},
    {"cold synthesis", {"ammonia"}, 300, 2e7, 1e-9, {{"nitrogen", 0.25}, {"hydrogen", 0.75}}, true},
    // K falls from 1e140 in the feed to 1e20 and 1e17 in the flame.
    {"flame", {"combustion"}, 298.15, 1e5, 1e-4, {{"methane", 0.08}, {"oxygen", 0.1932}, {"nitrogen", 0.7268}}, true},
    {"flame without excess",
     {"combustion"},
     298.15,
     1e5,
     1e-4,
     {{"methane", 0.1}, {"oxygen", 0.2}, {"nitrogen", 0.7}},
     true},
};

void ExpectEquilibrium(const Json& results, const std::string& name, const Start& start, double flow) {
  const Json& feed = FeedOf(results, name);
  const Json& product = ProductOf(results, name);
  for (const auto& [compound, fraction] : product["composition"].items())
    EXPECT_GE(fraction.get<double>(), 0) << compound;
  for (const std::string& reaction : start.reactions)
    EXPECT_LE(std::abs(Residual(reaction, product)), start.tolerance + kUnknownDigits) << reaction;
  if (!start.isAdiabatic) {
    EXPECT_EQ(product["temperature"], start.T);
    return;
  }
  const double before = flow * feed["enthalpyF"].get<double>();
  EXPECT_NEAR(product["flow"].get<double>() * product["enthalpyF"].get<double>(), before,
              1e-8 * (std::abs(before) + flow * kGasConstant * start.T));
}

// Unless tests are long each start has one of the flows.
TEST(EquilibriumReactor, SolvesFromPoorStarts) {
  Json reactions = Json::array();
  for (const auto& [reaction, given] : kEquilibria) {
    reactions.push_back(Reaction(reaction.name, reaction, "MoleFraction"));
    if (given > 0)
      reactions.back()["lnK"] = {std::log(given), 0, 0, 0};
    else
      reactions.back()["equilibrium"] = "gibbs";
  }
  Json flowsheet = GasFlowsheet(kCompounds, std::move(reactions));
  std::map<std::string, std::pair<const Start*, double>> cases;
  std::size_t number = 0;
  for (const Start& start : kStarts) {
    ++number;
    for (std::size_t k = 0; k < std::size(kFlows); ++k) {
      if (!ShortOrLong(false, true) && k != number % std::size(kFlows)) continue;
      const std::string name = Named(start.title, ", ", kFlows[k], " mol/s");
      cases[name] = {&start, kFlows[k]};
      AddUnit(flowsheet, name,
              Reactor(start.reactions, start.tolerance, start.isAdiabatic ? std::nullopt : std::optional(start.T)),
              Material(start.T, start.P, kFlows[k], start.feed));
    }
  }
  const Json results = SolvedResults(flowsheet);
  for (const auto& [name, each] : cases) {
    SCOPED_TRACE(name);
    if (results["units"].contains(name)) ExpectEquilibrium(results, name, *each.first, each.second);
  }
}

}  // namespace morvelan::test::equilibrium_reactor
