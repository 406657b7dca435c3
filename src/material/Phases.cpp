// Single phases of a material, which units name themselves.

#include <array>

#include "errors/HostCall.h"
#include "material/Names.h"
#include "material/Reading.h"
#include "material/Thermo10.h"
#include "material/Thermo11.h"

namespace morvelan::material {
namespace {

constexpr const char* kNoPhaseList = "Failed to get list of phases from material: ";

template <class Interface>
com::Ref<Interface> InterfaceOf(const PortMaterial& port, const std::string& opening) {
  HRESULT failure = S_OK;
  com::Ref<Interface> found = com::Query<Interface>(port.object.Get(), &failure);
  if (!found) throw Failure(opening + ErrorText(port.object.Get(), failure));
  return found;
}

/// The labels of single phases in a host's list.
std::vector<std::string> SinglePhases(const com::Variant& labels) {
  std::vector<std::string> phases = ReadOr([&] { return com::ReadStrings(labels.Get()); },
                                           [](const std::string& why) { return Failure(kNoPhaseList + why); });
  std::erase_if(phases, [](const std::string& phase) { return com::EqualNoCase(phase, "Overall"); });
  return phases;
}

/// What sets `what`; the host's answer is checked.
void Check(HRESULT set, IUnknown* material, const std::string& what) {
  CheckHost(set, material,
            [&](const std::string& why) { return Failure("Failed to set " + what + " on outlet material: " + why); });
}

struct PhaseValues {
  com::Variant temperature;
  com::Variant pressure;
  com::Variant composition;
};

PhaseValues ValuesOf(const StreamState& state) {
  return {.temperature = com::MakeDoubles(std::array{state.temperature}),
          .pressure = com::MakeDoubles(std::array{state.pressure}),
          .composition = com::MakeDoubles(state.composition)};
}

}  // namespace

std::vector<std::string> Thermo10::GetPhaseLabels(const PortMaterial& port) const {
  const auto material = InterfaceOf<ICapeThermoMaterialObject>(port, kNoPhaseList);
  com::Variant labels;
  CheckHost(material->get_PhaseIds(labels.Put()), material.Get(),
            [](const std::string& why) { return Failure(kNoPhaseList + why); });
  return SinglePhases(labels);
}

std::vector<std::string> Thermo11::GetPhaseLabels(const PortMaterial& port) const {
  const auto phases = InterfaceOf<ICapeThermoPhases>(port, kNoPhaseList);
  com::Variant labels, states, keyCompounds;
  CheckHost(phases->GetPhaseList(labels.Put(), states.Put(), keyCompounds.Put()), phases.Get(),
            [](const std::string& why) { return Failure(kNoPhaseList + why); });
  return SinglePhases(labels);
}

/// (Phases have no temperature and pressure of their own here.)
void Thermo10::SetSinglePhase(const PortMaterial& port, const StreamState& state, Name phase) const {
  const auto material = InterfaceOf<ICapeThermoMaterialObject>(port, "Failed to get material interface: ");
  const PhaseValues values = ValuesOf(state);
  const auto set = [&](Name property, Name where, Name basis, const com::Variant& value, const std::string& what) {
    Check(material->SetProp(property.text, where.text, com::kNoValue, nullptr, basis.text, value.Get()), material.Get(),
          what);
  };
  set(names::kTemperature, names::kOverall, {}, values.temperature, "temperature");
  set(names::kPressure, names::kOverall, {}, values.pressure, "pressure");
  for (const Name where : {names::kOverall, phase})
    set(names::kFraction, where, names::kMole, values.composition, Shown(where) + " mole fraction");
}

void Thermo11::SetSinglePhase(const PortMaterial& port, const StreamState& state, Name phase) const {
  const auto material = InterfaceOf<ICapeThermoMaterial>(port, "Failed to get material interface: ");
  const PhaseValues values = ValuesOf(state);
  const com::Variant labels = com::MakeStrings(std::span(&phase, 1));
  const com::Variant statuses = com::MakeIntegers(std::array{std::int32_t{CAPE_ATEQUILIBRIUM}});
  Check(material->SetPresentPhases(labels.Get(), statuses.Get()), material.Get(), "present phase");
  const auto set = [&](Name property, Name basis, const com::Variant& value, const char* what) {
    Check(material->SetOverallProp(property.text, basis.text, value.Get()), material.Get(),
          basis.IsEmpty() ? what : Shown(names::kOverall) + what);
    Check(material->SetSinglePhaseProp(property.text, phase.text, basis.text, value.Get()), material.Get(),
          basis.IsEmpty() ? what : Shown(phase) + what);
  };
  set(names::kTemperature, {}, values.temperature, "temperature");
  set(names::kPressure, {}, values.pressure, "pressure");
  set(names::kFraction, names::kMole, values.composition, " mole fraction");
}

}  // namespace morvelan::material
