#include "tests/cli/Balances.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace morvelan::test {
namespace {

constexpr double kRounding = 1e-15;
const std::vector<std::string> kNone;

/// What streams carry together.
struct Carried {
  Amounts compounds;    // [mol/s]
  Amounts atoms;        // [mol/s]
  double enthalpy = 0;  // [W]
  double scale = 0;     // of the enthalpy, with R T as its zero is arbitrary [W]
};

Carried CarriedBy(const Json& results, const std::vector<std::string>& streams, const char* enthalpy) {
  Carried carried;
  for (const std::string& name : streams) {
    const Json& stream = results.at("streams").at(name);
    const double flow = stream["flow"], h = stream.at(enthalpy), T = stream["temperature"];
    for (const auto& [compound, amount] : FlowsOf(stream)) {
      carried.compounds[compound] += amount;
      for (const auto& [element, count] : AtomsOf(compound)) carried.atoms[element] += count * amount;
    }
    carried.enthalpy += flow * h;
    carried.scale += flow * (std::abs(h) + kGasConstant * T);
  }
  return carried;
}

void ExpectSameAmounts(const Amounts& in, const Amounts& out, double tolerance) {
  for (const auto& [name, amount] : in) EXPECT_NEAR(out.at(name), amount, tolerance * amount) << name;
}

/// What a unit does to its streams.
class UnitBalance {
 public:
  UnitBalance(const Subject& itsSubject, const BalancedUnit& itsUnit, const Json& itsResults)
      : subject(itsSubject),
        unit(itsUnit),
        results(itsResults),
        parameters(results.at("units").at(unit.name).at("parameters")),
        given(subject.flowsheet.at("units").at(unit.name)),
        enthalpyType(parameters.value("Enthalpy Type", "")),
        enthalpy(enthalpyType == "Use EnthalpyF" ? "enthalpyF" : "enthalpy"),
        in(CarriedBy(results, unit.inlets, enthalpy)),
        out(CarriedBy(results, unit.outlets, enthalpy)) {}

  void Expect() const {
    SCOPED_TRACE(unit.name);
    ExpectGivenParameters();
    if (unit.inlets.empty()) return;
    ExpectMaterial();
    ExpectSplitFlows();
    ExpectPressure();
    ExpectTemperature();
    if (in.scale > 0) ExpectEnergy();
    if (unit.keepsState) ExpectStateOfFeed();
  }

 private:
  [[nodiscard]] const Json& Stream(const std::string& name) const { return results.at("streams").at(name); }

  /// Specifications are as they were given.
  void ExpectGivenParameters() const {
    if (given.contains("parameters"))
      for (const auto& [name, value] : given["parameters"].items()) EXPECT_EQ(parameters[name], value) << name;
  }

  void ExpectMaterial() const {
    const bool reacts = given.contains("configuration") && given["configuration"].contains("reactionNames");
    ExpectSameAmounts(in.atoms, out.atoms, subject.flowTolerance);
    if (!reacts) return ExpectSameAmounts(in.compounds, out.compounds, subject.flowTolerance);
    double turned = 0, total = 0;
    for (const auto& [compound, amount] : in.compounds) {
      turned += std::abs(out.compounds.at(compound) - amount);
      total += amount;
    }
    EXPECT_GT(turned, 1e-3 * total) << "reactions take place";
  }

  /// The last outlet has no factor, it has the rest.
  void ExpectSplitFlows() const {
    const double flow = Stream(unit.inlets.front())["flow"];
    for (std::size_t i = 0; parameters.contains("Split factors") && i < parameters["Split factors"].size(); ++i)
      EXPECT_NEAR(Stream(unit.outlets[i])["flow"].get<double>(), parameters["Split factors"][i].get<double>() * flow,
                  kRounding * flow);
  }

  void ExpectPressure() const {
    double lowest = Stream(unit.inlets.front())["pressure"];
    for (const std::string& inlet : unit.inlets) lowest = std::min(lowest, Stream(inlet)["pressure"].get<double>());
    double drop = 0;
    for (const char* name : {"Pressure drop", "Pressure difference"})
      if (parameters.contains(name)) drop = parameters[name];
    for (const std::string& outlet : unit.outlets)
      EXPECT_NEAR(Stream(outlet)["pressure"].get<double>(), lowest - drop, 1e-12 * lowest) << outlet;
  }

  void ExpectTemperature() const {
    for (const char* name : {"Outlet temperature", "Temperature"})
      if (parameters.contains(name)) EXPECT_EQ(parameters[name], Stream(unit.outlets.front())["temperature"]) << name;
  }

