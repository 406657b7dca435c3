// The compositions and temperatures that the equilibrium reactor finds for ideal gases, against the least
// Gibbs energy and against closed forms.

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "tests/cli/GasEquilibrium.h"
#include "tests/cli/ReactorFlowsheet.h"

namespace morvelan::test::equilibrium_reactor_run {

constexpr double kTolerance = 1e-9;          // that the reactor is given, of ln Q - ln K
constexpr double kFractionTolerance = 1e-6;  // relative, with room for what the solution is sensitive to
constexpr double kFlow = 2;                  // [mol/s]
constexpr const char* kBases[] = {"MoleFraction", "Molarity", "Concentration", "MassFraction"};

Json Reactor(Json reactions, Json parameters) {
  parameters["Tolerance"] = kTolerance;
  return {{"class", "EquilibriumReactor"},
          {"configuration", {{"reactionNames", std::move(reactions)}}},
          {"parameters", std::move(parameters)}};
}

Json Isothermal(double T) { return {{"Heat duty type", "Isothermal"}, {"Temperature", T}}; }

void ExpectFractions(const Json& product, const Amounts& expected) {
  double total = 0;
  for (const auto& [compound, flow] : expected) total += flow;
  EXPECT_NEAR(product["flow"].get<double>(), total, kFractionTolerance * total);
  for (const auto& [compound, flow] : expected)
    EXPECT_NEAR(product["composition"][compound].get<double>(), flow / total, kFractionTolerance * flow / total)
        << compound;
}

// ---- Constants from Gibbs energies

const GasReaction kReforming = {"reforming", {{"methane", -1}, {"water", -1}, {"carbon monoxide", 1}, {"hydrogen", 3}}};
const GasReaction kShift = {"shift", {{"carbon monoxide", -1}, {"water", -1}, {"carbon dioxide", 1}, {"hydrogen", 1}}};
const GasReaction kAmmonia = {"ammonia", {{"nitrogen", -1}, {"hydrogen", -3}, {"ammonia", 2}}};
const GasReaction kButanes = {"butanes", {{"n-butane", -1}, {"isobutane", 1}}};

struct System {
  std::vector<GasReaction> reactions;
  Json feed;
  std::vector<double> temperatures;  // of isothermal reactors, and of the feed of adiabatic ones
};

const System kSystems[] = {
    {{kShift}, {{"carbon monoxide", 0.3}, {"water", 0.5}, {"nitrogen", 0.2}}, {500, 900}},
    {{kReforming, kShift}, {{"methane", 0.2}, {"water", 0.8}}, {800, 1100}},
    {{kAmmonia}, {{"nitrogen", 0.25}, {"hydrogen", 0.75}}, {550, 750}},
    {{kButanes}, {{"n-butane", 0.9}, {"isobutane", 0.1}}, {300, 500}},
};
constexpr double kPressures[] = {1e5, 5e6};

struct Case {
  std::string name;
  const System* system;
  double T;
  double P;
  const char* basis;
  bool isAdiabatic;
};

std::vector<Case> AllCases() {
  std::vector<Case> cases;
  for (const System& system : kSystems)
    for (const double T : system.temperatures)
      for (const double P : kPressures)
        for (const char* basis : kBases)
          for (const bool isAdiabatic : {false, true})
            cases.push_back({Named(system.reactions.front().name, ' ', T, " K ", P, " Pa ", basis,
                                   isAdiabatic ? " adiabatic" : " isothermal"),
                             &system, T, P, basis, isAdiabatic});
  return cases;
}

Json GibbsReactions() {
  Json reactions = Json::array();
  for (const GasReaction& reaction : {kReforming, kShift, kAmmonia, kButanes})
    for (const char* basis : kBases)
      reactions.push_back({{"id", Named(reaction.name, ' ', basis)},
                           {"type", "equilibrium"},
                           {"phase", "Vapor"},
                           {"basis", basis},
                           {"equilibrium", "gibbs"},
                           {"stoichiometry", reaction.coefficients}});
  return reactions;
}

/// The isothermal feeds are colder than the reactor; an adiabatic reactor is at its feed's enthalpy.
void AddCase(Json& flowsheet, const Case& each) {
  Json reactions = Json::array();
  for (const GasReaction& reaction : each.system->reactions) reactions.push_back(Named(reaction.name, ' ', each.basis));
  const double feedT = each.isAdiabatic ? each.T : each.T - 50;
  AddReactor(flowsheet, each.name, Reactor(reactions, each.isAdiabatic ? Json::object() : Isothermal(each.T)),
             Material(feedT, each.P, kFlow, each.system->feed));
}

TEST(EquilibriumReactorRun, FindsTheLeastGibbsEnergy) {
  const std::vector<Case> cases = AllCases();
  Json flowsheet = GasFlowsheet({"methane", "water", "carbon monoxide", "carbon dioxide", "hydrogen", "nitrogen",
                                 "ammonia", "n-butane", "isobutane"},
                                GibbsReactions());
  for (const Case& each : cases) AddCase(flowsheet, each);
  const Json results = ResultsOfBoth(flowsheet);
  for (const auto& [name, system, T, P, basis, isAdiabatic] : cases) {
    if (!results["units"].contains(name)) continue;  // it has failed
    SCOPED_TRACE(name);
    Amounts feed;
    for (const auto& [compound, fraction] : system->feed.items()) feed[compound] = kFlow * fraction.get<double>();
    const GasMixture expected = isAdiabatic ? EquilibratedAdiabatically(feed, system->reactions, T, P)
                                            : GasMixture{T, Equilibrated(feed, system->reactions, T, P)};
    const Json& product = ProductOf(results, name);
    EXPECT_NEAR(product["temperature"].get<double>(), expected.T, 1e-6 * T);
    ExpectFractions(product, expected.flows);
  }
}

// ---- Given constants

constexpr double kHalfWeight = 30;  // [g/mol]

/// A gas splits into two of half its molar mass. The extent per mole of it fed is e, x_half = 2 e / (1 + e)
/// and x_whole = (1 - e) / (1 + e), so that x_half^2 / x_whole = 4 e^2 / (1 - e^2).
struct Splitting {
  const char* basis;
  double (*extent)(double K, double density /* [mol/m3] */);
};

const Splitting kSplittings[] = {
    {"MoleFraction", [](double K, double) { return std::sqrt(K / (4 + K)); }},
    {"Molarity", [](double K, double density) { return std::sqrt(K / (4 * density + K)); }},
    // M_half^2 / M_whole = M_half / 2 in kg/mol
    {"Concentration", [](double K, double density) { return std::sqrt(K / (4 * density * kHalfWeight / 2000 + K)); }},
    // w_half = e and w_whole = 1 - e: e^2 = K (1 - e)
    {"MassFraction", [](double K, double) { return 2 / (1 + std::sqrt(1 + 4 / K)); }},
};

/// Of ln K = a + b/T + c ln T + d T: each alone, and all together.
const std::array<double, 4> kCoefficients[] = {
    {0.5, 0, 0, 0}, {0, 400, 0, 0}, {0, 0, 0.2, 0}, {0, 0, 0, 2e-3}, {1, -700, 0.15, -1e-3}};

TEST(EquilibriumReactorRun, MeetsClosedFormsInEveryBasis) {
  struct Unit {
    std::string name;
    const Splitting* splitting;
    std::array<double, 4> lnK;
    double T;
    double P;
  };
  std::vector<Unit> units;
  Json flowsheet = GasFlowsheet({"whole", "half"}, Json::array());
  flowsheet["thermo"]["compoundData"]["compounds"] = {SimpleGas("whole", 2 * kHalfWeight, 80, 0),
                                                      SimpleGas("half", kHalfWeight, 40, 2e4)};
  for (const Splitting& splitting : kSplittings)
    for (const auto& lnK : kCoefficients) {
      const std::string reaction = Named(splitting.basis, ' ', Json(lnK));
      flowsheet["reactions"].push_back({{"id", reaction},
                                        {"type", "equilibrium"},
                                        {"phase", "Vapor"},
                                        {"basis", splitting.basis},
                                        {"lnK", lnK},
                                        {"stoichiometry", {{"whole", -1}, {"half", 2}}}});
      for (const double T : {400, 650})
        for (const double P : {1e5, 8e5}) {
          units.push_back({Named(reaction, ' ', T, " K ", P, " Pa"), &splitting, lnK, T, P});
          AddReactor(flowsheet, units.back().name, Reactor({reaction}, Isothermal(T)),
                     Material(500, P, kFlow, {{"whole", 1}}));
        }
    }
  const Json results = ResultsOfBoth(flowsheet);
  for (const auto& [name, splitting, lnK, T, P] : units) {
    if (!results["units"].contains(name)) continue;  // it has failed
    SCOPED_TRACE(name);
    const double K = std::exp(lnK[0] + lnK[1] / T + lnK[2] * std::log(T) + lnK[3] * T);
    const double extent = splitting->extent(K, P / (kGasConstant * T));
    ExpectFractions(ProductOf(results, name), {{"whole", kFlow * (1 - extent)}, {"half", kFlow * 2 * extent}});
  }
}

TEST(EquilibriumReactorRun, TurnsFourFifthsWhereTheConstantIsFour) {
  Json flowsheet = GasFlowsheet({"A", "B"}, Json::array());
  flowsheet["thermo"]["compoundData"]["compounds"] = {SimpleGas("A", 58, 100, 0), SimpleGas("B", 58, 100, 0)};
  for (const char* basis : kBases) {
    flowsheet["reactions"].push_back({{"id", basis},
                                      {"type", "equilibrium"},
                                      {"phase", "Vapor"},
                                      {"basis", basis},
                                      {"lnK", {std::log(4.0), 0, 0, 0}},
                                      {"stoichiometry", {{"A", -1}, {"B", 1}}}});
    AddReactor(flowsheet, basis, Reactor({basis}, Json::object()), Material(400, 2e5, kFlow, {{"A", 1}}));
  }
  const Json results = ResultsOfBoth(flowsheet);
  for (const auto& [name, unit] : results["units"].items()) {
    SCOPED_TRACE(name);
    ExpectFractions(ProductOf(results, name), {{"A", 0.2 * kFlow}, {"B", 0.8 * kFlow}});
    // No heat of reaction and equal heat capacities: adiabatic is isothermal.
    EXPECT_NEAR(ProductOf(results, name)["temperature"].get<double>(), 400, 1e-6);
  }
}

}  // namespace morvelan::test::equilibrium_reactor_run
