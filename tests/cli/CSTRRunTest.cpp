// Isothermal stirred tanks of ideal gases, against the closed forms of their balances.

#include <gtest/gtest.h>

#include <cmath>

#include "tests/cli/ReactorFlowsheet.h"

namespace morvelan::test::cstr_run {

constexpr double kT = 500;                                 // [K]
constexpr double kP = 2e5;                                 // [Pa]
constexpr double kFlow = 3;                                // [mol/s]
constexpr double kVolume = 0.8;                            // [m3]
constexpr double kCatalystVolume = 0.3;                    // [m3]
constexpr double kCatalystMass = 45;                       // [kg]
constexpr double kDensity = kP / (kGasConstant * kT);      // [mol/m3]
constexpr double kResidence = kVolume * kDensity / kFlow;  // of the gas as it is fed [s]
constexpr double kActivationEnergy = 7e4;                  // of all rates [J/mol]
constexpr double kWeight = 40;                             // of A, B and C; D has twice as much [g/mol]
constexpr double kTolerance = 1e-6;                        // relative; the reactors are given 1e-9
constexpr double kScales[] = {1e-6, 1, 1e3};               // of flow, volume and catalyst together

/// A tank, and what becomes of each mole fed: one feed is one mole.
struct Tank {
  const char* title;
  std::vector<Json> reactions;
  Json feed;
  Json sizes;  // parameters that are proportional to the flow
  Amounts expected;
};

double RateConstant(double preExponential) {
  return preExponential * std::exp(-kActivationEnergy / (kGasConstant * kT));
}

Json Law(double preExponential, Json orders) {
  return {{"preExponential", preExponential}, {"activationEnergy", kActivationEnergy}, {"orders", std::move(orders)}};
}

Json Kinetic(Json stoichiometry, double preExponential, Json orders, const char* basis = "Molarity") {
  return {{"type", "kinetic"},
          {"phase", "Vapor"},
          {"basis", basis},
          {"rateBasis", "homogeneous"},
          {"stoichiometry", std::move(stoichiometry)},
          {"rate", Law(preExponential, std::move(orders))}};
}

Json OnCatalyst(Json reaction) {
  reaction["rateBasis"] = "heterogeneous";
  return reaction;
}

Json Reversible(Json reaction, double preExponential, Json orders) {
  reaction["reverse"] = Law(preExponential, std::move(orders));
  return reaction;
}

Json InEquilibrium(Json stoichiometry, double constant) {
  return {{"type", "equilibrium"},
          {"phase", "Vapor"},
          {"basis", "MoleFraction"},
          {"stoichiometry", std::move(stoichiometry)},
          {"lnK", {std::log(constant), 0, 0, 0}}};
}

const Json kAToB = {{"A", -1}, {"B", 1}};
const Json kBToC = {{"B", -1}, {"C", 1}};
const Json kAToC = {{"A", -1}, {"C", 1}};
const Json kSplit = {{"D", -1}, {"A", 2}};
const Json kJoin = {{"A", -2}, {"D", 1}};
const Json kEmptyTank = {{"Reactor volume", kVolume}};

Amounts Turned(double conversion) { return {{"A", 1 - conversion}, {"B", conversion}}; }
Amounts Split(double conversion) { return {{"D", 1 - conversion}, {"A", 2 * conversion}}; }

/// X = number (1 - X)
double FirstOrder(double number) { return number / (1 + number); }
/// X = number (1 - X)^2
double SecondOrder(double number) { return (2 * number + 1 - std::sqrt(4 * number + 1)) / (2 * number); }
/// X = number (1 - X)^(1/2)
double HalfOrder(double number) { return number * (std::sqrt(number * number + 4) - number) / 2; }
/// X = number (1 - X) / (1 + X): the gas expands
double FirstOrderExpanding(double number) {
  return (std::sqrt((1 + number) * (1 + number) + 4 * number) - 1 - number) / 2;
}
/// e = number ((1 - 2 e) / (1 - e))^2: it contracts
double SecondOrderContracting(double number) {
  double lower = 0, upper = 0.5;
  for (int i = 0; i < 100; ++i) {
    const double e = 0.5 * (lower + upper), x = (1 - 2 * e) / (1 - e);
    (e < number * x * x ? lower : upper) = e;
  }
  return lower;
}

std::vector<Tank> TanksOfOneReaction() {
  const double k = RateConstant(5e6) * kResidence;          // first order, 1/s
  const double complete = RateConstant(2e12) * kResidence;  // X = 1 - 8e-7
  const double k2 = RateConstant(4e4) * kResidence * kDensity;
  const double kHalf = RateConstant(2e7) * kResidence / std::sqrt(kDensity);
  const double perVolume = kVolume / kFlow;  // for rates that know no density
  const double k0 = RateConstant(4e7) * perVolume;
  const double reverse = RateConstant(2e6) * kResidence;
  const double joined = SecondOrderContracting(k2);
  const double kg = 2 * kWeight / 1000;  // of a mole of D
  const Json A = {{"A", 1}}, B = {{"B", 1}}, D = {{"D", 1}};
  return {
      {"first order", {Kinetic(kAToB, 5e6, A)}, A, kEmptyTank, Turned(FirstOrder(k))},
      {"almost complete", {Kinetic(kAToB, 2e12, A)}, A, kEmptyTank, Turned(FirstOrder(complete))},
      {"second order", {Kinetic(kAToB, 4e4, {{"A", 2}})}, A, kEmptyTank, Turned(SecondOrder(k2))},
      {"half order", {Kinetic(kAToB, 2e7, {{"A", 0.5}})}, A, kEmptyTank, Turned(HalfOrder(kHalf))},
      {"order zero", {Kinetic(kAToB, 4e7, Json::object())}, A, kEmptyTank, Turned(k0)},
      {"expanding", {Kinetic(kSplit, 5e6, D)}, D, kEmptyTank, Split(FirstOrderExpanding(k))},
      {"contracting", {Kinetic(kJoin, 4e4, {{"A", 2}})}, A, kEmptyTank, {{"A", 1 - 2 * joined}, {"D", joined}}},
      {"reversible", {Reversible(Kinetic(kAToB, 5e6, A), 2e6, B)}, A, kEmptyTank, Turned(k / (1 + k + reverse))},
      {"reversible from the other side",
       {Reversible(Kinetic(kAToB, 5e6, A), 2e6, B)},
       B,
       kEmptyTank,
       Turned((1 + k) / (1 + k + reverse))},
      {"rate of mole fractions",
       {Kinetic(kSplit, 4e7, D, "MoleFraction")},
       D,
       kEmptyTank,
       Split(FirstOrderExpanding(k0))},
      // The mass fraction of D is 1 - X.
      {"rate of mass fractions", {Kinetic(kSplit, 4e7, D, "MassFraction")}, D, kEmptyTank, Split(FirstOrder(k0))},
      {"rate of concentrations",
       {Kinetic(kSplit, 5e6, D, "Concentration")},
       D,
       kEmptyTank,
       Split(FirstOrderExpanding(k * kg))},
  };
}

std::vector<Tank> TanksOfSeveralReactions() {
  const double k1 = RateConstant(5e6) * kResidence, k2 = RateConstant(2e6) * kResidence;
  const double ofA = 1 / (1 + k1), ofB = k1 * ofA / (1 + k2);
  const Json A = {{"A", 1}}, B = {{"B", 1}};
  const std::vector<Json> series = {Kinetic(kAToB, 5e6, A), Kinetic(kBToC, 2e6, B)};
  const double parallel = 1 / (1 + k1 + k2);
  // A and B are in equilibrium, x_B = 4 x_A, and B turns: 1 = x_A (1 + 4 + 4 k1).
  const double kept = 1 / (5 + 4 * k1);
  return {
      {"consecutive", series, A, kEmptyTank, {{"A", ofA}, {"B", ofB}, {"C", 1 - ofA - ofB}}},
      {"consecutive without its first compound",
       series,
       B,
       kEmptyTank,
       {{"A", 0}, {"B", 1 / (1 + k2)}, {"C", k2 / (1 + k2)}}},
      {"parallel",
       {Kinetic(kAToB, 5e6, A), Kinetic(kAToC, 2e6, A)},
       A,
       kEmptyTank,
       {{"A", parallel}, {"B", k1 * parallel}, {"C", k2 * parallel}}},
      {"equilibrium and rate",
       {InEquilibrium(kAToB, 4), Kinetic(kBToC, 5e6, B)},
       A,
       kEmptyTank,
       {{"A", kept}, {"B", 4 * kept}, {"C", 4 * k1 * kept}}},
      {"equilibrium alone", {InEquilibrium(kAToB, 4)}, A, Json::object(), Turned(0.8)},
  };
}

std::vector<Tank> TanksWithCatalyst() {
  const double k = RateConstant(5e6) * kDensity / kFlow;  // of first order, for each m3 or kg
  const double gas = k * (kVolume - kCatalystVolume), catalyst = k * kCatalystMass / 100;
  const double kept = 1 / (1 + gas + catalyst);
  const Json A = {{"A", 1}};
  const Json homogeneous = Kinetic(kAToB, 5e6, A), onCatalyst = OnCatalyst(Kinetic(kAToB, 5e4, A));
  const Json filled = {
      {"Reactor volume", kVolume}, {"Catalyst volume", kCatalystVolume}, {"Catalyst mass", kCatalystMass}};
  return {
      {"on a mass of catalyst", {onCatalyst}, A, {{"Catalyst mass", kCatalystMass}}, Turned(FirstOrder(catalyst))},
      {"on a volume of catalyst",
       {onCatalyst},
       A,
       {{"Catalyst volume", kCatalystVolume}, {"Catalyst density", kCatalystMass / kCatalystVolume}},
       Turned(FirstOrder(catalyst))},
      {"beside a catalyst",
       {homogeneous},
       A,
       {{"Reactor volume", kVolume}, {"Catalyst volume", kCatalystVolume}},
       Turned(FirstOrder(gas))},
      {"beside and on a catalyst",
       {homogeneous, OnCatalyst(Kinetic(kAToC, 5e4, A))},
       A,
       filled,
       {{"A", kept}, {"B", gas * kept}, {"C", catalyst * kept}}},
  };
}

/// Under identifiers of its own, so that every tank has its reactions.
Json Reactor(const Tank& tank, double scale, Json& reactions) {
  Json names = Json::array();
  for (Json reaction : tank.reactions) {
    reaction["id"] = Named(tank.title, ' ', scale, ' ', names.size());
    names.push_back(reaction["id"]);
    reactions.push_back(std::move(reaction));
  }
  Json parameters = {{"Heat duty type", "Isothermal"}, {"Temperature", kT}, {"Phase", "Vapor"}, {"Tolerance", 1e-9}};
  for (const auto& [size, value] : tank.sizes.items())
    parameters[size] = size == "Catalyst density" ? value.get<double>() : scale * value.get<double>();
  return {{"class", "CSTR"}, {"configuration", {{"reactionNames", names}}}, {"parameters", parameters}};
}

TEST(CSTRRun, MeetsClosedForms) {
  std::vector<Tank> tanks = TanksOfOneReaction();
  for (const auto& more : {TanksOfSeveralReactions(), TanksWithCatalyst()})
    tanks.insert(tanks.end(), more.begin(), more.end());
  Json flowsheet = GasFlowsheet({"A", "B", "C", "D"}, Json::array());
  flowsheet["thermo"]["compoundData"]["compounds"] = {SimpleGas("A", kWeight, 60, 0), SimpleGas("B", kWeight, 70, -3e4),
                                                      SimpleGas("C", kWeight, 80, -5e4),
                                                      SimpleGas("D", 2 * kWeight, 110, 1e4)};
  for (const Tank& tank : tanks)
    for (const double scale : kScales)
      AddReactor(flowsheet, Named(tank.title, ' ', scale), Reactor(tank, scale, flowsheet["reactions"]),
                 Material(450, kP, scale * kFlow, tank.feed));
  const Json results = ResultsOfBoth(flowsheet);
  for (const Tank& tank : tanks)
    for (const double scale : kScales) {
      const std::string name = Named(tank.title, ' ', scale);
      if (!results["units"].contains(name)) continue;  // it has failed
      SCOPED_TRACE(name);
      EXPECT_EQ(ProductOf(results, name)["temperature"], kT);
      EXPECT_FALSE(IsLogged(results, "WARNING")) << results["log"];
      const Amounts flows = FlowsOf(ProductOf(results, name));
      for (const auto& [compound, expected] : tank.expected)
        EXPECT_NEAR(flows.at(compound), scale * kFlow * expected, scale * kFlow * expected * kTolerance) << compound;
    }
}

}  // namespace morvelan::test::cstr_run
