#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "framework/CParameter.h"
#include "framework/CUnitPort.h"
#include "framework/Declarations.h"
#include "framework/EnergyPort.h"
#include "framework/ParameterHandles.h"
#include "framework/Settings.h"
#include "framework/Streams.h"
#include "framework/UnitOwner.h"
#include "framework/UnitStream.h"

namespace morvelan {

/// Between what a real parameter may be, and its dimension; SI units.
struct Quantity {
  double lowest = -std::numeric_limits<double>::max();
  double highest = std::numeric_limits<double>::max();
  Dimensionality dimension = kDimensionless;
};

namespace quantity {

inline constexpr Quantity kTemperature = {0, 1e10, kTemperatureDimension};
inline constexpr Quantity kPressure = {0, 1e10, kPressureDimension};
inline constexpr Quantity kPressureDrop = {0, 1e10, kPressureDropDimension};
inline constexpr Quantity kFraction = {0, 1, kDimensionless};

}  // namespace quantity

/// A declared parameter, for what only some need.
class ParameterRow {
 public:
  ParameterRow(ParameterDeclaration parameter, ParameterHandle* way) : declaration(std::move(parameter)), handle(way) {}

  ParameterRow& Output() { return declaration.mode = CAPE_OUTPUT, *this; }
  /// The unit can do without a value.
  ParameterRow& MayBeUnset() { return mayBeUnset = true, *this; }
  /// It is an input where an option has one of the values, and a result where it has others.
  template <class Enum, class... Values>
  ParameterRow& InputWhen(const Option<Enum>& option, Values... values) {
    isInput = [&option, values...] { return (option.Is(values) || ...); };
    return *this;
  }
  /// It is a result where an option has one of the values, and an input where it has others.
  template <class Enum, class... Values>
  ParameterRow& ResultWhen(const Option<Enum>& option, Values... values) {
    isInput = [&option, values...] { return !(option.Is(values) || ...); };
    return *this;
  }
  /// An option may have other values than its choices.
  ParameterRow& Unrestricted() { return declaration.restrictedToList = false, *this; }
  /// Streams keep its value under a key too.
  ParameterRow& AlsoKeptAs(const char* key) { return keptKey = key, *this; }

 private:
  friend class UnitDeclarations;
  ParameterDeclaration declaration;
  ParameterHandle* handle;
  std::function<bool()> isInput;
  bool mayBeUnset = false;
  const char* keptKey = nullptr;
};

/// A declared port, or a group of ports of one kind, for what only some need.
class PortRow {
 public:
  /// How many there are now; names get a number behind unless there is at most one.
  PortRow& As(std::function<std::size_t()> number) { return count = std::move(number), *this; }
  /// The unit can do without a stream.
  PortRow& Optional() { return optional = true, *this; }

 private:
  friend class UnitDeclarations;
  std::string name;
  std::string description;
  CapePortDirection direction = CAPE_INLET;
  CapePortType type = CAPE_MATERIAL;
  std::span<const InformationItem> items = {};
  PortHandle* handle = nullptr;
  std::function<std::size_t()> count;  // one where there is none
  bool numbered = false;
  bool optional = false;
  std::vector<com::Ref<CUnitPort>> ports;  // that there are
};

enum class PortSide { kInlet, kOutlet };

/// How many ports of a group there are: a setting, shown by a parameter.
struct PortCount {
  operator std::int32_t() const { return setting; }  // NOLINT: it is one

  Integer parameter;
  Count setting;
};

/// What hosts see of a unit, and what it is told: its ports, parameters and configuration. The unit's
/// constructor declares them; the order of parameters and settings is that in which streams keep them, for
/// ever.
class UnitDeclarations {
 public:
  using PortList = std::vector<com::Ref<CUnitPort>>;
  using ParameterRef = com::Ref<CParameter>;
  using ParameterList = std::vector<ParameterRef>;

  explicit UnitDeclarations(UnitOwner& unit) : owner(unit) {}
  ~UnitDeclarations();
  UnitDeclarations(const UnitDeclarations&) = delete;
  UnitDeclarations& operator=(const UnitDeclarations&) = delete;

  // ---- Declaring

  PortRow& Port(InletStream& stream, const char* name, const char* description);
  PortRow& Port(OutletStream& stream, const char* name, const char* description);
  PortRow& Ports(InletStreams& streams, const char* name, const char* description, const PortCount& count);
  PortRow& Ports(OutletStreams& streams, const char* name, const char* description, const PortCount& count);
  /// An energy port that is an inlet or an outlet, as `side` says now.
  void EnergyPort(morvelan::EnergyPort& port, const char* name, const char* description,
                  std::function<PortSide()> side);
  /// The same under another name and description as an inlet.
  void EnergyPort(morvelan::EnergyPort& port, const char* inletName, const char* inletDescription,
                  const char* outletName, const char* outletDescription, std::function<PortSide()> side);

