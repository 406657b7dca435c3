#include "units/streams/CSplitter.h"

#include <algorithm>
#include <numeric>

#include "material/Names.h"

namespace morvelan {
namespace {

constexpr const char* kCountKey = "numberOfOutlets";
constexpr std::int32_t kFewestOutlets = 2;
constexpr std::int32_t kMostOutlets = 128;

enum Position : std::size_t { kOutletCount, kSplitFactors, kPressureDrop, kThermoVersion };

constexpr double kLargestSum = 1.0000000000001;
constexpr double kTrace = 1e-5;  // a compound above this mole fraction counts

constexpr PortDeclaration kPorts[] = {
    {"Inlet", "Splitter feed", CAPE_INLET},
    {"Outlet1", "Splitter product", CAPE_OUTLET},
    {"Outlet2", "Splitter product", CAPE_OUTLET},
};

const ParameterDeclaration kParameters[] = {
    {.name = "Number of outlets",
     .description = "Number of outlet ports",
     .mode = CAPE_OUTPUT,
     .defaultValue = kFewestOutlets,
     .lowerBound = kFewestOutlets,
     .upperBound = kMostOutlets},
    {.name = "Split factors",
     .description = "Split factors for (n - 1) outlets",
     .defaultValue = std::vector<double>{0.5},
     .lowerBound = 0,
     .upperBound = 1},
    PressureDropParameter("Pressure drop along the splitter"),
    ThermoVersionParameter(),
};

const UnitDeclaration kDeclaration = {
    .name = "Splitter",
    .description =
        "Splitter - unit operation to split input stream into 2 or more output streams using split fractions",
    .about = "The splitter divides a stream into two or more streams of its composition",
    .helpTopic = "splitter",
    .ports = kPorts,
    .parameters = kParameters,
    .reports = kLastRun,
};

/// The part of the flow that the last outlet takes. The factors may exceed one by what rounding leaves.
double Rest(const std::vector<double>& factors) {
  return std::max(0.0, 1 - std::accumulate(factors.begin(), factors.end(), 0.0));
}

}  // namespace

CSplitter::CSplitter() : Configurable(kDeclaration) {}

int CSplitter::ThermoVersionParameterIndex() const { return kThermoVersion; }

void CSplitter::CreateFace() {
  Configurable::CreateFace();
  Parameter(kPressureDrop).BindDouble(&pressureDrop);
}

bool CSplitter::ValidateParameterValue(const CParameter& parameter, std::string& message,
                                       const ParameterValue& value) const {
  if (&parameter != Parameters()[kSplitFactors].Get()) return true;
  const auto& factors = std::get<std::vector<double>>(value);
  if (factors.size() + 1 != outlets.size())
    message = "Invalid number of array elements for split factor value";
  else if (std::accumulate(factors.begin(), factors.end(), 0.0) > kLargestSum)
    message = "Total value of split factors exceeds unity";
  return message.empty();
}

// ---- The number of outlets

/// A host may put the number, but only the configuration moves ports.
void CSplitter::InputsChanged() {
  Parameter(kOutletCount).SetMode(CAPE_OUTPUT);
  Parameter(kOutletCount).SetResult(static_cast<std::int32_t>(outlets.size()));
}

std::function<void()> CSplitter::LoadUnit(UnitReader&, int, const std::vector<ParameterRecord>& records) {
  if (records.size() <= kOutletCount) return {};
  return PlanOutlets(std::clamp(std::get<std::int32_t>(records[kOutletCount].value), kFewestOutlets, kMostOutlets));
}

Json CSplitter::Configuration() const { return {{kCountKey, outlets.size()}}; }

void CSplitter::Configure(const Json& configuration) {
  const std::int32_t count = ReadConfiguredCount(configuration, kCountKey, kFewestOutlets, kMostOutlets,
                                                 static_cast<std::int32_t>(outlets.size()));
  auto factors = ResizedSplitFactors(static_cast<std::size_t>(count));
  PlanOutlets(count)();
  Parameter(kSplitFactors).SetResult(std::move(factors));
}

std::function<void()> CSplitter::PlanOutlets(std::int32_t count) {
  auto resized = ResizedPorts(outlets, static_cast<std::size_t>(count), kPorts[1],
                              [](std::size_t number) { return "Outlet" + std::to_string(number); });
  return [this, inlet = inlets, resized = std::move(resized)]() mutable {
    ReplacePorts(std::move(inlet), std::move(resized));
  };
}

std::vector<double> CSplitter::ResizedSplitFactors(std::size_t outletCount) {
  auto factors = std::get<std::vector<double>>(Parameter(kSplitFactors).Value());
  if (factors.size() + 1 < outletCount) factors.push_back(Rest(factors));  // of what was the last outlet
  factors.resize(outletCount - 1, 0.0);
  return factors;
}

// ---- Calculation

void CSplitter::CalculateUnit(int, std::optional<com::Name>& outletFlashSpec) {
  StartReport();
  for (const std::size_t position : {kOutletCount, kSplitFactors, kPressureDrop}) ReportParameter(Parameter(position));
  const material::StreamState& inlet = Inlet(0).State();
  const double pressure = PressureAfterDrop(inlet.pressure, pressureDrop);
  const std::vector<double> flows = SplitFlow(inlet.totalFlow);
  for (std::size_t k = 0; k < outlets.size(); ++k)
    Outlet(k).State() = {.pressure = std::max(0.0, pressure),
                         .temperature = inlet.temperature,
                         .totalFlow = flows[k],
                         .composition = inlet.composition};
  if (!IsFedWithOneCompound()) return;
  // Temperature and pressure do not tell the phases of one compound; its enthalpy does.
  const double enthalpy = MolarEnthalpy(Inlet(0));
  for (const auto& outlet : outlets) SetMolarEnthalpy(*outlet, enthalpy);
  outletFlashSpec = names::kPH;
}

std::vector<double> CSplitter::SplitFlow(double inletFlow) {
  const auto& factors = std::get<std::vector<double>>(Parameter(kSplitFactors).Value());
  std::vector<double> flows;
  for (const double factor : factors) flows.push_back(factor * inletFlow);
  flows.push_back(Rest(factors) * inletFlow);
  return flows;
}

bool CSplitter::IsFedWithOneCompound() {
  return std::ranges::count_if(Inlet(0).State().composition, [](double fraction) { return fraction > kTrace; }) == 1;
}

}  // namespace morvelan
