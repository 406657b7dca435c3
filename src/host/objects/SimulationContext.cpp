#include "host/objects/SimulationContext.h"

#include "com/Text.h"

namespace morvelan::host {

SimulationContext::SimulationContext(bool simplified, const std::string& thermoVersion)
    : Implements("Simulation", "Flowsheet simulation") {
  namedValues.emplace("SimplifiedModelRequest", com::MakeBoolean(simplified));
  if (!thermoVersion.empty()) namedValues.emplace("DefaultThermoVersion", com::MakeString(thermoVersion));
}

HRESULT SimulationContext::PopUpMessage(BSTR message) {
  return Guard("PopUpMessage", "ICapeDiagnostic", [&] { lines.push_back(com::ToUtf8(message)); });
}

HRESULT SimulationContext::LogMessage(BSTR message) {
  return Guard("LogMessage", "ICapeDiagnostic", [&] { lines.push_back(com::ToUtf8(message)); });
}

HRESULT SimulationContext::get_NamedValueList(VARIANT* names) {
  return Answer("NamedValueList", "ICapeCOSEUtilities", names, [&] {
    std::vector<std::string> list;
    for (const auto& [name, value] : namedValues) list.push_back(name);
    return com::MakeStrings(list);
  });
}

HRESULT SimulationContext::get_NamedValue(BSTR name, VARIANT* value) {
  return Answer("NamedValue", "ICapeCOSEUtilities", value, [&] {
    const std::string wanted = com::ToUtf8(name);
    for (const auto& [known, stored] : namedValues)
      if (com::EqualNoCase(known, wanted)) return com::Copy(stored.Get());
    throw HostError(kECapeInvalidArgument, "named value \"" + wanted + "\" is unknown");
  });
}

}  // namespace morvelan::host
