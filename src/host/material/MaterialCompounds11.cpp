#include "host/material/MaterialCompounds11.h"

#include <limits>

#include "com/Text.h"
#include "host/file/Nearest.h"
#include "host/material/CompoundConstants.h"

namespace morvelan::host {
namespace {

constexpr const char* kCompoundRoutine = "ICapeThermoCompounds";
constexpr const char* kPhaseRoutine = "ICapeThermoPhases";
constexpr const char* kUniversalConstantRoutine = "ICapeThermoUniversalConstant";

com::Variant NoNames() { return com::MakeStrings(std::vector<std::string>()); }

}  // namespace

HRESULT MaterialCompounds11::GetCompoundConstant(VARIANT names, VARIANT compounds, VARIANT* values) {
  return Answer("GetCompoundConstant", kCompoundRoutine, values, [&] { return Constants(names, compounds); });
}

HRESULT MaterialCompounds11::GetCompoundList(VARIANT* ids, VARIANT* formulae, VARIANT* names,
                                             VARIANT* boilingTemperatures, VARIANT* molecularWeights,
                                             VARIANT* casNumbers) {
  if (!ids || !formulae || !names || !boilingTemperatures || !molecularWeights || !casNumbers) return E_POINTER;
  return Guard("GetCompoundList", kCompoundRoutine, [&] {
    std::vector<std::string> formulaTexts, casTexts;
    std::vector<double> temperatures, weights;
    for (std::size_t i = 0; i < Package().CompoundCount(); ++i) {
      const Compound& compound = Package().CompoundAt(i);
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

HRESULT MaterialCompounds11::GetConstPropList(VARIANT* names) {
  return Answer("GetConstPropList", kCompoundRoutine, names, [] { return com::MakeStrings(CompoundConstantNames()); });
}

HRESULT MaterialCompounds11::GetPDependentProperty(VARIANT, double, VARIANT, VARIANT* values) {
  if (!values) return E_POINTER;
  return Refuse("GetPDependentProperty", kCompoundRoutine, kECapeLimitedImpl,
                "pressure-dependent properties of compounds are not available");
}

HRESULT MaterialCompounds11::GetPDependentPropList(VARIANT* names) {
  return Answer("GetPDependentPropList", kCompoundRoutine, names, NoNames);
}

HRESULT MaterialCompounds11::GetTDependentProperty(VARIANT, double, VARIANT, VARIANT* values) {
  if (!values) return E_POINTER;
  return Refuse("GetTDependentProperty", kCompoundRoutine, kECapeLimitedImpl,
                "temperature-dependent properties of compounds are not available");
}

HRESULT MaterialCompounds11::GetTDependentPropList(VARIANT* names) {
  return Answer("GetTDependentPropList", kCompoundRoutine, names, NoNames);
}

HRESULT MaterialCompounds11::GetPhaseInfo(BSTR phase, BSTR attribute, VARIANT* value) {
  return Answer("GetPhaseInfo", kPhaseRoutine, value, [&] {
    const PhaseKind kind = PhaseByName(phase);
    const std::string name = com::ToUtf8(attribute);
    if (com::EqualNoCase(name, "StateOfAggregation")) return com::MakeString(PhaseName(kind));
    if (com::EqualNoCase(name, "KeyCompoundId") || com::EqualNoCase(name, "ExcludedCompoundId"))
      return com::MakeString("UNDEFINED");
    throw HostError(kECapeInvalidArgument, "phase attribute \"" + name + "\" is unknown");
  });
}

HRESULT MaterialCompounds11::GetPhaseList(VARIANT* labels, VARIANT* states, VARIANT* keyCompounds) {
  if (!labels || !states || !keyCompounds) return E_POINTER;
  return Guard("GetPhaseList", kPhaseRoutine, [&] {
    const std::vector<std::string> names = NamesOf(state.SupportedPhases(), PhaseName);
    com::Variant labelArray = com::MakeStrings(names);
    com::Variant stateArray = com::MakeStrings(names);  // each label is the name of its state
    Replace(keyCompounds, com::MakeStrings(std::vector<std::string>(names.size(), "UNDEFINED")));
    Replace(labels, std::move(labelArray));
    Replace(states, std::move(stateArray));
  });
}

HRESULT MaterialCompounds11::GetUniversalConstant(BSTR name, VARIANT* value) {
  return Answer("GetUniversalConstant", kUniversalConstantRoutine, value,
                [&] { return com::MakeDouble(UniversalConstant(com::ToUtf8(name))); });
}

HRESULT MaterialCompounds11::GetUniversalConstantList(VARIANT* names) {
  return Answer("GetUniversalConstantList", kUniversalConstantRoutine, names,
                [] { return com::MakeStrings(UniversalConstantNames()); });
}

}  // namespace morvelan::host
