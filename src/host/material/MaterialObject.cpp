#include "host/material/MaterialObject.h"

namespace morvelan::host {
namespace {

bool IsThermo10(REFIID iid) { return iid == __uuidof(ICapeThermoMaterialObject); }

bool IsThermo11(REFIID iid) {
  return iid == __uuidof(ICapeThermoMaterial) || iid == __uuidof(ICapeThermoPropertyRoutine) ||
         iid == __uuidof(ICapeThermoEquilibriumRoutine) || iid == __uuidof(ICapeThermoCompounds) ||
         iid == __uuidof(ICapeThermoPhases) || iid == __uuidof(ICapeThermoUniversalConstant);
}

}  // namespace

std::optional<ThermoOffer> ThermoOfferByName(std::string_view name) {
  if (name == "1.0") return ThermoOffer::k10;
  if (name == "1.1") return ThermoOffer::k11;
  if (name == "both") return ThermoOffer::kBoth;
  return std::nullopt;
}

MaterialObject::MaterialObject(std::string objectName, MaterialState initial, ThermoOffer offered)
    : MaterialCompounds11(std::move(objectName), std::move(initial)), offer(offered) {}

void* MaterialObject::FindInterface(REFIID iid) {
  if (offer == ThermoOffer::k10 && IsThermo11(iid)) return nullptr;
  if (offer == ThermoOffer::k11 && IsThermo10(iid)) return nullptr;
  return MaterialCompounds11::FindInterface(iid);
}

com::Ref<IDispatch> MaterialObject::MakeSibling(MaterialState initial) const {
  return com::Make<MaterialObject>(Name(), std::move(initial), offer).As<IDispatch>();
}

}  // namespace morvelan::host
