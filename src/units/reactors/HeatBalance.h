#pragma once

#include <optional>
#include <string>

#include "framework/UnitDeclarations.h"
#include "units/EnergyStream.h"

namespace morvelan {

/// The heat balance of a reactor, in enthalpy flows [W]; Q > 0 heats the reactor:
///
///     H_out = H_in + Q - sum of extent_r dH_r
///
/// where the sum counts only under "Use Enthalpy and heat of reaction". What is given and what follows is an
/// option; so is the enthalpy. It owns the reactor's energy port, which is an inlet when the heat comes from
/// there. Operations throw Failure of "Calculate".
class HeatBalance {
 public:
  enum class Type { kIsothermal, kHeatDuty, kEnergyInlet };
  enum class Enthalpies { kEnthalpyF, kEnthalpy, kEnthalpyAndReaction };

  /// Feed, product and journal are the reactor's.
  HeatBalance(InletStream& reactorFeed, OutletStream& reactorProduct, Journal& reactorJournal)
      : feed(reactorFeed), product(reactorProduct), journal(reactorJournal) {}

  /// Declares its parameters, four in a row, and its port.
  void Declare(UnitDeclarations& declare, const char* temperatureText);
  /// False with a message where what is given is not set.
  [[nodiscard]] bool HasSpecification(std::string& message) const;

  /// Puts in the report which enthalpy is used.
  void ReportEnthalpies();
  [[nodiscard]] bool IsIsothermal() const { return type == Type::kIsothermal; }
  [[nodiscard]] double GivenTemperature() const { return temperature; }  // [K]
  /// The property that stands for the enthalpy.
  [[nodiscard]] const Property& Enthalpy() const;
  [[nodiscard]] bool CountsReactions() const { return enthalpies == Enthalpies::kEnthalpyAndReaction; }

  /// The duty [W] that is given, reported where it comes from an energy stream; none for an isothermal
  /// reactor.
  [[nodiscard]] HeatSource ReadSource(const char* afterColon = " ");
  [[nodiscard]] double FeedEnthalpyFlow() const;  // [W]
  [[nodiscard]] double ProductEnthalpyFlow();     // [W], as it was flashed
  /// Flashes the product at the given temperature or the enthalpy that follows, and returns the duty [W] if
  /// it is known. `heatOfReaction` [W] is the sum that counts; `noTemperature` begins the text of a failure
  /// to find out the temperature.
  [[nodiscard]] std::optional<double> Close(StreamState out, const HeatSource& source, double feedEnthalpyFlow,
                                            double heatOfReaction, LazyText noTemperature = "");
  /// Lets a feed without flow pass at a pressure [Pa].
  void Bypass(double pressure, const HeatSource& source);
  /// Warns of temperatures of the energy stream that can't heat or cool the product.
  void WarnOfInfeasibility(const HeatSource& source) const;
  /// Puts temperature [K] and duty [W] into the parameters that are results, and the duty at the energy
  /// outlet: positive is consumed. A duty that is not known is not set.
  void Publish(std::optional<double> duty);

 private:
  InletStream& feed;
  OutletStream& product;
  Journal& journal;

  EnergyPort port;
  Option<Type> type;
  Real temperature;  // [K]
  Real duty;         // [W]
  Option<Enthalpies> enthalpies;
};

}  // namespace morvelan
