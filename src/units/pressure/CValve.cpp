#include "units/pressure/CValve.h"

#include "material/Names.h"

namespace morvelan {
namespace {

enum Position : std::size_t { kSpecification, kPressureDifference, kPressure, kThermoVersion };
enum Specification : std::size_t { kByDifference, kByPressure };

constexpr PortDeclaration kPorts[] = {
    {"Inlet", "Valve inlet port", CAPE_INLET},
    {"Outlet", "Valve outlet port", CAPE_OUTLET},
};

const ParameterDeclaration kParameters[] = {
    {.name = "Pressure spec.",
     .description = "Pressure drop specification type",
     .defaultValue = "Pressure difference",
     .options = {"Pressure difference", "Pressure"}},
    {.name = "Pressure difference",
     .description = "Pressure drop along the valve",
     .defaultValue = 0.0,
     .lowerBound = 0,
     .upperBound = 1e10,
     .dimensionality = kPressureDropDimension},
    {.name = "Pressure",
     .description = "Valve outlet pressure",
     .defaultValue = 100000.0,
     .lowerBound = 0,
     .upperBound = 1e10,
     .dimensionality = kPressureDimension},
    ThermoVersionParameter(),
};

const UnitDeclaration kDeclaration = {
    .name = "Valve",
    .description = "Valve. Model using pressure difference and pH flash.",
    .about = "The valve lowers the pressure of a stream without heat exchange or work",
    .helpTopic = "valve",
    .ports = kPorts,
    .parameters = kParameters,
    .reports = kLastRun,
};

}  // namespace

CValve::CValve() : StreamUnit(kDeclaration) {}

int CValve::ThermoVersionParameterIndex() const { return kThermoVersion; }

void CValve::CreateFace() {
  StreamUnit::CreateFace();
  Parameter(kPressureDifference).BindDouble(&pressureDifference);
  Parameter(kPressure).BindDouble(&outletPressure);
  InputsChanged();
}

void CValve::InputsChanged() {
  // The pressure that is not specified is a result, and may be what no specification may be.
  const bool byPressure = Parameter(kSpecification).OptionIndex() == kByPressure;
  Parameter(kPressureDifference).SetMode(byPressure ? CAPE_OUTPUT : CAPE_INPUT);
  Parameter(kPressure).SetMode(byPressure ? CAPE_INPUT : CAPE_OUTPUT);
}

void CValve::CalculateUnit(int, std::optional<com::Name>& outletFlashSpec) {
  const bool byPressure = Parameter(kSpecification).OptionIndex() == kByPressure;
  const std::size_t specified = byPressure ? kPressure : kPressureDifference;
  const std::size_t calculated[] = {byPressure ? kPressureDifference : kPressure};
  StartReport();
  ReportParameter(Parameter(specified));
  if (inlets.size() != 1 || outlets.size() != 1)
    throw Failure(UnitError{"internal error", "internal error: valve should have 1 inlet and 1 outlet", "Calculate",
                            "ICapeUnit"});
  const material::StreamState& inlet = Inlet(0).State();
  material::StreamState& outlet = Outlet(0).State();
  outlet.composition = inlet.composition;
  outlet.pressure = OutletPressure(inlet.pressure);
  ReportOptionalParameters(calculated);
  outlet.temperature = inlet.temperature;
  const double enthalpyFlow = EnthalpyFlow(Inlet(0));
  outlet.totalFlow = inlet.totalFlow;
  if (inlet.totalFlow == 0) return;  // there is no enthalpy to find the temperature by: the inlet's stays
  SetMolarEnthalpy(Outlet(0), enthalpyFlow / inlet.totalFlow);
  Flash(Outlet(0), names::kPH);
  outletFlashSpec.reset();
}

double CValve::OutletPressure(double inletPressure) {
  if (Parameter(kSpecification).OptionIndex() == kByPressure) {
    if (outletPressure > inletPressure) Warn("WARNING: Valve " + ComponentName() + "; pressure drop is negative");
    Parameter(kPressureDifference).SetResult(inletPressure - outletPressure);
    return outletPressure;
  }
  const double pressure = PressureAfterDrop(inletPressure, pressureDifference);
  Parameter(kPressure).SetResult(pressure);
  return pressure;
}

}  // namespace morvelan
