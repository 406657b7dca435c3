#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/flowsheet/Flowsheet.h"
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
  /// Told of each round of a recycle: its number from 1, and by how much a torn stream still changes.
  std::function<void(int, double)> progress = {};
};

/// A flowsheet with its units created, configured and connected.
class FlowsheetRun {
 public:
  /// Throws FlowsheetError for what the units do not accept of the file, std::runtime_error for what else
  /// keeps it from running. `flowsheet` must outlive this object.
  FlowsheetRun(const Flowsheet& flowsheet, const RunOptions& options);

  /// Calculates the units, each after those that feed it, and again until the recycles close. A unit that
  /// fails keeps those behind it from being calculated, and no others.
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
  void Settle(HostedUnit& unit, const UnitSpecification& specification) const;
  /// Finds out what connects to what, and makes the streams.
  void PlanNetwork();
  void ConnectUnits();
  void PutParameters();
  /// Saves every unit and goes on with one that is restored.
  void RestoreUnits();
  void FlashFeeds();
  /// Why a unit cannot be calculated after what happened to the units that feed it, if so.
  [[nodiscard]] std::optional<UnitFault> MissingFeed(std::size_t index, const std::vector<bool>& solved) const;
  /// Calculates every unit once; true when all are solved.
  bool CalculateUnits(Results& results, std::vector<bool>& solved);
  /// Calculates the units until the torn streams come out as they were assumed.
  void CloseRecycles(Results& results, std::vector<bool>& solved);
  [[nodiscard]] UnitResult CalculateUnit(std::size_t index, const std::vector<bool>& solved);
  void ReadFace(HostedUnit& unit, UnitResult& result) const;

  const Flowsheet& source;
  const RunOptions options;
  ThermoOffer offer;
  // Units let go of the streams, the context and the reactions before these go themselves.
  com::Ref<SimulationContext> context;
  com::Ref<ReactionPackage> reactions;  // null when the file has none
  std::vector<NetworkConnection> connections;
  StreamNetwork network;
  std::vector<StreamObject> streams;
  std::vector<RunUnit> units;
};

/// Reads, runs and reports in one go.
[[nodiscard]] Results RunFlowsheet(const std::filesystem::path& file, const std::filesystem::path& dataFolder,
                                   const RunOptions& options);

}  // namespace morvelan::host
