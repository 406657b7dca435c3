#include "tests/cli/Flowsheets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "host/flowsheet/FlowsheetReader.h"
#include "host/flowsheet/ResultJson.h"
#include "host/flowsheet/ResultTable.h"
#include "tests/cli/CommandRun.h"

namespace morvelan::test {
namespace {

constexpr std::ptrdiff_t kShownDifferences = 5;

std::string FeedName(const std::string& unit) { return unit + " feed"; }
std::string ProductName(const std::string& unit) { return unit + " product"; }

std::string WithoutFolder(std::string text) {
  const std::string folder = (Scratch("") / "").string();
  for (std::size_t at = text.find(folder); at != std::string::npos; at = text.find(folder))
    text.erase(at, folder.size());
  return text;
}

void AddDifferences(const Json& a, const Json& b, double tolerance, const std::string& place,
                    std::vector<std::string>& found) {
  if (a.is_object() && b.is_object()) {
    for (const auto& [key, value] : a.items())
      AddDifferences(value, b.value(key, Json()), tolerance, place + '/' + key, found);
    for (const auto& [key, value] : b.items())
      if (!a.contains(key)) found.push_back(place + '/' + key + ": only in the second");
    return;
  }
  if (a == b) return;
  if (a.is_number() && b.is_number()) {
    const double x = a.get<double>(), y = b.get<double>();
    if (std::abs(x - y) <= tolerance * std::max(std::abs(x), std::abs(y))) return;
  }
  found.push_back(place + ": " + a.dump() + " and " + b.dump());
}

}  // namespace

FlowsheetOutcome RunFlowsheet(const std::filesystem::path& file, const host::RunOptions& options, bool twice,
                              const std::filesystem::path& dataFolder) {
  host::Flowsheet flowsheet;
  std::optional<host::FlowsheetRun> run;
  try {
    flowsheet = host::ReadFlowsheet(file, dataFolder);
    run.emplace(flowsheet, options);
  } catch (const std::exception& error) {
    return {WithoutFolder(error.what()), {}, {}, {}};
  }
  const host::Results results = run->Calculate();
  return {{}, host::ToText(results), host::ToJson(results), twice ? host::ToJson(run->Calculate()) : host::Json()};
}

FlowsheetOutcome RunFlowsheet(const std::string& text, const host::RunOptions& options, bool twice,
                              const std::filesystem::path& dataFolder) {
  return RunFlowsheet(WriteScratch("flowsheet.json", text), options, twice, dataFolder);
}

Json SolvedResults(const Json& flowsheet, const host::RunOptions& options, Json* again) {
  FlowsheetOutcome outcome = RunFlowsheet(flowsheet.dump(), options, again != nullptr);
  EXPECT_EQ(outcome.refusal, "");
  if (again) *again = std::move(outcome.again);
  Json results = std::move(outcome.results);
  if (results.is_null()) results = {{"units", Json::object()}, {"streams", Json::object()}, {"log", Json::array()}};
  for (auto unit = results["units"].begin(); unit != results["units"].end();) {
    const bool isSolved = (*unit)["solved"];
    EXPECT_TRUE(isSolved) << unit.key() << ": " << unit->value("/error/description"_json_pointer, std::string());
    unit = isSolved ? std::next(unit) : results["units"].erase(unit);
  }
  return results;
}

std::vector<std::string> Differences(const Json& a, const Json& b, double tolerance) {
  std::vector<std::string> found;
  AddDifferences(a, b, tolerance, {}, found);
  if (std::ssize(found) > kShownDifferences) {
    const std::string rest = Named("and ", std::ssize(found) - kShownDifferences, " more");
    found.resize(kShownDifferences);
    found.push_back(rest);
  }
  return found;
}

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

void AddUnit(Json& flowsheet, const std::string& name, Json unit, Json feed) {
  unit["ports"] = {{"Inlet", FeedName(name)}, {"Outlet", ProductName(name)}};
  flowsheet["streams"][FeedName(name)] = std::move(feed);
  flowsheet["units"][name] = std::move(unit);
}

const Json& FeedOf(const Json& results, const std::string& unit) { return results.at("streams").at(FeedName(unit)); }

const Json& ProductOf(const Json& results, const std::string& unit) {
  return results.at("streams").at(ProductName(unit));
}

Amounts FlowsOf(const Json& stream) {
  Amounts flows;
  for (const auto& [compound, fraction] : stream.at("composition").items())
    flows[compound] = stream.at("flow").get<double>() * fraction.get<double>();
  return flows;
}

std::vector<std::string> PhasesOf(const Json& stream) {
  std::vector<std::string> phases;
  for (const auto& [phase, state] : stream.at("phases").items()) phases.push_back(phase);
  return phases;
}

}  // namespace morvelan::test
