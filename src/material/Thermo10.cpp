#include "material/Thermo10.h"

#include "errors/HostCall.h"
#include "errors/LazyText.h"
#include "material/Names.h"
#include "material/PhaseFractions.h"

namespace morvelan::material {
namespace {

using Material = com::Ref<ICapeThermoMaterialObject>;

constexpr const char* kNoMaterialObject = "Failed to get ICapeThermoMaterialObject from material: ";

/// The material's interface; `explain` makes the failure from the host's text.
template <class Explain>
Material MaterialOf(IDispatch* object, Explain&& explain) {
  HRESULT failure = S_OK;
  Material material = com::Query<ICapeThermoMaterialObject>(object, &failure);
  if (!material) throw explain(ErrorText(object, failure));
  return material;
}

Material MaterialOf(const PortMaterial& port, std::string_view operation = {}) {
  return MaterialOf(port.object.Get(), [&](const std::string& why) {
    return Failure(UnitError{"Failed to get material interface", kNoMaterialObject + why, operation, {}});
  });
}

/// The compound IDs; `title` names the failure of the operation that wants them.
com::Variant ComponentIds(const Material& material, LazyText title) {
  com::Variant ids;
  CheckHost(material->get_ComponentIds(ids.Put()), material.Get(), [&](const std::string& why) {
    return Failure(UnitError{title(), "Failed to obtain compound IDs: " + why, {}, {}});
  });
  return ids;
}

/// A copy; `title` begins the message of the failure.
com::Ref<IDispatch> Duplicate(const Material& material, LazyText title) {
  com::Ref<IDispatch> copy;
  HRESULT duplicated = material->Duplicate(copy.Put());
  if (SUCCEEDED(duplicated) && !copy) duplicated = E_POINTER;
  CheckHost(duplicated, material.Get(), [&](const std::string& why) { return Failure(title() + why); });
  return copy;
}

com::Variant ComponentConstant(const Material& material, Name constant, const VARIANT& ids, const std::string& title) {
  com::Variant values;
  const com::Variant properties = com::MakeStrings(std::span(&constant, 1));
  CheckHost(material->GetComponentConstant(properties.Get(), ids, values.Put()), material.Get(),
            [&](const std::string& why) {
              return Failure(UnitError{title, "GetComponentConstant failed: " + why, {}, {}});
            });
  return values;
}

}  // namespace

void Thermo10::SetProp(const PortMaterial& port, const PropertyRequest& request, const VARIANT& compoundIds,
                       const VARIANT& values) const {
  // Failing to get at the material names another operation than failing to set the property.
  const Material material = MaterialOf(port, "SetProperty");
  CheckHost(material->SetProp(com::Name(request.property).text, request.phase.text, compoundIds, request.calcType.text,
                              request.basis.text, values),
            material.Get(), [](const std::string& why) { return Failure(why); });
}

com::Variant Thermo10::GetProp(const PortMaterial& port, const PropertyRequest& request,
                               const VARIANT& compoundIds) const {
  const Material material = MaterialOf(port);
  com::Variant values;
  CheckHost(material->GetProp(com::Name(request.property).text, request.phase.text, compoundIds, request.calcType.text,
                              request.basis.text, values.Put()),
            material.Get(), [&](const std::string& why) {
              return Failure("failed to get property " + request.property.Text() + " from material connected to port " +
                             port.portName + ": " + why);
            });
  return values;
}

Answer Thermo10::GetProperty(const PortMaterial& port, const PropertyRequest& request) const {
  const Material material = MaterialOf(port);
  const com::Ref<IDispatch> duplicate = Duplicate(material, [&] {
    return "Failed to duplicate material for calculating " + request.property.Text() + " in CPort::GetProperty(): ";
  });
  const Material scratch = MaterialOf(duplicate.Get(), [](const std::string&) {
    return Failure("Failed to get ICapeThermoMaterialObject from duplicate material");
  });
  return Evaluate10(*scratch, request, port.emulation);
}

Answer Thermo10::GetPropertyNoDup(const PortMaterial& port, const PropertyRequest& request) const {
  return Evaluate10(*MaterialOf(port), request, port.emulation);
}

com::Bstr Thermo10::GetVaporName(const PortMaterial&) const { return com::ToBstr("Vapor"); }

com::Ref<IDispatch> Thermo10::DuplicateMaterial(const PortMaterial& port) const {
  return Duplicate(MaterialOf(port), "Failed to duplicate material: ");
}

com::Variant Thermo10::GetCompoundList(const PortMaterial& port) const {
  const auto title = [&] { return "could not get compound IDs from port " + port.portName; };
  const Material material = MaterialOf(port.object.Get(), [&](const std::string& why) {
    return Failure(UnitError{title(), "Failed to obtain material interface: " + why, {}, {}});
  });
  return ComponentIds(material, title);
}

CompoundIdentities Thermo10::GetCompoundIdentities(const PortMaterial& port) const {
  const std::string title = "Could not get compound names and/or CAS numbers from port " + port.portName;
  const auto explain = [&](const std::string& why) {
    return Failure(UnitError{title, "Invalid compound names from material object: " + why, {}, {}});
  };
  const Material material = MaterialOf(port);
  const com::Variant ids = ComponentIds(material, [&] { return title; });
  const com::Variant casNumbers = ComponentConstant(material, names::kCasRegistryNumber, ids.Get(), title);
  return ReadOr(
      [&] {
        return CompoundIdentities{com::ReadStrings(ids.Get()), com::ReadStrings(casNumbers.Get())};
      },
      explain);
}

com::Variant Thermo10::GetCompoundConstant(const PortMaterial& port, Name constant) const {
  const std::string title = "Could not get " + Shown(constant) + " from port " + port.portName;
  return ComponentConstant(MaterialOf(port), constant, com::kNoValue, title);
}

com::Bstr FindVaporLabel(ICapeThermoMaterialObject& material) {
  com::Variant labels;
  if (FAILED(material.get_PhaseIds(labels.Put()))) return {};
  try {
    for (const std::string& label : com::ReadStrings(labels.Get()))
      if (com::EqualNoCase(label, "vapor")) return com::ToBstr(label);
  } catch (const com::ValueError&) {
    // No list is no vapour phase.
  }
  return {};
}

std::vector<PhaseFraction> Thermo10::GetPhaseFractions(IDispatch* object) const {
  const Material material = MaterialOf(object, [](const std::string& why) {
    return Failure("Failed to get ICapeThermoMaterialObject interface from material: " + why);
  });
  com::Variant labels;
  CheckHost(material->get_PhaseIds(labels.Put()), material.Get(),
            [](const std::string& why) { return Failure("Failed to get present phase IDs in material: " + why); });
  return ReadPhaseFractions(material.Get(), labels.Get(), [&](Name phase, VARIANT* fraction) {
    return material->GetProp(names::kPhaseFraction.text, phase.text, com::kNoValue, nullptr, names::kMole.text,
                             fraction);
  });
}

std::vector<std::string> Thermo10::GetPropertyList(const PortMaterial& port) const {
  const Material material = MaterialOf(port);
  com::Variant properties;
  const auto explain = [&](const std::string& why) {
    return Failure("Failed to get list of properties from port " + port.portName + ": " + why);
  };
  CheckHost(material->GetPropList(properties.Put()), material.Get(), explain);
  return ReadOr([&] { return com::ReadStrings(properties.Get()); }, explain);
}

}  // namespace morvelan::material
