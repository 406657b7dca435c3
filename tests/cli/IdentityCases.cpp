#include "tests/cli/IdentityCases.h"

#include <algorithm>
#include <span>

namespace morvelan::test {
namespace {

/// The state of a feed.
struct State {
  std::string name;
  double T;  // [K]
  double P;  // [Pa]
  Json composition;
  std::vector<std::string> phases = {};  // that the state was chosen to have
  double flow = 2;                       // [mol/s]
};

/// What units are fed with.
struct Mixture {
  std::string name;
  Json thermo;
  std::vector<State> states;
  Json reactions = Json::array();
};

/// A specification of a unit.
struct Case {
  const char* unit;  // its class
  std::string title;
  Json parameters = Json::object();
  Json configuration = Json::object();
  Json streams = Json::object();  // energy and information at ports: a feed, or null for a product
  std::vector<std::string> inlets = {"Inlet"}, outlets = {"Outlet"};
  double heatSign = 1;  // as that of a BalancedUnit
  bool keepsState = false, keepsTemperature = false;
};

Json Energy(double work) { return {{"type", "energy"}, {"work", work}}; }
Json Energy(double work, double low, double high) {
  return {{"type", "energy"}, {"work", work}, {"temperatureLow", low}, {"temperatureHigh", high}};
}
Json Kelvins(double value) {
  return {{"type", "information"}, {"value", value}, {"dimensionality", {0, 0, 0, 0, 1, 0, 0, 0, 1}}};
}

// Units that take any fluid.
const Case kFluidCases[] = {
    {.unit = "NoOperation", .title = "copies", .keepsState = true},
    {.unit = "Valve", .title = "by a difference", .parameters = {{"Pressure difference", 6e4}}},
    {.unit = "Valve", .title = "to a pressure", .parameters = {{"Pressure spec.", "Pressure"}, {"Pressure", 5e4}}},
    {.unit = "HeaterCooler", .title = "heats", .parameters = {{"Heat duty", 3000}, {"Pressure drop", 2e4}}},
    {.unit = "HeaterCooler", .title = "cools", .parameters = {{"Heat duty", -2000}}},
    {.unit = "HeaterCooler",
     .title = "to a temperature",
     .parameters = {{"Type", "Temperature"}, {"Outlet temperature", 345}, {"Pressure drop", 1e4}}},
    {.unit = "HeaterCooler",
     .title = "by a stream",
     .parameters = {{"Type", "Energy inlet"}, {"Pressure drop", 2e4}},
     .streams = {{"Heat", Energy(3000)}}},
    {.unit = "HeaterCooler",
     .title = "by a stream of limited temperature",
     .parameters = {{"Type", "Energy inlet"}},
     .streams = {{"Heat", Energy(1e6, 455, 470)}}},
    {.unit = "HeaterCooler",
     .title = "gives heat to a stream",
     .parameters = {{"Heat duty", -1500}},
     .configuration = {{"heatPort", "outlet"}},
     .streams = {{"Heat", nullptr}},
     .heatSign = -1},
    {.unit = "Mixer", .title = "of two", .parameters = {{"Pressure drop", 1e4}}, .inlets = {"Inlet 1", "Inlet 2"}},
    {.unit = "Mixer",
     .title = "of three",
     .configuration = {{"numberOfInlets", 3}},
     .inlets = {"Inlet 1", "Inlet 2", "Inlet 3"}},
    {.unit = "Splitter",
     .title = "in two",
     .parameters = {{"Split factors", {0.3}}},
     .outlets = {"Outlet1", "Outlet2"},
     .keepsState = true},
    {.unit = "Splitter",
     .title = "in three",
     .parameters = {{"Split factors", {0.2, 0.5}}, {"Pressure drop", 3e4}},
     .configuration = {{"numberOfOutlets", 3}},
     .outlets = {"Outlet1", "Outlet2", "Outlet3"},
     .keepsTemperature = true},
};

const Mixture kFluids[] = {
    {"natural gas",
     R"({"compounds": ["methane", "ethane", "propane", "n-pentane"]})"_json,
     {{"two phases", 250, 4e6, R"({"methane": 0.6, "ethane": 0.2, "propane": 0.2})"_json, {"Liquid", "Vapor"}},
      {"vapor", 320, 1e6, R"({"methane": 0.7, "propane": 0.25, "n-pentane": 0.05})"_json, {"Vapor"}},
      {"liquid", 150, 5e6, R"({"methane": 0.5, "ethane": 0.3, "propane": 0.2})"_json, {"Liquid"}},
      {"trace", 300, 1e5, R"({"methane": 0.999999999999, "n-pentane": 1e-12})"_json, {"Vapor"}},
      {"no flow", 300, 1e6, R"({"methane": 0.5, "propane": 0.5})"_json, {"Vapor"}, 0}}},
    {"aromatics",
     R"({"compounds": ["benzene", "toluene"]})"_json,
     {{"two phases", 365, 1e5, R"({"benzene": 0.5, "toluene": 0.5})"_json, {"Liquid", "Vapor"}},
      {"vapor", 450, 2e5, R"({"benzene": 0.3, "toluene": 0.7})"_json, {"Vapor"}},
      {"liquid", 300, 1e6, R"({"benzene": 0.8, "toluene": 0.2})"_json, {"Liquid"}}}},
    // It evaporates in heaters and in mixers.
    {"propane",
     R"({"compounds": ["propane"]})"_json,
     {{"liquid", 250, 1e6, R"({"propane": 1})"_json, {"Liquid"}},
      {"vapor", 350, 1e6, R"({"propane": 1})"_json, {"Vapor"}},
      {"warm liquid", 295, 1e6, R"({"propane": 1})"_json, {"Liquid"}}}},
};

const Case kInformationCases[] = {
    {.unit = "InformationCalculator",
     .title = "takes a logarithm",
     .configuration = R"x({"formula": "(\"dT1\" - \"dT2\") / LOG(\"dT1\" / \"dT2\")",
                          "outputVariable": {"name": "LMTD", "unit": "K;Delta"},
                          "inputVariables": [{"name": "dT1", "unit": "K;Delta"}, {"name": "dT2", "unit": "K;Delta"}]})x"_json,
     .streams = {{"dT1", Kelvins(40)}, {"dT2", Kelvins(10)}, {"LMTD", nullptr}},
     .inlets = {},
     .outlets = {}},
};

// Reactors of gases, with a temperature or with options of heat that are added.
const Case kReactors[] = {
    {.unit = "FixedConversionReactor",
     .title = "in series",
     .configuration = R"({"reactionNames": ["reforming", "shift"], "reactionCompounds": ["methane", "carbon monoxide"],
                          "reactionConversions": [0.4, 0.3], "serialReactions": true})"_json},
    {.unit = "FixedConversionReactor",
     .title = "in parallel",
     .parameters = {{"Heat duty type", "Isothermal"}, {"Temperature", 700}},
     .configuration = R"({"reactionNames": ["reforming", "shift"], "reactionCompounds": ["methane", "carbon monoxide"],
                          "reactionConversions": [0.4, 0.3]})"_json},
    {.unit = "EquilibriumReactor",
     .title = "of two",
     .parameters = {{"Tolerance", 1e-9}},
     .configuration = R"({"reactionNames": ["reforming", "shift"]})"_json},
    {.unit = "CSTR",
     .title = "with rate and equilibrium",
     .parameters = {{"Phase", "Vapor"}, {"Reactor volume", 0.5}, {"Tolerance", 1e-9}},
     .configuration = R"({"reactionNames": ["slow reforming", "shift"]})"_json},
    {.unit = "CSTR",
     .title = "with catalyst",
     .parameters = R"({"Heat duty type": "Isothermal", "Temperature": 700, "Phase": "Vapor", "Tolerance": 1e-9,
                       "Reactor volume": 0.5, "Catalyst volume": 0.2, "Catalyst mass": 40})"_json,
     .configuration = R"({"reactionNames": ["slow reforming", "shift on catalyst"]})"_json},
};

