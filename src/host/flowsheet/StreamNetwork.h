#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/flowsheet/Flowsheet.h"
#include "host/unit/HostedUnit.h"

namespace morvelan::host {

/// A port of a unit and the stream that the file connects to it. Units are positions in Flowsheet::units.
struct NetworkConnection {
  std::size_t unit = 0;
  std::string port = {};
  std::string stream;
  CapePortDirection direction = CAPE_INLET;
  CapePortType type = CAPE_MATERIAL;
  std::vector<PortItem> items;
  JsonNode node;
};

struct NetworkStream {
  std::string name;
  CapePortType type = CAPE_MATERIAL;
  const StreamSpecification* listed = nullptr;  // absent for a stream that only ports name
  std::optional<std::size_t> source = {};       // the unit whose outlet it is
  std::optional<std::size_t> target = {};       // the unit whose inlet it is
  std::vector<PortItem> items = {};             // the values that an energy or information port declares
};

/// The streams of a flowsheet, and its units in an order in which each comes after those that feed it. Torn streams of
/// recycles do not count for the order.
struct StreamNetwork {
  std::vector<NetworkStream> streams;  // those listed first, in the file's order
  std::vector<std::size_t> order;
  std::vector<std::size_t> tears;  // material streams of recycles whose guess the file gives

  [[nodiscard]] std::size_t Find(const std::string& name) const;
};

/// Throws FileError for a stream with two sources, targets or types, for a stream with neither source nor state, for
/// one with both outside of a recycle, and for a recycle without a guess.
[[nodiscard]] StreamNetwork BuildNetwork(const Flowsheet& flowsheet, const std::vector<NetworkConnection>& connections);

}  // namespace morvelan::host
