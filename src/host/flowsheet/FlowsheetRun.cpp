#include "host/flowsheet/FlowsheetRun.h"

#include <algorithm>
#include <utility>

#include "com/Text.h"
#include "host/file/Nearest.h"
#include "host/unit/DimensionSymbol.h"
#include "host/unit/ParameterSetting.h"

namespace morvelan::host {
namespace {

/// The thermo version that units are told to use; empty when the user chose none.
std::string DefaultVersion(std::optional<ThermoOffer> chosen) {
  if (chosen == ThermoOffer::k10) return "1.0";
  return chosen == ThermoOffer::k11 ? "1.1" : "";
}

template <class Named>
const Named* FindNamed(const std::vector<Named>& things, const std::string& name) {
  const auto found =
      std::ranges::find_if(things, [&](const Named& thing) { return com::EqualNoCase(thing.name, name); });
  return found == things.end() ? nullptr : &*found;
}

com::PublishedClass ClassOf(const UnitSpecification& unit, const std::vector<com::PublishedClass>& classes) {
  try {
    return RequireUnitClass(unit.className, classes);
  } catch (const std::runtime_error& error) {
    unit.node.At("class").Fail(error.what());
  }
}

void Configure(HostedUnit& unit, const UnitSpecification& specification) {
  if (!specification.configuration) return;
  try {
    unit.Configure(specification.configuration->Value().dump());
  } catch (const std::runtime_error& error) {
    specification.configuration->Fail(error.what());
  }
}

/// The unit's ports that the file connects. Throws FileError for an unknown port and for one that is connected twice.
std::vector<const UnitPort*> ConnectedPorts(const UnitSpecification& unit, const std::vector<UnitPort>& ports) {
  std::vector<const UnitPort*> connected;
  for (const auto& connection : unit.connections) {
    const UnitPort* port = FindNamed(ports, connection.port);
    if (!port)
      connection.node.Fail("the unit has no port \"" + connection.port + "\"; its ports are " + Listed(NamesOf(ports)));
    if (std::ranges::find(connected, port) != connected.end())
      connection.node.Fail("port \"" + port->name + "\" is connected twice");
    connected.push_back(port);
  }
  return connected;
}

struct CheckedSetting {
  const UnitParameter* parameter;
  const JsonNode* value;
};

/// The unit's parameters that the file sets. Throws FileError for an unknown one and for one that is given twice.
std::vector<CheckedSetting> SettingsOf(const UnitSpecification& unit, const std::vector<UnitParameter>& parameters) {
  std::vector<CheckedSetting> settings;
  for (const auto& setting : unit.settings) {
    const UnitParameter* parameter = FindNamed(parameters, setting.parameter);
    if (!parameter)
      setting.value.Fail("the unit has no parameter \"" + setting.parameter + "\"; its parameters are " +
                         Listed(NamesOf(parameters)));
    if (std::ranges::find(settings, parameter, &CheckedSetting::parameter) != settings.end())
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

/// Reads a unit's parameters and reports.
void ReadOutcome(HostedUnit& unit, UnitResult& result) {
  for (const UnitParameter& parameter : unit.Parameters())
    result.parameters.push_back(
        {parameter.name, ParameterValue(parameter), UnitSymbol(parameter.dimensions), parameter.mode == CAPE_OUTPUT});
  result.reports = unit.Reports();
  if (const UnitReport* status = FindNamed(result.reports, "Status")) result.status = status->text;
}

}  // namespace

FlowsheetRun::FlowsheetRun(const Flowsheet& flowsheet, const RunOptions& runOptions)
    : source(flowsheet), options(runOptions) {
  const auto chosen = options.thermoInterface ? options.thermoInterface : flowsheet.thermoInterface;
  offer = chosen.value_or(ThermoOffer::k11);
  context = com::Make<SimulationContext>(options.simplified, DefaultVersion(chosen));
  if (!flowsheet.reactions.empty()) reactions = com::Make<ReactionPackage>(flowsheet.reactions, flowsheet.package);
  CreateUnits();
  BuildStreams();
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
    PutOptions(unit, specification);  // ports may depend on options
    std::vector<UnitPort> ports = unit.Ports();
    units.push_back({&specification, std::move(unitClass), std::move(unit), std::move(ports)});
  }
}

HostedUnit FlowsheetRun::CreateUnit(const UnitSpecification& specification,
                                    const com::PublishedClass& unitClass) const {
  try {
    HostedUnit unit(unitClass);
    Introduce(unit, specification);  // before it is configured: its configuration may select reactions
    return unit;
  } catch (const std::runtime_error& error) {
    specification.node.Fail(std::string("the unit cannot be created: ") + error.what());
  }
}

void FlowsheetRun::Introduce(HostedUnit& unit, const UnitSpecification& specification) const {
  unit.SetName(specification.name);
  unit.SetContext(context.As<IDispatch>().Get());
  if (reactions) unit.SetReactions(reactions.As<IDispatch>().Get());
}

void FlowsheetRun::BuildStreams() {
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
                             .node = specification.connections[j].node});
  }
  network = BuildNetwork(source, connections);
  for (const NetworkStream& stream : network.streams) streams.emplace_back(stream, source.package, offer);
}

