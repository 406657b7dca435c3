#include "units/streams/CSplitter.h"

#include <algorithm>
#include <numeric>

namespace morvelan {
namespace {

constexpr double kLargestSum = 1.0000000000001;
constexpr double kLeastFraction = 1e-5;  // a compound above this mole fraction counts

/// The part of the flow that the last outlet takes. The factors may exceed one by what rounding leaves.
double Rest(const std::vector<double>& factors) {
  return std::max(0.0, 1 - std::accumulate(factors.begin(), factors.end(), 0.0));
}

}  // namespace

CSplitter::CSplitter()
    : StreamUnit({.name = "Splitter",
                  .description = "Splitter - unit operation to split input stream into 2 or more output streams "
                                 "using split fractions",
                  .about = "The splitter divides a stream into two or more streams of its composition",
                  .helpTopic = "splitter"}) {
  declare.Port(feed, "Inlet", "Splitter feed");
  declare.Ports(products, "Outlet", "Splitter product", productCount);

  declare.Parameter(productCount, "numberOfOutlets", "Number of outlets", "Number of outlet ports", 2, 128);
  declare.Parameter(splitFactors, "Split factors", "Split factors for (n - 1) outlets", {0.5}, quantity::kFraction);
  declare.Parameter(pressureDrop, "Pressure drop", "Pressure drop along the splitter", 0, quantity::kPressureDrop);
  declare.ThermoVersion(thermoVersion);
}

bool CSplitter::ValidateParameterValue(const CParameter& parameter, std::string& message,
                                       const ParameterValue& value) const {
  if (!splitFactors.Is(parameter)) return true;
  const auto& factors = std::get<std::vector<double>>(value);
  if (factors.size() + 1 != products.size())
    message = "Invalid number of array elements for split factor value";
  else if (std::accumulate(factors.begin(), factors.end(), 0.0) > kLargestSum)
    message = "Total value of split factors exceeds unity";
  return message.empty();
}

void CSplitter::SettingsChanged(const SettingsChange& change) {
  if (change.IsFromStream()) return;  // which brought the factors too
  const auto count = static_cast<std::size_t>(productCount);
  std::vector<double> factors = splitFactors.Values();
  if (factors.size() + 1 < count) factors.push_back(Rest(factors));  // of what was the last outlet
  factors.resize(count - 1, 0.0);
  splitFactors.Publish(std::move(factors));
}

void CSplitter::Solve() {
  journal.Parameters(productCount.parameter, splitFactors, pressureDrop);
  StreamState out = feed.State();
  out.pressure = std::max(0.0, PressureAfterDrop(out.pressure, pressureDrop));
  const std::vector<double> flows = Flows(out.totalFlow);
  // Temperature and pressure do not tell the phases of one compound; its enthalpy does.
  const auto enthalpy = IsFedWithOneCompound() ? std::optional(feed.MolarProperty()) : std::nullopt;
  for (std::size_t k = 0; k < products.size(); ++k) {
    out.totalFlow = flows[k];
    if (enthalpy)
      products[k].LeaveAtEnthalpy(out, *enthalpy);
    else
      products[k].Leave(out);
  }
}

std::vector<double> CSplitter::Flows(double inletFlow) const {
  std::vector<double> flows;
  for (const double factor : splitFactors.Values()) flows.push_back(factor * inletFlow);
  flows.push_back(Rest(splitFactors.Values()) * inletFlow);
  return flows;
}

bool CSplitter::IsFedWithOneCompound() const {
  return std::ranges::count_if(feed.State().composition, [](double x) { return x > kLeastFraction; }) == 1;
}

}  // namespace morvelan
