#pragma once

#include "framework/CUnitInfoPort.h"
#include "framework/Configuration.h"
#include "units/StreamUnit.h"

namespace morvelan {

/// Heats or cools a stream by a heat duty Q [W], to an outlet temperature, or with the heat of an energy
/// stream:
///
///     P_out = P_in - dP,  H_out(T_out, P_out) = H_in + Q      enthalpy flows [W]
///
/// The temperatures TL and TH of an energy stream limit Q so that T_out does not exceed max(T_in, TH) nor
/// fall below min(T_in, TL); that curves of stream and source may cross in between is not seen. The
/// configuration's "heatPort" makes the energy port an outlet, to which the heat is handed on that was taken
/// from the stream.
class CHeaterCooler final : public Configurable<StreamUnit> {
 public:
  CHeaterCooler();

  [[nodiscard]] int ThermoVersionParameterIndex() const override;
  [[nodiscard]] bool ValidateUnit(std::string& message) override;
  void InputsChanged() override;
  [[nodiscard]] std::function<void()> LoadUnit(UnitReader& reader, int version,
                                               const std::vector<ParameterRecord>& records) override;
  void CalculateUnit(int compoundCount, std::optional<com::Name>& outletFlashSpec) override;

 protected:
  void CreateFace() override;
  [[nodiscard]] Json Configuration() const override;
  void Configure(const Json& configuration) override;

 private:
  /// How far the temperatures of an energy stream let it heat or cool the stream.
  struct Limit {
    bool reached = false;
    bool infeasible = false;
  };

  [[nodiscard]] bool HeatIsOutlet() const { return outlets.size() > 1; }
  /// Prepares the change of the heat port to a side, which then can't fail.
  [[nodiscard]] std::function<void()> PlanHeatPort(bool asOutlet);
  [[nodiscard]] CUnitInfoPort& HeatPort();

  /// Heats the outlet with the source and returns the duty [W] that it took up.
  [[nodiscard]] double HeatOutlet(HeatSource source);
  void KeepInletTemperature();
  /// Brings the outlet to the temperature up to which the source can heat or cool; takes from the source what
  /// it can't give.
  [[nodiscard]] Limit LimitDuty(HeatSource& source, double inletEnthalpyFlow);
  void WarnOfInfeasibility(const HeatSource& source, bool infeasible) const;
  /// Flashes the outlet at its temperature and returns the duty [W], nothing when it can't be found.
  [[nodiscard]] std::optional<double> FindDuty();
  void PublishResults(std::size_t type, std::optional<double> duty);
  void ReportRemainingParameters(std::size_t type);

  double outletTemperature = 0;  // [K]
  double heatDuty = 0;           // [W]
  double pressureDrop = 0;       // [Pa]
};

}  // namespace morvelan
