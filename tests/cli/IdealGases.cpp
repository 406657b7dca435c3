#include "tests/cli/IdealGases.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <regex>
#include <stdexcept>
#include <vector>

#include "tests/cli/CommandRun.h"

namespace morvelan::test {
namespace {

/// cp/R = a1 + a2 T + a3 T^2 + a4 T^3 + a5 T^4 over a range of temperatures [K].
struct HeatCapacityRange {
  double lowest;
  double highest;
  std::array<double, 5> a;
};

struct Gas {
  Amounts atoms;
  double formationEnthalpy;     // [J/mol]
  double formationGibbsEnergy;  // [J/mol]
  std::vector<HeatCapacityRange> ranges;
};

Amounts ReadFormula(const std::string& formula) {
  static const std::regex element("([A-Z][a-z]?)([0-9]*)");
  Amounts atoms;
  for (std::sregex_iterator each(formula.begin(), formula.end(), element), end; each != end; ++each)
    atoms[(*each)[1]] += (*each)[2].length() > 0 ? std::stod((*each)[2]) : 1;
  return atoms;
}

Gas ReadGas(const nlohmann::json& data) {
  Gas gas{ReadFormula(data.at("formula")), data.at("enthalpyOfFormationGas"), data.at("gibbsOfFormationGas"), {}};
  for (const nlohmann::json& range : data.at("idealGas").at("ranges")) {
    gas.ranges.push_back({range.at("Tmin"), range.at("Tmax"), {}});
    std::copy_n(range.at("a").begin(), 5, gas.ranges.back().a.begin());
  }
  gas.ranges.front().lowest = 0;
  gas.ranges.back().highest = std::numeric_limits<double>::infinity();
  return gas;
}

const Gas& GasNamed(const std::string& compound) {
  static const nlohmann::json data =
      nlohmann::json::parse(ReadFile(std::filesystem::path(MORVELAN_DATA_DIR) / "compounds.json"));
  static std::map<std::string, Gas> known;
  if (const auto found = known.find(compound); found != known.end()) return found->second;
  const nlohmann::json& compounds = data.at("compounds");
  const auto entry =
      std::ranges::find_if(compounds, [&](const nlohmann::json& each) { return each.at("name") == compound; });
  if (entry == compounds.end()) throw std::runtime_error("no compound is called " + compound);
  return known.emplace(compound, ReadGas(*entry)).first->second;
}

/// The integral from 298.15 K to T of a term of cp/R whose antiderivative in each range is `primitive`.
template <class Primitive>
double Integral(const Gas& gas, double T, Primitive primitive) {
  double sum = 0;
  for (const auto& [lowest, highest, a] : gas.ranges)
    sum +=
        primitive(a, std::clamp(T, lowest, highest)) - primitive(a, std::clamp(kStandardTemperature, lowest, highest));
  return sum;
}

}  // namespace

double GasEnthalpy(const std::string& compound, double T) {
  const Gas& gas = GasNamed(compound);
  return gas.formationEnthalpy + kGasConstant * Integral(gas, T, [](const std::array<double, 5>& a, double t) {
                                   return t * (a[0] + t * (a[1] / 2 + t * (a[2] / 3 + t * (a[3] / 4 + t * a[4] / 5))));
                                 });
}

double GasGibbsEnergy(const std::string& compound, double T) {
  const Gas& gas = GasNamed(compound);
  const double entropy = (gas.formationEnthalpy - gas.formationGibbsEnergy) / kStandardTemperature +
                         kGasConstant * Integral(gas, T, [](const std::array<double, 5>& a, double t) {
                           return a[0] * std::log(t) + t * (a[1] + t * (a[2] / 2 + t * (a[3] / 3 + t * a[4] / 4)));
                         });
  return GasEnthalpy(compound, T) - T * entropy;
}

const Amounts& AtomsOf(const std::string& compound) { return GasNamed(compound).atoms; }

double GasEnthalpyFlow(const Amounts& flows, double T) {
  double sum = 0;
  for (const auto& [compound, flow] : flows) sum += flow * GasEnthalpy(compound, T);
  return sum;
}

}  // namespace morvelan::test
