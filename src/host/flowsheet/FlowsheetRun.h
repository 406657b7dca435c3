#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/flowsheet/Flowsheet.h"
#include "host/flowsheet/Recycle.h"
#include "host/flowsheet/Results.h"
#include "host/flowsheet/StreamNetwork.h"
#include "host/flowsheet/StreamObjects.h"
#include "host/objects/SimulationContext.h"
#include "host/reactions/ReactionPackage.h"

namespace morvelan::host {

struct RunOptions {
  std::optional<ThermoOffer> thermoInterface;  // instead of the file's
  bool simplified = false;                     // the host asks for simplified models
  bool roundtrip = false;                      // units are saved and restored before they calculate
  RecycleProgress progress = {};
};

/// A flowsheet with its units created, configured and connected.
class FlowsheetRun {
 public:
  /// Throws FileError for an entry of the file that a unit does not accept, std::runtime_error when the flowsheet
  /// cannot be run for another reason. `flowsheet` must outlive this object.
  FlowsheetRun(const Flowsheet& flowsheet, const RunOptions& options);

  /// Calculates each unit after those that feed it, and repeats that until the recycles close. When a unit fails, the
  /// units that it feeds are not calculated.
  [[nodiscard]] Results Calculate();

 private:
  struct RunUnit {
    const UnitSpecification* specification;
    com::PublishedClass unitClass;
    HostedUnit unit;
    std::vector<UnitPort> ports;
  };

  void CreateUnits();
  [[nodiscard]] HostedUnit CreateUnit(const UnitSpecification& specification,
                                      const com::PublishedClass& unitClass) const;
  /// Gives a new unit its name, the context and the reactions, if there are any.
  void Introduce(HostedUnit& unit, const UnitSpecification& specification) const;
  /// Matches the file's connections with the units' ports, and makes the streams.
  void BuildStreams();
  void ConnectUnits();
  void PutParameters();
  /// Saves every unit and replaces it by a restored one.
  void RestoreUnits();
  void FlashFeeds();
  /// The error of a unit that cannot be calculated because a unit that feeds it is not solved.
  [[nodiscard]] std::optional<ReportedError> MissingFeed(std::size_t index, const std::vector<bool>& solved) const;
  /// Calculates every unit once; true when all are solved.
  bool CalculateUnits(Results& results, std::vector<bool>& solved);
  /// One round of a recycle. The torn streams have the assumed state.
  bool CalculateRound(Results& results, std::vector<bool>& solved);
  [[nodiscard]] UnitResult CalculateUnit(std::size_t index, const std::vector<bool>& solved);

  const Flowsheet& source;
  const RunOptions options;
  ThermoOffer offer;
  // The units come last: they release the streams, the context and the reactions before these are destroyed.
  com::Ref<SimulationContext> context;
  com::Ref<ReactionPackage> reactions;  // null when the file has none
  std::vector<NetworkConnection> connections;
  StreamNetwork network;
  std::vector<StreamObject> streams;
  std::vector<RunUnit> units;
};

}  // namespace morvelan::host
