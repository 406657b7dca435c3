#include "units/reactors/BaseReactor.h"

namespace morvelan {
namespace {

constexpr double kLowestReactorPressure = 1;  // [Pa]

}  // namespace

void BaseReactor::BeginDeclaration(const char* pressureDropText, const char* temperatureText) {
  checkConnections = false;  // the energy port is needed for one specification only
  declare.Port(feed, "Inlet", "Reactor feed");
  declare.Port(product, "Outlet", "Reactor product");
  declare.Parameter(pressureDrop, "Pressure drop", pressureDropText, 0, quantity::kPressureDrop);
  heat.Declare(declare, temperatureText);
}

SettingRow BaseReactor::EndDeclaration() {
  declare.ThermoVersion(thermoVersion);
  return reactions.Declare(declare);
}

void BaseReactor::Resolve(ReactionRequest request, const std::string& quote,
                          const std::function<std::string(std::size_t, const Reaction&)>& findFault) {
  ReactionResolver resolver(package, feed.Object(), UsesThermo11());
  std::vector<Reaction> resolved;
  for (const std::string& name : reactions.Selected()) {
    request.name = name;
    const auto refuse = [&](const std::string& fault) {
      throw CalculationFailure("Error for reaction " + quote + name + quote + ": " + fault);
    };
    try {
      resolved.push_back(InValidation([&] { return resolver.Resolve(request); }));
    } catch (const Failure& failure) {
      refuse(failure.error.description);
    }
    if (const std::string fault = findFault(resolved.size() - 1, resolved.back()); !fault.empty()) refuse(fault);
  }
  reactions.Take(std::move(resolved), resolver.Compounds());
}

void BaseReactor::ResolveWithBases(ReactionRequest request, const std::string& quote) {
  request.wantsConcentrationBasis = true;
  Resolve(std::move(request), quote, [&](std::size_t, const Reaction& reaction) {
    if (!FindActivityBasis(reaction.concentrationBasis))
      journal.Warn("Warning: Unable to get reaction concentration basis for reaction " + reaction.name.Text() +
                   " for unit operation " + ComponentName() + ". Assuming molar concentrations (molarity)");
    return std::string();
  });
}

bool BaseReactor::HasReactions(std::string& message) {
  reactionsAreFresh = false;
  try {
    ResolveAll();
  } catch (const Failure& failure) {
    message = failure.error.description;
    return false;
  }
  reactionsAreFresh = IsCalculating();
  return true;
}

void BaseReactor::Solve() {
  heat.ReportEnthalpies();
  try {
    if (!package) throw CalculationFailure(kNoReactionPackage);
    // What was validated may be otherwise by now.
    if (std::string message; !reactionsAreFresh && !ValidateUnit(message)) throw CalculationFailure(message);
    if (reactions.Compounds().size() != feed.State().composition.size())
      throw CalculationFailure("the list of compounds of the inlet material has changed");
    React();
    journal.OptionalParameters(declare.parameters.List());
  } catch (const Failure& failure) {
    journal.Line("\r\nCalculation failed: " + failure.error.description);
    throw;
  }
}

void BaseReactor::OnCalculateDone(int, bool) { reactionsAreFresh = false; }

bool BaseReactor::HasFlow() const {
  const double flow = feed.State().totalFlow;
  if (flow < 0) throw CalculationFailure("underflow", "Negative or zero flow on inlet");
  return flow != 0;
}

double BaseReactor::PressureAfterDrop(bool warnsAtLimit) const {
  const double pressure = feed.State().pressure - pressureDrop;
  if (pressure > kLowestReactorPressure || (pressure == kLowestReactorPressure && !warnsAtLimit)) return pressure;
  journal.WarnNamed(" warning: limiting outlet pressure to 1 Pa");
  return kLowestReactorPressure;
}

}  // namespace morvelan
