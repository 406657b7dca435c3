// What every reactor's validation and calculation consist of, and the heat balance: what is given, what it
// uses, and what comes out.

#include <algorithm>
#include <array>
#include <cmath>

#include "framework/ReportFormat.h"
#include "material/MissingValue.h"
#include "material/Names.h"
#include "units/reactors/BaseReactor.h"

namespace morvelan {
namespace {

constexpr std::string_view kScope = "Calculate";
constexpr std::string_view kInterface = "ICapeUnit";
constexpr std::size_t kWork = 0;                // of the energy stream's items
constexpr double kLowestPressure = 1;           // [Pa]
constexpr double kTemperatureTolerance = 1e-6;  // [K]

constexpr const char* kEnthalpyLines[] = {
    "Using enthalpyF in enthalpy calculations",
    "Using enthalpy in enthalpy calculations; assuming this includes heat of formation",
    "Using enthalpy and heat of reaction in enthalpy calculations",
};

Failure CalculationFailure(std::string name, std::string description) {
  return Failure(UnitError{std::move(name), std::move(description), kScope, kInterface});
}

template <class Read>
double ReadProperty(Read&& read) {
  try {
    return read();
  } catch (const Failure& failure) {
    throw CalculationFailure("GetProp failed", failure.error.description);
  }
}

}  // namespace

// ---- Validation

bool BaseReactor::HasReactions(std::string& message) {
  recordsAreFresh = false;
  try {
    ResolveAll();
  } catch (const Failure& failure) {
    message = failure.error.description;
    return false;
  }
  recordsAreFresh = IsCalculating();
  return true;
}

bool BaseReactor::HasMaterials(std::string& message) {
  if (Inlet(0).IsConnected() && Outlet(0).IsConnected()) return true;
  message = "not all material ports are connected";
  return false;
}

bool BaseReactor::HasHeatSpecification(std::string& message) {
  const auto type = Parameter(kHeatDutyType).OptionIndex();
  if (type == kByHeatDuty && IsMissing(heatDuty)) message = "Error: heat duty/loss is not specified.";
  if (type == kIsothermal && IsMissing(temperature)) message = "Error: temperature is not specified.";
  return message.empty();
}

// ---- Calculation

void BaseReactor::CalculateUnit(int compoundCount, std::optional<com::Name>& outletFlashSpec) {
  outletFlashSpec.reset();
  StartReactorReport();
  try {
    if (!HasReactionPackage()) throw Failure(kNoReactionPackage, kScope, kInterface);
    // What was validated may be otherwise by now.
    if (std::string message; !recordsAreFresh && !ValidateUnit(message)) throw Failure(message, kScope, kInterface);
    if (compounds.size() != static_cast<std::size_t>(compoundCount))
      throw Failure("the list of compounds of the inlet material has changed", kScope, kInterface);
    React();
    FinishReactorReport();
  } catch (const Failure& failure) {
    ReportLine("\r\nCalculation failed: " + failure.error.description);
    throw;
  }
}

void BaseReactor::OnCalculateDone(int, bool) { recordsAreFresh = false; }

void BaseReactor::BypassFeed(HeatDutyType type, const HeatSource& source) {
  Warn("WARNING: " + std::string(kind) + ' ' + ComponentName() + ": Zero flow; bypassing calculations");
  const material::StreamState& feed = Inlet(0).State();
  material::StreamState& product = Outlet(0).State();
  product.temperature = feed.temperature;
  product.totalFlow = 0;
  product.composition = feed.composition;
  Flash(Outlet(0), names::kTP);
  PublishHeat(type,
              type == kByHeatDuty ? source.duty : 0);  // what is given stays, though nothing takes it up
}

// ---- The options

HeatDutyType BaseReactor::HeatType() {
  const auto type = Parameter(kHeatDutyType).OptionIndex();
  if (!type) throw CalculationFailure("Invalid type", "Invalid value for parameter Heat duty type");
  return static_cast<HeatDutyType>(*type);
}

EnthalpyType BaseReactor::EnthalpyKind() {
  const auto type = Parameter(kEnthalpyType).OptionIndex();
  if (!type) throw CalculationFailure("Invalid type", "Invalid value for parameter Enthalpy Type");
  return static_cast<EnthalpyType>(*type);
}

com::Name BaseReactor::EnthalpyProperty() {
  return EnthalpyKind() == kUseEnthalpyF ? names::kEnthalpyF : names::kEnthalpy;
}

// ---- The report

/// Begins the report with the enthalpy that is used.
void BaseReactor::StartReactorReport() {
  StartReport();
  ReportLine(kEnthalpyLines[EnthalpyKind()]);
}

/// Ends the report with all parameters.
void BaseReactor::FinishReactorReport() {
  std::vector<std::size_t> all(Parameters().size());
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = i;
  ReportOptionalParameters(all);
}

// ---- What is given

HeatSource BaseReactor::ReadHeatSource(const char* afterColon) {
  const HeatDutyType type = HeatType();
  if (type == kIsothermal) return {};
  if (type == kByHeatDuty) return {.duty = heatDuty};
  const com::Ref<CUnitPort> port = EnergyIsInlet() ? EnergyPort() : nullptr;
  if (!port || !port->IsConnected())
    ReportLine(std::string("Heat duty from inlet energy port:") + afterColon + "Not connected");
  return ReadEnergyStream(dynamic_cast<CUnitInfoPort*>(port.Get()), kind, afterColon);
}

void BaseReactor::WarnOfInfeasibleHeat(const HeatSource& source, double reactorTemperature) const {
  const auto warn = [&](const char* end, const char* how) {
    Warn("WARNING: " + std::string(kind) + ' ' + ComponentName() + ": " + end + " inlet heat stream temperature is " +
         how + ", this is infeasible");
  };
  const auto check = [&](std::optional<double> end, const char* name) {
    if (!end) return;
    const double excess = *end - reactorTemperature;
    if (source.duty > 0 && excess < -kTemperatureTolerance) warn(name, "below reactor temperature while heating");
    if (source.duty < 0 && excess > kTemperatureTolerance) warn(name, "above reactor temperature while cooling");
  };
  check(source.lowTemperature, "lower");
  check(source.highTemperature, "upper");
}

double BaseReactor::ReactorPressure(bool warnsAtLimit) const {
  const double pressure = inlets[0]->State().pressure - pressureDrop;
  if (pressure > kLowestPressure || (pressure == kLowestPressure && !warnsAtLimit)) return pressure;
  WarnAs(kind, " warning: limiting outlet pressure to 1 Pa");
  return kLowestPressure;
}

// ---- Enthalpies

double BaseReactor::FeedEnthalpyFlow() {
  return Inlet(0).State().totalFlow * ReadProperty([&] { return MolarEnthalpy(Inlet(0), EnthalpyProperty()); });
}

double BaseReactor::ProductEnthalpyFlow() {
  return Outlet(0).State().totalFlow *
         ReadProperty([&] { return FlashedMolarEnthalpy(Outlet(0), EnthalpyProperty()); });
}

ReactionProperties BaseReactor::PropertiesAtInlet(const std::string& failed) {
  com::Ref<IDispatch> copy;
  try {
    copy = Inlet(0).DuplicateMaterial();
  } catch (const Failure& failure) {
    throw Failure(failed + failure.error.description);
  }
  return PropertiesAt(copy, failed);
}

std::vector<double> BaseReactor::HeatsOfReaction(std::span<const ReactionRecord> reactions) {
  if (reactions.empty()) return {};
  const std::string failed = "failed to get property enthalpyOfReaction: ";
  try {
    ReactionProperties properties = PropertiesAtInlet(failed);
    std::vector<double> heats;
    for (const ReactionRecord& reaction : reactions) {
      const std::string which = "failed to get property enthalpyOfReaction for reaction " + reaction.name + ": ";
      heats.push_back(properties.Read(names::kEnthalpyOfReaction, reaction.phase, reaction.name, {which, which}));
    }
    return heats;
  } catch (const Failure& failure) {
    throw Failure(UnitError{"GetReactionProperty failed", failure.error.description, kScope, "BaseReactor"});
  }
}

std::optional<double> BaseReactor::CloseHeatBalance(HeatDutyType type, const HeatSource& source,
                                                    double feedEnthalpyFlow, double heatOfReaction,
                                                    const char* noTemperature) {
  if (type != kIsothermal) {
    FlashProduct(feedEnthalpyFlow + source.duty - heatOfReaction, noTemperature);
    return source.duty;
  }
  Outlet(0).State().temperature = GivenTemperature();
  Flash(Outlet(0), names::kTP);
  try {
    return ProductEnthalpyFlow() - feedEnthalpyFlow + heatOfReaction;
  } catch (const Failure& failure) {
    ReportLine("Heat duty cannot be determined: " + failure.error.description);
    return std::nullopt;
  }
}

/// Flashes the outlet at its pressure and an enthalpy flow [W], which finds its temperature.
void BaseReactor::FlashProduct(double enthalpyFlow, const char* noTemperature) {
  const double enthalpy = enthalpyFlow / Outlet(0).State().totalFlow;
  if (!std::isfinite(enthalpy))
    throw Failure("the heat balance of the reactor gives no finite enthalpy", kScope, kInterface);
  FlashAtEnthalpy(Outlet(0), enthalpy, EnthalpyProperty(), noTemperature);
}

// ---- What comes out

void BaseReactor::PublishHeat(HeatDutyType type, std::optional<double> duty) {
  const double shown = duty.value_or(kMissingValue);
  if (type != kIsothermal) Parameter(kTemperature).SetResult(Outlet(0).State().temperature);
  if (type != kByHeatDuty) Parameter(kHeatDuty).SetResult(shown);
  const com::Ref<CUnitPort> port = EnergyIsInlet() ? nullptr : EnergyPort();
  if (!port || !port->IsConnected()) return;
  ForwardError(kScope, kInterface, [&] { dynamic_cast<CUnitInfoPort&>(*port).WriteInformation(kWork, shown); });
  ReportLine("Heat duty to outlet energy port: " + FormatValue(shown, kPowerDimension) +
             " (positive is consumed by the reactor)");
}

}  // namespace morvelan
