#include "host/flowsheet/StreamNetwork.h"

#include <algorithm>

#include "host/file/Nearest.h"

namespace morvelan::host {
namespace {

const char* TypeWithArticle(CapePortType type) {
  switch (type) {
    case CAPE_ENERGY:
      return "an energy";
    case CAPE_INFORMATION:
      return "an information";
    default:
      return "a material";
  }
}

CapePortType TypeOf(const StreamSpecification& stream) {
  if (std::holds_alternative<EnergyFeed>(stream.state)) return CAPE_ENERGY;
  return std::holds_alternative<InformationFeed>(stream.state) ? CAPE_INFORMATION : CAPE_MATERIAL;
}

/// Connects a stream to a port. The flowsheet gives the units' names for messages.
void Connect(NetworkStream& stream, const NetworkConnection& connection, const Flowsheet& flowsheet) {
  if (stream.type == CAPE_ANY) stream.type = connection.type;
  if (connection.type != CAPE_ANY && connection.type != stream.type)
    connection.node.Fail(std::string("the port takes ") + TypeWithArticle(connection.type) + " stream, \"" +
                         stream.name + "\" is " + TypeWithArticle(stream.type) + " stream");
  const bool isOutlet = connection.direction == CAPE_OUTLET;
  std::optional<std::size_t>& end = isOutlet ? stream.source : stream.target;
  if (end)
    connection.node.Fail("stream \"" + stream.name + (isOutlet ? "\" comes from" : "\" feeds") + " a port of unit \"" +
                         flowsheet.units[*end].name + "\" already");
  end = connection.unit;
  if (isOutlet || stream.items.empty()) stream.items = connection.items;
}

using UnitLists = std::vector<std::vector<std::size_t>>;

bool IsTear(const NetworkStream& stream) { return stream.listed && stream.source && stream.target; }

/// The units that feed each unit, by position, except through torn streams.
UnitLists Feeders(const StreamNetwork& network, std::size_t unitCount) {
  UnitLists feeders(unitCount);
  for (const NetworkStream& stream : network.streams)
    if (stream.source && stream.target && !IsTear(stream)) feeders[*stream.target].push_back(*stream.source);
  return feeders;
}

/// True when streams, torn ones included, lead from unit `from` to unit `to`.
bool Reaches(const StreamNetwork& network, std::size_t unitCount, std::size_t from, std::size_t to) {
  std::vector<bool> reached(unitCount, false);
  std::vector<std::size_t> open = {from};
  while (!open.empty()) {
    const std::size_t unit = open.back();
    open.pop_back();
    if (unit == to) return true;
    if (reached[unit]) continue;
    reached[unit] = true;
    for (const NetworkStream& stream : network.streams)
      if (stream.source == unit && stream.target) open.push_back(*stream.target);
  }
  return false;
}

/// The units of a cycle in the direction of the streams. Every unit that is not ordered has a feeder that is not.
std::vector<std::size_t> FindCycle(const UnitLists& feeders, const std::vector<bool>& ordered) {
  auto unit = static_cast<std::size_t>(std::ranges::find(ordered, false) - ordered.begin());
  std::vector<std::size_t> path;
  while (std::ranges::find(path, unit) == path.end()) {
    path.push_back(unit);
    unit = *std::ranges::find_if(feeders[unit], [&](std::size_t feeder) { return !ordered[feeder]; });
  }
  path.erase(path.begin(), std::ranges::find(path, unit));
  std::ranges::reverse(path);
  std::ranges::rotate(path, std::ranges::min_element(path));
  return path;
}

[[noreturn]] void FailRecycle(const Flowsheet& flowsheet, const std::vector<std::size_t>& cycle) {
  std::string units;
  for (const std::size_t unit : cycle) units += '"' + flowsheet.units[unit].name + "\" -> ";
  flowsheet.units[cycle.front()].node.Fail(
      "the recycle " + units + '"' + flowsheet.units[cycle.front()].name +
      "\" needs a guess: list one of its material streams under streams with a state");
}

/// The file's order, in which each unit is moved behind those that feed it.
std::vector<std::size_t> OrderUnits(const Flowsheet& flowsheet, const StreamNetwork& network) {
  const auto feeders = Feeders(network, flowsheet.units.size());
  std::vector<bool> ordered(flowsheet.units.size(), false);
  std::vector<std::size_t> order;
  while (order.size() < flowsheet.units.size()) {
    std::size_t next = 0;
    const auto waits = [&](std::size_t unit) {
      return std::ranges::any_of(feeders[unit], [&](std::size_t feeder) { return !ordered[feeder]; });
    };
    while (next < ordered.size() && (ordered[next] || waits(next))) ++next;
    if (next == ordered.size()) FailRecycle(flowsheet, FindCycle(feeders, ordered));
    ordered[next] = true;
    order.push_back(next);
  }
  return order;
}

/// A listed stream that comes from a unit must be the guess of a recycle.
void FindTears(StreamNetwork& network, const Flowsheet& flowsheet) {
  for (std::size_t i = 0; i < network.streams.size(); ++i) {
    const NetworkStream& stream = network.streams[i];
    if (!stream.listed || !stream.source) continue;
    if (!stream.target || stream.type != CAPE_MATERIAL ||
        !Reaches(network, flowsheet.units.size(), *stream.target, *stream.source))
      stream.listed->node.Fail("the stream is an outlet of unit \"" + flowsheet.units[*stream.source].name +
                               "\", which gives it its state; do not list it");
    network.tears.push_back(i);
  }
}

void CheckSources(const StreamNetwork& network, const std::vector<NetworkConnection>& connections) {
  std::vector<std::string> known;
  for (const NetworkStream& stream : network.streams)
    if (stream.listed || stream.source) known.push_back(stream.name);
  for (const NetworkConnection& connection : connections) {
    const NetworkStream& stream = network.streams[network.Find(connection.stream)];
    if (!stream.listed && !stream.source)
      connection.node.Fail("stream \"" + stream.name + "\" is not listed under streams and comes from no unit" +
                           Suggestion(stream.name, known));
  }
}

}  // namespace

std::size_t StreamNetwork::Find(const std::string& name) const {
  return static_cast<std::size_t>(std::ranges::find(streams, name, &NetworkStream::name) - streams.begin());
}

StreamNetwork BuildNetwork(const Flowsheet& flowsheet, const std::vector<NetworkConnection>& connections) {
  StreamNetwork network;
  for (const StreamSpecification& stream : flowsheet.streams)
    network.streams.push_back({.name = stream.name, .type = TypeOf(stream), .listed = &stream});
  for (const NetworkConnection& connection : connections) {
    const std::size_t found = network.Find(connection.stream);
    if (found == network.streams.size())
      network.streams.push_back({.name = connection.stream, .type = connection.type});
    Connect(network.streams[found], connection, flowsheet);
  }
  CheckSources(network, connections);
  FindTears(network, flowsheet);
  network.order = OrderUnits(flowsheet, network);
  return network;
}

}  // namespace morvelan::host