const Json kGasReactions = R"([
    {"id": "reforming", "type": "equilibrium", "phase": "Vapor", "basis": "Molarity", "equilibrium": "gibbs",
     "stoichiometry": {"methane": -1, "water": -1, "carbon monoxide": 1, "hydrogen": 3}},
    {"id": "shift", "type": "equilibrium", "phase": "Vapor", "basis": "Molarity", "equilibrium": "gibbs",
     "stoichiometry": {"carbon monoxide": -1, "water": -1, "carbon dioxide": 1, "hydrogen": 1}},
    {"id": "slow reforming", "type": "kinetic", "phase": "Vapor", "basis": "Molarity", "rateBasis": "homogeneous",
     "stoichiometry": {"methane": -1, "water": -1, "carbon monoxide": 1, "hydrogen": 3},
     "rate": {"preExponential": 5e3, "activationEnergy": 8e4, "orders": {"methane": 1}}},
    {"id": "shift on catalyst", "type": "kinetic", "phase": "Vapor", "basis": "Molarity", "rateBasis": "heterogeneous",
     "stoichiometry": {"carbon monoxide": -1, "water": -1, "carbon dioxide": 1, "hydrogen": 1},
     "rate": {"preExponential": 2e-2, "activationEnergy": 4e4, "orders": {"carbon monoxide": 1, "water": 0.5}},
     "reverse": {"preExponential": 1e-2, "activationEnergy": 6e4, "orders": {"carbon dioxide": 1, "hydrogen": 0.5}}}
])"_json;

