#pragma once

#include <memory>
#include <vector>

#include "com/Values.h"
#include "tests/support/FakeMaterial.h"

namespace morvelan::benchmarks {

using MaterialRef = com::Ref<test::FakeMaterial>;

/// What a material holds overall, as it is passed on from one to the other.
struct Overall {
  com::Variant temperature, pressure, flow, fractions;
};

/// The host calls that a unit cannot do without, made by hand: what a unit's own cost is measured against.
/// One for each generation of the thermodynamic interfaces.
class DirectCalls {
 public:
  virtual ~DirectCalls() = default;

  virtual void CountCompounds(const MaterialRef& material) const = 0;
  [[nodiscard]] virtual Overall Read(const MaterialRef& material) const = 0;
  virtual void Write(const MaterialRef& material, const Overall& overall) const = 0;
  /// Flashes at given pressure and temperature or, otherwise, enthalpy.
  virtual void Flash(const MaterialRef& material, bool givenTemperature) const = 0;
  /// Calculates and reads an enthalpy, of a copy of the material or of itself.
  virtual void Enthalpy(const MaterialRef& material, bool ofCopy) const = 0;
  virtual void SetEnthalpy(const MaterialRef& material) const = 0;
  virtual void Temperature(const MaterialRef& material) const = 0;

  [[nodiscard]] static std::unique_ptr<DirectCalls> Make(bool thermo11);
};

}  // namespace morvelan::benchmarks
