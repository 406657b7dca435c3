#include "tests/support/FakeMaterial.h"

#include <algorithm>
#include <numeric>

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
    const double value = ValueIn(candidate, name);
    if (Lower(phase) != "overall" && com::EqualNoCase(candidate.label, com::ToUtf8(phase)))
      return give(value);
    overall += candidate.fraction * value;
  }
  if (Lower(phase) != "overall" || Lower(basis) != "mole") return kNotAvailable;
  return give(overall);
}

double FakeMaterial::ValueIn(const FakePhase& phase, const std::string& property) const {
  if (property == "phasefraction") return phase.fraction;
  if (property == "enthalpy" && state.heatCapacity != 0) return state.heatCapacity * state.temperature;
  if (property == "enthalpyf" && state.heatCapacity != 0)
    return state.heatCapacity * state.temperature + FormationEnthalpy();
  const auto found = phase.properties.find(property);
  return found == phase.properties.end() ? 0 : found->second;
}

double FakeMaterial::FormationEnthalpy() const {
  const auto& heats = state.formationEnthalpies;
  if (heats.size() != state.fractions.size()) return 0;
  return std::inner_product(heats.begin(), heats.end(), state.fractions.begin(), 0.0);
}

void FakeMaterial::Flash(std::string specifications, const char* given) {
  state.flash = std::move(specifications);
  if (!given || state.heatCapacity == 0) return;
  const double formation = given == std::string("enthalpyF") ? FormationEnthalpy() : 0;
  state.temperature = (state.written.at(given).at(0) - formation) / state.heatCapacity;
}

HRESULT FakeMaterial::Write(com::Name property, const VARIANT& values) {
  const std::vector<double> numbers = com::ReadDoubles(values);
  const std::string name = Lower(property);
  if (name == "fraction") state.fractions = numbers;
  if (name == "temperature") state.temperature = numbers.at(0);
  if (name == "pressure") state.pressure = numbers.at(0);
  if (name == "totalflow") state.flow = numbers.at(0);
  if (script->recording) state.written[com::ToUtf8(property)] = numbers;
  return S_OK;
}