  void ExpectEnergy() const {
    if (unit.keepsTemperature && !IsPure(Stream(unit.inlets.front()))) {
      for (const std::string& outlet : unit.outlets)
        EXPECT_EQ(Stream(outlet)["temperature"], Stream(unit.inlets.front())["temperature"]) << outlet;
      return;
    }
    const double duty = parameters.value("Heat duty", 0.0);  // [W], positive into the material
    const double taken = enthalpyType == "Use Enthalpy and heat of reaction" ? HeatTakenByReactions() : 0;
    EXPECT_NEAR(out.enthalpy + taken, in.enthalpy + duty, subject.energyTolerance * (in.scale + std::abs(duty)));
    if (!unit.heatOutlet.empty()) EXPECT_EQ(Stream(unit.heatOutlet)["work"], unit.heatSign * duty);
    if (!unit.heatInlet.empty()) ExpectHeatOfStream(duty);
  }

  /// All the heat that a stream carries, or as much as warms the product to the stream's highest temperature.
  void ExpectHeatOfStream(double duty) const {
    const Json& heat = Stream(unit.heatInlet);
    const double T = Stream(unit.outlets.front())["temperature"], work = heat["work"];
    if (std::abs(duty - work) <= kRounding * work) return;
    EXPECT_LT(duty, work);
    EXPECT_NEAR(T, heat["temperatureHigh"].get<double>(), 1e-9 * T);
  }

  [[nodiscard]] static bool IsPure(const Json& stream) {
    return std::ranges::count_if(stream["composition"], [](const Json& x) { return x.get<double>() > 1e-5; }) == 1;
  }

  /// At the temperature of the feed, or that for which heats of reaction are given [W].
  [[nodiscard]] double HeatTakenByReactions() const {
    const double feedT = Stream(unit.inlets.front())["temperature"];
    const double T = subject.heatOfReactionAt > 0 ? subject.heatOfReactionAt : feedT;
    return GasEnthalpyFlow(out.compounds, T) - GasEnthalpyFlow(in.compounds, T);
  }

  void ExpectStateOfFeed() const {
    Json feed = Stream(unit.inlets.front());
    feed.erase("flow");
    for (const std::string& outlet : unit.outlets) {
      Json product = Stream(outlet);
      product.erase("flow");
      EXPECT_EQ(Differences(feed, product, 1e-9), kNone) << outlet;
    }
  }

  const Subject& subject;
  const BalancedUnit& unit;
  const Json& results;
  const Json& parameters;
  const Json& given;
  std::string enthalpyType;
  const char* enthalpy;
  Carried in, out;
};

/// A feed is as it was listed, in the phases for which it was chosen.
void ExpectFeed(const Json& listed, const Json& stream, const std::string& name) {
  for (const auto& [key, value] : listed.items())
    if (key != "composition") EXPECT_EQ(stream[key], value) << name << ' ' << key;
  if (!listed.contains("composition")) return;
  for (const auto& [compound, fraction] : stream["composition"].items())
    EXPECT_NEAR(fraction.get<double>(), listed["composition"].value(compound, 0.0), kRounding) << name << compound;
}

/// The phases of a stream make up the whole.
void ExpectPhasesAddUp(const Json& stream, const std::string& name) {
  double total = 0;
  Amounts overall;
  for (const Json& phase : stream["phases"]) {
    const double part = phase["fraction"];
    total += part;
    for (const auto& [compound, fraction] : phase["composition"].items())
      overall[compound] += part * fraction.get<double>();
  }
  EXPECT_NEAR(total, 1, 1e-12) << name;
  for (const auto& [compound, fraction] : stream["composition"].items())
    EXPECT_NEAR(overall[compound], fraction.get<double>(), 1e-9) << name << ' ' << compound;
}

}  // namespace

void ExpectBalances(const Subject& subject, const Json& results) {
  for (const auto& [name, listed] : subject.flowsheet["streams"].items())
    if (!subject.isRecycle || name != "return") ExpectFeed(listed, results.at("streams").at(name), name);
  for (const auto& [name, phases] : subject.phases) EXPECT_EQ(PhasesOf(results.at("streams").at(name)), phases) << name;
  for (const auto& [name, stream] : results.at("streams").items())
    if (stream["type"] == "material") ExpectPhasesAddUp(stream, name);
  for (const BalancedUnit& unit : subject.units)
    if (results.at("units").contains(unit.name)) UnitBalance(subject, unit, results).Expect();
}

}  // namespace morvelan::test