  ParameterRow& Parameter(Real& handle, const char* name, const char* description, double initial,
                          const Quantity& quantity = {});
  ParameterRow& Parameter(Integer& handle, const char* name, const char* description, std::int32_t initial,
                          std::int32_t lowest, std::int32_t highest);
  ParameterRow& Parameter(Array& handle, const char* name, const char* description, std::vector<double> initial,
                          const Quantity& quantity = {});
  /// The first choice is the initial one unless another is given.
  ParameterRow& Parameter(OptionHandle& handle, const char* name, const char* description,
                          std::vector<std::string> choices, std::size_t initial = 0);
  /// The option "Thermo Version".
  void ThermoVersion(OptionHandle& handle);
  /// A count of ports: the parameter that shows it, and the setting that makes it.
  void Parameter(PortCount& count, const char* key, const char* name, const char* description, std::int32_t lowest,
                 std::int32_t highest);

  SettingRow Setting(Names& handle, const char* key);
  SettingRow Setting(Check& handle, const char* key);
  SettingRow Setting(TextSetting& handle, const char* key);
  SettingRow Setting(Numbers& handle, const char* key);
  SettingRow Setting(ChoiceSetting& handle, const char* key, std::vector<const char*> choices);
  /// As above; streams keep it in the flag word of an option.
  SettingRow Setting(ChoiceSetting& handle, const char* key, std::vector<const char*> choices, OptionHandle& keptIn);

  // ---- Creating and arranging

  /// Makes parameters and ports, unless nothing is declared.
  void Create();
  /// Switches modes and shows counts, as options and settings say now.
  void Refresh();
  [[nodiscard]] bool IsDeclared() const { return !parameterRows.empty() || !portRows.empty(); }

  /// Ports as options and settings say now, ready to be put in place.
  class PreparedPorts {
   public:
    [[nodiscard]] bool IsChange() const { return isChange; }

   private:
    friend class UnitDeclarations;
    bool isChange = false;
    std::vector<PortList> ofRows;
    std::vector<std::vector<CUnitPort*>> forHandles;  // the same
    PortList inlets, outlets;
    PortList gone;  // room for those that go
  };
  [[nodiscard]] PreparedPorts PreparePorts();
  /// Puts planned ports in place. Those that stay keep their connections; those that go are returned, to be
  /// orphaned once the unit is whole.
  [[nodiscard]] PortList Commit(PreparedPorts plan) noexcept;

  // ---- The configuration

  [[nodiscard]] bool IsConfigurable() const { return !settings.empty(); }
  [[nodiscard]] Json Configuration() const;
  /// The form of the edit window.
  [[nodiscard]] Json Form() const;
  /// Puts the settings that are given beside those in force. Throws Failure.
  [[nodiscard]] std::vector<morvelan::Setting*> Stage(const Json& configuration);

  /// A parameter to be kept apart from the list, whose value hosts can't read yet, for a reason.
  [[nodiscard]] ParameterRef MakeExtra(const std::string& name, const std::string& description, double initial,
                                       const Quantity& quantity, const char* whyUnavailable);

  // ---- In streams

  void WriteSettings(UnitWriter& writer) const;
  struct LoadedSettings {
    std::vector<morvelan::Setting*> staged;
    std::vector<std::pair<CParameter*, std::string>> options;  // kept under keys too, which count
  };
  /// Puts what `WriteSettings` wrote, and what records keep, beside the settings in force. Throws Failure.
  [[nodiscard]] LoadedSettings ReadSettings(UnitReader& reader, const std::vector<ParameterRecord>& records);

  // ---- What there is

  PortList inlets;
  PortList outlets;
  ParameterList parameters;
  ParameterList extraParameters;  // kept apart from the list, and not saved with it
  [[nodiscard]] PortList AllPorts() const;
  [[nodiscard]] ParameterList AllParameters() const;
  [[nodiscard]] int ThermoVersionPosition() const { return thermoVersion; }
  /// Null when there is none.
  [[nodiscard]] CUnitPort* FirstConnectedMaterialInlet() const;
  /// Whether a unit needs more than the base's check of connections, which knows no optional ports.
  [[nodiscard]] bool HasOptionalPorts() const;
  /// The first parameter that is an input without a value; null when there is none.
  [[nodiscard]] const CParameter* FindUnset() const;

 private:
  struct KeptSetting {
    morvelan::Setting* setting;
    // Where streams keep it; under its key where both are null.
    Integer* inValue = nullptr;
    ChoiceSetting* choice = nullptr;
    OptionHandle* inFlagWord = nullptr;
    Count* count = nullptr;
  };

  PortRow& AddPorts(PortHandle& handle, CapePortDirection direction, const char* name, const char* description);
  ParameterRow& AddParameter(ParameterHandle& handle, ParameterDeclaration declaration);
  SettingRow AddSetting(morvelan::Setting& setting, const char* key, KeptSetting kept);
  [[nodiscard]] bool KeepsByKey() const;
  [[nodiscard]] std::size_t PositionOf(const ParameterHandle& handle) const;
  [[nodiscard]] com::Ref<CUnitPort> MakePort(const PortRow& row, const std::string& name);
  [[nodiscard]] std::string FreeName(const PortRow& row, std::size_t number, const PreparedPorts& plan) const;

  UnitOwner& owner;
  std::deque<PortRow> portRows;
  std::deque<ParameterRow> parameterRows;
  std::vector<KeptSetting> settings;
  std::vector<PortCount*> counts;
  int thermoVersion = -1;
};

}  // namespace morvelan
