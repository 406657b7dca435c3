#include "framework/ThermoChoice.h"

#include "material/Names.h"

namespace morvelan {

void ThermoChoice::Refresh() {
  if (position() < 0) uses11 = false;
  if (const CParameter* parameter = find()) uses11 = parameter->Value() == ParameterValue(std::string("1.1"));
}

void ThermoChoice::Match(bool thermo11) {
  CParameter* parameter = find();
  const std::string version = thermo11 ? "1.1" : "1.0";
  if (parameter && parameter->Value() != ParameterValue(version)) parameter->Put(version);
}

void ThermoChoice::Choose(const std::string& version) {
  isFixed = true;
  if (!find()) {
    pending = version;
    return;
  }
  Match(version == "1.1");
  pending.clear();
}

void ThermoChoice::Forget() {
  isFixed = true;
  pending.clear();
  Refresh();
}

void ThermoChoice::ApplyPending() {
  if (!pending.empty()) Choose(pending);
}

void ThermoChoice::AskHost(const SimulationContext& context, const std::function<void(const std::string&)>& warn) {
  if (isFixed || position() < 0 || !context.Lists(names::kDefaultThermoVersion)) return;
  const auto value = context.NamedValue(names::kDefaultThermoVersion);
  if (!value) return;
  const VARIANT given = com::Borrow(value->Get());
  if (given.vt != VT_BSTR)
    return warn("unexpected format for named value \"DefaultThermoVersion\": expected a string value");
  const std::string version = com::ToUtf8(given.bstrVal);
  if (version != "1.0" && version != "1.1")
    return warn("unrecognized named value for \"DefaultThermoVersion\": \"" + version +
                "\"; only values of \"1.0\" and \"1.1\" are supported");
  Choose(version);
}

}  // namespace morvelan
