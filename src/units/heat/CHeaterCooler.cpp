#include "units/heat/CHeaterCooler.h"

#include <algorithm>
#include <cmath>

#include "material/MissingValue.h"
#include "material/Names.h"

namespace morvelan {
namespace {

enum Position : std::size_t { kType, kOutletTemperature, kHeatDuty, kPressureDrop, kThermoVersion };
enum Type : std::size_t { kByHeatDuty, kByTemperature, kByEnergyInlet };
constexpr std::size_t kWork = 0;  // of the energy stream's items

constexpr std::string_view kKind = "HeaterCooler";
constexpr const char* kHeatPortKey = "heatPort";
// What the flag word of "Type" keeps in saved units.
constexpr std::int32_t kHeatInletFlag = 0;
constexpr std::int32_t kHeatOutletFlag = 1;

constexpr double kTemperatureTolerance = 1e-6;  // [K]
constexpr double kFlashNoise = 1e-9;            // of an enthalpy flow, relative

constexpr PortDeclaration kPorts[] = {
    {"Inlet", "Feed", CAPE_INLET},
    {"Outlet", "Product", CAPE_OUTLET},
    {"Heat", "Heat that is consumed or produced", CAPE_INLET, CAPE_ENERGY, kEnergyItems},
};

const ParameterDeclaration kParameters[] = {
    {.name = "Type",
     .description = "Type of heat duty specification",
     .defaultValue = "Heat duty",
     .options = {"Heat duty", "Temperature", "Energy inlet"}},
    {.name = "Outlet temperature",
     .description = "Temperature of the product stream",
     .defaultValue = 300.0,
     .lowerBound = 0,
     .upperBound = 1e10,
     .dimensionality = kTemperatureDimension},
    {.name = "Heat duty",
     .description = "Heat duty",
     .defaultValue = 0.0,
     .lowerBound = -1e20,
     .upperBound = 1e20,
     .dimensionality = kPowerDimension},
    PressureDropParameter("Pressure drop along the unit"),
    ThermoVersionParameter(),
};

const UnitDeclaration kDeclaration = {
    .name = "HeaterCooler",
    .description = "Heater or cooler using heat duty or outlet temperature",
    .about =
        "The heater / cooler heats or cools a stream by a heat duty, to a temperature, or with the heat of "
        "an energy stream",
    .helpTopic = "heatercooler",
    .ports = kPorts,
    .parameters = kParameters,
    .reports = kLastRun,
};

Failure CalculationFailure(std::string name, std::string description) {
  return Failure(UnitError{std::move(name), std::move(description), "Calculate", "ICapeUnit"});
}

}  // namespace

CHeaterCooler::CHeaterCooler() : Configurable(kDeclaration) {
  checkConnections = false;  // the energy port is needed for one specification only
}

int CHeaterCooler::ThermoVersionParameterIndex() const { return kThermoVersion; }

void CHeaterCooler::CreateFace() {
  Configurable::CreateFace();
  Parameter(kOutletTemperature).BindDouble(&outletTemperature);
  Parameter(kHeatDuty).BindDouble(&heatDuty);
  Parameter(kPressureDrop).BindDouble(&pressureDrop);
  InputsChanged();
}

void CHeaterCooler::InputsChanged() {
  const auto type = Parameter(kType).OptionIndex();
  Parameter(kOutletTemperature).SetMode(type == kByTemperature ? CAPE_INPUT : CAPE_OUTPUT);
  Parameter(kHeatDuty).SetMode(type == kByHeatDuty ? CAPE_INPUT : CAPE_OUTPUT);
}

bool CHeaterCooler::ValidateUnit(std::string& message) {
  if (!Inlet(0).IsConnected() || !Outlet(0).IsConnected()) message = "not all material ports are connected";
  return message.empty() && Configurable::ValidateUnit(message);
}

void CHeaterCooler::CalculateUnit(int, std::optional<com::Name>& outletFlashSpec) {
  const auto type = Parameter(kType).OptionIndex();
  if (!type)
    throw CalculationFailure("Invalid type",
                             "Invalid value for specification type: unable to determine outlet specification type");
  StartReport();
  HeatSource source{heatDuty};
  if (type == kByEnergyInlet)
    source = ReadEnergyStream(HeatIsOutlet() ? nullptr : &HeatPort(), kKind);
  else
    ReportParameter(Parameter(type == kByHeatDuty ? kHeatDuty : kOutletTemperature));
  ReportParameter(Parameter(kPressureDrop));
  if (inlets.size() + outlets.size() != std::size(kPorts))
    throw CalculationFailure("internal error", "internal error: heater / cooler should have 3 ports");

  const material::StreamState& inlet = Inlet(0).State();
  material::StreamState& outlet = Outlet(0).State();
  outlet.composition = inlet.composition;
  outlet.totalFlow = inlet.totalFlow;
  outlet.pressure = PressureAfterDrop(inlet.pressure, pressureDrop);
  const std::optional<double> duty = type == kByTemperature ? FindDuty() : HeatOutlet(source);
  outletFlashSpec.reset();
  PublishResults(*type, duty);
  ReportRemainingParameters(*type);
}

void CHeaterCooler::PublishResults(std::size_t type, std::optional<double> duty) {
  if (type != kByTemperature) Parameter(kOutletTemperature).SetResult(Outlet(0).State().temperature);
  if (type != kByHeatDuty) Parameter(kHeatDuty).SetResult(duty.value_or(kMissingValue));
  if (HeatIsOutlet() && duty)
    ForwardError("Calculate", "ICapeUnit", [&] { HeatPort().WriteInformation(kWork, 0 - *duty); });
}

void CHeaterCooler::ReportRemainingParameters(std::size_t type) {
  std::vector<std::size_t> remaining = {kType, kOutletTemperature, kHeatDuty, kThermoVersion};
  if (type != kByEnergyInlet) std::erase(remaining, type == kByHeatDuty ? kHeatDuty : kOutletTemperature);
  ReportOptionalParameters(remaining);
}

// ---- The energy port

Json CHeaterCooler::Configuration() const { return {{kHeatPortKey, HeatIsOutlet() ? "outlet" : "inlet"}}; }

void CHeaterCooler::Configure(const Json& configuration) {
  const bool asOutlet = ReadConfiguredChoice(configuration, kHeatPortKey, {"inlet", "outlet"}, HeatIsOutlet()) == 1;
  PlanHeatPort(asOutlet)();
  Parameter(kType).SetFlagWord(asOutlet ? kHeatOutletFlag : kHeatInletFlag);
}

std::function<void()> CHeaterCooler::LoadUnit(UnitReader&, int, const std::vector<ParameterRecord>& records) {
  if (records.size() <= kType) return {};
  return PlanHeatPort(records[kType].flagWord == kHeatOutletFlag);
}

std::function<void()> CHeaterCooler::PlanHeatPort(bool asOutlet) {
  if (asOutlet == HeatIsOutlet()) return [] {};
  PortDeclaration port = kPorts[2];
  port.direction = asOutlet ? CAPE_OUTLET : CAPE_INLET;
  PortList newInlets = {inlets[0]};
  PortList newOutlets = {outlets[0]};
  (asOutlet ? newOutlets : newInlets).push_back(MakePort(port));
  return [this, newInlets = std::move(newInlets), newOutlets = std::move(newOutlets)]() mutable {
    ReplacePorts(std::move(newInlets), std::move(newOutlets));
  };
}

// ---- The energy stream

CUnitInfoPort& CHeaterCooler::HeatPort() { return dynamic_cast<CUnitInfoPort&>(HeatIsOutlet() ? Outlet(1) : Inlet(1)); }

// ---- Heating by a duty

double CHeaterCooler::HeatOutlet(HeatSource source) {
  material::StreamState& outlet = Outlet(0).State();
  if (!(outlet.totalFlow > 0)) {
    KeepInletTemperature();
    return 0;
  }
  const double inletEnthalpyFlow = EnthalpyFlow(Inlet(0));
  const Limit limit = LimitDuty(source, inletEnthalpyFlow);
  if (!limit.reached) FlashAtEnthalpy(Outlet(0), (source.duty + inletEnthalpyFlow) / outlet.totalFlow);
  WarnOfInfeasibility(source, limit.infeasible);
  return source.duty;
}

void CHeaterCooler::KeepInletTemperature() {
  Warn("WARNING: HeaterCooler " + ComponentName() + ": Zero flow; using zero heat duty");
  Outlet(0).State().temperature = Inlet(0).State().temperature;
  Flash(Outlet(0), names::kTP);
}

CHeaterCooler::Limit CHeaterCooler::LimitDuty(HeatSource& source, double inletEnthalpyFlow) try {
  const bool heats = source.duty > 0;
  if (!source.lowTemperature || (heats && !source.highTemperature)) return {};
  const double inletTemperature = Inlet(0).State().temperature;
  Outlet(0).State().temperature =
      heats ? std::max(inletTemperature, *source.highTemperature) : std::min(inletTemperature, *source.lowTemperature);
  Flash(Outlet(0), names::kTP);
  const double limit = FlashedEnthalpyFlow(Outlet(0)) - inletEnthalpyFlow;
  // The sign of what is zero but for the flashes' tolerance must not decide.
  const bool isZero = std::abs(limit) <= kFlashNoise * (std::abs(inletEnthalpyFlow) + std::abs(source.duty));
  const double decisive = isZero ? 0 : limit;
  if (heats && decisive < 0) return {.infeasible = true};
  if (heats ? decisive >= source.duty : decisive <= source.duty) return {};
  source.duty = limit;
  WarnAs(kKind, " warning: heat duty is limited by energy stream temperature");
  return {.reached = true};
} catch (const Failure& failure) {
  Warn(kNoRangeCheck + failure.error.description);
  return {};
}

void CHeaterCooler::WarnOfInfeasibility(const HeatSource& source, bool infeasible) const {
  if (!source.lowTemperature) return;
  const double inletTemperature = inlets[0]->State().temperature;
  const double temperature = outlets[0]->State().temperature;
  if (source.duty > 0) {
    if (*source.lowTemperature < inletTemperature - kTemperatureTolerance)
      WarnAs(kKind, " warning: inlet temperature is higher than lower energy stream temperature; this is infeasible");
    if (infeasible && temperature - kTemperatureTolerance > *source.highTemperature)
      WarnAs(kKind, " warning: outlet temperature is higher than energy stream temperature; this is infeasible");
  } else if (source.duty < 0 && source.highTemperature &&
             *source.highTemperature > inletTemperature + kTemperatureTolerance) {
    WarnAs(kKind, " warning: inlet temperature is lower than upper energy stream temperature; this is infeasible");
  }
}

// ---- Heating to a temperature

std::optional<double> CHeaterCooler::FindDuty() {
  Outlet(0).State().temperature = outletTemperature;
  Flash(Outlet(0), names::kTP);
  try {
    const double inletEnthalpyFlow = EnthalpyFlow(Inlet(0));
    return FlashedEnthalpyFlow(Outlet(0)) - inletEnthalpyFlow;
  } catch (const Failure&) {
    Warn(ComponentName() + " unable to determine heat duty");
    return std::nullopt;
  }
}

}  // namespace morvelan