const Json kReactingGas =
    R"({"methane": 0.2, "water": 0.6, "hydrogen": 0.05, "carbon monoxide": 0.05, "nitrogen": 0.1})"_json;

const Mixture kGases = {
    "gases",
    R"({"model": "ideal-gas",
        "compounds": ["methane", "water", "carbon monoxide", "carbon dioxide", "hydrogen", "nitrogen"]})"_json,
    {{"cold", kStandardTemperature, 3e5, kReactingGas, {"Vapor"}}, {"hot", 900, 3e5, kReactingGas, {"Vapor"}}},
    kGasReactions};

const Case kLiquidReactors[] = {
    {.unit = "CSTR",
     .title = "of a boiling liquid",
     .parameters =
         R"({"Heat duty type": "Isothermal", "Temperature": 345, "Reactor volume": 1.5, "Tolerance": 1e-9})"_json,
     .configuration = R"({"reactionNames": ["splitting"]})"_json},
};

const Mixture kEther = {
    "ether",
    R"({"compounds": ["methyl tert-butyl ether", "isobutene", "methanol"]})"_json,
    {{"liquid", 330, 3e5, R"({"methyl tert-butyl ether": 1})"_json, {"Liquid"}}},
    R"([{"id": "splitting", "type": "kinetic", "phase": "Liquid", "basis": "Molarity", "rateBasis": "homogeneous",
         "stoichiometry": {"methyl tert-butyl ether": -1, "isobutene": 1, "methanol": 1},
         "rate": {"preExponential": 3e4, "activationEnergy": 3e4, "orders": {"methyl tert-butyl ether": 1}}}])"_json};

/// What specifies the heat of a reactor, and which enthalpy counts.
struct HeatOption {
  std::string type;
  std::string enthalpy;
};

constexpr const char* kFormation = "Use EnthalpyF";
constexpr const char* kNoHeatOfReaction = "Use Enthalpy (no heat of reaction)";
constexpr const char* kHeatOfReaction = "Use Enthalpy and heat of reaction";

