#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cape_open.h"
#include "com/Classes.h"
#include "com/Values.h"
#include "host/objects/StreamParameter.h"
#include "host/unit/UnitFault.h"

namespace morvelan::host {

/// One value that an energy or information port expects of a stream.
struct PortItem {
  std::string name;
  Exponents dimensions{};
};

struct UnitPort {
  std::string name;
  std::string description;
  CapePortDirection direction;
  CapePortType type;
  std::vector<PortItem> items;
  com::Ref<ICapeUnitPort> object;
};

struct UnitParameter {
  std::string name;
  std::string description;
  CapeParamType kind;
  CapeParamMode mode;
  Exponents dimensions{};
  com::Ref<ICapeParameter> object;
};

struct UnitReport {
  std::string name;
  std::string text;
};

/// The class that a name, a ProgID or a class identifier means, in any ASCII case; of several of one name,
/// ours.
[[nodiscard]] std::optional<com::PublishedClass> FindUnitClass(const std::string& name,
                                                               const std::vector<com::PublishedClass>& classes);

/// A unit as the host uses it, through its interfaces alone. Failures of the unit are UnitFailure.
class HostedUnit {
 public:
  /// Creates and initializes a unit. Throws std::runtime_error too.
  explicit HostedUnit(const com::PublishedClass& unitClass);
  /// Creates a unit, restores it from what `Save` gave and initializes it.
  HostedUnit(const com::PublishedClass& unitClass, IStream& saved);
  HostedUnit(HostedUnit&&) = default;
  HostedUnit& operator=(HostedUnit&&) = delete;
  /// Terminates the unit.
  ~HostedUnit();

  void SetName(const std::string& name);
  /// Hands the unit a JSON object.
  void Configure(const std::string& configuration);
  /// What the unit keeps, from its beginning.
  [[nodiscard]] com::Ref<IStream> Save() const;
  void SetContext(IDispatch* context);
  /// Hands the reactions to a unit that takes some; any other is left alone.
  void SetReactions(IDispatch* reactions);
  [[nodiscard]] std::vector<UnitPort> Ports() const;
  [[nodiscard]] std::vector<UnitParameter> Parameters() const;
  /// Nothing when the unit is valid, else what it says against itself.
  [[nodiscard]] std::optional<UnitFault> Validate();
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
