#include "framework/CUnitPort.h"

#include "errors/ErrorText.h"
#include "framework/ConnectFailure.h"
#include "framework/UnitOwner.h"
#include "morvelan.h"

namespace morvelan {
namespace {

constexpr std::string_view kPortInterface = "ICapeUnitPort";

}  // namespace

CUnitPort::CUnitPort(const PortDeclaration& declaration, UnitOwner& owner)
    : Implements(declaration.name, declaration.description,
                 declaration.type == CAPE_MATERIAL ? __uuidof(DUnitPort) : __uuidof(DUnitInfoPort), owner),
      direction(declaration.direction),
      type(declaration.type) {}

HRESULT CUnitPort::get_portType(CapePortType* result) {
  if (!result) return E_POINTER;
  *result = type;
  return S_OK;
}

HRESULT CUnitPort::get_direction(CapePortDirection* result) {
  if (!result) return E_POINTER;
  *result = direction;
  return S_OK;
}

HRESULT CUnitPort::get_connectedObject(IDispatch** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  return Guard("get_connectedObject", kPortInterface, [&] {
    if (!IsConnected()) return;
    com::Ref<IDispatch> handedOut = ConnectedObject().As<IDispatch>();
    if (!handedOut) throw Failure("failed to get interface");
    *object = handedOut.Detach();
  });
}

HRESULT CUnitPort::Connect(IDispatch* object) {
  return Guard("Connect", kPortInterface, [&] {
    // The host may pass the object that is connected already, as its only reference.
    const auto alive = com::Ref<IDispatch>::Share(object);
    ReleaseConnection();
    TellUnit();
    try {
      Accept(object);
      TellUnit();
    } catch (...) {
      ReleaseConnection();
      throw;
    }
  });
}

HRESULT CUnitPort::Disconnect() {
  return Guard("Connect", kPortInterface, [&] {
    const bool wasConnected = IsConnected();
    ReleaseConnection();
    TellUnit();
    if (!wasConnected)
      throw Failure(UnitError{"failed to disconnect", "cannot disconnect: port not connected", {}, {}});
  });
}

void CUnitPort::Accept(IDispatch* object) {
  HRESULT failure = S_OK;
  const auto dispatch = com::Query<IDispatch>(object, &failure);
  if (!dispatch)
    throw ConnectFailure("failed to obtain IDispatch interface to material: " + ErrorText(object, failure));
  const bool thermo11 = static_cast<bool>(dispatch.As<ICapeThermoMaterial>());
  if (!thermo11 && !dispatch.As<ICapeThermoMaterialObject>())
    throw ConnectFailure(
        "The object that requested connection implements neither an ICapeMaterial nor an ICapeMaterialObject "
        "interface");
  Unit().MatchThermoVersion(thermo11);
  Keep(dispatch);
}

void CUnitPort::ReleaseConnection() { ReleaseObject(); }

void CUnitPort::DetachFromUnit() {
  ReleaseConnection();
  ForgetUnit();
}

void CUnitPort::TellUnit() {
  UnitOwner* unit = FindUnit();
  if (!unit) return;
  const auto alive = unit->KeepAlive();
  unit->ConnectionChanged();
}

}  // namespace morvelan
