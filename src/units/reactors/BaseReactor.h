#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "framework/CUnitInfoPort.h"
#include "framework/KeyedValues.h"
#include "units/StreamUnit.h"
#include "units/reactors/ReactionProperties.h"
#include "units/reactors/ReactionResolver.h"

namespace morvelan {

/// The first parameters of every reactor; its own follow, and "Thermo Version" is the last.
enum ReactorParameter : std::size_t {
  kPressureDrop,
  kHeatDutyType,
  kTemperature,
  kHeatDuty,
  kEnthalpyType,
  kFirstOwnParameter
};

/// What determines the heat balance: the options of "Heat duty type".
enum HeatDutyType : std::size_t { kIsothermal, kByHeatDuty, kByEnergyInlet };

/// The options of "Enthalpy Type".
enum EnthalpyType : std::size_t { kUseEnthalpyF, kUseEnthalpy, kUseEnthalpyAndReaction };

/// Declarations of the first parameters, whose descriptions differ from reactor to reactor.
[[nodiscard]] std::vector<ParameterDeclaration> ReactorParameters(const char* pressureDropText,
                                                                  const char* temperatureText,
                                                                  std::vector<ParameterDeclaration> ownParameters = {});
/// The ports of every reactor. The energy port becomes an inlet when the heat comes from there.
extern const PortDeclaration kReactorPorts[3];

/// Base of the reactors whose chemistry comes from a reaction package of the host. It holds the package,
/// resolves reactions, switches what is given and what is calculated, and closes the heat balance
///
///     H_out = H_in + Q - sum of extent_r dH_r      enthalpy flows [W], Q > 0 heats the reactor
///
/// where the sum counts only under "Use Enthalpy and heat of reaction". What a reactor is told beyond its
/// parameters is its configuration, which is kept in streams under the same keys.
class BaseReactor : public com::Implements<Configurable<StreamUnit>, ICapeKineticReactionContext> {
 public:
  /// `unitKind` begins the reactor's warnings.
  BaseReactor(const UnitDeclaration& declaration, std::string_view unitKind);

  // ICapeKineticReactionContext
  HRESULT SetReactionObject(IDispatch** reactionsObject) override;
  // ICapeUtilities
  HRESULT Terminate() override;

  void CalculateUnit(int compoundCount, std::optional<com::Name>& outletFlashSpec) override;
  void OnCalculateDone(int compoundCount, bool success) override;
  void InputsChanged() override;
  [[nodiscard]] int ThermoVersionParameterIndex() const override;
  HRESULT SaveUnit(UnitWriter& writer) override;
  [[nodiscard]] std::function<void()> LoadUnit(UnitReader& reader, int version,
                                               const std::vector<ParameterRecord>& records) override;

 protected:
  void CreateFace() override;
  [[nodiscard]] GUID AutomationType() const override;

  /// Prepares what a configuration with some of the keys says, or throws; what is returned can't fail.
  [[nodiscard]] virtual std::function<void()> PlanConfiguration(const Json& configuration) = 0;
  void Configure(const Json& configuration) override { PlanConfiguration(configuration)(); }

  // ---- The reaction package

  [[nodiscard]] bool HasReactionPackage() const { return static_cast<bool>(reactionPackage); }
  /// The identifiers of the package's reactions, in its order.
  [[nodiscard]] const std::vector<std::string>& ReactionIds() const { return reactionIds; }
  [[nodiscard]] ReactionResolver Resolver() const { return ReactionResolver(reactionPackage, inlets, UsesThermo11()); }
  /// The package with a copy of the feed's material. Throws Failure that begins with `failed`.
  [[nodiscard]] ReactionProperties PropertiesAtInlet(const std::string& failed);
  /// The package with a material of the reactor's own.
  [[nodiscard]] ReactionProperties PropertiesAt(const com::Ref<IDispatch>& material, const std::string& failed) const {
    return ReactionProperties(reactionPackage, material, failed);
  }
  [[nodiscard]] const com::Ref<ICapeReactionProperties>& ReactionPackage() const { return reactionPackage; }
  /// Heats of reaction [J/mol] of reactions at the feed's state, one per reaction.
  [[nodiscard]] std::vector<double> HeatsOfReaction(std::span<const ReactionRecord> reactions);

