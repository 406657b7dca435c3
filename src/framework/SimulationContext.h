#pragma once

#include <optional>
#include <string>

#include "cape_open.h"
#include "com/Ref.h"
#include "com/Values.h"

namespace morvelan {

/// The host's simulation context as a unit uses it: named values, the log and the pop-up. Empty when the host
/// gave none. The host's failures are harmless here.
class SimulationContext {
 public:
  SimulationContext() = default;
  /// Keeps the context and finds out what it supports.
  explicit SimulationContext(com::Ref<IDispatch> hostContext);

  [[nodiscard]] bool Lists(com::Name namedValue) const;
  /// The named value, or nothing when the host fails to give it.
  [[nodiscard]] std::optional<com::Variant> NamedValue(com::Name name) const;
  /// Finds out whether the host supports "SimplifiedModelRequest".
  void FindSimplifiedModelSupport();
  /// Asks the host whether this calculation may be a simplified one.
  [[nodiscard]] bool SimplifiedModelRequested() const;

  void LogMessage(const std::string& text) const;
  /// False when the host shows no pop-up.
  [[nodiscard]] bool PopUpMessage(const std::string& text) const;

 private:
  com::Ref<IDispatch> context;
  com::Ref<ICapeCOSEUtilities> utilities;
  bool supportsSimplifiedModel = false;
};

}  // namespace morvelan
