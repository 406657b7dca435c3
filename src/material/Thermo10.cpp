#include "material/Thermo10.h"

#include "errors/HostCall.h"
#include "errors/LazyText.h"
#include "material/FlashSpecification.h"
#include "material/Names.h"
#include "material/PhaseFractions.h"
#include "material/Reading.h"
#include "material/SinglePhase.h"

namespace morvelan::material {
namespace {

using Material10 = com::Ref<ICapeThermoMaterialObject>;

constexpr const char* kNoMaterialObject = "Failed to get ICapeThermoMaterialObject from material: ";

Material10 Material10Of(const PortMaterial& port, std::string_view operation = {}) {
  return InterfaceOf<ICapeThermoMaterialObject>(port.object.Get(), [&](const std::string& why) {
    return Failure(UnitError{"Failed to get material interface", kNoMaterialObject + why, operation, {}});
  });
}

/// The compound IDs; `title` names the failure of the operation that wants them.
com::Variant ComponentIds(const Material10& material, LazyText title) {
  com::Variant ids;
  CheckHost(material->get_ComponentIds(ids.Put()), material.Get(), [&](const std::string& why) {
    return Failure(UnitError{title(), "Failed to obtain compound IDs: " + why, {}, {}});
  });
  return ids;
}

/// A copy; `title` begins the message of the failure.
com::Ref<IDispatch> Duplicate(const Material10& material, LazyText title) {
  com::Ref<IDispatch> copy;
  HRESULT duplicated = material->Duplicate(copy.Put());
  if (SUCCEEDED(duplicated) && !copy) duplicated = E_POINTER;
  CheckHost(duplicated, material.Get(), [&](const std::string& why) { return Failure(title() + why); });
  return copy;
}

com::Variant ComponentConstant(const Material10& material, Name constant, const VARIANT& ids,
                               const std::string& title) {
  com::Variant values;
  const com::Variant properties = com::MakeStrings(std::span(&constant, 1));
  CheckHost(material->GetComponentConstant(properties.Get(), ids, values.Put()), material.Get(),
            [&](const std::string& why) {
              return Failure(UnitError{title, "GetComponentConstant failed: " + why, {}, {}});
            });
  return values;
}

HRESULT SetOverall10(const Material10& material, Name property, Name basis, const com::Variant& values,
                     Name calcType = {}) {
  return material->SetProp(property.text, names::kOverall.text, com::kNoValue, calcType.text, basis.text, values.Get());
}

}  // namespace

void Thermo10::SetProp(const PortMaterial& port, const PropertyRequest& request, const VARIANT& compoundIds,
                       const VARIANT& values) const {
  // Failing to get at the material names another operation than failing to set the property.
  const Material10 material = Material10Of(port, "SetProperty");
  CheckHost(material->SetProp(com::Name(request.property).text, request.phase.text, compoundIds, request.calcType.text,
                              request.basis.text, values),
            material.Get(), [](const std::string& why) { return Failure(why); });
}

com::Variant Thermo10::GetProp(const PortMaterial& port, const PropertyRequest& request,
                               const VARIANT& compoundIds) const {
  const Material10 material = Material10Of(port);
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
  const Material10 material = Material10Of(port);
  const com::Ref<IDispatch> duplicate = Duplicate(material, [&] {
    return "Failed to duplicate material for calculating " + request.property.Text() + " in CPort::GetProperty(): ";
  });
  const Material10 scratch = InterfaceOf<ICapeThermoMaterialObject>(duplicate.Get(), [](const std::string&) {
    return Failure("Failed to get ICapeThermoMaterialObject from duplicate material");
  });
  return Evaluate10(*scratch, request, port.emulation);
}

Answer Thermo10::GetPropertyNoDup(const PortMaterial& port, const PropertyRequest& request) const {
  return Evaluate10(*Material10Of(port), request, port.emulation);
}

com::Bstr Thermo10::GetVaporName(const PortMaterial&) const { return com::ToBstr("Vapor"); }

com::Ref<IDispatch> Thermo10::DuplicateMaterial(const PortMaterial& port) const {
  return Duplicate(Material10Of(port), "Failed to duplicate material: ");
}

com::Variant Thermo10::GetCompoundList(const PortMaterial& port) const {
  const auto title = [&] { return "could not get compound IDs from port " + port.portName; };
  const Material10 material = InterfaceOf<ICapeThermoMaterialObject>(port.object.Get(), [&](const std::string& why) {
    return Failure(UnitError{title(), "Failed to obtain material interface: " + why, {}, {}});
  });
  return ComponentIds(material, title);
}

CompoundIdentities Thermo10::GetCompoundIdentities(const PortMaterial& port) const {
  const std::string title = "Could not get compound names and/or CAS numbers from port " + port.portName;
  const auto explain = [&](const std::string& why) {
    return Failure(UnitError{title, "Invalid compound names from material object: " + why, {}, {}});
  };
  const Material10 material = Material10Of(port);
  const com::Variant ids = ComponentIds(material, [&] { return title; });
  const com::Variant casNumbers = ComponentConstant(material, names::kCasRegistryNumber, ids.Get(), title);
  return ReadOr(
      [&] {
        return CompoundIdentities{com::ReadStrings(ids.Get()), com::ReadStrings(casNumbers.Get())};
      },
      explain);
}

com::Variant Thermo10::GetCompoundConstant(const PortMaterial& port, Name constant) const {
  const std::string title = "Could not get " + DisplayName(constant) + " from port " + port.portName;
  return ComponentConstant(Material10Of(port), constant, com::kNoValue, title);
}

std::vector<PhaseFraction> Thermo10::GetPhaseFractions(IDispatch* object) const {
  const Material10 material = InterfaceOf<ICapeThermoMaterialObject>(object, [](const std::string& why) {
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
  const Material10 material = Material10Of(port);
  com::Variant properties;
  const auto explain = [&](const std::string& why) {
    return Failure("Failed to get list of properties from port " + port.portName + ": " + why);
  };
  CheckHost(material->GetPropList(properties.Put()), material.Get(), explain);
  return ReadOr([&] { return com::ReadStrings(properties.Get()); }, explain);
}

std::vector<std::string> Thermo10::GetPhaseLabels(const PortMaterial& port) const {
  const auto material = InterfaceOf<ICapeThermoMaterialObject>(port.object.Get(), PhaseListFailure);
  com::Variant labels;
  CheckHost(material->get_PhaseIds(labels.Put()), material.Get(), PhaseListFailure);
  return SinglePhases(labels);
}

void Thermo10::CalcEquilibrium(const PortMaterial& port, const StreamState& state, Name flashType) const {
  const StateArrays values = MakeStateArrays(state, flashType);
  const Material10 material = Material10Of(port);
  const auto set = [&](Name property, Name basis, const com::Variant& value) {
    CheckHost(SetOverall10(material, property, basis, value), material.Get(),
              [&](const std::string& why) { return SettingFailure("SetProp failed", property, why); });
  };
  if (WritesPressure(flashType)) set(names::kPressure, {}, values.pressure);
  if (WritesTemperature(flashType)) set(names::kTemperature, {}, values.temperature);
  set(names::kTotalFlow, names::kMole, values.totalFlow);
  set(names::kFraction, names::kMole, values.composition);
  CheckHost(material->CalcEquilibrium(flashType.text, com::kNoValue), material.Get(), EquilibriumFailure);
}

double Thermo10::HFromPSFlash(const PortMaterial& inlet, double pressure, double entropy) const {
  const Material10 material = inlet.object.As<ICapeThermoMaterialObject>();
  if (!material)
    throw Failure(UnitError{
        "Failed to get material interface", "Failed to get interface to material connected to inlet port", {}, {}});
  com::Ref<IDispatch> copy;
  CheckHost(material->Duplicate(copy.Put()), material.Get(),
            [](const std::string& why) { return Failure("Failed to duplicate material: " + why); });
  const auto scratch = InterfaceOf<ICapeThermoMaterialObject>(
      copy.Get(), [](const std::string& why) { return Failure("Failed to obtain material interface: " + why); });
  const auto set = [&](Name property, Name calcType, Name basis, double value) {
    CheckHost(SetOverall10(scratch, property, basis, com::MakeDoubles(std::array{value}), calcType), scratch.Get(),
              [&](const std::string& why) { return SettingFailure("SetProp failed", property, why); });
  };
  set(names::kPressure, {}, {}, pressure);
  set(names::kEntropy, names::kMixture, names::kMole, entropy);
  CheckHost(scratch->CalcEquilibrium(names::kPS.text, com::kNoValue), scratch.Get(), EquilibriumFailure);
  return ReadEnthalpy(Evaluate10(*scratch, kOverallEnthalpy, inlet.emulation));
}

double Thermo10::CalcNormalEnthalpy(const PortMaterial& port, std::span<const double> composition) const {
  const com::Ref<IDispatch> copy = DuplicateMaterial(port);
  const auto scratch = InterfaceOf<ICapeThermoMaterialObject>(
      copy.Get(), [](const std::string& why) { return Failure(kNoMaterialObject + why); });
  const auto set = [&](const char* what, Name property, Name basis, std::span<const double> values) {
    CheckHost(SetOverall10(scratch, property, basis, com::MakeDoubles(values)), scratch.Get(),
              [&](const std::string& why) { return NormalStateFailure(what, why); });
  };
  set("pressure", names::kPressure, {}, std::array{kNormalPressure});
  set("temperature", names::kTemperature, {}, std::array{kNormalTemperature});
  set("composition", names::kFraction, names::kMole, composition);
  CheckHost(scratch->CalcEquilibrium(names::kTP.text, com::kNoValue), scratch.Get(), [](const std::string& why) {
    return Failure("Failed to calculate TP flash on duplicate material object at normal conditions: " + why);
  });
  return ReadEnthalpy(Evaluate10(*scratch, kOverallEnthalpy, port.emulation));
}

void Thermo10::SetSinglePhase(const PortMaterial& port, const StreamState& state, Name phase) const {
  const auto material = InterfaceOf<ICapeThermoMaterialObject>(port.object.Get(), NoMaterialFailure);
  const SinglePhaseArrays values(state);
  const auto set = [&](Name property, Name where, Name basis, const com::Variant& value, LazyText what) {
    CheckSinglePhase(material->SetProp(property.text, where.text, com::kNoValue, nullptr, basis.text, value.Get()),
                     material.Get(), what);
  };
  // Phases have no temperature and pressure of their own in this generation.
  set(names::kTemperature, names::kOverall, {}, values.temperature, "temperature");
  set(names::kPressure, names::kOverall, {}, values.pressure, "pressure");
  for (const Name where : {names::kOverall, phase})
    set(names::kFraction, where, names::kMole, values.composition,
        [&] { return DisplayName(where) + " mole fraction"; });
}

}  // namespace morvelan::material