  /// Resolves the selected reactions anew, into `records` and `compounds`, with `Resolve`. Throws Failure.
  virtual void ResolveAll() = 0;
  /// Fills `records`, one per request. `findFault` gives what is wrong with a resolved reaction, empty for
  /// nothing. Faults name the reaction between `quote`s.
  void Resolve(std::span<const ReactionRequest> requests, const std::string& quote,
               const std::function<std::string(std::size_t, const ReactionRecord&)>& findFault);

  // ---- Validation, step by step: false with a message when something is wrong

  /// Resolves the reactions. What a calculation's own validation resolved serves that calculation.
  [[nodiscard]] bool HasReactions(std::string& message);
  [[nodiscard]] bool HasMaterials(std::string& message);
  [[nodiscard]] bool HasHeatSpecification(std::string& message);

  // ---- Calculation. All throw Failure of "Calculate".

  /// The reactor's own calculation, between the beginning and the end of the report.
  virtual void React() = 0;
  [[nodiscard]] HeatDutyType HeatType();
  [[nodiscard]] EnthalpyType EnthalpyKind();
  /// Lets a feed without flow pass, at the outlet's pressure.
  void BypassFeed(HeatDutyType type, const HeatSource& source);
  /// The duty [W] that is given, reported where it comes from an energy stream; none for an isothermal
  /// reactor.
  [[nodiscard]] HeatSource ReadHeatSource(const char* afterColon = " ");
  /// Warns of temperatures of the energy stream that can't heat or cool a reactor at a temperature [K].
  void WarnOfInfeasibleHeat(const HeatSource& source, double reactorTemperature) const;
  /// The feed's pressure less the pressure drop, at least 1 Pa; a warning below that, or at it as well.
  [[nodiscard]] double ReactorPressure(bool warnsAtLimit) const;
  /// The property that heat balances use.
  [[nodiscard]] com::Name EnthalpyProperty();
  /// Enthalpy flow [W] of the feed.
  [[nodiscard]] double FeedEnthalpyFlow();
  /// Enthalpy flow [W] of the outlet as it was flashed.
  [[nodiscard]] double ProductEnthalpyFlow();
  /// Flashes the outlet at its pressure, and at the given temperature or the enthalpy that follows, and
  /// returns the duty [W] if it is known. `heatOfReaction` [W] is the sum that counts in the balance;
  /// `noTemperature` begins the text of a failure to find out the temperature.
  [[nodiscard]] std::optional<double> CloseHeatBalance(HeatDutyType type, const HeatSource& source,
                                                       double feedEnthalpyFlow, double heatOfReaction,
                                                       const char* noTemperature = "");
  /// Puts temperature [K] and duty [W] into the parameters that are results, and the duty at the energy
  /// outlet: positive is consumed. A duty that is not known is not set.
  void PublishHeat(HeatDutyType type, std::optional<double> duty);

  [[nodiscard]] std::string_view Kind() const { return kind; }
  [[nodiscard]] double GivenTemperature() const { return temperature; }  // [K]

  // Of the last validation or calculation.
  std::vector<ReactionRecord> records;
  std::vector<std::string> compounds;  // of the feed

 private:
  void StartReactorReport();
  void FinishReactorReport();
  void FlashProduct(double enthalpyFlow, const char* noTemperature);
  void TakePackage(IDispatch* object);
  void ListReactions(IDispatch* object);
  /// Prepares the side of the energy port, which then can't fail.
  [[nodiscard]] std::function<void()> PlanEnergyPort(bool asInlet);
  [[nodiscard]] bool EnergyIsInlet() const { return inlets.size() > 1; }
  [[nodiscard]] com::Ref<CUnitPort> EnergyPort() const;

  const std::string_view kind;
  com::Ref<ICapeReactionProperties> reactionPackage;
  std::vector<std::string> reactionIds;

  bool recordsAreFresh = false;  // resolved by the validation that began this calculation
  std::size_t thermoVersionPosition = kFirstOwnParameter;
  double pressureDrop = 0;  // [Pa]
  double temperature = 0;   // [K]
  double heatDuty = 0;      // [W], positive heats the reactor
};

}  // namespace morvelan
