#include "host/material/MaterialThermo10.h"

#include <algorithm>

#include "com/Text.h"
#include "host/material/CompoundConstants.h"
#include "host/objects/Arguments.h"

namespace morvelan::host {
namespace {

constexpr const char* kThermo10 = "ICapeThermoMaterialObject";

bool IsOverall(const std::string& phase) { return com::EqualNoCase(phase, "Overall"); }

void RequireMixture(BSTR calcType) {
  const std::string text = com::ToUtf8(calcType);
  if (text.empty() || com::EqualNoCase(text, "mixture") || com::EqualNoCase(text, "UNDEFINED")) return;
  if (com::EqualNoCase(text, "pure"))
    throw HostError(kECapeLimitedImpl, "properties of pure compounds are not calculated: calcType \"pure\"");
  throw HostError(kECapeInvalidArgument, "calcType \"" + text + "\" must be \"mixture\"");
}

struct FlashType {
  const char* name;
  FlashCondition first;
  FlashCondition second;
};

constexpr FlashCondition kT = {Property::kTemperature};
constexpr FlashCondition kP = {Property::kPressure};
constexpr FlashCondition kH = {Property::kEnthalpy};
constexpr FlashCondition kHF = {Property::kEnthalpyF};
constexpr FlashCondition kVF = {Property::kPhaseFraction, PhaseKind::kVapor};

constexpr FlashType kFlashTypes[] = {
    {"TP", kT, kP},
    {"PT", kT, kP},
    {"PH", kP, kH},
    {"PHF", kP, kHF},
    {"PVF", kP, kVF},
    {"TVF", kT, kVF},
    {"TH", kT, kH},
    {"THF", kT, kHF},
    {"HVF", kH, kVF},
    {"HFVF", kHF, kVF},
    {"PS", kP, {Property::kEntropy}},
};

const FlashType& FlashTypeByName(BSTR name) {
  const std::string text = com::ToUtf8(name);
  const auto* found =
      std::ranges::find_if(kFlashTypes, [&](const FlashType& type) { return com::EqualNoCase(type.name, text); });
  if (found == std::end(kFlashTypes)) throw HostError(kECapeInvalidArgument, "flash type \"" + text + "\" is unknown");
  return *found;
}

}  // namespace

HRESULT MaterialThermo10::get_ComponentIds(VARIANT* ids) {
  return Answer("ComponentIds", kThermo10, ids, [&] { return CompoundIds(); });
}

HRESULT MaterialThermo10::get_PhaseIds(VARIANT* labels) {
  return Answer("PhaseIds", kThermo10, labels, [&] {
    std::vector<std::string> names = {"Overall"};
    for (const PresentPhase& phase : state.PresentPhases()) names.emplace_back(PhaseName(phase.kind));
    return com::MakeStrings(names);
  });
}

HRESULT MaterialThermo10::GetUniversalConstant(VARIANT names, VARIANT* values) {
  return Answer("GetUniversalConstant", kThermo10, values, [&] {
    std::vector<double> constants;
    for (const std::string& name : ReadNames(names)) constants.push_back(UniversalConstant(name));
    return com::MakeDoubles(constants);
  });
}

HRESULT MaterialThermo10::GetComponentConstant(VARIANT names, VARIANT compounds, VARIANT* values) {
  return Answer("GetComponentConstant", kThermo10, values, [&] { return Constants(names, compounds); });
}

HRESULT MaterialThermo10::CalcProp(VARIANT names, VARIANT phases, BSTR calcType) {
  return Guard("CalcProp", kThermo10, [&] {
    RequireMixture(calcType);
    const std::vector<PropertyId> ids = ReadProperties(names);
    for (const std::string& phase : ReadNames(phases)) {
      if (IsOverall(phase))
        state.CalculateOverall(ids);
      else
        state.CalculatePhase(PhaseByName(phase), ids, true);
    }
  });
}

HRESULT MaterialThermo10::GetProp(BSTR name, BSTR phase, VARIANT compounds, BSTR calcType, BSTR basis,
                                  VARIANT* values) {
  return Answer("GetProp", kThermo10, values, [&] {
    RequireMixture(calcType);
    return com::MakeDoubles(Values(name, phase, compounds, basis));
  });
}

std::vector<double> MaterialThermo10::Values(BSTR name, BSTR phase, const VARIANT& compounds, BSTR basis) const {
  const auto [id, wanted] = ReadProperty(name, basis);
  const std::string label = com::ToUtf8(phase);
  std::vector<double> all =
      IsOverall(label) ? state.Overall(id, wanted) : state.OfPhase(PhaseByName(label), id, wanted);
  const std::vector<std::string> chosen = ReadNames(compounds);
  if (chosen.empty() || !InfoOf(id.property).perCompound || id.derivative != Derivative::kNone) return all;
  std::vector<double> selected;
  for (const std::size_t i : CompoundPositions(Package(), chosen)) selected.push_back(all[i]);
  return selected;
}

HRESULT MaterialThermo10::SetProp(BSTR name, BSTR phase, VARIANT compounds, BSTR calcType, BSTR basis, VARIANT values) {
  return Guard("SetProp", kThermo10, [&] {
    RequireMixture(calcType);
    SetValues(name, phase, compounds, basis, values);
  });
}

std::vector<double> MaterialThermo10::InPackageOrder(PropertyId id, const std::vector<std::string>& compounds,
                                                     const std::vector<double>& values) const {
  const auto positions = CompoundPositions(Package(), compounds);
  std::vector<double> sorted(Package().CompoundCount());
  std::vector<bool> seen(sorted.size(), false);
  for (std::size_t i = 0; i < positions.size(); ++i) {
    sorted[positions[i]] = values[i];
    seen[positions[i]] = true;
  }
  if (std::ranges::count(seen, true) != std::ssize(seen))
    throw HostError(kECapeLimitedImpl, "property " + NameOf(id) + " must be set for all compounds at once");
  return sorted;
}

void MaterialThermo10::SetValues(BSTR name, BSTR phase, const VARIANT& compounds, BSTR basis, const VARIANT& values) {
  const auto [id, given] = ReadProperty(name, basis);
  std::vector<double> numbers = ReadNumbers(values);
  const std::vector<std::string> order = ReadNames(compounds);
  if (!order.empty() && InfoOf(id.property).perCompound && numbers.size() == order.size())
    numbers = InPackageOrder(id, order, numbers);
  const std::string label = com::ToUtf8(phase);
  if (IsOverall(label)) return state.SetOverall(id, given, std::move(numbers));
  state.SetPhase(PhaseByName(label), id, given, std::move(numbers));
  if (id.property == Property::kPhaseFraction) state.DropEquilibrium();
}

HRESULT MaterialThermo10::CalcEquilibrium(BSTR flashType, VARIANT names) {
  return Guard("CalcEquilibrium", kThermo10, [&] {
    const FlashType& type = FlashTypeByName(flashType);
    const std::vector<PropertyId> ids = ReadProperties(names);
    state.Flash(type.first, type.second);
    for (const PresentPhase& phase : state.PresentPhases()) state.CalculatePhase(phase.kind, ids, true);
  });
}

HRESULT MaterialThermo10::SetIndependentVar(VARIANT, VARIANT) {
  return Refuse("SetIndependentVar", kThermo10, kECapeNoImpl, "independent variables are not implemented: use SetProp");
}

HRESULT MaterialThermo10::GetIndependentVar(VARIANT, VARIANT* values) {
  return Answer("GetIndependentVar", kThermo10, values, []() -> com::Variant {
    throw HostError(kECapeNoImpl, "independent variables are not implemented: use GetProp");
  });
}

HRESULT MaterialThermo10::PropCheck(VARIANT names, VARIANT* known) {
  return Answer("PropCheck", kThermo10, known, [&] {
    std::vector<com::Variant> verdicts;
    for (const PropertyId id : ReadProperties(names)) verdicts.push_back(com::MakeBoolean(IsCalculated(id)));
    return com::MakeVariants(verdicts);
  });
}

HRESULT MaterialThermo10::AvailableProps(VARIANT* names) {
  return Answer("AvailableProps", kThermo10, names, [&] { return com::MakeStrings(state.StoredProperties()); });
}

HRESULT MaterialThermo10::RemoveResults(VARIANT names) {
  return Guard("RemoveResults", kThermo10, [&] { state.RemoveResults(ReadProperties(names)); });
}

HRESULT MaterialThermo10::CreateMaterialObject(IDispatch** created) {
  return HandOut("CreateMaterialObject", kThermo10, created, false);
}

HRESULT MaterialThermo10::Duplicate(IDispatch** copy) { return HandOut("Duplicate", kThermo10, copy, true); }

HRESULT MaterialThermo10::ValidityCheck(VARIANT, VARIANT* reliability) {
  return Answer("ValidityCheck", kThermo10, reliability,
                []() -> com::Variant { throw HostError(kECapeNoImpl, "the reliability of properties is not judged"); });
}

HRESULT MaterialThermo10::GetPropList(VARIANT* names) {
  return Answer("GetPropList", kThermo10, names, [&] { return CalculatedProperties(); });
}

}  // namespace morvelan::host
