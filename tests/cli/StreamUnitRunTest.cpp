// The heater / cooler, the valve, the mixer and the splitter with real thermodynamics: balances, and that
// specifications and thermodynamic generations agree.

#include <gtest/gtest.h>

#include <cmath>

#include "tests/cli/CommandRun.h"

namespace morvelan::test::stream_unit_run {

constexpr double kMassTolerance = 1e-12;
constexpr double kEnergyTolerance = 1e-9;
constexpr double kTemperatureTolerance = 1e-6;  // [K]
constexpr double kFlow = 2;                     // [mol/s]
constexpr double kDuty = 3000;                  // [W]
constexpr double kR = 8.314;

struct Conditions {
  double T;
  double P;
  std::vector<std::string> phases;  // that the conditions were chosen to have
};

struct Mixture {
  const char* name;
  Json composition;
  std::vector<Conditions> feeds;
};

const Mixture kMixtures[] = {
    {"natural gas",
     {{"methane", 0.6}, {"ethane", 0.2}, {"propane", 0.15}, {"n-pentane", 0.05}},
     {{250, 4e6, {"Liquid", "Vapor"}}, {320, 1e6, {"Vapor"}}, {150, 5e6, {"Liquid"}}}},
    {"aromatics",
     {{"benzene", 0.5}, {"toluene", 0.5}},
     {{365, 1e5, {"Liquid", "Vapor"}}, {450, 2e5, {"Vapor"}}, {300, 1e6, {"Liquid"}}}},
    // Evaporates across the heaters, and two phases arise in the mixer.
    {"propane", {{"propane", 1}}, {{250, 1e6, {"Liquid"}}, {350, 1e6, {"Vapor"}}, {295, 1e6, {"Liquid"}}}},
};

Json Material(const Mixture& mixture, double T, double P, double flow = kFlow) {
  return {
      {"type", "material"}, {"temperature", T}, {"pressure", P}, {"flow", flow}, {"composition", mixture.composition}};
}

Json Unit(const char* className, Json ports, Json parameters) {
  return {{"class", className}, {"ports", std::move(ports)}, {"parameters", std::move(parameters)}};
}

/// The units at one feed condition: each has a feed of its own, but the mixer takes the products of a valve
/// and a heater, and the splitters those of the mixer and of another heater.
void AddUnits(Json& flowsheet, const Mixture& mixture, std::size_t index) {
  const auto [T, P, phases] = mixture.feeds[index];
  const std::string at = std::to_string(index) + ' ';
  Json& streams = flowsheet["streams"];
  Json& units = flowsheet["units"];
  for (const char* feed : {"to valve", "to pressure valve", "to duty", "to temperature", "to energy", "to limited"})
    streams[at + feed] = Material(mixture, T, P);
  streams[at + "heat"] = {{"type", "energy"}, {"work", kDuty}};
  streams[at + "much heat"] = {
      {"type", "energy"}, {"work", 1e6}, {"temperatureLow", T + 5}, {"temperatureHigh", T + 30}};

  units[at + "valve"] =
      Unit("Valve", {{"Inlet", at + "to valve"}, {"Outlet", at + "throttled"}}, {{"Pressure difference", 0.3 * P}});
  units[at + "pressure valve"] = Unit("Valve", {{"Inlet", at + "to pressure valve"}, {"Outlet", at + "throttled too"}},
                                      {{"Pressure spec.", "Pressure"}, {"Pressure", 0.5 * P}});
  units[at + "duty"] =
      Unit("HeaterCooler", {{"Inlet", at + "to duty"}, {"Outlet", at + "heated"}}, {{"Heat duty", kDuty}});
  units[at + "duty back"] =
      Unit("HeaterCooler", {{"Inlet", at + "heated"}, {"Outlet", at + "cooled"}}, {{"Heat duty", -kDuty}});
  units[at + "temperature"] =
      Unit("HeaterCooler", {{"Inlet", at + "to temperature"}, {"Outlet", at + "warm"}},
           {{"Type", "Temperature"}, {"Outlet temperature", T + 40}, {"Pressure drop", 0.1 * P}});
  units[at + "energy"] =
      Unit("HeaterCooler", {{"Inlet", at + "to energy"}, {"Heat", at + "heat"}, {"Outlet", at + "heated by energy"}},
           {{"Type", "Energy inlet"}, {"Pressure drop", 0.2 * P}});
  units[at + "limited"] =
      Unit("HeaterCooler", {{"Inlet", at + "to limited"}, {"Heat", at + "much heat"}, {"Outlet", at + "at limit"}},
           {{"Type", "Energy inlet"}});
  units[at + "mixer"] =
      Unit("Mixer", {{"Inlet 1", at + "throttled too"}, {"Inlet 2", at + "warm"}, {"Outlet", at + "mixed"}},
           {{"Pressure drop", 0.1 * P}});
  units[at + "splitter"] = Unit("Splitter", {{"Inlet", at + "mixed"}, {"Outlet1", at + "s1"}, {"Outlet2", at + "s2"}},
                                {{"Split factors", {0.3}}});
  units[at + "lowering splitter"] =
      Unit("Splitter", {{"Inlet", at + "heated by energy"}, {"Outlet1", at + "s3"}, {"Outlet2", at + "s4"}},
           {{"Pressure drop", 0.2 * P}});
}

/// A heater that is given the duty which the temperature took.
void AddInverse(Json& flowsheet, const Mixture& mixture, std::size_t index, double duty) {
  const auto [T, P, phases] = mixture.feeds[index];
  const std::string at = std::to_string(index) + ' ';
  flowsheet["streams"][at + "to inverse"] = Material(mixture, T, P);
  flowsheet["units"][at + "inverse"] =
      Unit("HeaterCooler", {{"Inlet", at + "to inverse"}, {"Outlet", at + "warm again"}},
           {{"Heat duty", duty}, {"Pressure drop", 0.1 * P}});
}

Json ResultsOf(const Json& flowsheet, const std::string& options) {
  const auto outcome = RunFlowsheet(flowsheet.dump(), "--quiet " + options);
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  return outcome.results;
}

/// What streams carry together.
struct Carried {
  std::map<std::string, double> compounds;  // [mol/s]
  double enthalpy = 0;                      // [W]
  double scale = 0;                         // of enthalpies, with R T as their zero is arbitrary [W]
};

Carried CarriedBy(const Json& results, const Json& ports, const char* direction) {
  Carried carried;
  for (const auto& [port, name] : ports.items()) {
    if (!port.starts_with(direction)) continue;
    const Json& stream = results["streams"][name.get<std::string>()];
    const double flow = stream["flow"], h = stream["enthalpy"], T = stream["temperature"];
    for (const auto& [compound, fraction] : stream["composition"].items())
      carried.compounds[compound] += flow * fraction.get<double>();
    carried.enthalpy += flow * h;
    carried.scale += flow * (std::abs(h) + kR * T);
  }
  return carried;
}

void ExpectBalances(const Json& flowsheet, const Json& results, const std::string& name) {
  const Json& unit = flowsheet["units"][name];
  const Carried in = CarriedBy(results, unit["ports"], "Inlet");
  const Carried out = CarriedBy(results, unit["ports"], "Outlet");
  for (const auto& [compound, flow] : in.compounds)
    EXPECT_NEAR(out.compounds.at(compound), flow, kMassTolerance * flow) << compound;
  // Flashed at temperature and pressure, several compounds don't keep their enthalpy over a pressure drop.
  if (unit["class"] == "Splitter" && unit["parameters"].contains("Pressure drop") && in.compounds.size() > 1) return;
  const Json& parameters = results["units"][name]["parameters"];
  const double duty = unit["class"] == "HeaterCooler" ? parameters["Heat duty"].get<double>() : 0;
  EXPECT_NEAR(out.enthalpy, in.enthalpy + duty, kEnergyTolerance * (in.scale + std::abs(duty)));
}

double Temperature(const Json& results, const std::string& stream) { return results["streams"][stream]["temperature"]; }

void ExpectConditions(const Json& results, const Mixture& mixture, std::size_t index) {
  const auto [T, P, phases] = mixture.feeds[index];
  const std::string at = std::to_string(index) + ' ';
  const Json& streams = results["streams"];
  std::vector<std::string> found;
  for (const auto& [phase, state] : streams[at + "to valve"]["phases"].items()) found.push_back(phase);
  EXPECT_EQ(found, phases);
  EXPECT_NEAR(Temperature(results, at + "cooled"), T, kTemperatureTolerance) << "there and back";
  EXPECT_EQ(Temperature(results, at + "warm"), T + 40);
  EXPECT_NEAR(Temperature(results, at + "warm again"), T + 40, kTemperatureTolerance);
  EXPECT_EQ(Temperature(results, at + "at limit"), T + 30);
  const struct {
    const char* stream;
    double part;  // of the feed's pressure
  } pressures[] = {{"throttled", 0.7},        {"throttled too", 0.5}, {"heated", 1}, {"warm", 0.9},
                   {"heated by energy", 0.8}, {"mixed", 0.4},         {"s1", 0.4},   {"s3", 0.6}};
  for (const auto& [stream, part] : pressures)
    EXPECT_NEAR(streams[at + stream]["pressure"].get<double>(), part * P, 1e-12 * P) << stream;
  EXPECT_NEAR(streams[at + "s1"]["flow"].get<double>(), 0.3 * 2 * kFlow, 1e-12);
  EXPECT_NEAR(results["units"][at + "energy"]["parameters"]["Heat duty"].get<double>(), kDuty, 1e-9);
}

/// Results apart from what names the thermodynamic generation.
Json WithoutGeneration(Json results) {
  for (auto& unit : results["units"]) {
    unit["parameters"].erase("Thermo Version");
    unit["reports"].erase("Last run");
  }
  return results;
}

TEST(StreamUnitRun, BalancesAndInvertsUnderBothGenerations) {
  for (const Mixture& mixture : kMixtures) {
    Json flowsheet;
    for (const auto& [compound, fraction] : mixture.composition.items())
      flowsheet["thermo"]["compounds"].push_back(compound);
    for (std::size_t i = 0; i < mixture.feeds.size(); ++i) AddUnits(flowsheet, mixture, i);
    const Json probe = ResultsOf(flowsheet, "--thermo 1.0");
    ASSERT_FALSE(probe.is_null()) << mixture.name;
    for (std::size_t i = 0; i < mixture.feeds.size(); ++i)
      AddInverse(flowsheet, mixture, i, probe["units"][std::to_string(i) + " temperature"]["parameters"]["Heat duty"]);
    Json first;
    for (const char* thermo : {"1.0", "1.1"}) {
      SCOPED_TRACE(testing::Message() << mixture.name << ", thermo " << thermo);
      const Json results = ResultsOf(flowsheet, std::string("--thermo ") + thermo);
      ASSERT_FALSE(results.is_null());
      for (std::size_t i = 0; i < mixture.feeds.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "feed " << i);
        ExpectConditions(results, mixture, i);
      }
      for (const auto& [name, unit] : flowsheet["units"].items()) {
        SCOPED_TRACE(name);
        EXPECT_EQ(results["units"][name]["parameters"]["Thermo Version"], thermo);
        ExpectBalances(flowsheet, results, name);
      }
      if (first.is_null()) first = WithoutGeneration(results);
      ExpectSame(first, WithoutGeneration(results), 1e-9, "against thermo 1.0");
    }
  }
}

