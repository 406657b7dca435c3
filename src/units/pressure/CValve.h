#pragma once

#include "units/StreamUnit.h"

namespace morvelan {

/// Lowers the pressure of a stream adiabatically: the outlet has the inlet's composition, flow and enthalpy
/// at a given pressure, or at one that is lower by a given difference,
///
///     P_out = P_in - dP,  h_out(T_out, P_out) = h_in      molar enthalpies [J/mol]
///
/// Kinetic energy is neglected. A given pressure above the inlet's is taken as it is, with a warning.
class CValve final : public StreamUnit {
 public:
  CValve();

  [[nodiscard]] int ThermoVersionParameterIndex() const override;
  void InputsChanged() override;
  void CalculateUnit(int compoundCount, std::optional<com::Name>& outletFlashSpec) override;

 protected:
  void CreateFace() override;

 private:
  [[nodiscard]] double OutletPressure(double inletPressure);

  double pressureDifference = 0;  // [Pa]
  double outletPressure = 0;      // [Pa]
};

}  // namespace morvelan
