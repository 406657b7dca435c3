// The thermo 1.0 face of a material.

#include <algorithm>

#include "com/Text.h"
#include "host/material/CompoundConstants.h"
#include "host/material/MaterialObject.h"

namespace morvelan::host {
namespace {

constexpr const char* kInterface = "ICapeThermoMaterialObject";

bool IsOverall(BSTR phase) { return com::EqualNoCase(com::ToUtf8(phase), "Overall"); }

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

HRESULT MaterialObject::get_ComponentIds(VARIANT* ids) {
  return Answer("ComponentIds", kInterface, ids, [&] { return CompoundIds(); });
}

HRESULT MaterialObject::get_PhaseIds(VARIANT* labels) {
  return Answer("PhaseIds", kInterface, labels, [&] {
    std::vector<std::string> names = {"Overall"};
    for (const PresentPhase& phase : state.PresentPhases()) names.emplace_back(PhaseName(phase.kind));
    return com::MakeStrings(names);
  });
}

HRESULT MaterialObject::GetUniversalConstant(VARIANT names, VARIANT* values) {
  return Answer("GetUniversalConstant", kInterface, values, [&] {
    std::vector<double> constants;
    for (const std::string& name : ReadNames(names)) constants.push_back(UniversalConstant(name));
    return com::MakeDoubles(constants);
  });
}

HRESULT MaterialObject::GetComponentConstant(VARIANT names, VARIANT compounds, VARIANT* values) {
  return Answer("GetComponentConstant", kInterface, values, [&] {
    return CompoundConstants(state.Package(), ReadNames(names),
                             CompoundPositions(state.Package(), ReadNames(compounds)));
  });
}

HRESULT MaterialObject::CalcProp(VARIANT names, VARIANT phases, BSTR calcType) {
  return Guard("CalcProp", kInterface, [&] {
    RequireMixture(calcType);
    const std::vector<PropertyId> ids = ReadProperties(names);
    for (const std::string& label : ReadNames(phases)) {
      const com::Bstr phase = com::ToBstr(label);
      if (IsOverall(phase.Get()))
        state.CalculateOverall(ids);
      else
        state.CalculatePhase(PhaseByName(phase.Get()), ids, true);
    }
  });
}

HRESULT MaterialObject::GetProp(BSTR name, BSTR phase, VARIANT compounds, BSTR calcType, BSTR basis, VARIANT* values) {
  return Answer("GetProp", kInterface, values, [&] {
    RequireMixture(calcType);
    return com::MakeDoubles(Get10(name, phase, compounds, basis));
  });
}

std::vector<double> MaterialObject::Get10(BSTR name, BSTR phase, const VARIANT& compounds, BSTR basis) const {
  const PropertyId id = PropertyByName(com::ToUtf8(name));
  const Basis wanted = BasisByName(com::ToUtf8(basis), id);
  std::vector<double> all =
      IsOverall(phase) ? state.Overall(id, wanted) : state.OfPhase(PhaseByName(phase), id, wanted);
  const std::vector<std::string> chosen = ReadNames(compounds);
  if (chosen.empty() || !InfoOf(id.property).perCompound || id.derivative != Derivative::kNone) return all;
  std::vector<double> selected;
  for (const std::size_t i : CompoundPositions(state.Package(), chosen)) selected.push_back(all[i]);
  return selected;
}

HRESULT MaterialObject::SetProp(BSTR name, BSTR phase, VARIANT compounds, BSTR calcType, BSTR basis, VARIANT values) {
  return Guard("SetProp", kInterface, [&] {
    RequireMixture(calcType);
    Set10(name, phase, compounds, basis, values);
  });
}

void MaterialObject::Set10(BSTR name, BSTR phase, const VARIANT& compounds, BSTR basis, const VARIANT& values) {
  const PropertyId id = PropertyByName(com::ToUtf8(name));
  const Basis given = BasisByName(com::ToUtf8(basis), id);
  std::vector<double> numbers = ReadNumbers(values);
  const std::vector<std::string> order = ReadNames(compounds);
  if (!order.empty() && InfoOf(id.property).perCompound && numbers.size() == order.size()) {
    const auto positions = CompoundPositions(state.Package(), order);
    std::vector<double> sorted(state.Package().CompoundCount());
    std::vector<bool> seen(sorted.size(), false);
    for (std::size_t i = 0; i < positions.size(); ++i) {
      sorted[positions[i]] = numbers[i];
      seen[positions[i]] = true;
    }
    if (std::ranges::count(seen, true) != std::ssize(seen))
      throw HostError(kECapeLimitedImpl, "property " + NameOf(id) + " must be set for all compounds at once");
    numbers = std::move(sorted);
  }
  if (IsOverall(phase)) return state.SetOverall(id, given, std::move(numbers));
  state.SetPhase(PhaseByName(phase), id, given, std::move(numbers));
  if (id.property == Property::kPhaseFraction) state.DropEquilibrium();
}

HRESULT MaterialObject::CalcEquilibrium(BSTR flashType, VARIANT names) {
  return Guard("CalcEquilibrium", kInterface, [&] {
    const FlashType& type = FlashTypeByName(flashType);
    const std::vector<PropertyId> ids = ReadProperties(names);
    state.Flash(type.first, type.second);
    for (const PresentPhase& phase : state.PresentPhases()) state.CalculatePhase(phase.kind, ids, true);
  });
}

HRESULT MaterialObject::SetIndependentVar(VARIANT, VARIANT) {
  return Guard("SetIndependentVar", kInterface,
               [] { throw HostError(kECapeNoImpl, "independent variables are not implemented: use SetProp"); });
}

HRESULT MaterialObject::GetIndependentVar(VARIANT, VARIANT* values) {
  return Answer("GetIndependentVar", kInterface, values, []() -> com::Variant {
    throw HostError(kECapeNoImpl, "independent variables are not implemented: use GetProp");
  });
}

HRESULT MaterialObject::PropCheck(VARIANT names, VARIANT* known) {
  return Answer("PropCheck", kInterface, known, [&] {
    std::vector<com::Variant> verdicts;
    for (const PropertyId id : ReadProperties(names)) verdicts.push_back(com::MakeBoolean(IsCalculated(id)));
    return com::MakeVariants(verdicts);
  });
}

HRESULT MaterialObject::AvailableProps(VARIANT* names) {
  return Answer("AvailableProps", kInterface, names, [&] { return com::MakeStrings(state.StoredProperties()); });
}

HRESULT MaterialObject::RemoveResults(VARIANT names) {
  return Guard("RemoveResults", kInterface, [&] { state.RemoveResults(ReadProperties(names)); });
}

HRESULT MaterialObject::CreateMaterialObject(IDispatch** created) {
  return HandOut("CreateMaterialObject", kInterface, created, false);
}

HRESULT MaterialObject::Duplicate(IDispatch** copy) { return HandOut("Duplicate", kInterface, copy, true); }

HRESULT MaterialObject::ValidityCheck(VARIANT, VARIANT* reliability) {
  return Answer("ValidityCheck", kInterface, reliability,
                []() -> com::Variant { throw HostError(kECapeNoImpl, "the reliability of properties is not judged"); });
}

HRESULT MaterialObject::GetPropList(VARIANT* names) {
  return Answer("GetPropList", kInterface, names, [&] { return CalculatedProperties(); });
}

HRESULT MaterialObject::GetNumComponents(LONG* count) {
  if (!count) return E_POINTER;
  *count = static_cast<LONG>(state.Package().CompoundCount());
  return S_OK;
}

}  // namespace morvelan::host
