#include "host/material/MaterialRoutines11.h"

#include <numeric>

#include "com/Text.h"
#include "host/objects/Arguments.h"

namespace morvelan::host {
namespace {

constexpr const char* kPropertyRoutine = "ICapeThermoPropertyRoutine";
constexpr const char* kEquilibriumRoutine = "ICapeThermoEquilibriumRoutine";

// The flags of CalcAndGetLnPhi.
constexpr LONG kWantLnPhi = 1;
constexpr LONG kWantByTemperature = 2;
constexpr LONG kWantByPressure = 4;
constexpr LONG kWantByMoles = 8;

void RequireOrdinarySolution(BSTR solutionType) {
  const std::string text = com::ToUtf8(solutionType);
  for (const char* known : {"", "Unspecified", "Normal", "UNDEFINED"})
    if (com::EqualNoCase(text, known)) return;
  if (com::EqualNoCase(text, "Retrograde"))
    throw HostError(kECapeLimitedImpl, "retrograde solutions are not looked for");
  throw HostError(kECapeInvalidArgument, "solution type \"" + text + "\" is unknown");
}

/// False when the operation that `check` stands for is not implemented.
bool IsPossible(auto&& check) {
  try {
    check();
    return true;
  } catch (const HostError& error) {
    if (error.code == kECapeLimitedImpl) return false;
    throw;
  }
}

}  // namespace

HRESULT MaterialRoutines11::CalcAndGetLnPhi(BSTR phase, double T, double P, VARIANT moleNumbers, LONG flags,
                                            VARIANT* lnPhi, VARIANT* lnPhiDT, VARIANT* lnPhiDP, VARIANT* lnPhiDn) {
  if (!lnPhi || !lnPhiDT || !lnPhiDP || !lnPhiDn) return E_POINTER;
  return Guard("CalcAndGetLnPhi", kPropertyRoutine, [&] {
    const PhaseKind kind = PhaseByName(phase);
    std::vector<double> x = ReadNumbers(moleNumbers);
    const double total = std::accumulate(x.begin(), x.end(), 0.0);
    if (x.size() != Package().CompoundCount() || !(total > 0))
      throw HostError(kECapeInvalidArgument, "mole numbers must be given for all compounds");
    for (double& fraction : x) fraction /= total;
    com::Variant values, byT, byP, byMoles;
    if (flags & kWantLnPhi) values = com::MakeDoubles(Package().LnPhi(kind, T, P, x));
    if (flags & (kWantByTemperature | kWantByPressure | kWantByMoles)) {
      PhaseDerivatives derivatives = Package().Derivatives(kind, T, P, x);
      for (double& value : derivatives.lnPhiDn) value /= total;
      if (flags & kWantByTemperature) byT = com::MakeDoubles(derivatives.lnPhiDT);
      if (flags & kWantByPressure) byP = com::MakeDoubles(derivatives.lnPhiDP);
      if (flags & kWantByMoles) byMoles = com::MakeDoubles(derivatives.lnPhiDn);
    }
    Replace(lnPhi, std::move(values));
    Replace(lnPhiDT, std::move(byT));
    Replace(lnPhiDP, std::move(byP));
    Replace(lnPhiDn, std::move(byMoles));
  });
}

HRESULT MaterialRoutines11::CalcSinglePhaseProp(VARIANT names, BSTR phase) {
  return Guard("CalcSinglePhaseProp", kPropertyRoutine,
               [&] { state.CalculatePhase(PhaseByName(phase), ReadProperties(names), false); });
}

HRESULT MaterialRoutines11::CalcTwoPhaseProp(VARIANT, VARIANT) {
  return Refuse("CalcTwoPhaseProp", kPropertyRoutine, kECapeLimitedImpl, "properties of two phases are not calculated");
}

HRESULT MaterialRoutines11::CheckSinglePhasePropSpec(BSTR name, BSTR phase, VARIANT_BOOL* possible) {
  if (!possible) return E_POINTER;
  *possible = VARIANT_FALSE;
  return Guard("CheckSinglePhasePropSpec", kPropertyRoutine, [&] {
    (void)PhaseByName(phase);
    *possible = com::ToVariantBool(IsCalculated(PropertyByName(com::ToUtf8(name))));
  });
}

HRESULT MaterialRoutines11::CheckTwoPhasePropSpec(BSTR, VARIANT, VARIANT_BOOL* possible) {
  return ReturnValue(possible, VARIANT_FALSE);
}

HRESULT MaterialRoutines11::GetSinglePhasePropList(VARIANT* names) {
  return Answer("GetSinglePhasePropList", kPropertyRoutine, names, [&] { return CalculatedProperties(); });
}

HRESULT MaterialRoutines11::GetTwoPhasePropList(VARIANT* names) {
  return Answer("GetTwoPhasePropList", kPropertyRoutine, names,
                [] { return com::MakeStrings(std::vector<std::string>()); });
}

FlashCondition MaterialRoutines11::ReadCondition(const VARIANT& specification) const {
  const std::vector<std::string> texts = ReadNames(specification);
  if (texts.size() < 3 || texts.size() > 4)
    throw HostError(kECapeInvalidArgument, "a flash specification is an array of property, basis and phase; " +
                                               std::to_string(texts.size()) + " elements given");
  const PropertyId id = PropertyByName(texts[0]);
  if (id.property != Property::kPhaseFraction) {
    if (!com::EqualNoCase(texts[2], "Overall") || id.derivative != Derivative::kNone)
      throw HostError(kECapeLimitedImpl, "a flash specification of property " + texts[0] + " of phase \"" + texts[2] +
                                             "\" is not implemented");
    return {id.property};
  }
  if (com::EqualNoCase(texts[1], "Mass"))
    throw HostError(kECapeLimitedImpl, "a phaseFraction is a flash specification on basis \"Mole\" only");
  return {id.property, PhaseByName(texts[2])};
}

HRESULT MaterialRoutines11::CalcEquilibrium(VARIANT specification1, VARIANT specification2, BSTR solutionType) {
  return Guard("CalcEquilibrium", kEquilibriumRoutine, [&] {
    RequireOrdinarySolution(solutionType);
    state.Flash(ReadCondition(specification1), ReadCondition(specification2));
  });
}

HRESULT MaterialRoutines11::CheckEquilibriumSpec(VARIANT specification1, VARIANT specification2, BSTR solutionType,
                                                 VARIANT_BOOL* possible) {
  if (!possible) return E_POINTER;
  *possible = VARIANT_FALSE;
  return Guard("CheckEquilibriumSpec", kEquilibriumRoutine, [&] {
    *possible = com::ToVariantBool(IsPossible([&] {
      RequireOrdinarySolution(solutionType);
      (void)OrderConditions(ReadCondition(specification1), ReadCondition(specification2));
    }));
  });
}

}  // namespace morvelan::host
