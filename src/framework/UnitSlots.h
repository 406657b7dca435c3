#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "com/Name.h"
#include "framework/ParameterRecord.h"
#include "framework/Settings.h"
#include "framework/UnitOwner.h"
#include "framework/UnitStream.h"

namespace morvelan {

/// The flash by which the framework brings a unit's outlets to equilibrium after its calculation; a unit that
/// empties it has done so itself.
using OutletFlashSpec = std::optional<com::Name>;

/// How saving a unit's own data ended: `kSaved`, or a code that ends the save and goes to the host.
using SaveOutcome = HRESULT;
inline constexpr SaveOutcome kSaved = S_OK;

/// Settings that have just been put in force.
struct SettingsChange {
  enum class Source { kHost, kStream };
  Source source;
  std::vector<Setting*> settings;  // that were given

  [[nodiscard]] bool IsFromStream() const { return source == Source::kStream; }
  [[nodiscard]] bool Includes(const Setting& setting) const {
    return std::ranges::find(settings, &setting) != settings.end();
  }
};

/// What a concrete unit supplies. (`ValidateParameterValue` stands among what parameters know.)
class UnitSlots : public UnitOwner {
 public:
  /// Position of "Thermo Version" in the parameter list; negative when the unit has none.
  [[nodiscard]] virtual int ThermoVersionParameterIndex() const = 0;
  /// The unit's own checks after the common ones; false with a message when something is wrong.
  [[nodiscard]] virtual bool ValidateUnit(std::string&) { return true; }
  /// Called whenever a parameter is put or reset and whenever a port is connected or disconnected.
  virtual void InputsChanged() {}
  /// Called before the host receives the parameter at `index` of the list, to bring its value up to date.
  virtual void ParameterRequested(std::size_t) {}
  /// The unit's calculation, from the inlets' states to the outlets'. `compoundCount` is -1 when each port keeps
  /// its own.
  virtual void CalculateUnit(int compoundCount, OutletFlashSpec& outletFlashSpec) = 0;
  /// Properties that the unit will ask of its feed.
  [[nodiscard]] virtual std::vector<std::string> RequiredProperties() const { return {}; }
  /// The unit's own check of a value for one of its parameters; false with a message to refuse it.
  [[nodiscard]] bool ValidateParameterValue(const CParameter&, std::string&, const ParameterValue&) const override {
    return true;
  }
  /// Called at the end of each calculation, after the status text is set. The count is 0 when it was not yet
  /// known.
  virtual void OnCalculateDone(int, bool) {}

  /// Writes what the unit keeps beyond its parameters.
  virtual SaveOutcome SaveUnit(UnitWriter& writer) = 0;
  /// Reads what `SaveUnit` wrote, for a format version from 1 to 7, and prepares what follows from the
  /// records of the unit's parameters, of which there may be fewer than the unit has. Nothing of the unit
  /// changes: what is returned makes the change once the parameters are loaded. Throws Failure.
  [[nodiscard]] virtual std::function<void()> LoadUnit(UnitReader& reader, int version,
                                                       const std::vector<ParameterRecord>& records) = 0;
  /// Called once other settings are in force and before ports follow; throws Failure to refuse them.
  virtual void SettingsChanged(const SettingsChange&) {}

 protected:
  ~UnitSlots() = default;
};

}  // namespace morvelan
