// What all reactors keep, whatever they calculate: elements, and energy as each enthalpy option counts it.

#include <gtest/gtest.h>

#include <cmath>

#include "tests/cli/ReactorFlowsheet.h"

namespace morvelan::test::reactor_balance_run {

constexpr double kElementTolerance = 1e-10;
constexpr double kEnergyTolerance = 1e-8;
constexpr double kFlow = 2;            // [mol/s]
constexpr double kP = 3e5;             // [Pa]
constexpr double kPressureDrop = 2e4;  // [Pa]
constexpr double kReactorT = 1000;     // of isothermal reactors [K]
constexpr double kDuty = 1e5;          // of the others [W]

const Json kFeed = {{"methane", 0.2}, {"water", 0.6}, {"hydrogen", 0.05}, {"carbon monoxide", 0.05}, {"nitrogen", 0.1}};

const std::map<std::string, Amounts> kAtoms = {{"methane", {{"C", 1}, {"H", 4}}},
                                               {"water", {{"H", 2}, {"O", 1}}},
                                               {"carbon monoxide", {{"C", 1}, {"O", 1}}},
                                               {"carbon dioxide", {{"C", 1}, {"O", 2}}},
                                               {"hydrogen", {{"H", 2}}},
                                               {"nitrogen", {{"N", 2}}}};

const Amounts kReforming = {{"methane", -1}, {"water", -1}, {"carbon monoxide", 1}, {"hydrogen", 3}};
const Amounts kShift = {{"carbon monoxide", -1}, {"water", -1}, {"carbon dioxide", 1}, {"hydrogen", 1}};

struct ReactorClass {
  const char* name;
  Json configuration;
  Json parameters;
};

const ReactorClass kReactors[] = {
    {"FixedConversionReactor",
     {{"reactionNames", {"reforming", "shift"}},
      {"reactionCompounds", {"methane", "carbon monoxide"}},
      {"reactionConversions", {0.4, 0.3}},
      {"serialReactions", true}},
     Json::object()},
    {"EquilibriumReactor", {{"reactionNames", {"reforming", "shift"}}}, {{"Tolerance", 1e-9}}},
    {"CSTR",
     {{"reactionNames", {"slow reforming", "shift"}}},
     {{"Phase", "Vapor"}, {"Reactor volume", 0.5}, {"Tolerance", 1e-9}}},
};

constexpr const char* kHeatTypes[] = {"Isothermal", "Heat duty", "Energy inlet"};

enum EnthalpyType { kFormation, kNoHeatOfReaction, kHeatOfReaction };
constexpr const char* kEnthalpyTypes[] = {"Use EnthalpyF", "Use Enthalpy (no heat of reaction)",
                                          "Use Enthalpy and heat of reaction"};

struct Unit {
  std::string name;
  const ReactorClass* reactor;
  std::string heat;
  EnthalpyType enthalpy;
};

std::vector<Unit> AllUnits() {
  std::vector<Unit> units;
  for (const ReactorClass& reactor : kReactors)
    for (const char* heat : kHeatTypes)
      for (const EnthalpyType enthalpy : {kFormation, kNoHeatOfReaction, kHeatOfReaction})
        units.push_back({Named(reactor.name, ", ", heat, ", ", kEnthalpyTypes[enthalpy]), &reactor, heat, enthalpy});
  return units;
}

Json Reaction(const char* id, const Amounts& stoichiometry) {
  return {{"id", id}, {"phase", "Vapor"}, {"basis", "Molarity"}, {"stoichiometry", stoichiometry}};
}

/// All units at one temperature of their feeds, and the reactions with their heats as far as they are given.
Json Flowsheet(double feedT, bool givesHeats) {
  Json reforming = Reaction("reforming", kReforming), slow = Reaction("slow reforming", kReforming);
  Json shift = Reaction("shift", kShift);
  reforming.update({{"type", "equilibrium"}, {"equilibrium", "gibbs"}});
  shift.update({{"type", "equilibrium"}, {"equilibrium", "gibbs"}});
  slow.update({{"type", "kinetic"},
               {"rateBasis", "homogeneous"},
               {"rate", {{"preExponential", 5e3}, {"activationEnergy", 8e4}, {"orders", {{"methane", 1}}}}}});
  if (givesHeats)
    for (Json* reaction : {&reforming, &slow, &shift})
      (*reaction)["enthalpyOfReaction"] =
          GasEnthalpyFlow((*reaction)["stoichiometry"].get<Amounts>(), kStandardTemperature);
  Json flowsheet = GasFlowsheet({"methane", "water", "carbon monoxide", "carbon dioxide", "hydrogen", "nitrogen"},
                                {reforming, slow, shift});
  for (const auto& [name, reactor, heat, enthalpy] : AllUnits()) {
    Json parameters = reactor->parameters;
    parameters.update(
        {{"Heat duty type", heat}, {"Enthalpy Type", kEnthalpyTypes[enthalpy]}, {"Pressure drop", kPressureDrop}});
    if (heat == "Isothermal") parameters["Temperature"] = kReactorT;
    if (heat == "Heat duty") parameters["Heat duty"] = kDuty;
    const bool isInlet = heat == "Energy inlet";
    if (isInlet)
      flowsheet["streams"][name + " heat"] = {
          {"type", "energy"}, {"work", kDuty}, {"temperatureLow", 4000}, {"temperatureHigh", 5000}};
    AddReactor(flowsheet, name,
               {{"class", reactor->name},
                {"configuration", reactor->configuration},
                {"ports", {{isInlet ? "HeatDutySpecification" : "Heat duty", name + " heat"}}},
                {"parameters", parameters}},
               Material(feedT, kP, kFlow, kFeed));
  }
  return flowsheet;
}

Amounts AtomsOf(const Json& stream) {
  Amounts atoms;
  for (const auto& [compound, flow] : FlowsOf(stream))
    for (const auto& [element, count] : kAtoms.at(compound)) atoms[element] += count * flow;
  return atoms;
}

/// Of a stream [W], as an option counts it.
double EnthalpyFlow(const Json& stream, EnthalpyType type) {
  const double molar = stream[type == kFormation ? "enthalpyF" : "enthalpy"];
  return stream["flow"].get<double>() * molar;
}

/// Heat that reactions take in at a temperature [W], from what they have made of the feed.
double HeatTaken(const Json& feed, const Json& product, double T) {
  return GasEnthalpyFlow(FlowsOf(product), T) - GasEnthalpyFlow(FlowsOf(feed), T);
}

void ExpectBalances(const Json& results, const Unit& unit) {
  const Json& feed = FeedOf(results, unit.name);
  const Json& product = ProductOf(results, unit.name);
  const Json& parameters = results["units"][unit.name]["parameters"];
  EXPECT_NEAR(product["pressure"].get<double>(), kP - kPressureDrop, 1e-9 * kP);
  EXPECT_EQ(parameters["Temperature"], product["temperature"]);

  const Amounts before = AtomsOf(feed), after = AtomsOf(product);
  for (const auto& [element, atoms] : before)
    EXPECT_NEAR(after.at(element), atoms, kElementTolerance * atoms) << element;
  const double feedT = feed["temperature"];
  EXPECT_GT(FlowsOf(product).at("carbon dioxide"), 1e-3 * kFlow) << "reactions take place";

  const double duty = parameters["Heat duty"];
  EXPECT_EQ(results["streams"][unit.name + " heat"]["work"], duty);
  if (unit.heat == "Isothermal")
    EXPECT_EQ(product["temperature"], kReactorT);
  else
    EXPECT_EQ(duty, kDuty);
  const double in = EnthalpyFlow(feed, unit.enthalpy), out = EnthalpyFlow(product, unit.enthalpy);
  const double taken = unit.enthalpy == kHeatOfReaction ? HeatTaken(feed, product, feedT) : 0;
  EXPECT_NEAR(out + taken, in + duty,
              kEnergyTolerance * (std::abs(in) + std::abs(duty) + kFlow * kGasConstant * feedT));
}

TEST(ReactorBalanceRun, KeepsElementsAndEnergyUnderEveryOption) {
  for (const double feedT : {kStandardTemperature, 900.0}) {
    SCOPED_TRACE(feedT);
    const Json results = ResultsOfBoth(Flowsheet(feedT, false));
    for (const Unit& unit : AllUnits()) {
      if (!results["units"].contains(unit.name)) continue;  // it has failed
      SCOPED_TRACE(unit.name);
      ExpectBalances(results, unit);
    }
  }
}

/// Formation enthalpies are those at 298.15 K, where the enthalpy of every gas is zero. With enthalpyF a
/// reaction so takes its heat at that temperature, with a heat of reaction that at the feed's; in between lie
/// the heat capacities of what it makes, less those of what it uses. Both agree when the feed is at that
/// temperature, or when the heat given is that at it.
struct Agreement {
  double feedT;
  bool givesHeats;
  bool agrees;
};

const Agreement kAgreements[] = {{kStandardTemperature, false, true}, {900, true, true}, {900, false, false}};

void ExpectAgreement(const Json& results, const Unit& unit, const Agreement& agreement) {
  const std::string other = Named(unit.reactor->name, ", ", unit.heat, ", ", kEnthalpyTypes[kHeatOfReaction]);
  if (!results["units"].contains(unit.name) || !results["units"].contains(other)) return;  // failed
  SCOPED_TRACE(unit.name);
  const Json& product = ProductOf(results, unit.name);
  const Json& otherProduct = ProductOf(results, other);
  const double T = product["temperature"], otherT = otherProduct["temperature"];
  if (agreement.agrees) {
    EXPECT_NEAR(otherT, T, 1e-8 * T);
    for (const auto& [compound, fraction] : product["composition"].items())
      EXPECT_NEAR(otherProduct["composition"][compound].get<double>(), fraction.get<double>(), 1e-8);
  } else if (unit.heat != "Isothermal") {
    EXPECT_GT(std::abs(otherT - T), 1);
  }
  if (unit.heat != "Isothermal") return;
  const auto duty = [&](const std::string& name) {
    return results["units"][name]["parameters"]["Heat duty"].get<double>();
  };
  const Json& feed = FeedOf(results, unit.name);
  const double between =
      agreement.agrees ? 0 : HeatTaken(feed, product, agreement.feedT) - HeatTaken(feed, product, kStandardTemperature);
  if (!agreement.agrees) EXPECT_GT(std::abs(between), 0.01 * std::abs(duty(unit.name)));
  EXPECT_NEAR(duty(other) - duty(unit.name), between,
              kEnergyTolerance * kFlow * std::abs(feed["enthalpyF"].get<double>()));
}

TEST(ReactorBalanceRun, EnthalpyOptionsAgreeWhereTheyCountFromTheSameTemperature) {
  for (const Agreement& agreement : kAgreements) {
    SCOPED_TRACE(testing::Message() << "feed at " << agreement.feedT << " K, heats of reaction "
                                    << (agreement.givesHeats ? "given" : "from formation"));
    const Json results = SolvedResults(Flowsheet(agreement.feedT, agreement.givesHeats), "--thermo 1.1");
    for (const Unit& unit : AllUnits())
      if (unit.enthalpy == kFormation) ExpectAgreement(results, unit, agreement);
  }
}

TEST(ReactorBalanceRun, IsTheSameToTheBitForRestoredReactors) {
  const Json flowsheet = Flowsheet(900, false);
  for (const std::string thermo : {"--thermo 1.0", "--thermo 1.1"}) {
    const Json saved = SolvedResults(flowsheet, thermo), restored = SolvedResults(flowsheet, thermo + " --roundtrip");
    // (The log differs: it tells of every connection, and restored units are connected once more.)
    for (const char* part : {"streams", "units"}) ExpectSame(saved[part], restored[part], 0, thermo + ' ' + part);
  }
}

}  // namespace morvelan::test::reactor_balance_run
