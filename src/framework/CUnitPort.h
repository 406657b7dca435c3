#pragma once

#include <string>
#include <utility>

#include "framework/ConnectedMaterial.h"
#include "framework/Declarations.h"

namespace morvelan {

/// The place where the host connects a stream to a unit. This class is a material port; `CUnitInfoPort` is an
/// energy or information port.
class CUnitPort : public com::Implements<ConnectedMaterial, ICapeUnitPort> {
 public:
  CUnitPort(const PortDeclaration& declaration, UnitOwner& owner);

  // ICapeUnitPort
  HRESULT get_portType(CapePortType* result) override;
  HRESULT get_direction(CapePortDirection* result) override;
  HRESULT get_connectedObject(IDispatch** object) override;
  HRESULT Connect(IDispatch* object) override;
  HRESULT Disconnect() override;

  [[nodiscard]] CapePortType Type() const { return type; }
  [[nodiscard]] CapePortDirection Direction() const { return direction; }
  [[nodiscard]] bool IsConnectedMaterial() const { return type == CAPE_MATERIAL && IsConnected(); }

  /// Releases the connected object without a word to the unit.
  virtual void ReleaseConnection();
  /// The unit is going; the port may stay with the host.
  void DetachFromUnit();
  /// Gives the port another name, and its only value the other one.
  virtual void Rename(std::string portName, std::string) noexcept { SetName(std::move(portName)); }

 protected:
  /// Takes the object as this port's connection, or throws.
  virtual void Accept(IDispatch* object);

 private:
  void TellUnit();

  CapePortDirection direction;
  CapePortType type;
};

}  // namespace morvelan
