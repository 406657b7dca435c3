#pragma once

#include "host/flowsheet/Results.h"
#include "host/flowsheet/StreamNetwork.h"
#include "host/material/MaterialObject.h"
#include "host/objects/ValueStream.h"

namespace morvelan::host {

/// The object to which units' ports are connected: a material, or the values of an energy or information stream.
class StreamObject {
 public:
  /// Makes the object with the state from the file, if the file gives one. A material is not yet at equilibrium.
  StreamObject(const NetworkStream& stream, const std::shared_ptr<const PropertyPackage>& package, ThermoOffer offer);

  [[nodiscard]] com::Ref<IDispatch> Dispatch() const;
  /// Brings a material to equilibrium at its temperature and pressure. Throws std::exception.
  void Flash();
  [[nodiscard]] StreamResult Read() const;
  /// A material's state; null for other streams.
  [[nodiscard]] MaterialState* Material() { return material ? &material->State() : nullptr; }

 private:
  std::string name;
  CapePortType type;
  com::Ref<MaterialObject> material;
  com::Ref<ValueStream> values;
};

}  // namespace morvelan::host
