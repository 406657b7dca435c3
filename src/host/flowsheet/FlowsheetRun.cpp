#include "host/flowsheet/FlowsheetRun.h"

#include <algorithm>
#include <array>

#include "com/Text.h"
#include "host/flowsheet/Nearest.h"
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
  throw FlowsheetError(unit.classPlace, "class \"" + unit.className + "\" is unknown" +
                                            (names.empty() ? "; no unit classes are registered"
                                                           : Suggestion(unit.className, names) +
                                                                 "; known are " + Listed(names)));
}

HostedUnit CreateUnit(const UnitSpecification& specification, const com::PublishedClass& unitClass,
                      IDispatch* context) {
  try {
    HostedUnit unit(unitClass);
    unit.SetName(specification.name);
    unit.SetContext(context);
    return unit;
  } catch (const std::runtime_error& error) {
    throw FlowsheetError(specification.place, std::string("the unit cannot be created: ") + error.what());
  }
}

/// The unit's ports that the file connects, checked.
std::vector<const UnitPort*> ConnectedPorts(const UnitSpecification& unit,
                                            const std::vector<UnitPort>& ports) {
  std::vector<const UnitPort*> connected;
  for (const auto& connection : unit.connections) {
    const UnitPort* port = FindNamed(ports, connection.port);
    if (!port)
      throw FlowsheetError(connection.place, "the unit has no port \"" + connection.port +
                                                 "\"; its ports are " + Listed(NamesOf(ports)));
    if (std::ranges::find(connected, port) != connected.end())
      throw FlowsheetError(connection.place, "port \"" + port->name + "\" is connected twice");
    connected.push_back(port);
  }
  return connected;
}

}  // namespace

FlowsheetRun::FlowsheetRun(const Flowsheet& flowsheet, const RunOptions& options) : source(flowsheet) {
  if (options.roundtrip)
    throw std::runtime_error("units cannot be saved and restored yet: they offer no IPersistStream");
  const auto chosen = options.thermoInterface ? options.thermoInterface : flowsheet.thermoInterface;
  offer = chosen.value_or(ThermoOffer::k11);
  context = com::Make<SimulationContext>(options.simplified, DefaultVersion(chosen));
  CreateUnits();
  ConnectUnits();
  ConfigureUnits();
  FlashFeeds();
}

void FlowsheetRun::CreateUnits() {
  const std::vector<com::PublishedClass> classes = com::PublishedClasses();
  const auto dispatch = context.As<IDispatch>();
  for (const UnitSpecification& specification : source.units) {
    com::PublishedClass unitClass = ClassOf(specification, classes);
    HostedUnit unit = CreateUnit(specification, unitClass, dispatch.Get());
    std::vector<UnitPort> ports = unit.Ports();
    units.push_back({&specification, std::move(unitClass), std::move(unit), std::move(ports)});
  }
}

void FlowsheetRun::ConnectUnits() {
  std::vector<NetworkConnection> connections;
  std::vector<const UnitPort*> targets;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const UnitSpecification& specification = *units[i].specification;
    const auto ports = ConnectedPorts(specification, units[i].ports);
    for (std::size_t j = 0; j < ports.size(); ++j) {
      const auto& connection = specification.connections[j];
      connections.push_back({.unit = i,
                             .stream = connection.stream,
                             .direction = ports[j]->direction,
                             .type = ports[j]->type,
                             .items = ports[j]->items,
                             .place = connection.place});
      targets.push_back(ports[j]);
    }
  }
  network = BuildNetwork(source, connections);
  for (const NetworkStream& stream : network.streams) streams.emplace_back(stream, source.package, offer);
  for (std::size_t i = 0; i < connections.size(); ++i) {
    const auto stream = streams[network.Find(connections[i].stream)].Dispatch();
    const HRESULT outcome = targets[i]->object->Connect(stream.Get());
    if (FAILED(outcome))
      throw FlowsheetError(connections[i].place,
                           "the port refuses stream \"" + connections[i].stream +
                               "\": " + FaultOf(targets[i]->object.Get(), outcome).Text());
  }
}

/// After connecting, as connecting a material sets the version of the thermodynamic interfaces to use.
void FlowsheetRun::ConfigureUnits() {
  for (const RunUnit& unit : units) {
    const std::vector<UnitParameter> parameters = unit.unit.Parameters();
    std::vector<const UnitParameter*> set;
    for (const auto& setting : unit.specification->settings) {
      const UnitParameter* parameter = FindNamed(parameters, setting.parameter);
      if (!parameter)
        setting.value.Fail("the unit has no parameter \"" + setting.parameter + "\"; its parameters are " +
                           Listed(NamesOf(parameters)));
      if (std::ranges::find(set, parameter) != set.end())
        setting.value.Fail("parameter \"" + parameter->name + "\" is given twice");
      set.push_back(parameter);
      PutParameter(*parameter, setting.value);
    }
  }
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
                  .log = {}};
  for (std::size_t i = 0; i < source.package->CompoundCount(); ++i)
    results.compounds.push_back(source.package->CompoundAt(i).name);
  std::vector<bool> solved(units.size(), false);
  for (const std::size_t i : network.order) {
    results.units[i] = CalculateUnit(i, solved);
    solved[i] = results.units[i].solved;
    results.solved = results.solved && solved[i];
  }
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

std::optional<UnitFault> FlowsheetRun::MissingFeed(std::size_t index, const std::vector<bool>& solved) const {
  for (const NetworkStream& stream : network.streams) {
    if (stream.target != index || !stream.source || solved[*stream.source]) continue;
    const std::string& from = units[*stream.source].specification->name;
    return UnitFault{"not calculated",
                     "not calculated: its feed \"" + stream.name + "\" comes from unit \"" + from +
                         "\", which is not solved",
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
    result.parameters.push_back({parameter.name, ParameterValue(parameter), UnitSymbol(parameter.dimensions),
                                 parameter.mode == CAPE_OUTPUT});
  result.reports = unit.Reports();
  if (const UnitReport* status = FindNamed(result.reports, "Status")) result.status = status->text;
}

Results RunFlowsheet(const std::filesystem::path& file, const std::filesystem::path& dataFolder,
                     const RunOptions& options) {
  const Flowsheet flowsheet = ReadFlowsheet(file, dataFolder);
  return FlowsheetRun(flowsheet, options).Calculate();
}

}  // namespace morvelan::host
