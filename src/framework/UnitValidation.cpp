#include "framework/UnitValidation.h"

#include <algorithm>

#include "material/Reading.h"

namespace morvelan {
namespace {

const char* UnconnectedInlet(CapePortType type) {
  switch (type) {
    case CAPE_ENERGY:
      return "not all inlet energy ports are connected";
    case CAPE_INFORMATION:
      return "not all inlet information ports are connected";
    default:
      return "not all material ports are connected";
  }
}

}  // namespace

std::string UnitValidation::FindFault() {
  if (checks.connections)
    if (std::string fault = FindUnconnectedPort(); !fault.empty()) return fault;
  if (checks.compounds)
    if (std::string fault = FindCompoundMismatch(); !fault.empty()) return fault;
  if (std::string fault = FindInvalidParameter(); !fault.empty()) return fault;
  std::string message;
  if (!unit.ValidateUnit(message)) return message.empty() ? "invalid unit specification" : message;
  return FindMissingProperty();
}

std::string UnitValidation::FindUnconnectedPort() const {
  for (const auto& inlet : declared.ports.Inlets())
    if (!inlet->IsConnected()) return UnconnectedInlet(inlet->Type());
  for (const auto& outlet : declared.ports.Outlets())
    if (outlet->Type() == CAPE_MATERIAL && !outlet->IsConnected()) return "not all material ports are connected";
  return {};
}

std::string UnitValidation::FindCompoundMismatch() try {
  std::vector<com::Ref<CUnitPort>> ports = declared.ports.All();
  std::erase_if(ports, [](const auto& port) { return !port->IsConnectedMaterial(); });
  if (ports.empty()) return {};
  CUnitPort& reference = *ports.front();
  const com::Variant raw = reference.GetCompoundList();
  const std::vector<std::string> list =
      material::ReadOr([&] { return com::ReadStrings(raw.Get()); },
                       [&](const std::string& why) {
                         return Failure("Invalid list of compounds from " + reference.ComponentName() + ": " + why);
                       });
  if (list.empty()) return "No chemical compounds on port " + reference.ComponentName();
  for (std::size_t i = 1; i < ports.size(); ++i) ports[i]->CheckCompoundLists(list, reference);
  if (&reference == declared.ports.FirstConnectedMaterialInlet()) compoundCount = list.size();
  return {};
} catch (const Failure& failure) {
  return failure.error.description;
}

std::string UnitValidation::FindInvalidParameter() const {
  std::string first;
  for (const auto& parameter : declared.parameters.List()) {
    const std::string fault = parameter->CheckCurrentValue();
    if (first.empty() && !fault.empty())
      first = "invalid value for parameter " + parameter->ComponentName() + ": " + fault;
  }
  return first;
}

std::string UnitValidation::FindMissingProperty() try {
  const std::vector<std::string> required = unit.RequiredProperties();
  CUnitPort* feed = declared.ports.FirstConnectedMaterialInlet();
  if (required.empty() || !feed) return {};
  const std::vector<std::string> supported = feed->GetPropertyList();
  for (const std::string& property : required) {
    const bool found =
        std::ranges::any_of(supported, [&](const std::string& name) { return com::EqualNoCase(name, property); });
    if (!found)
      return "Unit " + unitName + " needs property " + property + ", which the material on port " +
             feed->ComponentName() + " does not calculate";
  }
  return {};
} catch (const Failure& failure) {
  return failure.error.description;
}

}  // namespace morvelan
