#include "host/material/MaterialBase.h"

#include "com/Text.h"
#include "host/file/Nearest.h"
#include "host/material/CompoundConstants.h"
#include "host/objects/Arguments.h"

namespace morvelan::host {
namespace {

/// Finds the host's own materials behind an interface. No unit knows it.
constexpr IID kHostMaterialId = {0xd2a93a4d, 0x51c6, 0x4e0e, {0x9a, 0x0c, 0x2b, 0x6e, 0x1b, 0x5d, 0x7f, 0x38}};

}  // namespace

MaterialBase::MaterialBase(std::string objectName, MaterialState initial)
    : HostObject(std::move(objectName), "Material stream"), state(std::move(initial)) {}

void* MaterialBase::FindInterface(REFIID iid) { return iid == kHostMaterialId ? this : HostObject::FindInterface(iid); }

com::Ref<MaterialBase> AsHostMaterial(IUnknown* object) {
  void* found = nullptr;
  if (!object || FAILED(object->QueryInterface(kHostMaterialId, &found))) return {};
  return com::Ref<MaterialBase>::Attach(static_cast<MaterialBase*>(found));
}

HRESULT MaterialBase::HandOut(const char* operation, const char* interfaceName, IDispatch** object, bool withState) {
  if (!object) return E_POINTER;
  *object = nullptr;
  return Guard(operation, interfaceName,
               [&] { *object = MakeSibling(withState ? state : MaterialState(state.SharedPackage())).Detach(); });
}

com::Variant MaterialBase::CompoundIds() const {
  std::vector<std::string> ids;
  for (std::size_t i = 0; i < Package().CompoundCount(); ++i) ids.push_back(Package().CompoundAt(i).name);
  return com::MakeStrings(ids);
}

com::Variant MaterialBase::Constants(const VARIANT& names, const VARIANT& compounds) const {
  return CompoundConstants(Package(), ReadNames(names), CompoundPositions(Package(), ReadNames(compounds)));
}

PhaseKind MaterialBase::PhaseByName(const std::string& name) const {
  for (const PhaseKind kind : state.SupportedPhases())
    if (com::EqualNoCase(name, PhaseName(kind))) return kind;
  throw HostError(kECapeInvalidArgument, "phase \"" + name + "\" is unknown; this material has " +
                                             Listed(NamesOf(state.SupportedPhases(), PhaseName)));
}

PhaseKind MaterialBase::PhaseByName(BSTR name) const { return PhaseByName(com::ToUtf8(name)); }

com::Variant MaterialBase::CalculatedProperties() const {
  const bool hasFormation = Package().HasFormationData();
  std::vector<std::string> names;
  for (const PropertyInfo& info : Properties()) {
    if (!info.isCalculated || (info.isFromFormation && !hasFormation)) continue;
    names.emplace_back(info.name);
    for (const Derivative derivative : info.derivatives) names.push_back(NameOf({info.property, derivative}));
  }
  return com::MakeStrings(names);
}

PropertyInBasis ReadProperty(BSTR name, BSTR basis) {
  const PropertyId id = PropertyByName(com::ToUtf8(name));
  return {id, BasisByName(com::ToUtf8(basis), id)};
}

std::vector<PropertyId> ReadProperties(const VARIANT& names) {
  std::vector<PropertyId> ids;
  for (const std::string& name : ReadNames(names)) ids.push_back(PropertyByName(name));
  return ids;
}

}  // namespace morvelan::host