HRESULT FakeMaterial::Constant(const char* what, const VARIANT& props, const VARIANT& ids, VARIANT* values) {
  const std::string property = First(props);
  const HRESULT hr = script->Call(what, com::Name(com::ToBstr(property)), {ids});
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

HRESULT FakeMaterial::get_ComponentIds(VARIANT* ids) {
  const HRESULT hr = script->Call("ComponentIds");
  return FAILED(hr) ? hr : script->Answer(com::MakeStrings(state.compounds), ids);
}

HRESULT FakeMaterial::get_PhaseIds(VARIANT* ids) {
  const HRESULT hr = script->Call("PhaseIds");
  return FAILED(hr) ? hr : Labels(true, ids);
}

HRESULT FakeMaterial::GetComponentConstant(VARIANT props, VARIANT ids, VARIANT* values) {
  return Constant("GetComponentConstant", props, ids, values);
}

HRESULT FakeMaterial::CalcProp(VARIANT props, VARIANT phases, BSTR calcType) {
  const std::string phase = First(phases);
  const HRESULT hr = script->Call("CalcProp", com::Name(com::ToBstr(phase)), {props, phases, calcType});
  if (FAILED(hr)) return hr;
  return com::EqualNoCase(phase, "overall") && !state.calculatesOverall ? E_NOTIMPL : S_OK;
}

HRESULT FakeMaterial::GetProp(BSTR property, BSTR phase, VARIANT ids, BSTR calcType, BSTR basis,
                              VARIANT* values) {
  const HRESULT hr = script->Call("GetProp", com::Name(property), {phase, ids, calcType, basis});
  return FAILED(hr) ? hr : Read(com::Name(property), com::Name(phase), com::Name(basis), values);
}

HRESULT FakeMaterial::SetProp(BSTR property, BSTR phase, VARIANT ids, BSTR calcType, BSTR basis,
                              VARIANT values) {
  const HRESULT hr = script->Call("SetProp", com::Name(property), {phase, ids, calcType, basis, values});
  return FAILED(hr) ? hr : Write(com::Name(property), values);
}

HRESULT FakeMaterial::CalcEquilibrium(BSTR flashType, VARIANT props) {
  const HRESULT hr = script->Call("CalcEquilibrium", {}, {flashType, props});
  const std::string type = com::ToUtf8(flashType);
  const char* given = type == "PH" ? "enthalpy" : type == "PHF" ? "enthalpyF" : nullptr;
  if (script->recording) Flash(type, SUCCEEDED(hr) ? given : nullptr);
  return hr;
}

HRESULT FakeMaterial::Duplicate(IDispatch** copy) {
  const HRESULT hr = script->Call("Duplicate");
  if (FAILED(hr) || state.givesNoCopy) return hr;
  *copy = static_cast<ICapeThermoMaterialObject*>(com::Make<FakeMaterial>(script, state).Detach());
  return S_OK;
}

HRESULT FakeMaterial::GetPropList(VARIANT* list) {
  const HRESULT hr = script->Call("GetPropList");
  return FAILED(hr) ? hr
                    : script->Answer(com::MakeStrings(std::vector<std::string>{"enthalpy", "volume"}), list);
}

HRESULT FakeMaterial::CopyFromMaterial(IDispatch** source) {
  const HRESULT hr = script->Call("CopyFromMaterial");
  if (FAILED(hr)) return hr;
  const auto* original = source ? dynamic_cast<const FakeMaterial*>(*source) : nullptr;
  if (!original) return E_INVALIDARG;
  state = original->state;
  return S_OK;
}

HRESULT FakeMaterial::CreateMaterial(IDispatch** created) {
  const HRESULT hr = script->Call("CreateMaterial");
  if (FAILED(hr) || state.givesNoCopy) return hr;
  const FakeState blank{
      .flow = 0, .fractions = {}, .compounds = {}, .casNumbers = {}, .molecularWeights = {}, .phases = {}};
  *created = static_cast<ICapeThermoMaterialObject*>(com::Make<FakeMaterial>(script, blank).Detach());
  return S_OK;
}

HRESULT FakeMaterial::GetOverallProp(BSTR property, BSTR basis, VARIANT* values) {
  const HRESULT hr = script->Call("GetOverallProp", com::Name(property), {basis});
  if (FAILED(hr)) return hr;
  static const com::Name overall = com::KeepName("Overall");
  return Read(com::Name(property), overall, com::Name(basis), values);
}

HRESULT FakeMaterial::GetPresentPhases(VARIANT* labels, VARIANT* statuses) {
  const HRESULT hr = script->Call("GetPresentPhases");
  if (FAILED(hr)) return hr;
  const std::vector<std::int32_t> atEquilibrium(state.phases.size(), CAPE_ATEQUILIBRIUM);
  VariantClear(statuses);
  *statuses = com::MakeIntegers(state.statuses.empty() ? atEquilibrium : state.statuses).Detach();
  return Labels(false, labels);
}

HRESULT FakeMaterial::GetSinglePhaseProp(BSTR property, BSTR phase, BSTR basis, VARIANT* values) {
  const HRESULT hr = script->Call("GetSinglePhaseProp", com::Name(property), {phase, basis});
  return FAILED(hr) ? hr : Read(com::Name(property), com::Name(phase), com::Name(basis), values);
}

HRESULT FakeMaterial::SetOverallProp(BSTR property, BSTR basis, VARIANT values) {
  const HRESULT hr = script->Call("SetOverallProp", com::Name(property), {basis, values});
  return FAILED(hr) ? hr : Write(com::Name(property), values);
}

HRESULT FakeMaterial::SetPresentPhases(VARIANT labels, VARIANT statuses) {
  return script->Call("SetPresentPhases", {}, {labels, statuses});
}

HRESULT FakeMaterial::SetSinglePhaseProp(BSTR property, BSTR phase, BSTR basis, VARIANT values) {
  const HRESULT hr = script->Call("SetSinglePhaseProp", com::Name(property), {phase, basis, values});
  return FAILED(hr) ? hr : Write(com::Name(property), values);
}

HRESULT FakeMaterial::CalcSinglePhaseProp(VARIANT props, BSTR phase) {
  return script->Call("CalcSinglePhaseProp", com::Name(phase), {props});
}

HRESULT FakeMaterial::GetSinglePhasePropList(VARIANT* list) {
  const HRESULT hr = script->Call("GetSinglePhasePropList");
  return FAILED(hr) ? hr
                    : script->Answer(com::MakeStrings(std::vector<std::string>{"enthalpy", "volume"}), list);
}

HRESULT FakeMaterial::CalcEquilibrium(VARIANT first, VARIANT second, BSTR solutionType) {
  const HRESULT hr = script->Call("CalcEquilibrium", {}, {first, second, solutionType});
  if (!script->recording) return hr;
  const auto describe = [](const VARIANT& specification) {
    const auto texts = com::ReadStrings(specification);
    return texts.at(0) + "/" + texts.at(1) + "/" + texts.at(2);
  };
  const char* given = describe(second) == "enthalpy//Overall"    ? "enthalpy"
                      : describe(second) == "enthalpyF//Overall" ? "enthalpyF"
                                                                 : nullptr;
  Flash(describe(first) + ", " + describe(second) + ", " + com::ToUtf8(solutionType),
        SUCCEEDED(hr) ? given : nullptr);
  return hr;
}

HRESULT FakeMaterial::GetCompoundConstant(VARIANT props, VARIANT ids, VARIANT* values) {
  return Constant("GetCompoundConstant", props, ids, values);
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
