// Equilibrium calculations on a thermo 1.0 material.

#include "errors/HostCall.h"
#include "material/FlashSpecification.h"
#include "material/Names.h"
#include "material/Reading.h"
#include "material/Thermo10.h"

namespace morvelan::material {
namespace {

using Material = com::Ref<ICapeThermoMaterialObject>;

HRESULT SetOverall(const Material& material, Name property, Name basis, const com::Variant& values,
                   Name calcType = {}) {
  return material->SetProp(property.text, names::kOverall.text, com::kNoValue, calcType.text, basis.text, values.Get());
}

}  // namespace

void Thermo10::CalcEquilibrium(const PortMaterial& port, const StreamState& state, Name flashType) const {
  const StateArrays values = MakeStateArrays(state, flashType);
  HRESULT failure = S_OK;
  const Material material = port.object.As<ICapeThermoMaterialObject>(&failure);
  if (!material)
    throw Failure(
        UnitError{"Failed to get material interface",
                  "Failed to get ICapeThermoMaterialObject from material: " + ErrorText(port.object.Get(), failure),
                  {},
                  {}});
  const auto set = [&](Name property, Name basis, const com::Variant& value) {
    CheckHost(SetOverall(material, property, basis, value), material.Get(),
              [&](const std::string& why) { return SettingFailure("SetProp failed", property, why); });
  };
  if (WritesPressure(flashType)) set(names::kPressure, {}, values.pressure);
  if (WritesTemperature(flashType)) set(names::kTemperature, {}, values.temperature);
  set(names::kTotalFlow, names::kMole, values.totalFlow);
  set(names::kFraction, names::kMole, values.composition);
  CheckHost(material->CalcEquilibrium(flashType.text, com::kNoValue), material.Get(), EquilibriumFailure);
}

double Thermo10::HFromPSFlash(const PortMaterial& inlet, double pressure, double entropy) const {
  const Material material = inlet.object.As<ICapeThermoMaterialObject>();
  if (!material)
    throw Failure(UnitError{
        "Failed to get material interface", "Failed to get interface to material connected to inlet port", {}, {}});
  com::Ref<IDispatch> copy;
  CheckHost(material->Duplicate(copy.Put()), material.Get(),
            [](const std::string& why) { return Failure("Failed to duplicate material: " + why); });
  HRESULT failure = S_OK;
  const Material scratch = copy.As<ICapeThermoMaterialObject>(&failure);
  if (!scratch) throw Failure("Failed to obtain material interface: " + ErrorText(copy.Get(), failure));
  const auto set = [&](Name property, Name calcType, Name basis, double value) {
    CheckHost(SetOverall(scratch, property, basis, com::MakeDoubles(std::array{value}), calcType), scratch.Get(),
              [&](const std::string& why) { return SettingFailure("SetProp failed", property, why); });
  };
  set(names::kPressure, {}, {}, pressure);
  set(names::kEntropy, names::kMixture, names::kMole, entropy);
  CheckHost(scratch->CalcEquilibrium(names::kPS.text, com::kNoValue), scratch.Get(), EquilibriumFailure);
  return ReadEnthalpy(Evaluate10(*scratch, kOverallEnthalpy, inlet.emulation));
}

double Thermo10::CalcNormalEnthalpy(const PortMaterial& port, std::span<const double> composition) const {
  const com::Ref<IDispatch> copy = DuplicateMaterial(port);
  HRESULT failure = S_OK;
  const Material scratch = copy.As<ICapeThermoMaterialObject>(&failure);
  if (!scratch)
    throw Failure("Failed to get ICapeThermoMaterialObject from material: " + ErrorText(copy.Get(), failure));
  const auto set = [&](const char* what, Name property, Name basis, std::span<const double> values) {
    CheckHost(SetOverall(scratch, property, basis, com::MakeDoubles(values)), scratch.Get(),
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

}  // namespace morvelan::material
