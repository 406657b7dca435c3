#include "units/streams/CMixer.h"

#include <algorithm>

#include "material/Names.h"

namespace morvelan {
namespace {

constexpr const char* kCountKey = "numberOfInlets";
constexpr std::int32_t kFewestInlets = 2;
constexpr std::int32_t kMostInlets = 128;

enum Position : std::size_t { kInletCount, kPressureDrop, kThermoVersion };

constexpr PortDeclaration kPorts[] = {
    {"Inlet 1", "Mixer feed", CAPE_INLET},
    {"Inlet 2", "Mixer feed", CAPE_INLET},
    {"Outlet", "Mixer product", CAPE_OUTLET},
};

const ParameterDeclaration kParameters[] = {
    {.name = "Number of inlets",
     .description = "Number of inlet ports",
     .mode = CAPE_OUTPUT,
     .defaultValue = kFewestInlets,
     .lowerBound = kFewestInlets,
     .upperBound = kMostInlets},
    PressureDropParameter("Pressure drop along the mixer"),
    ThermoVersionParameter(),
};

const UnitDeclaration kDeclaration = {
    .name = "Mixer",
    .description = "Mixer - unit operation to adiabatically mix 2 or more inlet streams into a single outlet",
    .about = "The mixer brings two or more streams together without heat exchange",
    .helpTopic = "mixer",
    .ports = kPorts,
    .parameters = kParameters,
    .reports = kLastRun,
};

}  // namespace

CMixer::CMixer() : Configurable(kDeclaration) {}

int CMixer::ThermoVersionParameterIndex() const { return kThermoVersion; }

void CMixer::CreateFace() {
  Configurable::CreateFace();
  Parameter(kPressureDrop).BindDouble(&pressureDrop);
}

// ---- The number of inlets

/// A host may put the number, but only the configuration moves ports.
void CMixer::InputsChanged() {
  Parameter(kInletCount).SetMode(CAPE_OUTPUT);
  Parameter(kInletCount).SetResult(static_cast<std::int32_t>(inlets.size()));
}

std::function<void()> CMixer::LoadUnit(UnitReader&, int, const std::vector<ParameterRecord>& records) {
  if (records.size() <= kInletCount) return {};
  return PlanInlets(std::clamp(std::get<std::int32_t>(records[kInletCount].value), kFewestInlets, kMostInlets));
}

Json CMixer::Configuration() const { return {{kCountKey, inlets.size()}}; }

void CMixer::Configure(const Json& configuration) {
  PlanInlets(ReadConfiguredCount(configuration, kCountKey, kFewestInlets, kMostInlets,
                                 static_cast<std::int32_t>(inlets.size())))();
}

std::function<void()> CMixer::PlanInlets(std::int32_t count) {
  auto resized = ResizedPorts(inlets, static_cast<std::size_t>(count), kPorts[0],
                              [](std::size_t number) { return "Inlet " + std::to_string(number); });
  return [this, resized = std::move(resized), outlet = outlets]() mutable {
    ReplacePorts(std::move(resized), std::move(outlet));
  };
}

// ---- Calculation

void CMixer::CalculateUnit(int compoundCount, std::optional<com::Name>& outletFlashSpec) {
  StartReport();
  ReportParameter(Parameter(kInletCount));
  ReportParameter(Parameter(kPressureDrop));
  const Feed feed = CollectFeed(static_cast<std::size_t>(compoundCount));
  material::StreamState& outlet = Outlet(0).State();
  outlet.totalFlow = feed.flow;
  outlet.pressure = PressureAfterDrop(feed.lowestPressure, pressureDrop);
  outlet.temperature = Inlet(0).State().temperature;
  if (feed.flow == 0) {
    std::ranges::fill(outlet.composition, 1.0 / compoundCount);
    return;
  }
  std::ranges::transform(feed.compoundFlows, outlet.composition.begin(),
                         [&](double compoundFlow) { return compoundFlow / feed.flow; });
  SetMolarEnthalpy(Outlet(0), feed.enthalpyFlow / feed.flow);
  outletFlashSpec = names::kPH;
}

CMixer::Feed CMixer::CollectFeed(std::size_t compoundCount) {
  Feed feed{Inlet(0).State().pressure, 0, 0, std::vector<double>(compoundCount)};
  for (const auto& port : inlets) {
    const material::StreamState& inlet = port->State();
    feed.lowestPressure = std::min(feed.lowestPressure, inlet.pressure);
    feed.flow += inlet.totalFlow;
    for (std::size_t j = 0; j < compoundCount; ++j) feed.compoundFlows[j] += inlet.composition[j] * inlet.totalFlow;
    if (inlet.totalFlow != 0) feed.enthalpyFlow += EnthalpyFlow(*port);
  }
  return feed;
}

}  // namespace morvelan
