#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/flowsheet/Flowsheet.h"
#include "host/flowsheet/Results.h"
#include "host/flowsheet/StreamNetwork.h"
#include "host/flowsheet/StreamObjects.h"
#include "host/objects/SimulationContext.h"

namespace morvelan::host {

struct RunOptions {
  std::optional<ThermoOffer> thermoInterface;  // instead of the file's
  bool simplified = false;                     // the host asks for simplified models
  bool roundtrip = false;                      // units are saved and restored before they calculate
};

/// A flowsheet with its units created, configured and connected.
class FlowsheetRun {
 public:
  /// Throws FlowsheetError for what the units do not accept of the file, std::runtime_error for what else
  /// keeps it from running. `flowsheet` must outlive this object.
  FlowsheetRun(const Flowsheet& flowsheet, const RunOptions& options);

  /// Calculates the units, each after those that feed it. A unit that fails keeps those behind it from being
  /// calculated, and no others.
  [[nodiscard]] Results Calculate();

 private:
  struct RunUnit {
    const UnitSpecification* specification;
    com::PublishedClass unitClass;
    HostedUnit unit;
    std::vector<UnitPort> ports;
  };

  void CreateUnits();
  void ConnectUnits();
  void ConfigureUnits();
  void FlashFeeds();
  /// Why a unit cannot be calculated after what happened to the units that feed it, if so.
  [[nodiscard]] std::optional<UnitFault> MissingFeed(std::size_t index,
                                                     const std::vector<bool>& solved) const;
  [[nodiscard]] UnitResult CalculateUnit(std::size_t index, const std::vector<bool>& solved);
  void ReadFace(HostedUnit& unit, UnitResult& result) const;

  const Flowsheet& source;
  ThermoOffer offer;
  // Units let go of the streams and of the context before these go themselves.
  com::Ref<SimulationContext> context;
  StreamNetwork network;
  std::vector<StreamObject> streams;
  std::vector<RunUnit> units;
};

/// Reads, runs and reports in one go.
[[nodiscard]] Results RunFlowsheet(const std::filesystem::path& file, const std::filesystem::path& dataFolder,
                                   const RunOptions& options);

}  // namespace morvelan::host
