#pragma once

#include "host/flowsheet/Results.h"
#include "host/flowsheet/StreamNetwork.h"
#include "host/material/MaterialObject.h"
#include "host/objects/ValueStream.h"

namespace morvelan::host {

/// A stream as the object that units are connected to; one of the two.
class StreamObject {
 public:
  /// Makes the object and gives it the state of the file, if it has one there; a material is not yet at
  /// equilibrium.
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
