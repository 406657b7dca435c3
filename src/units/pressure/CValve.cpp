#include "units/pressure/CValve.h"

namespace morvelan {

CValve::CValve()
    : StreamUnit({.name = "Valve",
                  .description = "Valve. Model using pressure difference and pH flash.",
                  .about = "The valve lowers the pressure of a stream without heat exchange or work",
                  .helpTopic = "valve"}) {
  declare.Port(feed, "Inlet", "Valve inlet port");
  declare.Port(product, "Outlet", "Valve outlet port");

  declare.Parameter(specification, "Pressure spec.", "Pressure drop specification type",
                    {"Pressure difference", "Pressure"});
  // The pressure that is not specified is a result, and may be what no specification may be.
  declare.Parameter(difference, "Pressure difference", "Pressure drop along the valve", 0, quantity::kPressureDrop)
      .ResultWhen(specification, Specification::kPressure);
  declare.Parameter(pressure, "Pressure", "Valve outlet pressure", 1e5, quantity::kPressure)
      .InputWhen(specification, Specification::kPressure);
  declare.ThermoVersion(thermoVersion);
}

void CValve::Solve() {
  const bool byPressure = specification.Is(Specification::kPressure);
  journal.Parameters(byPressure ? pressure : difference);
  const StreamState& in = feed.State();
  StreamState out = in;
  out.pressure = OutletPressure(in.pressure);
  journal.OptionalParameters({byPressure ? &difference : &pressure});
  const double enthalpyFlow = feed.EnthalpyFlow();
  // Without flow there is no enthalpy to find the temperature by: the inlet's stays.
  if (in.totalFlow == 0) return product.Leave(out);
  product.FlashAtEnthalpy(out, enthalpyFlow / in.totalFlow);
}

double CValve::OutletPressure(double inletPressure) {
  if (specification.Is(Specification::kPressure)) {
    if (pressure > inletPressure) journal.Warn("WARNING: Valve " + ComponentName() + "; pressure drop is negative");
    difference.Publish(inletPressure - pressure);
    return pressure;
  }
  const double lowered = PressureAfterDrop(inletPressure, difference);
  pressure.Publish(lowered);
  return lowered;
}

}  // namespace morvelan
