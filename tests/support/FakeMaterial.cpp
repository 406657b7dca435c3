#include "tests/support/FakeMaterial.h"

#include <algorithm>

namespace morvelan::test {
namespace {

constexpr HRESULT kNotAvailable = static_cast<HRESULT>(0x8004051Au);

std::string Lower(com::Name name) {
  std::string text = com::ToUtf8(name);
  std::ranges::transform(text, text.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

/// The first text of an array of texts.
std::string First(const VARIANT& texts) { return com::ReadStrings(texts).at(0); }

}  // namespace

FakeMaterial::FakeMaterial(std::shared_ptr<HostScript> hostScript, FakeState initial)
    : Implements(std::move(hostScript), "stream"), state(std::move(initial)) {}

void* FakeMaterial::FindInterface(REFIID iid) {
  if (iid == __uuidof(ICapeThermoMaterialObject) && !state.thermo10) return nullptr;
  if (iid == __uuidof(ICapeThermoMaterial) && !state.thermo11) return nullptr;
  if (Refuses<ICapeThermoMaterialObject>(iid, "QueryInterface ICapeThermoMaterialObject") ||
      Refuses<ICapeThermoMaterial>(iid, "QueryInterface ICapeThermoMaterial") ||
      Refuses<ICapeThermoPropertyRoutine>(iid, "QueryInterface ICapeThermoPropertyRoutine") ||
      Refuses<ICapeThermoEquilibriumRoutine>(iid, "QueryInterface ICapeThermoEquilibriumRoutine") ||
      Refuses<ICapeThermoCompounds>(iid, "QueryInterface ICapeThermoCompounds") ||
      Refuses<ICapeThermoPhases>(iid, "QueryInterface ICapeThermoPhases"))
    return nullptr;
  return Implements::FindInterface(iid);
}

HRESULT FakeMaterial::Read(com::Name property, com::Name phase, com::Name basis, VARIANT* values) {
  const std::string name = Lower(property);
  const auto give = [&](double value) { return script->Answer(com::MakeDoubles(std::array{value}), values); };
  if (name == "temperature") return give(state.temperature);
  if (name == "pressure") return give(state.pressure);
  if (name == "totalflow") return give(state.flow);
  if (name == "fraction") return script->Answer(com::MakeDoubles(state.fractions), values);
  double overall = 0;
  for (const FakePhase& candidate : state.phases) {
    const auto found = candidate.properties.find(name);
    const double value = name == "phasefraction"               ? candidate.fraction
                         : found == candidate.properties.end() ? 0
                                                               : found->second;
    if (Lower(phase) != "overall" && com::EqualNoCase(candidate.label, com::ToUtf8(phase)))
      return give(value);
    overall += candidate.fraction * value;
  }
  if (Lower(phase) != "overall" || Lower(basis) != "mole") return kNotAvailable;
  return give(overall);
}

HRESULT FakeMaterial::Write(const char* what, com::Name property, const VARIANT& values) {
  const HRESULT hr = script->Call(what, property);
  if (FAILED(hr)) return hr;
  const std::vector<double> numbers = com::ReadDoubles(values);
  if (property == com::Name(com::ToBstr("Fraction"))) {
    state.fractions = numbers;
  } else {
    const std::string name = Lower(property);
    if (name == "temperature") state.temperature = numbers.at(0);
    if (name == "pressure") state.pressure = numbers.at(0);
    if (name == "totalflow") state.flow = numbers.at(0);
  }
  if (script->recording) state.written[com::ToUtf8(property)] = numbers;
  return S_OK;
}

HRESULT FakeMaterial::Constant(const char* what, const VARIANT& props, VARIANT* values) {
  const std::string property = First(props);
  const HRESULT hr = script->Call(what, com::Name(com::ToBstr(property)));
  if (FAILED(hr)) return hr;
  const bool isCas = com::EqualNoCase(property, "casRegistryNumber");
  if (!isCas && !com::EqualNoCase(property, "molecularWeight")) return kNotAvailable;
  std::vector<com::Variant> variants;
  for (std::size_t i = 0; i < state.compounds.size(); ++i)
    variants.push_back(isCas ? com::MakeString(state.casNumbers[i])
                             : com::MakeDouble(state.molecularWeights[i]));
  return script->Answer(com::MakeVariants(variants), values);
}

HRESULT FakeMaterial::Labels(bool withOverall, VARIANT* labels) {
  std::vector<std::string> texts;
  if (withOverall) texts.emplace_back("Overall");
  for (const FakePhase& phase : state.phases) texts.push_back(phase.label);
  return script->Answer(com::MakeStrings(texts), labels);
}

HRESULT FakeMaterial::Copy(const char* what, IDispatch** copy) {
  const HRESULT hr = script->Call(what);
  if (FAILED(hr)) return hr;
  *copy = static_cast<ICapeThermoMaterialObject*>(com::Make<FakeMaterial>(script, state).Detach());
  return S_OK;
}

HRESULT FakeMaterial::get_ComponentIds(VARIANT* ids) {
  const HRESULT hr = script->Call("ComponentIds");
  return FAILED(hr) ? hr : script->Answer(com::MakeStrings(state.compounds), ids);
}

HRESULT FakeMaterial::get_PhaseIds(VARIANT* ids) {
  const HRESULT hr = script->Call("PhaseIds");
  return FAILED(hr) ? hr : Labels(true, ids);
}

HRESULT FakeMaterial::GetComponentConstant(VARIANT props, VARIANT, VARIANT* values) {
  return Constant("GetComponentConstant", props, values);
}

HRESULT FakeMaterial::CalcProp(VARIANT, VARIANT phases, BSTR) {
  const std::string phase = First(phases);
  const HRESULT hr = script->Call("CalcProp", com::Name(com::ToBstr(phase)));
  if (FAILED(hr)) return hr;
  return com::EqualNoCase(phase, "overall") && !state.calculatesOverall ? E_NOTIMPL : S_OK;
}

HRESULT FakeMaterial::GetProp(BSTR property, BSTR phase, VARIANT, BSTR, BSTR basis, VARIANT* values) {
  const HRESULT hr = script->Call("GetProp", com::Name(property));
  return FAILED(hr) ? hr : Read(com::Name(property), com::Name(phase), com::Name(basis), values);
}

HRESULT FakeMaterial::SetProp(BSTR property, BSTR, VARIANT, BSTR, BSTR, VARIANT values) {
  return Write("SetProp", com::Name(property), values);
}

HRESULT FakeMaterial::CalcEquilibrium(BSTR flashType, VARIANT) {
  const HRESULT hr = script->Call("CalcEquilibrium");
  if (script->recording) state.flash = com::ToUtf8(flashType);
  return hr;
}

HRESULT FakeMaterial::Duplicate(IDispatch** copy) { return Copy("Duplicate", copy); }

HRESULT FakeMaterial::GetPropList(VARIANT* list) {
  const HRESULT hr = script->Call("GetPropList");
  return FAILED(hr) ? hr
                    : script->Answer(com::MakeStrings(std::vector<std::string>{"enthalpy", "volume"}), list);
}

HRESULT FakeMaterial::CopyFromMaterial(IDispatch** source) {
  const HRESULT hr = script->Call("CopyFromMaterial");
  if (FAILED(hr)) return hr;
  return source && *source ? S_OK : E_POINTER;  // CreateMaterial has copied already
}

HRESULT FakeMaterial::CreateMaterial(IDispatch** created) { return Copy("CreateMaterial", created); }

HRESULT FakeMaterial::GetOverallProp(BSTR property, BSTR basis, VARIANT* values) {
  const HRESULT hr = script->Call("GetOverallProp", com::Name(property));
  if (FAILED(hr)) return hr;
  static const com::Name overall = com::KeepName("Overall");
  return Read(com::Name(property), overall, com::Name(basis), values);
}

HRESULT FakeMaterial::GetPresentPhases(VARIANT* labels, VARIANT* statuses) {
  const HRESULT hr = script->Call("GetPresentPhases");
  if (FAILED(hr)) return hr;
  const std::vector<std::int32_t> atEquilibrium(state.phases.size(), CAPE_ATEQUILIBRIUM);
  VariantClear(statuses);
  *statuses = com::MakeIntegers(atEquilibrium).Detach();
  return Labels(false, labels);
}

HRESULT FakeMaterial::GetSinglePhaseProp(BSTR property, BSTR phase, BSTR basis, VARIANT* values) {
  const HRESULT hr = script->Call("GetSinglePhaseProp", com::Name(property));
  return FAILED(hr) ? hr : Read(com::Name(property), com::Name(phase), com::Name(basis), values);
}

HRESULT FakeMaterial::SetOverallProp(BSTR property, BSTR, VARIANT values) {
  return Write("SetOverallProp", com::Name(property), values);
}

HRESULT FakeMaterial::SetPresentPhases(VARIANT labels, VARIANT statuses) {
  const HRESULT hr = script->Call("SetPresentPhases");
  if (FAILED(hr)) return hr;
  const auto flags = com::ReadIntegers(statuses);
  const bool allUnknown =
      std::ranges::all_of(flags, [](int flag) { return flag == CAPE_UNKNOWNPHASESTATUS; });
  return com::CountStrings(labels) == flags.size() && allUnknown ? S_OK : E_INVALIDARG;
}

HRESULT FakeMaterial::SetSinglePhaseProp(BSTR property, BSTR, BSTR, VARIANT values) {
  return Write("SetSinglePhaseProp", com::Name(property), values);
}

HRESULT FakeMaterial::CalcSinglePhaseProp(VARIANT, BSTR phase) {
  return script->Call("CalcSinglePhaseProp", com::Name(phase));
}

HRESULT FakeMaterial::GetSinglePhasePropList(VARIANT* list) {
  const HRESULT hr = script->Call("GetSinglePhasePropList");
  return FAILED(hr) ? hr
                    : script->Answer(com::MakeStrings(std::vector<std::string>{"enthalpy", "volume"}), list);
}

HRESULT FakeMaterial::CalcEquilibrium(VARIANT first, VARIANT second, BSTR solutionType) {
  const HRESULT hr = script->Call("CalcEquilibrium");
  if (!script->recording) return hr;
  const auto describe = [](const VARIANT& specification) {
    const auto texts = com::ReadStrings(specification);
    return texts.at(0) + "/" + texts.at(1) + "/" + texts.at(2);
  };
  state.flash = describe(first) + ", " + describe(second) + ", " + com::ToUtf8(solutionType);
  return hr;
}

HRESULT FakeMaterial::GetCompoundConstant(VARIANT props, VARIANT, VARIANT* values) {
  return Constant("GetCompoundConstant", props, values);
}

HRESULT FakeMaterial::GetCompoundList(VARIANT* ids, VARIANT* formulae, VARIANT* names,
                                      VARIANT* boilingTemperatures, VARIANT* molecularWeights,
                                      VARIANT* casNumbers) {
  const HRESULT hr = script->Call("GetCompoundList");
  if (FAILED(hr)) return hr;
  const auto give = [](com::Variant value, VARIANT* result) {
    VariantClear(result);
    *result = value.Detach();
  };
  give(com::MakeStrings(state.compounds), formulae);
  give(com::MakeStrings(state.compounds), names);
  give(com::MakeDoubles(state.molecularWeights), boilingTemperatures);
  give(com::MakeDoubles(state.molecularWeights), molecularWeights);
  give(com::MakeStrings(state.casNumbers), casNumbers);
  return script->Answer(com::MakeStrings(state.compounds), ids);
}

HRESULT FakeMaterial::GetPhaseList(VARIANT* labels, VARIANT* aggregation, VARIANT*) {
  const HRESULT hr = script->Call("GetPhaseList");
  if (FAILED(hr)) return hr;
  std::vector<std::string> states;
  for (const FakePhase& phase : state.phases) states.push_back(phase.aggregation);
  VariantClear(aggregation);
  *aggregation = com::MakeStrings(states).Detach();
  return Labels(false, labels);
}

}  // namespace morvelan::test
