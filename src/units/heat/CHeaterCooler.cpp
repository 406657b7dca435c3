#include "units/heat/CHeaterCooler.h"

#include <algorithm>
#include <cmath>

namespace morvelan {
namespace {

constexpr double kTemperatureTolerance = 1e-6;  // [K]
constexpr double kFlashNoise = 1e-9;            // of an enthalpy flow, relative

}  // namespace

CHeaterCooler::CHeaterCooler()
    : StreamUnit({.name = "HeaterCooler",
                  .description = "Heater or cooler using heat duty or outlet temperature",
                  .about = "The heater / cooler heats or cools a stream by a heat duty, to a temperature, or "
                           "with the heat of an energy stream",
                  .helpTopic = "heatercooler"}) {
  checkConnections = false;  // the energy port is needed for one specification only
  declare.Port(feed, "Inlet", "Feed");
  declare.Port(product, "Outlet", "Product");
  declare.EnergyPort(heat, "Heat", "Heat that is consumed or produced", [this] { return PortSide{heatSide}; });

  declare.Parameter(type, "Type", "Type of heat duty specification", {"Heat duty", "Temperature", "Energy inlet"});
  declare
      .Parameter(outletTemperature, "Outlet temperature", "Temperature of the product stream", 300,
                 quantity::kTemperature)
      .InputWhen(type, Type::kTemperature);
  declare.Parameter(heatDuty, "Heat duty", "Heat duty", 0, {-1e20, 1e20, kPowerDimension})
      .InputWhen(type, Type::kHeatDuty);
  declare.Parameter(pressureDrop, "Pressure drop", "Pressure drop along the unit", 0, quantity::kPressureDrop);
  declare.ThermoVersion(thermoVersion);

  declare.Setting(heatSide, "heatPort", {"inlet", "outlet"}, type)
      .Label("Heat port", "As an outlet it hands on the heat that is taken from the stream");
}

void CHeaterCooler::Solve() {
  const auto by = type.Find();
  if (!by)
    throw CalculationFailure("Invalid type",
                             "Invalid value for specification type: unable to determine outlet specification type");
  HeatSource source{heatDuty};
  if (by == Type::kEnergyInlet)
    source = ReadHeat(heat, journal);
  else
    journal.Parameters(by == Type::kHeatDuty ? heatDuty : outletTemperature);
  journal.Parameters(pressureDrop);

  StreamState out = feed.State();
  out.pressure = PressureAfterDrop(out.pressure, pressureDrop);
  const std::optional<double> duty = by == Type::kTemperature ? HeatToTemperature(out) : HeatWith(source, out);
  Publish(*by, out.temperature, duty);
}

void CHeaterCooler::Publish(Type by, double temperature, std::optional<double> duty) {
  if (by != Type::kTemperature) outletTemperature.Publish(temperature);
  if (by != Type::kHeatDuty) heatDuty.Publish(duty);
  if (duty && !heat.IsInlet()) heat.WriteHeat(0 - *duty);
  journal.OptionalParameters({&type, by == Type::kTemperature ? nullptr : &outletTemperature,
                              by == Type::kHeatDuty ? nullptr : &heatDuty, &thermoVersion});
}

std::optional<double> CHeaterCooler::HeatToTemperature(StreamState& out) {
  out.temperature = outletTemperature;
  product.FlashAtTemperature(out);
  try {
    const double inletEnthalpyFlow = feed.EnthalpyFlow();
    return product.EnthalpyFlow() - inletEnthalpyFlow;
  } catch (const Failure&) {
    journal.Warn(ComponentName() + " unable to determine heat duty");
    return std::nullopt;
  }
}

double CHeaterCooler::HeatWith(HeatSource source, StreamState& out) {
  if (!(out.totalFlow > 0)) {
    journal.Warn("WARNING: HeaterCooler " + ComponentName() + ": Zero flow; using zero heat duty");
    product.FlashAtTemperature(out);
    return 0;
  }
  const double inletEnthalpyFlow = feed.EnthalpyFlow();
  const Limit limit = LimitDuty(source, out, inletEnthalpyFlow);
  if (!limit.reached) {
    product.FlashAtEnthalpy(out, (source.duty + inletEnthalpyFlow) / out.totalFlow);
    out.temperature = product.Temperature();
  }
  WarnOfInfeasibility(source, out.temperature, limit.infeasible);
  return source.duty;
}

CHeaterCooler::Limit CHeaterCooler::LimitDuty(HeatSource& source, StreamState& out, double inletEnthalpyFlow) try {
  const bool heats = source.duty > 0;
  if (!source.lowTemperature || (heats && !source.highTemperature)) return {};
  const double inletTemperature = feed.State().temperature;
  out.temperature =
      heats ? std::max(inletTemperature, *source.highTemperature) : std::min(inletTemperature, *source.lowTemperature);
  product.FlashAtTemperature(out);
  const double limit = product.EnthalpyFlow() - inletEnthalpyFlow;
  // The sign of what is zero but for the flashes' tolerance must not decide.
  const bool isZero = std::abs(limit) <= kFlashNoise * (std::abs(inletEnthalpyFlow) + std::abs(source.duty));
  const double decisive = isZero ? 0 : limit;
  if (heats && decisive < 0) return {.infeasible = true};
  if (heats ? decisive >= source.duty : decisive <= source.duty) return {};
  source.duty = limit;
  journal.WarnNamed(" warning: heat duty is limited by energy stream temperature");
  return {.reached = true};
} catch (const Failure& failure) {
  journal.Warn(kNoRangeCheck + failure.error.description);
  return {};
}

void CHeaterCooler::WarnOfInfeasibility(const HeatSource& source, double temperature, bool infeasible) const {
  if (!source.lowTemperature) return;
  const double inletTemperature = feed.State().temperature;
  if (source.duty > 0) {
    if (*source.lowTemperature < inletTemperature - kTemperatureTolerance)
      journal.WarnNamed(
          " warning: inlet temperature is higher than lower energy stream temperature; this is infeasible");
    if (infeasible && temperature - kTemperatureTolerance > *source.highTemperature)
      journal.WarnNamed(" warning: outlet temperature is higher than energy stream temperature; this is infeasible");
  } else if (source.duty < 0 && source.highTemperature &&
             *source.highTemperature > inletTemperature + kTemperatureTolerance) {
    journal.WarnNamed(" warning: inlet temperature is lower than upper energy stream temperature; this is infeasible");
  }
}

}  // namespace morvelan