// The first three are those that slow reactors have.
const HeatOption kHeats[] = {
    {"Isothermal", kNoHeatOfReaction}, {"Heat duty", kFormation},       {"Energy inlet", kHeatOfReaction},
    {"Isothermal", kFormation},        {"Isothermal", kHeatOfReaction}, {"Heat duty", kNoHeatOfReaction},
    {"Heat duty", kHeatOfReaction},    {"Energy inlet", kFormation},    {"Energy inlet", kNoHeatOfReaction}};

Case WithHeat(Case reactor, const HeatOption& heat) {
  reactor.title += ", " + heat.type + ", " + heat.enthalpy;
  reactor.parameters.update({{"Heat duty type", heat.type}, {"Enthalpy Type", heat.enthalpy}, {"Pressure drop", 2e4}});
  if (heat.type == "Isothermal") reactor.parameters["Temperature"] = 1000;
  if (heat.type == "Heat duty") reactor.parameters["Heat duty"] = 1e5;
  if (heat.type == "Energy inlet")
    reactor.streams["HeatDutySpecification"] = Energy(1e5, 4000, 5000);
  else
    reactor.streams["Heat duty"] = nullptr;
  return reactor;
}

/// The reactors, with every option of heat unless they have one; those that iterate have few unless tests are long.
std::vector<Case> ReactorCases() {
  std::vector<Case> cases;
  for (const Case& reactor : kReactors) {
    const bool hasEvery = ShortOrLong(!reactor.parameters.contains("Tolerance"), true);
    if (reactor.parameters.contains("Heat duty type"))
      cases.push_back(reactor);
    else
      for (const HeatOption& heat : std::span(kHeats).first(hasEvery ? std::size(kHeats) : 3))
        cases.push_back(WithHeat(reactor, heat));
  }
  return cases;
}

/// Adds a unit for a case, fed in a state; further inlets are fed in the states that follow.
void Add(Subject& subject, const Case& each, const std::vector<State>& states, std::size_t index) {
  BalancedUnit unit{.name = Named(each.unit, ' ', each.title),
                    .heatSign = each.heatSign,
                    .keepsState = each.keepsState,
                    .keepsTemperature = each.keepsTemperature};
  if (!each.inlets.empty()) unit.name += ", " + states[index].name;
  Json ports = Json::object();
  Json& streams = subject.flowsheet["streams"];
  const auto connect = [&](const std::string& port) {
    const std::string stream = unit.name + ": " + port;
    ports[port] = stream;
    return stream;
  };
  for (std::size_t k = 0; k < each.inlets.size(); ++k) {
    const State& state = states[(index + k) % states.size()];
    const std::string& stream = unit.inlets.emplace_back(connect(each.inlets[k]));
    streams[stream] = Material(state.T, state.P, state.flow, state.composition);
    if (!state.phases.empty()) subject.phases[stream] = state.phases;
  }
  for (const std::string& port : each.outlets) unit.outlets.push_back(connect(port));
  for (const auto& [port, feed] : each.streams.items()) {
    const std::string stream = connect(port);
    if (!feed.is_null()) streams[stream] = feed;
    (feed.is_null() ? unit.heatOutlet : unit.heatInlet) = stream;
  }
  Json& added = subject.flowsheet["units"][unit.name];
  added = {{"class", each.unit}, {"ports", ports}, {"parameters", each.parameters}};
  if (!each.configuration.empty()) added["configuration"] = each.configuration;
  subject.units.push_back(std::move(unit));
}

/// Every case in one of the states, which change from case to case, or in all if tests are long.
Subject Made(const Mixture& mixture, std::span<const Case> cases) {
  Subject subject{.name = mixture.name, .flowsheet = {{"thermo", mixture.thermo}, {"reactions", mixture.reactions}}};
  if (!mixture.reactions.empty()) subject.energyTolerance = 1e-8, subject.flowTolerance = 1e-10;
  const std::size_t count = mixture.states.size(), used = ShortOrLong(false, true) ? count : 1;
  for (std::size_t number = 0; number < cases.size(); ++number)
    for (std::size_t i = 0; i < used; ++i) Add(subject, cases[number], mixture.states, (number + i) % count);
  return subject;
}