TEST(StreamUnitRun, KeepsTheStateOfAStreamWithoutFlow) {
  const Mixture& mixture = kMixtures[0];
  Json flowsheet;
  flowsheet["thermo"]["compounds"] = {"methane", "ethane", "propane", "n-pentane"};
  for (const char* feed : {"a", "b", "c", "d", "e"}) flowsheet["streams"][feed] = Material(mixture, 300, 1e6, 0);
  flowsheet["units"] = {
      {"valve", Unit("Valve", {{"Inlet", "a"}, {"Outlet", "A"}}, {{"Pressure difference", 5e5}})},
      {"heater", Unit("HeaterCooler", {{"Inlet", "b"}, {"Outlet", "B"}}, {{"Heat duty", kDuty}})},
      {"mixer", Unit("Mixer", {{"Inlet 1", "c"}, {"Inlet 2", "d"}, {"Outlet", "C"}}, Json::object())},
      {"splitter", Unit("Splitter", {{"Inlet", "e"}, {"Outlet1", "D"}, {"Outlet2", "E"}}, Json::object())}};
  for (const char* thermo : {"1.0", "1.1"}) {
    const Json results = ResultsOf(flowsheet, std::string("--thermo ") + thermo);
    ASSERT_FALSE(results.is_null()) << thermo;
    for (const char* product : {"A", "B", "C", "D", "E"}) {
      const Json& stream = results["streams"][product];
      EXPECT_EQ(stream["temperature"], 300) << product;
      EXPECT_EQ(stream["flow"], 0) << product;
      EXPECT_EQ(stream["pressure"], *product == 'A' ? 5e5 : 1e6) << product;
      EXPECT_NEAR(stream["composition"]["propane"].get<double>(), *product == 'C' ? 0.25 : 0.15, 1e-15);
    }
    EXPECT_EQ(results["log"], Json::array({"WARNING: HeaterCooler heater: Zero flow; using zero heat duty"}));
  }
}

