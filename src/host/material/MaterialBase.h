#pragma once

#include <string>
#include <vector>

#include "com/Ref.h"
#include "host/material/MaterialState.h"
#include "host/objects/HostObject.h"

namespace morvelan::host {

/// What all interfaces of a material share: one state, and its compounds, phases and properties by name.
///
/// Names are taken in any ASCII case. A single text or number stands for an array of one. The phases are "Vapor" and
/// "Liquid" in both generations of the interfaces.
class MaterialBase : public HostObject {
 public:
  MaterialBase(std::string objectName, MaterialState initial);

  [[nodiscard]] MaterialState& State() { return state; }

 protected:
  void* FindInterface(REFIID iid) override;

  /// A material of the same interfaces, as units receive it.
  [[nodiscard]] virtual com::Ref<IDispatch> MakeSibling(MaterialState initial) const = 0;
  /// Hands out a new material with this one's state, or an empty one.
  HRESULT HandOut(const char* operation, const char* interfaceName, IDispatch** object, bool withState);

  [[nodiscard]] const PropertyPackage& Package() const { return state.Package(); }
  [[nodiscard]] com::Variant CompoundIds() const;
  /// Constants of the named compounds, or of all; see CompoundConstants.
  [[nodiscard]] com::Variant Constants(const VARIANT& names, const VARIANT& compounds) const;
  /// Throws HostError (ECapeInvalidArgument) for a phase that the material does not have.
  [[nodiscard]] PhaseKind PhaseByName(const std::string& name) const;
  [[nodiscard]] PhaseKind PhaseByName(BSTR name) const;
  /// Names of all properties that are calculated for a phase.
  [[nodiscard]] com::Variant CalculatedProperties() const;

  MaterialState state;
};

/// The host's material behind an object; null when it is none of the host's.
[[nodiscard]] com::Ref<MaterialBase> AsHostMaterial(IUnknown* object);

/// A property and the basis of its values.
struct PropertyInBasis {
  PropertyId id;
  Basis basis;
};

// Reading of names that units pass. Throws HostError for an unknown one.
[[nodiscard]] PropertyInBasis ReadProperty(BSTR name, BSTR basis);
[[nodiscard]] std::vector<PropertyId> ReadProperties(const VARIANT& names);

}  // namespace morvelan::host
