#include "host/material/MaterialObject.h"

#include "host/material/PhaseProperties.h"

namespace morvelan::host {
namespace {

/// Finds the host's own materials behind an interface; nobody else knows it.
constexpr IID kMaterialObjectId = {0xd2a93a4d, 0x51c6, 0x4e0e, {0x9a, 0x0c, 0x2b, 0x6e, 0x1b, 0x5d, 0x7f, 0x38}};

bool IsThermo10(REFIID iid) { return iid == __uuidof(ICapeThermoMaterialObject); }

bool IsThermo11(REFIID iid) {
  return iid == __uuidof(ICapeThermoMaterial) || iid == __uuidof(ICapeThermoPropertyRoutine) ||
         iid == __uuidof(ICapeThermoEquilibriumRoutine) || iid == __uuidof(ICapeThermoCompounds) ||
         iid == __uuidof(ICapeThermoPhases) || iid == __uuidof(ICapeThermoUniversalConstant);
}

}  // namespace

MaterialObject::MaterialObject(std::string objectName, MaterialState initial, ThermoOffer offered)
    : Implements(std::move(objectName), "Material stream"), state(std::move(initial)), offer(offered) {}

void* MaterialObject::FindInterface(REFIID iid) {
  if (iid == kMaterialObjectId) return this;
  if (offer == ThermoOffer::k10 && IsThermo11(iid)) return nullptr;
  if (offer == ThermoOffer::k11 && IsThermo10(iid)) return nullptr;
  return Implements::FindInterface(iid);
}

com::Ref<MaterialObject> AsMaterialObject(IUnknown* object) {
  void* found = nullptr;
  if (!object || FAILED(object->QueryInterface(kMaterialObjectId, &found))) return {};
  return com::Ref<MaterialObject>::Attach(static_cast<MaterialObject*>(found));
}

com::Ref<MaterialObject> MaterialObject::MakeSibling(MaterialState initial) const {
  return com::Make<MaterialObject>(Name(), std::move(initial), offer);
}

HRESULT MaterialObject::HandOut(const char* operation, const char* interfaceName, IDispatch** object, bool withState) {
  if (!object) return E_POINTER;
  *object = nullptr;
  return Guard(operation, interfaceName, [&] {
    *object = MakeSibling(withState ? state : MaterialState(state.SharedPackage())).As<IDispatch>().Detach();
  });
}

com::Variant MaterialObject::CompoundIds() const {
  std::vector<std::string> ids;
  for (std::size_t i = 0; i < state.Package().CompoundCount(); ++i) ids.push_back(state.Package().CompoundAt(i).name);
  return com::MakeStrings(ids);
}

PhaseKind MaterialObject::PhaseByName(BSTR name) const {
  const std::string text = com::ToUtf8(name);
  std::string known;
  for (const PhaseKind kind : state.SupportedPhases()) {
    if (com::EqualNoCase(text, PhaseName(kind))) return kind;
    known += std::string(known.empty() ? "" : ", ") + '"' + PhaseName(kind) + '"';
  }
  throw HostError(kECapeInvalidArgument, "phase \"" + text + "\" is unknown; this material has " + known);
}

com::Variant MaterialObject::CalculatedProperties() const {
  const bool formation = HasFormationData(state.Package());
  std::vector<std::string> names;
  for (const PropertyInfo& info : Properties()) {
    if (!info.isCalculated || (info.isFromFormation && !formation)) continue;
    names.emplace_back(info.name);
    for (const Derivative derivative : info.derivatives) names.push_back(NameOf({info.property, derivative}));
  }
  return com::MakeStrings(names);
}

std::vector<std::string> ReadNames(const VARIANT& names) {
  const VARIANT v = com::Borrow(names);
  if (v.vt == VT_EMPTY) return {};
  if (v.vt == VT_BSTR) return {com::ToUtf8(v.bstrVal)};
  return com::ReadStrings(v);
}

std::vector<double> ReadNumbers(const VARIANT& numbers) {
  const VARIANT v = com::Borrow(numbers);
  if (v.vt & VT_ARRAY) return com::ReadDoubles(v);
  return {com::ReadDouble(v)};
}

std::vector<PropertyId> ReadProperties(const VARIANT& names) {
  std::vector<PropertyId> ids;
  for (const std::string& name : ReadNames(names)) ids.push_back(PropertyByName(name));
  return ids;
}

}  // namespace morvelan::host