struct Face {
  const char* unit;
  const char* text;
};

const Face kFaces[] = {
    {"HeaterCooler", R"(HeaterCooler  VELT_MORV.HeaterCooler  {06C53883-13C3-49B7-A55F-039286EA0119}
Heater or cooler using heat duty or outlet temperature

Ports
  Inlet              inlet   material  Feed
  Heat               inlet   energy    Heat that is consumed or produced
    work                     W
    temperatureLow           K
    temperatureHigh          K
  Outlet             outlet  material  Product

Parameters
  name                kind    mode    default    unit  allowed                                     description
  Type                option  input   Heat duty        "Heat duty", "Temperature", "Energy inlet"  Type of heat duty specification
  Outlet temperature  real    output  300        K     from 0 to 1e+10                             Temperature of the product stream
  Heat duty           real    input   0          W     from -1e+20 to 1e+20                        Heat duty
  Pressure drop       real    input   0          Pa    from 0 to 1e+10                             Pressure drop along the unit
  Thermo Version      option  input   1.0              "1.0", "1.1"                                Thermodynamics CAPE-OPEN Interface version

Reports
  Status
  Last run
)"},
    {"Valve", R"(Valve  VELT_MORV.Valve  {F297F178-F798-4713-A70A-EB3A548B7727}
Valve. Model using pressure difference and pH flash.

Ports
  Inlet   inlet   material  Valve inlet port
  Outlet  outlet  material  Valve outlet port

Parameters
  name                 kind    mode    default              unit  allowed                            description
  Pressure spec.       option  input   Pressure difference        "Pressure difference", "Pressure"  Pressure drop specification type
  Pressure difference  real    input   0                    Pa    from 0 to 1e+10                    Pressure drop along the valve
  Pressure             real    output  1e+05                Pa    from 0 to 1e+10                    Valve outlet pressure
  Thermo Version       option  input   1.0                        "1.0", "1.1"                       Thermodynamics CAPE-OPEN Interface version

Reports
  Status
  Last run
)"},
    {"Mixer", R"(Mixer  VELT_MORV.Mixer  {840B2531-CC47-447D-9118-D5AAFC9945F6}
Mixer - unit operation to adiabatically mix 2 or more inlet streams into a single outlet

Ports
  Inlet 1  inlet   material  Mixer feed
  Inlet 2  inlet   material  Mixer feed
  Outlet   outlet  material  Mixer product

Parameters
  name              kind     mode    default  unit  allowed          description
  Number of inlets  integer  output  2              from 2 to 128    Number of inlet ports
  Pressure drop     real     input   0        Pa    from 0 to 1e+10  Pressure drop along the mixer
  Thermo Version    option   input   1.0            "1.0", "1.1"     Thermodynamics CAPE-OPEN Interface version

Reports
  Status
  Last run
)"},
    {"Splitter", R"(Splitter  VELT_MORV.Splitter  {D814E188-6E48-4B6F-925B-CDDD70C1120F}
Splitter - unit operation to split input stream into 2 or more output streams using split fractions

Ports
  Inlet    inlet   material  Splitter feed
  Outlet1  outlet  material  Splitter product
  Outlet2  outlet  material  Splitter product

Parameters
  name               kind     mode    default  unit  allowed          description
  Number of outlets  integer  output  2              from 2 to 128    Number of outlet ports
  Split factors      array    input                                   Split factors for (n - 1) outlets
  Pressure drop      real     input   0        Pa    from 0 to 1e+10  Pressure drop along the splitter
  Thermo Version     option   input   1.0            "1.0", "1.1"     Thermodynamics CAPE-OPEN Interface version

Reports
  Status
  Last run
)"},
};

TEST(StreamUnitRun, ShowsItsFace) {
  for (const Face& face : kFaces)
    EXPECT_EQ(RunCommand(std::string("describe ") + face.unit).output, face.text) << face.unit;
}

}  // namespace morvelan::test::stream_unit_run
