#include "units/reactors/BaseReactor.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "errors/HostCall.h"
#include "material/Names.h"
#include "material/Reading.h"
#include "morvelan.h"

namespace morvelan {
namespace {

constexpr std::string_view kSetScope = "SetReactionObject";
constexpr std::string_view kSetInterface = "ICapeKineticReactionContext";

// (Functions: declarations of units are made of them before the library's own constants may be.)

const std::vector<std::string>& HeatDutyTypes() {
  static const std::vector<std::string> types = {"Isothermal", "Heat duty", "Energy inlet"};
  return types;
}

const std::vector<std::string>& EnthalpyTypes() {
  static const std::vector<std::string> types = {"Use EnthalpyF", "Use Enthalpy (no heat of reaction)",
                                                 "Use Enthalpy and heat of reaction"};
  return types;
}

constexpr PortDeclaration kEnergyInlet = {"HeatDutySpecification", "Heat duty specification", CAPE_INLET, CAPE_ENERGY,
                                          kEnergyItems};

/// The options that streams keep under keys of their own as well.
struct KeptOption {
  const char* key;
  std::size_t position;
  const std::vector<std::string>& (*choices)();
};
constexpr KeptOption kKeptOptions[] = {
    {"HeatDutySpecification", kHeatDutyType, HeatDutyTypes},
    {"EnthalpyType", kEnthalpyType, EnthalpyTypes},
};

}  // namespace

constinit const PortDeclaration kReactorPorts[3] = {
    {"Inlet", "Reactor feed", CAPE_INLET},
    {"Outlet", "Reactor product", CAPE_OUTLET},
    {"Heat duty", "Heat duty", CAPE_OUTLET, CAPE_ENERGY, kEnergyItems},
};

std::vector<ParameterDeclaration> ReactorParameters(const char* pressureDropText, const char* temperatureText,
                                                    std::vector<ParameterDeclaration> ownParameters) {
  std::vector<ParameterDeclaration> parameters = {
      {.name = "Pressure drop",
       .description = pressureDropText,
       .defaultValue = 0.0,
       .lowerBound = 0,
       .upperBound = 1e10,
       .dimensionality = kPressureDropDimension},
      {.name = "Heat duty type",
       .description = "Type of heat duty specification",
       .defaultValue = HeatDutyTypes()[kByHeatDuty],
       .options = HeatDutyTypes()},
      {.name = "Temperature",
       .description = temperatureText,
       .defaultValue = 300.0,
       .lowerBound = 0,
       .upperBound = 1e10,
       .dimensionality = kTemperatureDimension},
      {.name = "Heat duty",
       .description = "Reactor heat duty",
       .defaultValue = 0.0,
       .lowerBound = -1e10,
       .upperBound = 1e10,
       .dimensionality = kPowerDimension},
      {.name = "Enthalpy Type",
       .description = "Enthalpy calculation type",
       .defaultValue = EnthalpyTypes()[kUseEnthalpyF],
       .options = EnthalpyTypes()},
  };
  std::ranges::move(ownParameters, std::back_inserter(parameters));
  parameters.push_back(ThermoVersionParameter());
  return parameters;
}

BaseReactor::BaseReactor(const UnitDeclaration& declaration, std::string_view unitKind)
    : Implements(declaration), kind(unitKind) {
  checkConnections = false;  // the energy port is needed for one specification only
}

int BaseReactor::ThermoVersionParameterIndex() const { return static_cast<int>(thermoVersionPosition); }

GUID BaseReactor::AutomationType() const { return __uuidof(DReactor); }

void BaseReactor::CreateFace() {
  Implements::CreateFace();
  thermoVersionPosition = Parameters().size() - 1;
  Parameter(kPressureDrop).BindDouble(&pressureDrop);
  Parameter(kTemperature).BindDouble(&temperature);
  Parameter(kHeatDuty).BindDouble(&heatDuty);
  InputsChanged();
}

// ---- The reaction package

HRESULT BaseReactor::SetReactionObject(IDispatch** reactionsObject) {
  if (!reactionsObject) return E_POINTER;
  return Guard(kSetScope, kSetInterface, [&] {
    // What a host does as its package is released happens to a reactor that has none.
    const auto object = com::Ref<IDispatch>::Share(*reactionsObject);
    reactionIds.clear();
    std::exchange(reactionPackage, nullptr).Reset();
    SetError({});
    ConnectionChanged();
    if (!object) return;
    TakePackage(object.Get());
    ListReactions(object.Get());
    ConnectionChanged();
  });
}

void BaseReactor::TakePackage(IDispatch* object) {
  HRESULT failure = S_OK;
  auto properties = com::Query<ICapeReactionProperties>(object, &failure);
  if (!properties)
    throw Failure("Failed to obtain ICapeReactionProperties from reactionsObject in SetReactionObject: " +
                  ErrorText(object, failure));
  reactionPackage = std::move(properties);
}

/// A package whose reactions can't be listed is a package all the same; why stays as the last error.
void BaseReactor::ListReactions(IDispatch* object) try {
  const auto taken = reactionPackage;
  HRESULT failure = S_OK;
  const auto chemistry = com::Query<ICapeReactionChemistry>(object, &failure);
  if (!chemistry)
    throw Failure("Failed to get ICapeReactionChemistry interface from reaction object: " + ErrorText(object, failure));
  com::Variant ids;
  CheckHost(chemistry->GetReactionsIds(ids.Put()), chemistry.Get(),
            [](const std::string& why) { return Failure("Failed to get reaction IDs from reaction object: " + why); });
  std::vector<std::string> listed =
      material::ReadOr([&] { return com::ReadStrings(ids.Get()); },
                       [](const std::string& why) {
                         return Failure("format error in array of reaction IDs from reaction object: " + why);
                       });
  // Unless the host has assigned another package meanwhile.
  if (taken.Get() == reactionPackage.Get()) reactionIds = std::move(listed);
} catch (Failure& failure) {
  failure.error.scope = kSetScope;
  failure.error.interfaceName = kSetInterface;
  SetError(std::move(failure.error));
}

void BaseReactor::Resolve(std::span<const ReactionRequest> requests, const std::string& quote,
                          const std::function<std::string(std::size_t, const ReactionRecord&)>& findFault) {
  ReactionResolver resolver = Resolver();
  std::vector<ReactionRecord> resolved;
  for (const ReactionRequest& request : requests) {
    const auto refuse = [&](const std::string& fault) {
      throw Failure("Error for reaction " + quote + request.name + quote + ": " + fault, "Calculate", "ICapeUnit");
    };
    try {
      resolved.push_back(Recorded("Validate", "ICapeUnit", [&] { return resolver.Resolve(request); }));
    } catch (const Failure& failure) {
      refuse(failure.error.description);
    }
    if (const std::string fault = findFault(resolved.size() - 1, resolved.back()); !fault.empty()) refuse(fault);
  }
  compounds = resolver.InletCompounds();
  records = std::move(resolved);
}

HRESULT BaseReactor::Terminate() {
  const auto alive = com::Ref<BaseReactor>::Share(this);
  const HRESULT outcome = Implements::Terminate();
  reactionIds.clear();
  std::exchange(reactionPackage, nullptr).Reset();
  return outcome;
}

// ---- What is given and what is calculated

void BaseReactor::InputsChanged() {
  if (Parameters().size() < kFirstOwnParameter) return;  // the host is early: there is no face yet
  const auto type = Parameter(kHeatDutyType).OptionIndex();
  Parameter(kTemperature).SetMode(type == kIsothermal ? CAPE_INPUT : CAPE_OUTPUT);
  Parameter(kHeatDuty).SetMode(type == kByHeatDuty ? CAPE_INPUT : CAPE_OUTPUT);
  PlanEnergyPort(type == kByEnergyInlet)();
}

std::function<void()> BaseReactor::PlanEnergyPort(bool asInlet) {
  if (asInlet == EnergyIsInlet()) return [] {};
  PortList newInlets = {inlets[0]};
  PortList newOutlets = {outlets[0]};
  (asInlet ? newInlets : newOutlets).push_back(MakePort(asInlet ? kEnergyInlet : kReactorPorts[2]));
  return [this, newInlets = std::move(newInlets), newOutlets = std::move(newOutlets)]() mutable {
    ReplacePorts(std::move(newInlets), std::move(newOutlets));
  };
}

com::Ref<CUnitPort> BaseReactor::EnergyPort() const {
  return EnergyIsInlet() ? inlets[1] : outlets.size() > 1 ? outlets[1] : nullptr;
}

// ---- Persistence

HRESULT BaseReactor::SaveUnit(UnitWriter& writer) {
  Json values = Configuration();
  for (const KeptOption& option : kKeptOptions)
    values[option.key] = std::get<std::string>(Parameter(option.position).Value());
  WriteKeyedValues(writer, values);
  writer.Flush();
  return S_OK;
}

std::function<void()> BaseReactor::LoadUnit(UnitReader& reader, int, const std::vector<ParameterRecord>& records) {
  Json known = Configuration();
  for (const KeptOption& option : kKeptOptions) known[option.key] = "";
  Json values;
  std::vector<std::pair<std::size_t, std::string>> options;
  std::function<void()> configure;
  try {
    values = ReadKeyedValues(reader, known);
    for (const KeptOption& option : kKeptOptions) {
      if (!values.contains(option.key)) continue;
      (void)ReadConfiguredChoice(values, option.key, option.choices(),
                                 0);  // hosts may spell it in another case
      options.emplace_back(option.position, values.at(option.key).get<std::string>());
      values.erase(option.key);
    }
    configure = PlanConfiguration(values);
  } catch (const Failure& failure) {
    throw Failure(failure.error.description, "Load", "IPersistStream");
  }
  const auto isInlet = [](const std::string& type) { return com::EqualNoCase(type, HeatDutyTypes()[kByEnergyInlet]); };
  bool asInlet = EnergyIsInlet();
  if (records.size() > kHeatDutyType) asInlet = isInlet(std::get<std::string>(records[kHeatDutyType].value));
  for (const auto& [position, choice] : options)
    if (position == kHeatDutyType) asInlet = isInlet(choice);
  return [this, options = std::move(options), configure = std::move(configure),
          movePort = PlanEnergyPort(asInlet)]() mutable {
    for (auto& [position, choice] : options) Parameter(position).SetResult(std::move(choice));
    configure();
    movePort();
  };
}

}  // namespace morvelan
