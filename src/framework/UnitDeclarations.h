#pragma once

#include <functional>
#include <string>
#include <vector>

#include "framework/DeclaredParameters.h"
#include "framework/DeclaredPorts.h"
#include "framework/DeclaredSettings.h"
#include "framework/EnergyPort.h"
#include "framework/InformationPorts.h"
#include "framework/Streams.h"

namespace morvelan {

enum class PortSide { kInlet, kOutlet };

/// How many ports of a group there are: a setting, shown by a parameter.
struct PortCount {
  operator std::int32_t() const { return setting; }  // NOLINT: it is one

  Integer parameter;
  Count setting;
};

/// What hosts see of a unit, and what it is told: its ports, parameters and configuration. The unit's
/// constructor declares them, one row each; the order of parameters and settings is the one in which streams
/// keep them, for ever.
class UnitDeclarations {
 public:
  explicit UnitDeclarations(UnitOwner& unit) : ports(unit), parameters(unit), settings(parameters) {}

  PortRow& Port(InletStream& stream, const char* name, const char* description);
  PortRow& Port(OutletStream& stream, const char* name, const char* description);
  /// Ports with a number behind their name.
  void Ports(InletStreams& streams, const char* name, const char* description, const PortCount& count);
  void Ports(OutletStreams& streams, const char* name, const char* description, const PortCount& count);
  /// An energy port that is an inlet or an outlet, as `side` says now.
  void EnergyPort(morvelan::EnergyPort& port, const char* name, const char* description,
                  const std::function<PortSide()>& side);
  /// The same under another name and description as an inlet.
  void EnergyPort(morvelan::EnergyPort& port, const char* inletName, const char* inletDescription,
                  const char* outletName, const char* outletDescription, const std::function<PortSide()>& side);
  /// Information ports with one value each, as `wanted` lists them now. A port whose name stays keeps its
  /// stream, wherever it moves in the list; a renamed one keeps it too.
  void InformationPorts(morvelan::InformationPorts& handle, CapePortDirection direction, const char* description,
                        std::function<std::vector<WantedPort>()> wanted);

  ParameterRow& Parameter(Real& handle, const char* name, const char* description, double initial,
                          const Quantity& quantity = {});
  ParameterRow& Parameter(Integer& handle, const char* name, const char* description, std::int32_t initial,
                          std::int32_t lowest, std::int32_t highest);
  ParameterRow& Parameter(Flag& handle, const char* name, const char* description, bool initial);
  ParameterRow& Parameter(Array& handle, const char* name, const char* description, std::vector<double> initial,
                          const Quantity& quantity = {});
  /// The first choice is the initial one unless another is given.
  ParameterRow& Parameter(OptionHandle& handle, const char* name, const char* description,
                          std::vector<std::string> choices, std::size_t initial = 0);
  /// The option "Thermo Version".
  void ThermoVersion(OptionHandle& handle);
  /// A number of ports: the parameter that shows it, and the setting that makes it.
  void Parameter(PortCount& count, const char* key, const char* name, const char* description, std::int32_t lowest,
                 std::int32_t highest);

  SettingRow Setting(morvelan::Setting& handle, const char* key) { return settings.Add(handle, key); }
  SettingRow Setting(ChoiceSetting& handle, const char* key, std::vector<const char*> choices);
  /// As above; streams keep it in the flag word of an option.
  SettingRow Setting(ChoiceSetting& handle, const char* key, std::vector<const char*> choices, OptionHandle& keptIn);

  /// Makes parameters and ports.
  void Create();
  /// Switches modes and shows counts, as options and settings say now.
  void Refresh();
  /// Position in the list; negative when there is none.
  [[nodiscard]] int ThermoVersionPosition() const { return thermoVersion; }

  DeclaredPorts ports;
  DeclaredParameters parameters;
  DeclaredSettings settings;

 private:
  int thermoVersion = -1;
};

}  // namespace morvelan
