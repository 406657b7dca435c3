#include "host/flowsheet/FlowsheetRun.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "com/Text.h"
#include "host/flowsheet/AndersonMixing.h"
#include "host/flowsheet/Nearest.h"
#include "host/flowsheet/TearStream.h"
#include "host/thermo/NumberText.h"
#include "host/unit/DimensionSymbol.h"
#include "host/unit/ParameterSetting.h"

namespace morvelan::host {
namespace {

/// The version that units are told to use, where only one is offered on purpose.
std::string DefaultVersion(std::optional<ThermoOffer> chosen) {
  if (chosen == ThermoOffer::k10) return "1.0";
  return chosen == ThermoOffer::k11 ? "1.1" : "";
}

template <class Named>
std::vector<std::string> NamesOf(const std::vector<Named>& things) {
  std::vector<std::string> names;
  for (const Named& thing : things) names.push_back(thing.name);
  return names;
}

template <class Named>
const Named* FindNamed(const std::vector<Named>& things, const std::string& name) {
  const auto found =
      std::ranges::find_if(things, [&](const Named& thing) { return com::EqualNoCase(thing.name, name); });
  return found == things.end() ? nullptr : &*found;
}

com::PublishedClass ClassOf(const UnitSpecification& unit, const std::vector<com::PublishedClass>& classes) {
  if (auto found = FindUnitClass(unit.className, classes)) return *found;
  const std::vector<std::string> names = NamesOf(classes);
  throw FlowsheetError(unit.classPlace,
                       "class \"" + unit.className + "\" is unknown" +
                           (names.empty() ? "; no unit classes are registered"
                                          : Suggestion(unit.className, names) + "; known are " + Listed(names)));
}

void Configure(HostedUnit& unit, const UnitSpecification& specification) {
  if (!specification.configuration) return;
  try {
    unit.Configure(specification.configuration->Value().dump());
  } catch (const std::runtime_error& error) {
    specification.configuration->Fail(error.what());
  }
}

/// The unit's ports that the file connects, checked.
std::vector<const UnitPort*> ConnectedPorts(const UnitSpecification& unit, const std::vector<UnitPort>& ports) {
  std::vector<const UnitPort*> connected;
  for (const auto& connection : unit.connections) {
    const UnitPort* port = FindNamed(ports, connection.port);
    if (!port)
      throw FlowsheetError(connection.place,
                           "the unit has no port \"" + connection.port + "\"; its ports are " + Listed(NamesOf(ports)));
    if (std::ranges::find(connected, port) != connected.end())
      throw FlowsheetError(connection.place, "port \"" + port->name + "\" is connected twice");
    connected.push_back(port);
  }
  return connected;
}

struct ParameterSetting {
  const UnitParameter* parameter;
  const JsonNode* value;
};

/// The unit's parameters that the file sets, checked.
std::vector<ParameterSetting> SettingsOf(const UnitSpecification& unit, const std::vector<UnitParameter>& parameters) {
  std::vector<ParameterSetting> settings;
  for (const auto& setting : unit.settings) {
    const UnitParameter* parameter = FindNamed(parameters, setting.parameter);
    if (!parameter)
      setting.value.Fail("the unit has no parameter \"" + setting.parameter + "\"; its parameters are " +
                         Listed(NamesOf(parameters)));
    if (std::ranges::find(settings, parameter, &ParameterSetting::parameter) != settings.end())
      setting.value.Fail("parameter \"" + parameter->name + "\" is given twice");
    settings.push_back({parameter, &setting.value});
  }
  return settings;
}

void PutOptions(const HostedUnit& unit, const UnitSpecification& specification) {
  const std::vector<UnitParameter> parameters = unit.Parameters();
  for (const auto& [parameter, value] : SettingsOf(specification, parameters))
    if (parameter->kind == CAPE_OPTION) PutParameter(*parameter, *value);
}

constexpr int kMostRounds = 100;
constexpr double kRecycleTolerance = 1e-6;
constexpr double kRecycleGoal = 1e-9;  // further, as long as it goes fast: then the balances close as well

/// A torn stream from one round to the next.
class Tear {
 public:
  explicit Tear(MaterialState& torn) : material(torn), assumed(TearState::Of(torn)), scale(assumed) {}

  /// By how much the round's outcome differs from what was assumed.
  [[nodiscard]] double Compare() {
    found = TearState::Of(material);
    return found.DistanceFrom(assumed);
  }

  /// Assumes a state for the next round; the outcome of the last stands where there is no better one.
  void Advance() {
    if (found.flows.sum() <= 0 || scale.flows.sum() <= 0) {
      assumed = scale = found;
      mixing.Restart();
      return;
    }
    try {
      const TearState next = TearState::FromScaled(mixing.Next(assumed.Scaled(scale), found.Scaled(scale)), scale);
      next.Impose(material);
    } catch (const std::exception&) {
      mixing.Restart();
      found.Impose(material);
    }
    assumed = TearState::Of(material);
  }

