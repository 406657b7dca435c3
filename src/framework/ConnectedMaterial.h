#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "framework/BaseObject.h"
#include "material/Thermo.h"
#include "material/TrialMaterial.h"

namespace morvelan {

class UnitOwner;

/// The object that a host connected to a port, and what a unit asks of it when it is a material. Whichever
/// generation of the thermodynamic interfaces is in force answers.
///
/// The operations throw Failure; the texts stay on the port as well. An outlet's state is what the unit decided,
/// and reaches the material with `CalcEquilibrium`.
class ConnectedMaterial : public BaseObject {
 public:
  ConnectedMaterial(const char* portName, const char* portDescription, const GUID& portType, UnitOwner& owner)
      : BaseObject(portName, portDescription, portType), unit(&owner) {}

  [[nodiscard]] bool IsConnected() const { return static_cast<bool>(connected); }
  [[nodiscard]] const com::Ref<IDispatch>& ConnectedObject() const { return connected; }

  /// The held state: what an inlet read from its material, or what an outlet is going to write.
  [[nodiscard]] material::StreamState& State() { return state; }

  /// The flash that an outlet is left for, which comes after the unit's calculation.
  void LeaveFor(std::optional<com::Name> flash) { leftFor = flash; }
  [[nodiscard]] const std::optional<com::Name>& LeftFor() const { return leftFor; }

  /// Sizes the held composition.
  void ResizeCompoundBuffer(std::size_t count);
  /// Reads temperature [K], pressure [Pa], total flow [mol/s] and `count` mole fractions from the material.
  void ReadState(std::size_t count);

  void SetProp(com::Name property, com::Name phase, const VARIANT& compoundIds, com::Name calcType, com::Name basis,
               const VARIANT& values);
  /// Reads stored values.
  [[nodiscard]] com::Variant GetProp(com::Name property, com::Name phase, const VARIANT& compoundIds,
                                     com::Name calcType, com::Name basis);
  /// Calculates on a copy of the material. An empty basis asks for a total [.../s], others for a molar value.
  /// (Under thermo 1.0 a "Mass" basis of an emulated overall property is answered with the molar value: ask
  /// for "Mole".)
  [[nodiscard]] material::Answer GetProperty(const Property& property, com::Name phase, com::Name calcType,
                                             com::Name basis);
  /// Calculates on the connected material itself.
  [[nodiscard]] material::Answer GetPropertyNoDup(const Property& property, com::Name phase, com::Name calcType,
                                                  com::Name basis);
  [[nodiscard]] com::Bstr GetVaporName();
  [[nodiscard]] com::Ref<IDispatch> DuplicateMaterial();
  /// The same, for a unit to work on.
  [[nodiscard]] TrialMaterial CopyMaterial();
  /// The compound list as the host gives it, whatever its form.
  [[nodiscard]] com::Variant GetCompoundList();
  /// At least one identifier.
  [[nodiscard]] std::vector<std::string> GetCompoundIds();
  [[nodiscard]] std::size_t GetCompoundCount();
  [[nodiscard]] material::CompoundIdentities GetCompoundIdentities();
  /// A numeric constant, one value per compound, none missing.
  [[nodiscard]] std::vector<double> GetCompoundConstant(com::Name constant);
  /// A constant that is a text, such as a formula; one per compound.
  [[nodiscard]] std::vector<std::string> GetCompoundText(com::Name constant);
  [[nodiscard]] std::vector<material::PhaseFraction> GetPhaseFractions();
  /// The labels of the phases that the material may have; under thermo 1.0, that it has.
  [[nodiscard]] std::vector<std::string> GetPhaseLabels();
  /// The names of the single-phase properties that the material can calculate.
  [[nodiscard]] std::vector<std::string> GetPropertyList();
  /// Writes the held state to the material and brings it to equilibrium.
  void CalcEquilibrium(com::Name flashType);
  /// Molar enthalpy [J/mol] of a composition at 101325 Pa and 298.15 K.
  [[nodiscard]] double CalcNormalEnthalpy(std::span<const double> composition);
  /// Throws unless this port carries the same compounds in the same order as `referencePort`, whose `list` is
  /// given.
  void CheckCompoundLists(std::span<const std::string> list, const BaseObject& referencePort);

 protected:
  void Keep(com::Ref<IDispatch> object) { connected = std::move(object); }
  /// Gives the object up, whatever the host does meanwhile.
  void ReleaseObject() { const auto released = std::move(connected); }
  void ForgetUnit() { unit = nullptr; }
  /// Null once the unit is gone.
  [[nodiscard]] UnitOwner* FindUnit() const { return unit; }
  /// Throws once the unit is gone.
  [[nodiscard]] UnitOwner& Unit() const;

 private:
  template <class Body>
  auto OnMaterial(std::string_view operation, Body&& body, std::string_view interfaceName = "UnitPort");

  UnitOwner* unit;
  com::Ref<IDispatch> connected;
  material::StreamState state;
  std::optional<com::Name> leftFor;
};

}  // namespace morvelan
