#include "units/reactors/TrialMaterial.h"

#include <array>
#include <cmath>

#include "material/Names.h"
#include "material/Reading.h"

namespace morvelan {
namespace {

/// Runs `body`; a failure's text begins with `opening` from there on.
template <class Body>
auto Opened(const std::string& opening, Body&& body) {
  try {
    return body();
  } catch (const Failure& failure) {
    throw Failure(opening + failure.error.description);
  }
}

}  // namespace

TrialMaterial::TrialMaterial(com::Ref<IDispatch> portCopy, std::string portOfCopy,
                             material::OverallEmulation& overallEmulation, bool usesThermo11, std::size_t compoundCount)
    : thermo(material::ThermoInForce(usesThermo11)),
      emulation(overallEmulation),
      portName(std::move(portOfCopy)),
      copy(std::move(portCopy)),
      count(compoundCount) {}

void TrialMaterial::FlashAtTemperature(const material::StreamState& state) {
  Opened("TP flash failed: ", [&] { thermo.CalcEquilibrium(Material(), state, names::kTP); });
}

void TrialMaterial::FlashAtEnthalpy(const material::StreamState& state, double enthalpy, com::Name property) {
  Opened("Failed to set enthalpy: ", [&] {
    thermo.SetProp(Material(), {property, names::kOverall, names::kMixture, names::kMole}, com::kNoValue,
                   com::MakeDoubles(std::array{enthalpy}).Get());
  });
  const com::Name flash = property == names::kEnthalpyF ? names::kPHF : names::kPH;
  Opened(com::ToUtf8(flash) + " flash failed: ", [&] { thermo.CalcEquilibrium(Material(), state, flash); });
}

void TrialMaterial::SetSinglePhase(const material::StreamState& state, const std::string& phase) {
  const com::Bstr label = com::ToBstr(phase);
  thermo.SetSinglePhase(Material(), state, com::Name(label));
}

std::vector<double> TrialMaterial::Fractions(const std::string& phase, com::Name basis, const std::string& opening) {
  const com::Bstr label = com::ToBstr(phase);
  const auto explain = [&](const std::string& why) { return Failure(opening + why); };
  const com::Variant values = Opened(opening, [&] {
    return thermo.GetProp(Material(), {names::kFraction, com::Name(label), {}, basis}, com::kNoValue);
  });
  std::vector<double> fractions = material::ReadOr([&] { return com::ReadDoubles(values.Get()); }, explain);
  if (fractions.size() != count) throw explain(std::to_string(count) + " values expected");
  for (const double fraction : fractions)
    if (!std::isfinite(fraction) || IsMissing(fraction)) throw explain("value is not set");
  return fractions;
}

double TrialMaterial::Property(com::Name property, const std::string& phase, com::Name basis,
                               const std::string& opening, const std::string& invalid) {
  const com::Bstr label = com::ToBstr(phase);
  const com::Variant values = Opened(opening, [&] {
    return thermo.GetPropertyNoDup(Material(), {property, com::Name(label), names::kMixture, basis});
  });
  const auto explain = [&](const std::string& why) { return Failure(invalid + why); };
  const double value = material::ReadScalar(values.Get(), explain);
  if (!std::isfinite(value)) throw explain("value is infinite");
  return value;
}

double TrialMaterial::Temperature() {
  const com::Variant values = thermo.GetProp(Material(), {names::kTemperature, names::kOverall, {}, {}}, com::kNoValue);
  return material::ReadScalar(values.Get(), [](const std::string& why) { return Failure(why); });
}

std::vector<std::string> TrialMaterial::PresentPhases() {
  std::vector<std::string> present;
  for (const material::PhaseFraction& phase : thermo.GetPhaseFractions(copy.Get()))
    if (phase.fraction > 0) present.push_back(phase.phase);
  return present;
}

}  // namespace morvelan