 private:
  MaterialState& material;
  TearState assumed;
  TearState scale;
  TearState found;
  AndersonMixing mixing;
};

}  // namespace

FlowsheetRun::FlowsheetRun(const Flowsheet& flowsheet, const RunOptions& runOptions)
    : source(flowsheet), options(runOptions) {
  const auto chosen = options.thermoInterface ? options.thermoInterface : flowsheet.thermoInterface;
  offer = chosen.value_or(ThermoOffer::k11);
  context = com::Make<SimulationContext>(options.simplified, DefaultVersion(chosen));
  if (!flowsheet.reactions.empty()) reactions = com::Make<ReactionPackage>(flowsheet.reactions, flowsheet.package);
  CreateUnits();
  PlanNetwork();
  ConnectUnits();
  PutParameters();
  if (options.roundtrip) RestoreUnits();
  FlashFeeds();
}

void FlowsheetRun::CreateUnits() {
  const std::vector<com::PublishedClass> classes = com::PublishedClasses();
  for (const UnitSpecification& specification : source.units) {
    com::PublishedClass unitClass = ClassOf(specification, classes);
    HostedUnit unit = CreateUnit(specification, unitClass);
    Configure(unit, specification);
    PutOptions(unit, specification);  // on which ports may depend
    std::vector<UnitPort> ports = unit.Ports();
    units.push_back({&specification, std::move(unitClass), std::move(unit), std::move(ports)});
  }
}

HostedUnit FlowsheetRun::CreateUnit(const UnitSpecification& specification,
                                    const com::PublishedClass& unitClass) const {
  try {
    HostedUnit unit(unitClass);
    Settle(unit, specification);
    return unit;
  } catch (const std::runtime_error& error) {
    throw FlowsheetError(specification.place, std::string("the unit cannot be created: ") + error.what());
  }
}

/// Before the unit is configured: what it selects are reactions that it has been given.
void FlowsheetRun::Settle(HostedUnit& unit, const UnitSpecification& specification) const {
  unit.SetName(specification.name);
  unit.SetContext(context.As<IDispatch>().Get());
  if (reactions) unit.SetReactions(reactions.As<IDispatch>().Get());
}

void FlowsheetRun::PlanNetwork() {
  for (std::size_t i = 0; i < units.size(); ++i) {
    const UnitSpecification& specification = *units[i].specification;
    const auto ports = ConnectedPorts(specification, units[i].ports);
    for (std::size_t j = 0; j < ports.size(); ++j)
      connections.push_back({.unit = i,
                             .port = ports[j]->name,
                             .stream = specification.connections[j].stream,
                             .direction = ports[j]->direction,
                             .type = ports[j]->type,
                             .items = ports[j]->items,
                             .place = specification.connections[j].place});
  }
  network = BuildNetwork(source, connections);
  for (const NetworkStream& stream : network.streams) streams.emplace_back(stream, source.package, offer);
}

void FlowsheetRun::ConnectUnits() {
  for (const NetworkConnection& connection : connections) {
    const UnitPort* port = FindNamed(units[connection.unit].ports, connection.port);
    if (!port) throw FlowsheetError(connection.place, "the restored unit has no port \"" + connection.port + '"');
    const auto stream = streams[network.Find(connection.stream)].Dispatch();
    const HRESULT outcome = port->object->Connect(stream.Get());
    if (FAILED(outcome))
      throw FlowsheetError(connection.place, "the port refuses stream \"" + connection.stream +
                                                 "\": " + FaultOf(port->object.Get(), outcome).Text());
  }
}

/// After connecting, as connecting a material sets the version of the thermodynamic interfaces to use.
void FlowsheetRun::PutParameters() {
  for (const RunUnit& unit : units) {
    const std::vector<UnitParameter> parameters = unit.unit.Parameters();
    const auto settings = SettingsOf(*unit.specification, parameters);
    // Options first, in whatever order the file has them: they decide which of the others are specifications.
    for (const bool options : {true, false})
      for (const auto& [parameter, value] : settings)
        if ((parameter->kind == CAPE_OPTION) == options) PutParameter(*parameter, *value);
  }
}

void FlowsheetRun::RestoreUnits() {
  std::vector<RunUnit> saved = std::move(units);
  units.clear();
  for (RunUnit& run : saved) try {
      HostedUnit restored(run.unitClass, *run.unit.Save());
      Settle(restored, *run.specification);
      std::vector<UnitPort> ports = restored.Ports();
      units.push_back({run.specification, run.unitClass, std::move(restored), std::move(ports)});
    } catch (const std::runtime_error& error) {
      throw FlowsheetError(run.specification->place,
                           std::string("the unit cannot be saved and restored: ") + error.what());
    }
  saved.clear();  // lets go of the streams
  ConnectUnits();
}

void FlowsheetRun::FlashFeeds() {
  for (std::size_t i = 0; i < streams.size(); ++i) {
    if (!network.streams[i].listed) continue;
    try {
      streams[i].Flash();
    } catch (const std::exception& error) {
      throw FlowsheetError(network.streams[i].listed->place,
                           std::string("the stream cannot be brought to equilibrium: ") + error.what());
    }
  }
}

Results FlowsheetRun::Calculate() {
  Results results{.title = source.title,
                  .solved = true,
                  .compounds = {},
                  .streams = {},
                  .missingStreams = {},
                  .units = std::vector<UnitResult>(units.size()),
                  .log = {},
                  .problem = {}};
  for (std::size_t i = 0; i < source.package->CompoundCount(); ++i)
    results.compounds.push_back(source.package->CompoundAt(i).name);
  std::vector<bool> solved(units.size(), false);
  if (network.tears.empty())
    CalculateUnits(results, solved);
  else
    CloseRecycles(results, solved);
  for (std::size_t i = 0; i < streams.size(); ++i) {
    const NetworkStream& stream = network.streams[i];
    if (!stream.source || solved[*stream.source])
      results.streams.push_back(streams[i].Read());
    else
      results.missingStreams.push_back(stream.name);
  }
  results.log = context->Lines();
  return results;
}

bool FlowsheetRun::CalculateUnits(Results& results, std::vector<bool>& solved) {
  results.solved = true;
  for (const std::size_t i : network.order) {
    results.units[i] = CalculateUnit(i, solved);
    solved[i] = results.units[i].solved;
    results.solved = results.solved && solved[i];
  }
  return results.solved;
}

void FlowsheetRun::CloseRecycles(Results& results, std::vector<bool>& solved) {
  std::vector<Tear> tears;
  for (const std::size_t i : network.tears) tears.emplace_back(*streams[i].Material());
  double change = std::numeric_limits<double>::infinity();
  for (int round = 1; round <= kMostRounds; ++round) {
    context->ForgetLines();
    for (const std::size_t i : network.tears) solved[*network.streams[i].source] = true;  // the guess stands for it
    if (!CalculateUnits(results, solved)) return;
    const double previous = std::exchange(change, 0);
    for (Tear& tear : tears) change = std::max(change, tear.Compare());
    if (options.progress) options.progress(round, change);
    if (change <= kRecycleGoal || (change <= kRecycleTolerance && change > previous / 2)) return;
    for (Tear& tear : tears) tear.Advance();
  }
  if (change <= kRecycleTolerance) return;
  results.solved = false;
  results.problem = "the recycle does not converge: after " + std::to_string(kMostRounds) +
                    " rounds its streams still change by " + NumberText(change) +
                    " relative; give another guess, or look for a loop without an outlet";
}

std::optional<UnitFault> FlowsheetRun::MissingFeed(std::size_t index, const std::vector<bool>& solved) const {
  for (const NetworkStream& stream : network.streams) {
    if (stream.target != index || !stream.source || solved[*stream.source]) continue;
    const std::string& from = units[*stream.source].specification->name;
    return UnitFault{
        "not calculated",
        "not calculated: its feed \"" + stream.name + "\" comes from unit \"" + from + "\", which is not solved",
        {},
        {}};
  }
  return std::nullopt;
}

UnitResult FlowsheetRun::CalculateUnit(std::size_t index, const std::vector<bool>& solved) {
  RunUnit& run = units[index];
  UnitResult result{.name = run.specification->name,
                    .className = run.unitClass.name,
                    .solved = false,
                    .status = {},
                    .error = MissingFeed(index, solved),
                    .parameters = {},
                    .reports = {}};
  try {
    if (!result.error) result.error = run.unit.Validate();
    if (!result.error) run.unit.Calculate();
  } catch (const std::exception& failure) {
    result.error = FaultOf(failure);
  }
  // A unit may leave its material in the package, which the next unit uses too.
  if (reactions) reactions->UnsetMaterial();
  try {
    ReadFace(run.unit, result);
  } catch (const std::exception& failure) {
    if (!result.error) result.error = FaultOf(failure);
  }
  result.solved = !result.error;
  return result;
}

void FlowsheetRun::ReadFace(HostedUnit& unit, UnitResult& result) const {
  for (const UnitParameter& parameter : unit.Parameters())
    result.parameters.push_back(
        {parameter.name, ParameterValue(parameter), UnitSymbol(parameter.dimensions), parameter.mode == CAPE_OUTPUT});
  result.reports = unit.Reports();
  if (const UnitReport* status = FindNamed(result.reports, "Status")) result.status = status->text;
}

Results RunFlowsheet(const std::filesystem::path& file, const std::filesystem::path& dataFolder,
                     const RunOptions& options) {
  const Flowsheet flowsheet = ReadFlowsheet(file, dataFolder);
  return FlowsheetRun(flowsheet, options).Calculate();
}

}  // namespace morvelan::host
