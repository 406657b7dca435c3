#include "material/TrialMaterial.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "material/Names.h"
#include "material/Reading.h"

namespace morvelan {
namespace {

/// Runs `body`; a failure's text begins with `opening` from there on.
template <class Body>
auto WithPrefix(LazyText opening, Body&& body) {
  try {
    return body();
  } catch (const Failure& failure) {
    throw Failure(opening() + failure.error.description);
  }
}

com::Name NameOf(TrialMaterial::Basis basis) {
  return basis == TrialMaterial::Basis::kMass ? names::kMass : names::kMole;
}

}  // namespace

TrialMaterial::TrialMaterial(com::Ref<IDispatch> portCopy, std::string portOfCopy,
                             material::OverallEmulation& overallEmulation, const material::Thermo& generation,
                             std::size_t compoundCount)
    : thermo(generation),
      emulation(overallEmulation),
      portName(std::move(portOfCopy)),
      copy(std::move(portCopy)),
      count(compoundCount) {}

void TrialMaterial::FlashAtTemperature(const StreamState& state) {
  WithPrefix("TP flash failed: ", [&] { thermo.CalcEquilibrium(Material(), state, names::kTP); });
}

void TrialMaterial::FlashAtEnthalpy(const StreamState& state, double enthalpy, const Property& which) {
  WithPrefix("Failed to set enthalpy: ", [&] {
    thermo.SetProp(Material(), {which, names::kOverall, names::kMixture, names::kMole}, com::kNoValue,
                   com::MakeDoubles(std::array{enthalpy}).Get());
  });
  const com::Name flash = which == property::kEnthalpyF ? names::kPHF : names::kPH;
  WithPrefix([&] { return com::ToUtf8(flash) + " flash failed: "; },
             [&] { thermo.CalcEquilibrium(Material(), state, flash); });
}

void TrialMaterial::FlashAtVaporFraction(const StreamState& state, double fraction) {
  WithPrefix("Failed to set vapor fraction: ", [&] {
    const com::Bstr vapor = thermo.GetVaporName(Material());
    thermo.SetProp(Material(), {names::kPhaseFraction, com::Name(vapor), {}, names::kMole}, com::kNoValue,
                   com::MakeDoubles(std::array{fraction}).Get());
  });
  WithPrefix("PVF flash failed: ", [&] { thermo.CalcEquilibrium(Material(), state, names::kPVF); });
}

double TrialMaterial::Temperature() {
  const com::Variant values = thermo.GetProp(Material(), {names::kTemperature, names::kOverall, {}, {}}, com::kNoValue);
  return material::ReadScalar(values.Get(), [](const std::string& why) { return Failure(why); });
}

double TrialMaterial::MolarProperty(const Property& which) {
  const auto explain = [&](const std::string& why) {
    return Failure("the " + which.Text() + " of the trial material: " + why);
  };
  const material::Answer answer =
      thermo.GetPropertyNoDup(Material(), {which, names::kOverall, names::kMixture, names::kMole});
  const double value = answer.Number() ? *answer.Number() : material::ReadScalar(answer.Hosts(), explain);
  if (!std::isfinite(value)) throw explain("value is infinite");
  return value;
}

std::vector<PhaseFraction> TrialMaterial::Phases() {
  std::vector<PhaseFraction> present = thermo.GetPhaseFractions(copy.Get());
  std::erase_if(present, [](const PhaseFraction& phase) { return !(phase.fraction > 0); });
  return present;
}

void TrialMaterial::SetSinglePhase(const StreamState& state, const PhaseLabel& phase) {
  thermo.SetSinglePhase(Material(), state, phase.HostName());
}

void TrialMaterial::ReadFractions(const PhaseLabel& phase, Basis basis, std::vector<double>& fractions,
                                  LazyText opening) {
  const auto explain = [&](const std::string& why) { return Failure(opening() + why); };
  const com::Variant values = WithPrefix(opening, [&] {
    return thermo.GetProp(Material(), {names::kFraction, phase.HostName(), {}, NameOf(basis)}, com::kNoValue);
  });
  material::ReadOr([&] { com::ReadDoubles(values.Get(), fractions); }, explain);
  if (fractions.size() != count) throw explain(std::to_string(count) + " values expected");
  for (const double fraction : fractions)
    if (!std::isfinite(fraction) || IsMissing(fraction)) throw explain("value is not set");
}

double TrialMaterial::PhaseProperty(const Property& which, const PhaseLabel& phase, Basis basis, LazyText opening,
                                    LazyText invalid) {
  const material::Answer answer = WithPrefix(opening, [&] {
    return thermo.GetPropertyNoDup(Material(), {which, phase.HostName(), names::kMixture, NameOf(basis)});
  });
  const auto explain = [&](const std::string& why) { return Failure(invalid() + why); };
  const double value = answer.Number() ? *answer.Number() : material::ReadScalar(answer.Hosts(), explain);
  if (!std::isfinite(value)) throw explain("value is infinite");
  return value;
}

}  // namespace morvelan
