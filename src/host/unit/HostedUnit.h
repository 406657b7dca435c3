#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cape_open.h"
#include "com/Classes.h"
#include "com/Values.h"
#include "host/objects/ReportedError.h"
#include "host/objects/StreamParameter.h"

namespace morvelan::host {

/// One value that an energy or information port expects of a stream.
struct PortItem {
  std::string name;
  Exponents dimensions{};
};

struct UnitPort {
  std::string name;
  std::string description;
  CapePortDirection direction = CAPE_INLET;
  CapePortType type = CAPE_MATERIAL;
  std::vector<PortItem> items = {};
  com::Ref<ICapeUnitPort> object;
};

struct UnitParameter {
  std::string name;
  std::string description;
  CapeParamType kind = CAPE_REAL;
  CapeParamMode mode = CAPE_INPUT;
  Exponents dimensions{};
  com::Ref<ICapeParameter> object;
};

struct UnitReport {
  std::string name;
  std::string text;
};

/// The class with this name, ProgID or class identifier, in any ASCII case. Of several classes with one name this
/// system's own is taken. Throws std::runtime_error with the nearest name for an unknown one.
[[nodiscard]] com::PublishedClass RequireUnitClass(const std::string& name,
                                                   const std::vector<com::PublishedClass>& classes);

/// A unit operation, used through its interfaces only. Failures of the unit are UnitFailure.
class HostedUnit {
 public:
  /// Creates and initializes a unit. Throws std::runtime_error when it cannot be created.
  explicit HostedUnit(const com::PublishedClass& unitClass);
  /// Creates a unit, restores it from a stream of `Save` and initializes it.
  HostedUnit(const com::PublishedClass& unitClass, IStream& saved);
  HostedUnit(HostedUnit&&) = default;
  HostedUnit& operator=(HostedUnit&&) = delete;
  /// Terminates the unit.
  ~HostedUnit();

  void SetName(const std::string& name);
  /// Hands the unit a JSON object.
  void Configure(const std::string& configuration);
  /// Saves the unit to a stream, which stands at its beginning.
  [[nodiscard]] com::Ref<IStream> Save() const;
  void SetContext(IDispatch* context);
  /// Hands the reaction package to the unit. Does nothing for a unit that takes none.
  void SetReactions(IDispatch* reactions);
  [[nodiscard]] std::vector<UnitPort> Ports() const;
  [[nodiscard]] std::vector<UnitParameter> Parameters() const;
  /// The reason why the unit is not valid; nothing when it is valid.
  [[nodiscard]] std::optional<ReportedError> Validate();
  void Calculate();
  [[nodiscard]] std::vector<UnitReport> Reports();

 private:
  struct Uninitialized {};
  HostedUnit(const com::PublishedClass& unitClass, Uninitialized);

  com::Ref<IUnknown> object;
  com::Ref<ICapeUnit> unit;
  com::Ref<ICapeUtilities> utilities;
};

}  // namespace morvelan::host
