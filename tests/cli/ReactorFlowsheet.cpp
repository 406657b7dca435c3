#include "tests/cli/ReactorFlowsheet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace morvelan::test {
namespace {

std::string FeedName(const std::string& unit) { return unit + " feed"; }
std::string ProductName(const std::string& unit) { return unit + " product"; }

/// Results apart from what names the thermodynamic generation.
Json WithoutGeneration(Json results) {
  for (auto& unit : results["units"]) {
    unit["parameters"].erase("Thermo Version");
    unit["reports"].erase("Last run");
  }
  return results;
}

}  // namespace

Json GasFlowsheet(Json compounds, Json reactions) {
  return {{"thermo", {{"model", "ideal-gas"}, {"compounds", std::move(compounds)}}},
          {"reactions", std::move(reactions)}};
}

Json SimpleGas(const char* name, double molecularWeight, double heatCapacity, double formationEnthalpy) {
  const Json range = {{"Tmin", 200}, {"Tmax", 6000}, {"a", {heatCapacity / kGasConstant, 0, 0, 0, 0, 0, 0}}};
  return {{"name", name},
          {"molecularWeight", molecularWeight},
          {"idealGas", {{"model", "nasa7"}, {"ranges", Json::array({range})}}},
          {"enthalpyOfFormationGas", formationEnthalpy},
          {"gibbsOfFormationGas", formationEnthalpy}};
}

Json Material(double T, double P, double flow, Json composition) {
  return {{"type", "material"},
          {"temperature", T},
          {"pressure", P},
          {"flow", flow},
          {"composition", std::move(composition)}};
}

void AddReactor(Json& flowsheet, const std::string& name, Json unit, Json feed) {
  unit["ports"]["Inlet"] = FeedName(name);
  unit["ports"]["Outlet"] = ProductName(name);
  flowsheet["streams"][FeedName(name)] = std::move(feed);
  flowsheet["units"][name] = std::move(unit);
}

Json SolvedResults(const Json& flowsheet, const std::string& options) {
  auto outcome = RunFlowsheet(flowsheet.dump(), "--quiet " + options);
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_FALSE(outcome.results.is_null()) << options;
  Json& results = outcome.results;
  if (results.is_null()) results = {{"units", Json::object()}, {"streams", Json::object()}, {"log", Json::array()}};
  for (auto unit = results["units"].begin(); unit != results["units"].end();) {
    const bool isSolved = (*unit)["solved"];
    EXPECT_TRUE(isSolved) << options << ' ' << unit.key() << ": "
                          << unit->value("/error/description"_json_pointer, std::string());
    unit = isSolved ? std::next(unit) : results["units"].erase(unit);
  }
  return results;
}

Json ResultsOfBoth(const Json& flowsheet) {
  const Json older = SolvedResults(flowsheet, "--thermo 1.0");
  Json newer = SolvedResults(flowsheet, "--thermo 1.1");
  ExpectSame(WithoutGeneration(older), WithoutGeneration(newer), 1e-9, "thermo 1.0 and 1.1");
  return newer;
}

Amounts FlowsOf(const Json& stream) {
  Amounts flows;
  for (const auto& [compound, fraction] : stream["composition"].items())
    flows[compound] = stream["flow"].get<double>() * fraction.get<double>();
  return flows;
}

const Json& FeedOf(const Json& results, const std::string& unit) { return results.at("streams").at(FeedName(unit)); }

const Json& ProductOf(const Json& results, const std::string& unit) {
  return results.at("streams").at(ProductName(unit));
}

bool IsLogged(const Json& results, const std::string& text) {
  return std::ranges::any_of(results.at("log"), [&](const Json& line) {
    return line.get_ref<const std::string&>().find(text) != std::string::npos;
  });
}

}  // namespace morvelan::test
