#include "units/reactors/HeatBalance.h"

#include <cmath>

#include "framework/CalculationFailure.h"
#include "framework/ReportFormat.h"

namespace morvelan {
namespace {

constexpr double kReactorTemperatureTolerance = 1e-6;  // [K]

constexpr const char* kEnthalpyLines[] = {
    "Using enthalpyF in enthalpy calculations",
    "Using enthalpy in enthalpy calculations; assuming this includes heat of formation",
    "Using enthalpy and heat of reaction in enthalpy calculations",
};

template <class Read>
double ReadProperty(Read&& read) {
  try {
    return read();
  } catch (const Failure& failure) {
    throw CalculationFailure("GetProp failed", failure.error.description);
  }
}

}  // namespace

void HeatBalance::Declare(UnitDeclarations& declare, const char* temperatureText) {
  declare.EnergyPort(port, "HeatDutySpecification", "Heat duty specification", "Heat duty", "Heat duty",
                     [this] { return type.Is(Type::kEnergyInlet) ? PortSide::kInlet : PortSide::kOutlet; });

  declare
      .Parameter(type, "Heat duty type", "Type of heat duty specification", {"Isothermal", "Heat duty", "Energy inlet"},
                 1)
      .AlsoKeptAs("HeatDutySpecification");
  declare.Parameter(temperature, "Temperature", temperatureText, 300, quantity::kTemperature)
      .InputWhen(type, Type::kIsothermal);
  declare.Parameter(duty, "Heat duty", "Reactor heat duty", 0, {-1e10, 1e10, kPowerDimension})
      .InputWhen(type, Type::kHeatDuty);
  declare
      .Parameter(enthalpies, "Enthalpy Type", "Enthalpy calculation type",
                 {"Use EnthalpyF", "Use Enthalpy (no heat of reaction)", "Use Enthalpy and heat of reaction"})
      .AlsoKeptAs("EnthalpyType");
}

bool HeatBalance::HasSpecification(std::string& message) const {
  if (type.Is(Type::kHeatDuty) && !duty.IsSet()) message = "Error: heat duty/loss is not specified.";
  if (type.Is(Type::kIsothermal) && !temperature.IsSet()) message = "Error: temperature is not specified.";
  return message.empty();
}

void HeatBalance::ReportEnthalpies() { journal.Line(kEnthalpyLines[static_cast<std::size_t>(Enthalpies{enthalpies})]); }

const Property& HeatBalance::Enthalpy() const {
  return enthalpies == Enthalpies::kEnthalpyF ? property::kEnthalpyF : property::kEnthalpy;
}

HeatSource HeatBalance::ReadSource(const char* afterColon) {
  if (type == Type::kIsothermal) return {};
  if (type == Type::kHeatDuty) return {.duty = duty};
  if (!port.IsInlet() || !port.IsConnected())
    journal.Line(std::string("Heat duty from inlet energy port:") + afterColon + "Not connected");
  return ReadHeat(port, journal, afterColon);
}

double HeatBalance::FeedEnthalpyFlow() const {
  return feed.State().totalFlow * ReadProperty([&] { return feed.MolarProperty(Enthalpy()); });
}

double HeatBalance::ProductEnthalpyFlow() {
  return product.State().totalFlow * ReadProperty([&] { return product.MolarProperty(Enthalpy()); });
}

std::optional<double> HeatBalance::Close(StreamState out, const HeatSource& source, double feedEnthalpyFlow,
                                         double heatOfReaction, LazyText noTemperature) {
  if (type != Type::kIsothermal) {
    const double enthalpy = (feedEnthalpyFlow + source.duty - heatOfReaction) / out.totalFlow;
    if (!std::isfinite(enthalpy)) throw CalculationFailure("the heat balance of the reactor gives no finite enthalpy");
    product.FlashAtEnthalpy(out, enthalpy, Enthalpy());
    product.TakeOverTemperature(noTemperature);
    return source.duty;
  }
  out.temperature = temperature;
  product.FlashAtTemperature(out);
  try {
    return ProductEnthalpyFlow() - feedEnthalpyFlow + heatOfReaction;
  } catch (const Failure& failure) {
    journal.Line("Heat duty cannot be determined: " + failure.error.description);
    return std::nullopt;
  }
}

void HeatBalance::Bypass(double pressure, const HeatSource& source) {
  journal.Warn("WARNING: " + std::string(journal.Kind()) + ' ' + journal.UnitName() +
               ": Zero flow; bypassing calculations");
  StreamState out = feed.State();
  out.pressure = pressure;
  out.totalFlow = 0;
  product.FlashAtTemperature(out);
  // Without flow no heat is taken up; the specified duty stays as it is.
  Publish(type == Type::kHeatDuty ? source.duty : 0);
}

void HeatBalance::WarnOfInfeasibility(const HeatSource& source) const {
  const auto check = [&](std::optional<double> end, const char* name) {
    if (!end) return;
    const double excess = *end - product.State().temperature;
    const bool isTooCold = source.duty > 0 && excess < -kReactorTemperatureTolerance;
    const bool isTooHot = source.duty < 0 && excess > kReactorTemperatureTolerance;
    if (isTooCold || isTooHot)
      journal.Warn("WARNING: " + std::string(journal.Kind()) + ' ' + journal.UnitName() + ": " + name +
                   " inlet heat stream temperature is " +
                   (isTooCold ? "below reactor temperature while heating" : "above reactor temperature while cooling") +
                   ", this is infeasible");
  };
  check(source.lowTemperature, "lower");
  check(source.highTemperature, "upper");
}

void HeatBalance::Publish(std::optional<double> found) {
  if (type != Type::kIsothermal) temperature.Publish(product.State().temperature);
  if (type != Type::kHeatDuty) duty.Publish(found);
  if (port.IsInlet() || !port.IsConnected()) return;
  const double shown = found.value_or(kMissingValue);
  port.WriteHeat(shown);
  journal.Line("Heat duty to outlet energy port: " + FormatValue(shown, kPowerDimension) +
               " (positive is consumed by the reactor)");
}

}  // namespace morvelan
