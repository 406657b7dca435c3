#include "units/streams/CMixer.h"

#include <algorithm>

namespace morvelan {

CMixer::CMixer()
    : StreamUnit({.name = "Mixer",
                  .description = "Mixer - unit operation to adiabatically mix 2 or more inlet streams into a "
                                 "single outlet",
                  .about = "The mixer brings two or more streams together without heat exchange",
                  .helpTopic = "mixer"}) {
  declare.Ports(feeds, "Inlet ", "Mixer feed", feedCount);
  declare.Port(product, "Outlet", "Mixer product");

  declare.Parameter(feedCount, "numberOfInlets", "Number of inlets", "Number of inlet ports", 2, 128);
  declare.Parameter(pressureDrop, "Pressure drop", "Pressure drop along the mixer", 0, quantity::kPressureDrop);
  declare.ThermoVersion(thermoVersion);
}

void CMixer::Solve() {
  journal.Parameters(feedCount.parameter, pressureDrop);
  const Sum sum = SumOfFeeds();
  StreamState out = feeds[0].State();
  out.totalFlow = sum.flow;
  out.pressure = PressureAfterDrop(sum.lowestPressure, pressureDrop);
  if (sum.flow == 0) {
    std::ranges::fill(out.composition, 1.0 / static_cast<double>(out.composition.size()));
    return product.Leave(out);
  }
  std::ranges::transform(sum.compoundFlows, out.composition.begin(),
                         [&](double compoundFlow) { return compoundFlow / sum.flow; });
  product.LeaveAtEnthalpy(out, sum.enthalpyFlow / sum.flow);
}

CMixer::Sum CMixer::SumOfFeeds() {
  const StreamState& first = feeds[0].State();
  Sum sum{first.pressure, 0, 0, std::vector<double>(first.composition.size())};
  for (const InletStream& feed : feeds) {
    const StreamState& in = feed.State();
    sum.lowestPressure = std::min(sum.lowestPressure, in.pressure);
    sum.flow += in.totalFlow;
    for (std::size_t j = 0; j < sum.compoundFlows.size(); ++j) sum.compoundFlows[j] += in.composition[j] * in.totalFlow;
    if (in.totalFlow != 0) sum.enthalpyFlow += feed.EnthalpyFlow();
  }
  return sum;
}

}  // namespace morvelan