/// Reactors whose heats of reaction are given for one temperature and count, though the feed has another.
Subject WithGivenHeats(std::vector<Case> reactors) {
  Mixture gases = kGases;
  gases.name += ", heats of reaction given";
  gases.states.erase(gases.states.begin());
  for (Json& reaction : gases.reactions)
    reaction["enthalpyOfReaction"] = GasEnthalpyFlow(reaction["stoichiometry"].get<Amounts>(), kStandardTemperature);
  std::erase_if(reactors,
                [](const Case& each) { return each.parameters.value("Enthalpy Type", "") != kHeatOfReaction; });
  Subject subject = Made(gases, reactors);
  subject.heatOfReactionAt = kStandardTemperature;
  return subject;
}

/// A feed and a returned stream are mixed, heated and split; the first outlet of the splitter returns.
Subject Loop(const char* name, const char* model, Json returned, double splitFactor, Json heater) {
  Subject loop{.name = Named("recycle, ", name),
               .units = {{.name = "Mix", .inlets = {"feed", "return"}, .outlets = {"mixed"}},
                         {.name = "Heat", .inlets = {"mixed"}, .outlets = {"hot"}},
                         {.name = "Split", .inlets = {"hot"}, .outlets = {"return", "product"}}},
               .isRecycle = true};
  loop.energyTolerance = loop.flowTolerance = loop.stateTolerance = 1e-6 / (1 - splitFactor);
  loop.flowsheet = R"({
      "thermo": {"compounds": ["methane", "propane", "n-pentane"]},
      "streams": {"feed": {"type": "material", "temperature": 300, "pressure": 1e6, "flow": 5,
                           "composition": {"methane": 0.5, "propane": 0.3, "n-pentane": 0.2}}},
      "units": {
        "Split": {"class": "Splitter", "ports": {"Inlet": "hot", "Outlet1": "return", "Outlet2": "product"}},
        "Mix": {"class": "Mixer", "ports": {"Inlet 1": "feed", "Inlet 2": "return", "Outlet": "mixed"}},
        "Heat": {"class": "HeaterCooler", "ports": {"Inlet": "mixed", "Outlet": "hot"}}}})"_json;
  loop.flowsheet["thermo"]["model"] = model;
  loop.flowsheet["streams"]["return"] = std::move(returned);
  loop.flowsheet["units"]["Split"]["parameters"]["Split factors"] = {splitFactor};
  loop.flowsheet["units"]["Heat"]["parameters"] = std::move(heater);
  return loop;
}

std::vector<Subject> MakeSubjects() {
  std::vector<Subject> subjects;
  for (const Mixture& mixture : kFluids) subjects.push_back(Made(mixture, kFluidCases));
  subjects.push_back(Made({"information", kFluids[0].thermo, {{}}}, kInformationCases));
  subjects.push_back(Made(kEther, kLiquidReactors));
  subjects.push_back(Made(kGases, ReactorCases()));
  subjects.push_back(WithGivenHeats(ReactorCases()));
  const Json guess = Material(290, 9e5, 1, {{"methane", 0.2}, {"propane", 0.2}, {"n-pentane", 0.6}});
  const Json nothing = Material(290, 1e6, 0, {{"methane", 1}});
  const Json temperature = {{"Type", "Temperature"}, {"Outlet temperature", 330}};
  subjects.push_back(Loop("a poor guess", "ideal-gas", guess, 0.5, temperature));
  subjects.push_back(Loop("nothing returned at first", "ideal-gas", nothing, 0.5, temperature));
  subjects.push_back(Loop("much returned", "ideal-gas", guess, 0.95, temperature));
  subjects.push_back(Loop("two phases", "peng-robinson", guess, 0.5, {{"Heat duty", 20000}}));
  return subjects;
}

}  // namespace

const std::vector<Subject>& IdentitySubjects() {
  static const std::vector<Subject> subjects = MakeSubjects();
  return subjects;
}

}  // namespace morvelan::test
