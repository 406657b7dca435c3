// The thermo 1.1 face of a material: calculations and compounds.

#include <cmath>
#include <limits>
#include <numeric>

#include "com/Text.h"
#include "host/material/CompoundConstants.h"
#include "host/material/MaterialObject.h"

namespace morvelan::host {
namespace {

constexpr const char* kRoutine = "ICapeThermoPropertyRoutine";
constexpr const char* kEquilibrium = "ICapeThermoEquilibriumRoutine";
constexpr const char* kCompounds = "ICapeThermoCompounds";
constexpr const char* kConstants = "ICapeThermoUniversalConstant";

// What CalcAndGetLnPhi is asked for.
constexpr LONG kValues = 1;
constexpr LONG kByTemperature = 2;
constexpr LONG kByPressure = 4;
constexpr LONG kByMoles = 8;

com::Variant NoNames() { return com::MakeStrings(std::vector<std::string>()); }

void RequireOrdinarySolution(BSTR solutionType) {
  const std::string text = com::ToUtf8(solutionType);
  for (const char* known : {"", "Unspecified", "Normal", "UNDEFINED"})
    if (com::EqualNoCase(text, known)) return;
  if (com::EqualNoCase(text, "Retrograde"))
    throw HostError(kECapeLimitedImpl, "retrograde solutions are not looked for");
  throw HostError(kECapeInvalidArgument, "solution type \"" + text + "\" is unknown");
}

/// `CheckX` answers no where `X` would be refused.
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

HRESULT MaterialObject::CalcAndGetLnPhi(BSTR phase, double T, double P, VARIANT moleNumbers, LONG flags, VARIANT* lnPhi,
                                        VARIANT* lnPhiDT, VARIANT* lnPhiDP, VARIANT* lnPhiDn) {
  if (!lnPhi || !lnPhiDT || !lnPhiDP || !lnPhiDn) return E_POINTER;
  return Guard("CalcAndGetLnPhi", kRoutine, [&] {
    const PhaseKind kind = PhaseByName(phase);
    std::vector<double> x = ReadNumbers(moleNumbers);
    const double total = std::accumulate(x.begin(), x.end(), 0.0);
    if (x.size() != state.Package().CompoundCount() || !(total > 0))
      throw HostError(kECapeInvalidArgument, "mole numbers must be given for all compounds");
    for (double& fraction : x) fraction /= total;
    com::Variant values, byT, byP, byMoles;
    if (flags & kValues) values = com::MakeDoubles(state.Package().LnPhi(kind, T, P, x));
    if (flags & (kByTemperature | kByPressure | kByMoles)) {
      PhaseDerivatives derivatives = state.Package().Derivatives(kind, T, P, x);
      for (double& value : derivatives.lnPhiDn) value /= total;
      if (flags & kByTemperature) byT = com::MakeDoubles(derivatives.lnPhiDT);
      if (flags & kByPressure) byP = com::MakeDoubles(derivatives.lnPhiDP);
      if (flags & kByMoles) byMoles = com::MakeDoubles(derivatives.lnPhiDn);
    }
    Replace(lnPhi, std::move(values));
    Replace(lnPhiDT, std::move(byT));
    Replace(lnPhiDP, std::move(byP));
    Replace(lnPhiDn, std::move(byMoles));
  });
}

HRESULT MaterialObject::CalcSinglePhaseProp(VARIANT names, BSTR phase) {
  return Guard("CalcSinglePhaseProp", kRoutine,
               [&] { state.CalculatePhase(PhaseByName(phase), ReadProperties(names), false); });
}

HRESULT MaterialObject::CalcTwoPhaseProp(VARIANT, VARIANT) {
  return Guard("CalcTwoPhaseProp", kRoutine,
               [] { throw HostError(kECapeLimitedImpl, "properties of two phases are not calculated"); });
}

HRESULT MaterialObject::CheckSinglePhasePropSpec(BSTR name, BSTR phase, VARIANT_BOOL* possible) {
  if (!possible) return E_POINTER;
  *possible = VARIANT_FALSE;
  return Guard("CheckSinglePhasePropSpec", kRoutine, [&] {
    (void)PhaseByName(phase);
    *possible = com::ToVariantBool(IsCalculated(PropertyByName(com::ToUtf8(name))));
  });
}

HRESULT MaterialObject::CheckTwoPhasePropSpec(BSTR, VARIANT, VARIANT_BOOL* possible) {
  if (!possible) return E_POINTER;
  *possible = VARIANT_FALSE;
  return S_OK;
}

HRESULT MaterialObject::GetSinglePhasePropList(VARIANT* names) {
  return Answer("GetSinglePhasePropList", kRoutine, names, [&] { return CalculatedProperties(); });
}

HRESULT MaterialObject::GetTwoPhasePropList(VARIANT* names) {
  return Answer("GetTwoPhasePropList", kRoutine, names, NoNames);
}

FlashCondition MaterialObject::ReadCondition(const VARIANT& specification) const {
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
  return {id.property, PhaseByName(com::ToBstr(texts[2]).Get())};
}

HRESULT MaterialObject::CalcEquilibrium(VARIANT specification1, VARIANT specification2, BSTR solutionType) {
  return Guard("CalcEquilibrium", kEquilibrium, [&] {
    RequireOrdinarySolution(solutionType);
    state.Flash(ReadCondition(specification1), ReadCondition(specification2));
  });
}

HRESULT MaterialObject::CheckEquilibriumSpec(VARIANT specification1, VARIANT specification2, BSTR solutionType,
                                             VARIANT_BOOL* possible) {
  if (!possible) return E_POINTER;
  *possible = VARIANT_FALSE;
  return Guard("CheckEquilibriumSpec", kEquilibrium, [&] {
    *possible = com::ToVariantBool(IsPossible([&] {
      RequireOrdinarySolution(solutionType);
      MaterialState::CheckConditions(ReadCondition(specification1), ReadCondition(specification2));
    }));
  });
}

HRESULT MaterialObject::GetCompoundConstant(VARIANT names, VARIANT compounds, VARIANT* values) {
  return Answer("GetCompoundConstant", kCompounds, values, [&] {
    return CompoundConstants(state.Package(), ReadNames(names),
                             CompoundPositions(state.Package(), ReadNames(compounds)));
  });
}

HRESULT MaterialObject::GetCompoundList(VARIANT* ids, VARIANT* formulae, VARIANT* names, VARIANT* boilingTemperatures,
                                        VARIANT* molecularWeights, VARIANT* casNumbers) {
  if (!ids || !formulae || !names || !boilingTemperatures || !molecularWeights || !casNumbers) return E_POINTER;
  return Guard("GetCompoundList", kCompounds, [&] {
    std::vector<std::string> formulaTexts, casTexts;
    std::vector<double> temperatures, weights;
    for (std::size_t i = 0; i < state.Package().CompoundCount(); ++i) {
      const Compound& compound = state.Package().CompoundAt(i);
      formulaTexts.push_back(compound.formula);
      casTexts.push_back(compound.cas);
      temperatures.push_back(compound.normalBoilingPoint.value_or(std::numeric_limits<double>::quiet_NaN()));
      weights.push_back(compound.molecularWeight);
    }
    Replace(ids, CompoundIds());
    Replace(formulae, com::MakeStrings(formulaTexts));
    Replace(names, CompoundIds());
    Replace(boilingTemperatures, com::MakeDoubles(temperatures));
    Replace(molecularWeights, com::MakeDoubles(weights));
    Replace(casNumbers, com::MakeStrings(casTexts));
  });
}

HRESULT MaterialObject::GetConstPropList(VARIANT* names) {
  return Answer("GetConstPropList", kCompounds, names, [] { return com::MakeStrings(CompoundConstantNames()); });
}

HRESULT MaterialObject::GetNumCompounds(LONG* count) { return GetNumComponents(count); }

HRESULT MaterialObject::GetPDependentProperty(VARIANT, double, VARIANT, VARIANT* values) {
  if (!values) return E_POINTER;
  return Guard("GetPDependentProperty", kCompounds, [] {
    throw HostError(kECapeLimitedImpl, "pressure-dependent properties of compounds are not available");
  });
}

HRESULT MaterialObject::GetPDependentPropList(VARIANT* names) {
  return Answer("GetPDependentPropList", kCompounds, names, NoNames);
}

HRESULT MaterialObject::GetTDependentProperty(VARIANT, double, VARIANT, VARIANT* values) {
  if (!values) return E_POINTER;
  return Guard("GetTDependentProperty", kCompounds, [] {
    throw HostError(kECapeLimitedImpl, "temperature-dependent properties of compounds are not available");
  });
}

HRESULT MaterialObject::GetTDependentPropList(VARIANT* names) {
  return Answer("GetTDependentPropList", kCompounds, names, NoNames);
}

HRESULT MaterialObject::GetUniversalConstant(BSTR name, VARIANT* value) {
  return Answer("GetUniversalConstant", kConstants, value,
                [&] { return com::MakeDouble(UniversalConstant(com::ToUtf8(name))); });
}

HRESULT MaterialObject::GetUniversalConstantList(VARIANT* names) {
  return Answer("GetUniversalConstantList", kConstants, names,
                [] { return com::MakeStrings(UniversalConstantNames()); });
}

}  // namespace morvelan::host
