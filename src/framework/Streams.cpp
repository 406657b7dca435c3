#include "framework/Streams.h"

#include <array>
#include <cmath>

#include "framework/CalculationFailure.h"
#include "material/Names.h"
#include "material/Reading.h"

namespace morvelan {
namespace {

/// The number that a port's material gives. (Users know both enthalpies by the one name.)
double ReadNumber(const CUnitPort& port, const Property& which, const material::Answer& answer) {
  const auto known = answer.Number();
  const double value = known ? *known : material::ReadOneDouble(answer.Hosts());
  if (!IsMissing(value) && std::isfinite(value)) return value;
  throw Failure("the " + (which == property::kEnthalpyF ? property::kEnthalpy : which).Text() +
                " of the material on port " + port.ComponentName() +
                (IsMissing(value) ? " is not set" : " is infinite"));
}

}  // namespace

std::vector<PhaseFraction> MaterialStream::Phases() const {
  std::vector<PhaseFraction> phases = InCalculation([&] { return port->GetPhaseFractions(); });
  std::erase_if(phases, [](const PhaseFraction& phase) { return !(phase.fraction > 0); });
  return phases;
}

std::vector<std::string> MaterialStream::Compounds() const {
  return InCalculation([&] { return port->GetCompoundIds(); });
}

std::vector<double> MaterialStream::Constants(const char* name) const {
  const com::Bstr constant = com::ToBstr(name);
  return InCalculation([&] { return port->GetCompoundConstant(com::Name(constant)); });
}

std::vector<std::string> MaterialStream::Texts(const char* name) const {
  const com::Bstr constant = com::ToBstr(name);
  return InCalculation([&] { return port->GetCompoundText(com::Name(constant)); });
}

double InletStream::EnthalpyFlow() const {
  return InCalculation([&] {
    return ReadNumber(*port, property::kEnthalpy,
                      port->GetProperty(property::kEnthalpy, names::kOverall, names::kMixture, {}));
  });
}

double InletStream::MolarProperty(const Property& which) const {
  return InCalculation([&] {
    return ReadNumber(*port, which, port->GetProperty(which, names::kOverall, names::kMixture, names::kMole));
  });
}

TrialMaterial InletStream::Copy() const {
  return InCalculation([&] { return port->CopyMaterial(); });
}

void OutletStream::Leave(StreamState state) {
  port->State() = std::move(state);
  port->LeaveFor(names::kTP);
}

void OutletStream::LeaveAtEnthalpy(StreamState state, double enthalpy) {
  port->State() = std::move(state);
  InCalculation([&] {
    port->SetProp(property::kEnthalpy, names::kOverall, com::kNoValue, names::kMixture, names::kMole,
                  com::MakeDoubles(std::array{enthalpy}).Get());
  });
  port->LeaveFor(names::kPH);
}

void OutletStream::Flash(com::Name flashType) {
  InCalculation([&] { port->CalcEquilibrium(flashType); });
}

void OutletStream::FlashAtTemperature(const StreamState& state) {
  port->State() = state;
  Flash(names::kTP);
}

void OutletStream::FlashAtEnthalpy(const StreamState& state, double enthalpy, const Property& which) {
  port->State() = state;
  InCalculation([&] {
    port->SetProp(which, names::kOverall, com::kNoValue, names::kMixture, names::kMole,
                  com::MakeDoubles(std::array{enthalpy}).Get());
  });
  Flash(which == property::kEnthalpyF ? names::kPHF : names::kPH);
}

void OutletStream::FlashAtVaporFraction(const StreamState& state, double fraction) {
  port->State() = state;
  InCalculation([&] {
    const com::Bstr vapor = port->GetVaporName();
    port->SetProp(names::kPhaseFraction, com::Name(vapor), com::kNoValue, {}, names::kMole,
                  com::MakeDoubles(std::array{fraction}).Get());
  });
  Flash(names::kPVF);
}

double OutletStream::TakeOverTemperature(LazyText opening) {
  const auto stored = [&]() -> double {
    return InCalculation([&] {
      const com::Variant values = port->GetProp(names::kTemperature, names::kOverall, com::kNoValue, {}, {});
      return material::ReadOneDouble(values.Get());
    });
  };
  double temperature = kMissingValue;
  try {
    temperature = stored();
    if (IsMissing(temperature)) temperature = stored();  // a host may need to be asked twice
  } catch (Failure& failure) {
    failure.error.description = opening() + failure.error.description;
    throw;
  }
  if (IsMissing(temperature))
    throw Failure(opening() + "the temperature of the material on port " + Name() + " is not set after its flash",
                  "Calculate", "ICapeUnit");
  return port->State().temperature = temperature;
}

double OutletStream::EnthalpyFlow() const {
  return InCalculation([&] {
    return ReadNumber(*port, property::kEnthalpy,
                      port->GetPropertyNoDup(property::kEnthalpy, names::kOverall, names::kMixture, {}));
  });
}

double OutletStream::MolarProperty(const Property& which) {
  return InCalculation([&] {
    return ReadNumber(*port, which, port->GetPropertyNoDup(which, names::kOverall, names::kMixture, names::kMole));
  });
}

}  // namespace morvelan
