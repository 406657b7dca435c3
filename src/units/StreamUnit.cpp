#include "units/StreamUnit.h"

#include <algorithm>
#include <cmath>

#include "framework/ReportFormat.h"
#include "material/MissingValue.h"
#include "material/Names.h"
#include "material/Reading.h"

namespace morvelan {
namespace {

constexpr std::string_view kScope = "Calculate";
constexpr std::string_view kInterface = "ICapeUnit";
constexpr std::size_t kLastRunReport = 1;

constexpr double kLowestPressure = 1;              // [Pa]
constexpr double kLowestSimplifiedPressure = 100;  // [Pa]
constexpr double kSimplifiedDropFraction = 0.1;

/// The enthalpy that a port's material gives.
double ReadEnthalpy(const CUnitPort& port, const com::Variant& values) {
  const double enthalpy = material::ReadOneDouble(values.Get());
  if (IsMissing(enthalpy))
    throw Failure("the enthalpy of the material on port " + port.ComponentName() + " is not set");
  if (!std::isfinite(enthalpy))
    throw Failure("the enthalpy of the material on port " + port.ComponentName() + " is infinite");
  return enthalpy;
}

}  // namespace

bool StreamUnit::ValidateUnit(std::string& message) {
  for (std::size_t i = 0; i < Parameters().size(); ++i) {
    const CParameter& parameter = Parameter(i);
    const auto* number = std::get_if<double>(&parameter.Value());
    if (!number || parameter.Mode() != CAPE_INPUT || !IsMissing(*number) || MayBeUnset(i)) continue;
    message = "parameter " + parameter.ComponentName() + " has no value";
    return false;
  }
  return true;
}

double StreamUnit::PressureAfterDrop(double inletPressure, double pressureDrop) const {
  const double pressure = inletPressure - pressureDrop;
  if (simplifiedModelRequested)
    return std::max({kSimplifiedDropFraction * pressureDrop, kLowestSimplifiedPressure, pressure});
  if (pressure > kLowestPressure) return pressure;
  Warn(ComponentName() + " warning: limiting outlet pressure to 1 Pa");
  return kLowestPressure;
}

double StreamUnit::EnthalpyFlow(CUnitPort& inlet) {
  return ForwardError(kScope, kInterface, [&] {
    return ReadEnthalpy(inlet, inlet.GetProperty(names::kEnthalpy, names::kOverall, names::kMixture, names::kNone));
  });
}

double StreamUnit::FlashedEnthalpyFlow(CUnitPort& outlet) {
  return ForwardError(kScope, kInterface, [&] {
    return ReadEnthalpy(outlet,
                        outlet.GetPropertyNoDup(names::kEnthalpy, names::kOverall, names::kMixture, names::kNone));
  });
}

double StreamUnit::MolarEnthalpy(CUnitPort& inlet, com::Name property) {
  return ForwardError(kScope, kInterface, [&] {
    return ReadEnthalpy(inlet, inlet.GetProperty(property, names::kOverall, names::kMixture, names::kMole));
  });
}

double StreamUnit::FlashedMolarEnthalpy(CUnitPort& outlet, com::Name property) {
  return ForwardError(kScope, kInterface, [&] {
    return ReadEnthalpy(outlet, outlet.GetPropertyNoDup(property, names::kOverall, names::kMixture, names::kMole));
  });
}

std::optional<double> StreamUnit::StoredTemperature(CUnitPort& outlet) {
  return ForwardError(kScope, kInterface, [&]() -> std::optional<double> {
    const com::Variant values =
        outlet.GetProp(names::kTemperature, names::kOverall, com::Variant().Get(), names::kNone, names::kNone);
    const double temperature = material::ReadOneDouble(values.Get());
    return IsMissing(temperature) ? std::nullopt : std::optional(temperature);
  });
}

void StreamUnit::SetMolarEnthalpy(CUnitPort& outlet, double enthalpy, com::Name property) {
  ForwardError(kScope, kInterface, [&] {
    outlet.SetProp(property, names::kOverall, com::Variant().Get(), names::kMixture, names::kMole,
                   com::MakeDoubles(std::array{enthalpy}).Get());
  });
}

void StreamUnit::Flash(CUnitPort& outlet, com::Name flashType) {
  ForwardError(kScope, kInterface, [&] { outlet.CalcEquilibrium(flashType); });
}

void StreamUnit::FlashAtEnthalpy(CUnitPort& outlet, double enthalpy, com::Name property, const char* noTemperature) {
  SetMolarEnthalpy(outlet, enthalpy, property);
  Flash(outlet, property == names::kEnthalpyF ? names::kPHF : names::kPH);
  TakeOverTemperature(outlet, noTemperature);
}

void StreamUnit::TakeOverTemperature(CUnitPort& outlet, const std::string& opening) {
  std::optional<double> temperature;
  try {
    temperature = StoredTemperature(outlet);
    if (!temperature) temperature = StoredTemperature(outlet);  // a host may need to be asked twice
  } catch (Failure& failure) {
    failure.error.description = opening + failure.error.description;
    throw;
  }
  if (!temperature)
    throw Failure(
        opening + "the temperature of the material on port " + outlet.ComponentName() + " is not set after its flash",
        kScope, kInterface);
  outlet.State().temperature = *temperature;
}

void StreamUnit::WarnAs(std::string_view kind, const std::string& text) const {
  Warn(std::string(kind) + " \"" + ComponentName() + '"' + text);
}

void StreamUnit::StartReport() { SetReportText(kLastRunReport, "+++ specifications +++\r\n\r\n"); }

void StreamUnit::ReportLine(const std::string& text) { AddReportText(kLastRunReport, text + "\r\n"); }

void StreamUnit::ReportParameter(const CParameter& parameter) {
  if (!simplifiedModelRequested) ReportLine(FormatParameter(parameter));
}

void StreamUnit::ReportOptionalParameters(std::span<const std::size_t> positions) {
  AddReportText(kLastRunReport, "\r\n+++ optional parameters +++\r\n");
  for (const std::size_t position : positions) ReportParameter(Parameter(position));
}

}  // namespace morvelan
