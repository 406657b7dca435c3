// A unit's validation: connections, compound lists, parameters, then the unit's own checks.

#include <algorithm>

#include "framework/BaseUnit.h"
#include "material/Reading.h"

namespace morvelan {
namespace {

constexpr std::string_view kScope = "Validate";
constexpr std::string_view kInterface = "ICapeUnit";

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

HRESULT BaseUnit::Validate(BSTR* message, VARIANT_BOOL* isValid) {
  if (!message || !isValid) return E_POINTER;
  *isValid = VARIANT_FALSE;
  return Guard(kScope, kInterface, [&] {
    RequireInitialized();
    // A unit that a host validates while it calls back would lose what it is working with.
    if (activity) throw Failure(std::string("The unit can't be validated while it is being ") + activity);
    ReplaceText(message, {});
    const Verdict verdict = ValidateAll();
    ReplaceText(message, verdict.fault);
    if (verdict.failure) throw Failure(*verdict.failure);
    *isValid = com::ToVariantBool(verdict.fault.empty());
  });
}

BaseUnit::Verdict BaseUnit::ValidateAll() {
  const Activity busy(*this, "validated");
  valStatus = CAPE_INVALID;
  RefreshThermoVersion();
  Verdict verdict;
  try {
    verdict.fault =
        ForwardError(kScope, kInterface, [&] { return Recorded(kScope, kInterface, [&] { return FindFault(); }); });
    // A host that calls back while it answers may change what has been checked already.
    if (verdict.fault.empty() && valStatus != CAPE_INVALID)
      verdict.fault = "the unit was changed while it was validated";
  } catch (const Failure& failure) {
    verdict.failure = failure;
    verdict.fault = failure.error.description.empty() ? "the validation failed" : failure.error.description;
  }
  valStatus = verdict.fault.empty() ? CAPE_VALID : CAPE_INVALID;
  calcStatusText = verdict.fault.empty() ? "unit specification complete" : verdict.fault;
  return verdict;
}

std::string BaseUnit::FindFault() {
  if (checkConnections)
    if (std::string fault = FindUnconnectedPort(); !fault.empty()) return fault;
  if (checkCompounds)
    if (std::string fault = FindCompoundMismatch(); !fault.empty()) return fault;
  if (std::string fault = FindInvalidParameter(); !fault.empty()) return fault;
  std::string message;
  if (!ValidateUnit(message)) return message.empty() ? "invalid unit specification" : message;
  return FindMissingProperty();
}

std::string BaseUnit::FindUnconnectedPort() const {
  for (const auto& inlet : inlets)
    if (!inlet->IsConnected()) return UnconnectedInlet(inlet->Type());
  for (const auto& outlet : outlets)
    if (outlet->Type() == CAPE_MATERIAL && !outlet->IsConnected()) return "not all material ports are connected";
  return {};
}

std::string BaseUnit::FindCompoundMismatch() try {
  std::vector<com::Ref<CUnitPort>> ports = AllPorts();
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
  if (&reference == FirstConnectedMaterialInlet()) validatedCompoundCount = list.size();
  return {};
} catch (const Failure& failure) {
  return failure.error.description;
}

std::string BaseUnit::FindInvalidParameter() const {
  std::string first;
  for (const auto& parameter : parameters) {
    const std::string fault = parameter->CheckCurrentValue();
    if (first.empty() && !fault.empty())
      first = "invalid value for parameter " + parameter->ComponentName() + ": " + fault;
  }
  return first;
}

std::string BaseUnit::FindMissingProperty() try {
  const std::vector<std::string> required = RequiredProperties();
  CUnitPort* feed = FirstConnectedMaterialInlet();
  if (required.empty() || !feed) return {};
  const std::vector<std::string> supported = feed->GetPropertyList();
  for (const std::string& property : required) {
    const bool found =
        std::ranges::any_of(supported, [&](const std::string& name) { return com::EqualNoCase(name, property); });
    if (!found)
      return "Unit " + ComponentName() + " needs property " + property + ", which the material on port " +
             feed->ComponentName() + " does not calculate";
  }
  return {};
} catch (const Failure& failure) {
  return failure.error.description;
}

}  // namespace morvelan