void FlowsheetRun::ConnectUnits() {
  for (const NetworkConnection& connection : connections) {
    const UnitPort* port = FindNamed(units[connection.unit].ports, connection.port);
    if (!port) connection.node.Fail("the restored unit has no port \"" + connection.port + '"');
    const auto stream = streams[network.Find(connection.stream)].Dispatch();
    const HRESULT outcome = port->object->Connect(stream.Get());
    if (FAILED(outcome))
      connection.node.Fail("the port refuses stream \"" + connection.stream +
                           "\": " + ReportedErrorOf(port->object.Get(), outcome).Text());
  }
}

/// Follows the connections, because connecting a material sets the version of the thermodynamic interfaces to use.
void FlowsheetRun::PutParameters() {
  for (const RunUnit& unit : units) {
    const std::vector<UnitParameter> parameters = unit.unit.Parameters();
    const auto settings = SettingsOf(*unit.specification, parameters);
    // Options come first: they decide which of the other parameters are inputs.
    for (const bool options : {true, false})
      for (const auto& [parameter, value] : settings)
        if ((parameter->kind == CAPE_OPTION) == options) PutParameter(*parameter, *value);
  }
}

void FlowsheetRun::RestoreUnits() {
  std::vector<RunUnit> saved = std::move(units);
  units.clear();
  for (const RunUnit& run : saved) try {
      HostedUnit restored(run.unitClass, *run.unit.Save());
      Introduce(restored, *run.specification);
      std::vector<UnitPort> ports = restored.Ports();
      units.push_back({run.specification, run.unitClass, std::move(restored), std::move(ports)});
    } catch (const std::runtime_error& error) {
      run.specification->node.Fail(std::string("the unit cannot be saved and restored: ") + error.what());
    }
  saved.clear();  // releases the streams
  ConnectUnits();
}

void FlowsheetRun::FlashFeeds() {
  for (std::size_t i = 0; i < streams.size(); ++i) {
    if (!network.streams[i].listed) continue;
    try {
      streams[i].Flash();
    } catch (const std::exception& error) {
      network.streams[i].listed->node.Fail(std::string("the stream cannot be brought to equilibrium: ") + error.what());
    }
  }
}

Results FlowsheetRun::Calculate() {
  Results results{.title = source.title, .solved = true, .units = std::vector<UnitResult>(units.size())};
  for (std::size_t i = 0; i < source.package->CompoundCount(); ++i)
    results.compounds.push_back(source.package->CompoundAt(i).name);
  std::vector<bool> solved(units.size(), false);
  if (network.tears.empty()) {
    CalculateUnits(results, solved);
  } else {
    std::vector<MaterialState*> torn;
    for (const std::size_t i : network.tears) torn.push_back(streams[i].Material());
    results.problem = CloseRecycles(
        torn, [&] { return CalculateRound(results, solved); }, options.progress);
    if (!results.problem.empty()) results.solved = false;
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

bool FlowsheetRun::CalculateUnits(Results& results, std::vector<bool>& solved) {
  results.solved = true;
  for (const std::size_t i : network.order) {
    results.units[i] = CalculateUnit(i, solved);
    solved[i] = results.units[i].solved;
    results.solved = results.solved && solved[i];
  }
  return results.solved;
}

bool FlowsheetRun::CalculateRound(Results& results, std::vector<bool>& solved) {
  context->ForgetLines();
  for (const std::size_t i : network.tears) solved[*network.streams[i].source] = true;  // its outlet has a state
  return CalculateUnits(results, solved);
}

std::optional<ReportedError> FlowsheetRun::MissingFeed(std::size_t index, const std::vector<bool>& solved) const {
  for (const NetworkStream& stream : network.streams) {
    if (stream.target != index || !stream.source || solved[*stream.source]) continue;
    const std::string& from = units[*stream.source].specification->name;
    return ReportedError{
        "not calculated",
        "not calculated: its feed \"" + stream.name + "\" comes from unit \"" + from + "\", which is not solved",
        {},
        {}};
  }
  return std::nullopt;
}

UnitResult FlowsheetRun::CalculateUnit(std::size_t index, const std::vector<bool>& solved) {
  RunUnit& run = units[index];
  UnitResult result{
      .name = run.specification->name, .className = run.unitClass.name, .error = MissingFeed(index, solved)};
  try {
    if (!result.error) result.error = run.unit.Validate();
    if (!result.error) run.unit.Calculate();
  } catch (const std::exception& failure) {
    result.error = ReportedErrorOf(failure);
  }
  if (reactions) reactions->UnsetMaterial();  // all units share the package
  try {
    ReadOutcome(run.unit, result);
  } catch (const std::exception& failure) {
    if (!result.error) result.error = ReportedErrorOf(failure);
  }
  result.solved = !result.error;
  return result;
}

}  // namespace morvelan::host
