#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "com/Ref.h"
#include "com/Values.h"
#include "errors/Failure.h"
#include "material/Answer.h"
#include "material/Property.h"

namespace morvelan::material {

using com::Name;

/// The state of a stream as a port holds it between a calculation and the flash.
struct StreamState {
  double pressure = 0;              // [Pa]
  double temperature = 0;           // [K]
  double totalFlow = 0;             // [mol/s]
  std::vector<double> composition;  // mole fractions, one per compound in the port's order
};

/// Which overall properties a thermo 1.0 material could not calculate itself, so that they are summed over
/// the phases straight away from then on. One per unit; a property never leaves the set.
class OverallEmulation {
 public:
  /// Position of a property that can be summed over phases: enthalpy, enthalpyF, entropy, entropyF or volume.
  [[nodiscard]] static std::optional<std::size_t> IndexOf(const Property& property);

  std::array<bool, 5> needed{};
};

/// A port's material as the operations see it: the connected object, the port's name for messages, and the
/// memory of its unit.
struct PortMaterial {
  com::Ref<IDispatch> object;
  const std::string& portName;
  OverallEmulation& emulation;
};

/// The request for one property. Names are passed to the host as they are; a null basis asks for a total.
struct PropertyRequest {
  Property property;
  Name phase;
  Name calcType;
  Name basis;
};

struct PhaseFraction {
  std::string phase;
  double fraction;  // mole basis
};

/// One per compound, in the material's order.
struct CompoundIdentities {
  std::vector<std::string> names;
  std::vector<std::string> casNumbers;
};

/// What units ask of host materials, for one generation of the thermodynamic interfaces. The generations
/// differ in the interfaces they use and in what they must emulate; a caller sees no difference. The
/// interfaces of a material are asked for on every call. All operations throw Failure with the texts of the
/// operation that failed.
class Thermo {
 public:
  virtual ~Thermo() = default;

  /// Writes property values of a phase or of the whole ("Overall").
  virtual void SetProp(const PortMaterial& port, const PropertyRequest& request, const VARIANT& compoundIds,
                       const VARIANT& values) const = 0;
  /// Reads stored values without calculating.
  [[nodiscard]] virtual com::Variant GetProp(const PortMaterial& port, const PropertyRequest& request,
                                             const VARIANT& compoundIds) const = 0;
  /// Calculates on a copy, so that the connected material is left untouched.
  [[nodiscard]] virtual Answer GetProperty(const PortMaterial& port, const PropertyRequest& request) const = 0;
  /// Calculates on the connected material itself.
  [[nodiscard]] virtual Answer GetPropertyNoDup(const PortMaterial& port, const PropertyRequest& request) const = 0;
  /// The host's label of the vapor phase.
  [[nodiscard]] virtual com::Bstr GetVaporName(const PortMaterial& port) const = 0;
  [[nodiscard]] virtual com::Ref<IDispatch> DuplicateMaterial(const PortMaterial& port) const = 0;
  /// The compound identifiers as the host gives them: an array of strings if the host behaves.
  [[nodiscard]] virtual com::Variant GetCompoundList(const PortMaterial& port) const = 0;
  [[nodiscard]] virtual CompoundIdentities GetCompoundIdentities(const PortMaterial& port) const = 0;
  /// A constant of all compounds as the host gives it: an array with one value per compound if the host
  /// behaves.
  [[nodiscard]] virtual com::Variant GetCompoundConstant(const PortMaterial& port, Name constant) const = 0;
  /// The phases present besides "Overall".
  [[nodiscard]] virtual std::vector<PhaseFraction> GetPhaseFractions(IDispatch* material) const = 0;
  /// The labels of the phases that the material may have; under thermo 1.0, that it has.
  [[nodiscard]] virtual std::vector<std::string> GetPhaseLabels(const PortMaterial& port) const = 0;
  /// The names of the single-phase properties that the material can calculate.
  [[nodiscard]] virtual std::vector<std::string> GetPropertyList(const PortMaterial& port) const = 0;
  /// Writes `state` as far as the flash type needs it and brings the material to equilibrium.
  virtual void CalcEquilibrium(const PortMaterial& port, const StreamState& state, Name flashType) const = 0;
  /// Makes the material one phase in a state, whether it is one at equilibrium or not, so that properties of
  /// the phase can be calculated.
  virtual void SetSinglePhase(const PortMaterial& port, const StreamState& state, Name phase) const = 0;
  /// Molar enthalpy [J/mol] of a copy of the material at a pressure [Pa] and a molar entropy [J/(mol K)].
  [[nodiscard]] virtual double HFromPSFlash(const PortMaterial& inlet, double pressure, double entropy) const = 0;
  /// Molar enthalpy [J/mol] of a composition (mole fractions) at 101325 Pa and 298.15 K, on a copy of the
  /// material.
  [[nodiscard]] virtual double CalcNormalEnthalpy(const PortMaterial& port,
                                                  std::span<const double> composition) const = 0;
};

/// The operations for thermo 1.1, or for thermo 1.0.
[[nodiscard]] const Thermo& ThermoInForce(bool thermo11);

}  // namespace morvelan::material
