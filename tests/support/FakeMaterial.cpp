#include "tests/support/FakeMaterial.h"

#include <algorithm>
#include <numeric>

namespace morvelan::test {
namespace {

constexpr HRESULT kNotAvailable = static_cast<HRESULT>(0x8004051Au);

std::string Lower(com::Name name) {
  std::string text = com::ToUtf8(name);
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

/// The first text of an array of texts.
std::string First(const VARIANT& texts) { return com::ReadStrings(texts).at(0); }

void Put(com::Variant value, VARIANT* result) {
  VariantClear(result);
  *result = value.Detach();
}

}  // namespace

FakeMaterial::FakeMaterial(std::shared_ptr<HostScript> hostScript, FakeState initial)
    : Implements(std::move(hostScript), "stream"), state(std::move(initial)) {}

void* FakeMaterial::FindInterface(REFIID iid) {
  if (Refuses<ICapeThermoMaterialObject>(iid, "QueryInterface ICapeThermoMaterialObject", state.thermo10) ||
      Refuses<ICapeThermoMaterial>(iid, "QueryInterface ICapeThermoMaterial", state.thermo11) ||
      Refuses<ICapeThermoPropertyRoutine>(iid, "QueryInterface ICapeThermoPropertyRoutine") ||
      Refuses<ICapeThermoEquilibriumRoutine>(iid, "QueryInterface ICapeThermoEquilibriumRoutine") ||
      Refuses<ICapeThermoCompounds>(iid, "QueryInterface ICapeThermoCompounds") ||
      Refuses<ICapeThermoPhases>(iid, "QueryInterface ICapeThermoPhases"))
    return nullptr;
  return Implements::FindInterface(iid);
}

FakeConditions FakeMaterial::ConditionsIn(const std::string& phase) const {
  for (const FakePhase& found : state.phases)
    if (com::EqualNoCase(found.label, phase))
      return {.temperature = found.temperature.value_or(state.temperature),
              .pressure = found.pressure.value_or(state.pressure),
              .fractions = found.fractions.empty() ? state.fractions : found.fractions};
  return {.temperature = state.temperature, .pressure = state.pressure, .fractions = state.fractions};
}

HRESULT FakeMaterial::Read(com::Name property, com::Name phase, com::Name basis, VARIANT* values) {
  const std::string name = Lower(property);
  const std::string where = com::ToUtf8(phase);
  const bool byMass = Lower(basis) == "mass";
  const auto give = [&](double value) { return script->Answer(com::MakeDoubles(std::array{value}), values); };
  if (name == "temperature") return give(state.temperature);
  if (name == "pressure") return give(state.pressure);
  if (name == "totalflow") return give(state.flow);
  if (name == "fraction") {
    std::vector<double> fractions = ConditionsIn(where).fractions;
    const double meanWeight = byMass ? MeanWeight(fractions) : 1;
    for (std::size_t i = 0; byMass && i < fractions.size(); ++i) fractions[i] *= state.molecularWeights[i] / meanWeight;
    return script->Answer(com::MakeDoubles(fractions), values);
  }
  double overall = 0;
  for (const std::string& present : PresentPhases()) {
    const auto candidate = std::ranges::find_if(
        state.phases, [&](const FakePhase& known) { return com::EqualNoCase(known.label, present); });
    if (candidate == state.phases.end()) continue;
    const double value = ValueIn(*candidate, name, byMass);
    if (Lower(phase) != "overall" && com::EqualNoCase(present, where)) return give(value);
    overall += candidate->fraction * value;
  }
  if (Lower(phase) != "overall" || Lower(basis) != "mole") return kNotAvailable;
  return give(overall);
}

double FakeMaterial::ValueIn(const FakePhase& phase, const std::string& property, bool byMass) const {
  const FakeConditions conditions = ConditionsIn(phase.label);
  if (property == "phasefraction") return phase.fraction;
  if (property == "enthalpy" && state.heatCapacity != 0) return state.heatCapacity * conditions.temperature;
  if (property == "enthalpyf" && state.heatCapacity != 0)
    return state.heatCapacity * conditions.temperature + FormationEnthalpy(conditions.fractions);
  const auto found = phase.properties.find(property);
  const double value = found == phase.properties.end() ? 0 : found->second;
  constexpr double kGramsPerKilogram = 1000;
  return property == "density" && byMass ? value * MeanWeight(conditions.fractions) / kGramsPerKilogram : value;
}

double FakeMaterial::MeanWeight(const std::vector<double>& fractions) const {
  return std::inner_product(fractions.begin(), fractions.end(), state.molecularWeights.begin(), 0.0);
}

double FakeMaterial::FormationEnthalpy(const std::vector<double>& fractions) const {
  const auto& heats = state.formationEnthalpies;
  if (heats.size() != fractions.size()) return 0;
  return std::inner_product(heats.begin(), heats.end(), fractions.begin(), 0.0);
}

void FakeMaterial::Flash(std::string specifications, const char* given) {
  state.flash = std::move(specifications);
  for (FakePhase& phase : state.phases) phase.temperature = phase.pressure = {}, phase.fractions = {};
  if (!given || state.heatCapacity == 0) return;
  const double formation = given == std::string("enthalpyF") ? FormationEnthalpy(state.fractions) : 0;
  state.temperature = (state.written.at(given).at(0) - formation) / state.heatCapacity;
}

HRESULT FakeMaterial::Write(com::Name property, com::Name phase, const VARIANT& values) {
  const std::vector<double> numbers = com::ReadDoubles(values);
  const std::string name = Lower(property);
  if (script->recording) state.written[com::ToUtf8(property)] = numbers;
  for (FakePhase& own : state.phases) {
    if (!com::EqualNoCase(own.label, com::ToUtf8(phase))) continue;
    if (name == "fraction") own.fractions = numbers;
    if (name == "temperature") own.temperature = numbers.at(0);
    if (name == "pressure") own.pressure = numbers.at(0);
    return S_OK;
  }
  if (name == "fraction") state.fractions = numbers;
  if (name == "temperature") state.temperature = numbers.at(0);
  if (name == "pressure") state.pressure = numbers.at(0);
  if (name == "totalflow") state.flow = numbers.at(0);
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
    variants.push_back(isCas ? com::MakeString(state.casNumbers[i]) : com::MakeDouble(state.molecularWeights[i]));
  return script->Answer(com::MakeVariants(variants), values);
}

std::vector<std::string> FakeMaterial::AllPhases() const {
  std::vector<std::string> labels;
  for (const FakePhase& phase : state.phases) labels.push_back(phase.label);
  return labels;
}

std::vector<std::string> FakeMaterial::PresentPhases() const {
  return state.present.empty() ? AllPhases() : state.present;
}

HRESULT FakeMaterial::get_ComponentIds(VARIANT* ids) {
  const HRESULT hr = script->Call("ComponentIds");
  return FAILED(hr) ? hr : script->Answer(com::MakeStrings(state.compounds), ids);
}

HRESULT FakeMaterial::get_PhaseIds(VARIANT* ids) {
  const HRESULT hr = script->Call("PhaseIds");
  if (FAILED(hr)) return hr;
  std::vector<std::string> labels = AllPhases();
  labels.insert(labels.begin(), "Overall");
  return script->Answer(com::MakeStrings(labels), ids);
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

HRESULT FakeMaterial::GetProp(BSTR property, BSTR phase, VARIANT ids, BSTR calcType, BSTR basis, VARIANT* values) {
  const HRESULT hr = script->Call("GetProp", com::Name(property), {phase, ids, calcType, basis});
  return FAILED(hr) ? hr : Read(com::Name(property), com::Name(phase), com::Name(basis), values);
}

HRESULT FakeMaterial::SetProp(BSTR property, BSTR phase, VARIANT ids, BSTR calcType, BSTR basis, VARIANT values) {
  const HRESULT hr = script->Call("SetProp", com::Name(property), {phase, ids, calcType, basis, values});
  return FAILED(hr) ? hr : Write(com::Name(property), com::Name(phase), values);
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
  return FAILED(hr) ? hr : script->Answer(com::MakeStrings(std::vector<std::string>{"enthalpy", "volume"}), list);
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
  const std::vector<std::int32_t> atEquilibrium(PresentPhases().size(), CAPE_ATEQUILIBRIUM);
  Put(com::MakeIntegers(state.statuses.empty() ? atEquilibrium : state.statuses), statuses);
  return script->Answer(com::MakeStrings(PresentPhases()), labels);
}

HRESULT FakeMaterial::GetSinglePhaseProp(BSTR property, BSTR phase, BSTR basis, VARIANT* values) {
  const HRESULT hr = script->Call("GetSinglePhaseProp", com::Name(property), {phase, basis});
  return FAILED(hr) ? hr : Read(com::Name(property), com::Name(phase), com::Name(basis), values);
}

HRESULT FakeMaterial::SetOverallProp(BSTR property, BSTR basis, VARIANT values) {
  const HRESULT hr = script->Call("SetOverallProp", com::Name(property), {basis, values});
  return FAILED(hr) ? hr : Write(com::Name(property), {}, values);
}

HRESULT FakeMaterial::SetPresentPhases(VARIANT labels, VARIANT statuses) {
  const HRESULT hr = script->Call("SetPresentPhases", {}, {labels, statuses});
  if (SUCCEEDED(hr) && script->recording) state.present = com::ReadStrings(labels);
  return hr;
}

HRESULT FakeMaterial::SetSinglePhaseProp(BSTR property, BSTR phase, BSTR basis, VARIANT values) {
  const HRESULT hr = script->Call("SetSinglePhaseProp", com::Name(property), {phase, basis, values});
  return FAILED(hr) ? hr : Write(com::Name(property), com::Name(phase), values);
}

HRESULT FakeMaterial::CalcSinglePhaseProp(VARIANT props, BSTR phase) {
  return script->Call("CalcSinglePhaseProp", com::Name(phase), {props});
}

HRESULT FakeMaterial::GetSinglePhasePropList(VARIANT* list) {
  const HRESULT hr = script->Call("GetSinglePhasePropList");
  return FAILED(hr) ? hr : script->Answer(com::MakeStrings(std::vector<std::string>{"enthalpy", "volume"}), list);
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
  Flash(describe(first) + ", " + describe(second) + ", " + com::ToUtf8(solutionType), SUCCEEDED(hr) ? given : nullptr);
  return hr;
}

HRESULT FakeMaterial::GetCompoundConstant(VARIANT props, VARIANT ids, VARIANT* values) {
  return Constant("GetCompoundConstant", props, ids, values);
}

HRESULT FakeMaterial::GetCompoundList(VARIANT* ids, VARIANT* formulae, VARIANT* names, VARIANT* boilingTemperatures,
                                      VARIANT* molecularWeights, VARIANT* casNumbers) {
  const HRESULT hr = script->Call("GetCompoundList");
  if (FAILED(hr)) return hr;
  Put(com::MakeStrings(state.compounds), formulae);
  Put(com::MakeStrings(state.compounds), names);
  Put(com::MakeDoubles(state.molecularWeights), boilingTemperatures);
  Put(com::MakeDoubles(state.molecularWeights), molecularWeights);
  Put(com::MakeStrings(state.casNumbers), casNumbers);
  return script->Answer(com::MakeStrings(state.compounds), ids);
}

HRESULT FakeMaterial::GetPhaseList(VARIANT* labels, VARIANT* aggregation, VARIANT*) {
  const HRESULT hr = script->Call("GetPhaseList");
  if (FAILED(hr)) return hr;
  std::vector<std::string> states;
  for (const FakePhase& phase : state.phases) states.push_back(phase.aggregation);
  Put(com::MakeStrings(states), aggregation);
  return script->Answer(com::MakeStrings(AllPhases()), labels);
}

}  // namespace morvelan::test
