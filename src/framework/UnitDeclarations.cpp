#include "framework/UnitDeclarations.h"

#include "framework/ThermoChoice.h"

namespace morvelan {

PortRow& UnitDeclarations::Port(InletStream& stream, const char* name, const char* description) {
  return ports.Add(stream, CAPE_INLET, CAPE_MATERIAL, name, description);
}

PortRow& UnitDeclarations::Port(OutletStream& stream, const char* name, const char* description) {
  return ports.Add(stream, CAPE_OUTLET, CAPE_MATERIAL, name, description);
}

void UnitDeclarations::Ports(InletStreams& streams, const char* name, const char* description, const PortCount& count) {
  ports.Add(streams, CAPE_INLET, CAPE_MATERIAL, name, description).Numbered([&count] {
    return static_cast<std::size_t>(count);
  });
}

void UnitDeclarations::Ports(OutletStreams& streams, const char* name, const char* description,
                             const PortCount& count) {
  ports.Add(streams, CAPE_OUTLET, CAPE_MATERIAL, name, description).Numbered([&count] {
    return static_cast<std::size_t>(count);
  });
}

void UnitDeclarations::EnergyPort(morvelan::EnergyPort& port, const char* name, const char* description,
                                  const std::function<PortSide()>& side) {
  EnergyPort(port, name, description, name, description, side);
}

void UnitDeclarations::EnergyPort(morvelan::EnergyPort& port, const char* inletName, const char* inletDescription,
                                  const char* outletName, const char* outletDescription,
                                  const std::function<PortSide()>& side) {
  ports.Add(port, CAPE_INLET, CAPE_ENERGY, inletName, inletDescription, kEnergyItems).Optional().While([side] {
    return side() == PortSide::kInlet;
  });
  ports.Add(port, CAPE_OUTLET, CAPE_ENERGY, outletName, outletDescription, kEnergyItems).Optional().While([side] {
    return side() == PortSide::kOutlet;
  });
}

void UnitDeclarations::InformationPorts(morvelan::InformationPorts& handle, CapePortDirection direction,
                                        const char* description, std::function<std::vector<WantedPort>()> wanted) {
  ports.Add(handle, direction, CAPE_INFORMATION, "", description).Named(std::move(wanted));
}

ParameterRow& UnitDeclarations::Parameter(Real& handle, const char* name, const char* description, double initial,
                                          const Quantity& quantity) {
  return parameters.Add(handle, {.name = name,
                                 .description = description,
                                 .defaultValue = initial,
                                 .lowerBound = quantity.lowest,
                                 .upperBound = quantity.highest,
                                 .dimensionality = quantity.dimension});
}

ParameterRow& UnitDeclarations::Parameter(Integer& handle, const char* name, const char* description,
                                          std::int32_t initial, std::int32_t lowest, std::int32_t highest) {
  return parameters.Add(handle, {.name = name,
                                 .description = description,
                                 .defaultValue = initial,
                                 .lowerBound = static_cast<double>(lowest),
                                 .upperBound = static_cast<double>(highest)});
}

ParameterRow& UnitDeclarations::Parameter(Flag& handle, const char* name, const char* description, bool initial) {
  return parameters.Add(handle, {.name = name, .description = description, .defaultValue = initial});
}

ParameterRow& UnitDeclarations::Parameter(Array& handle, const char* name, const char* description,
                                          std::vector<double> initial, const Quantity& quantity) {
  return parameters.Add(handle, {.name = name,
                                 .description = description,
                                 .defaultValue = std::move(initial),
                                 .lowerBound = quantity.lowest,
                                 .upperBound = quantity.highest,
                                 .dimensionality = quantity.dimension});
}

ParameterRow& UnitDeclarations::Parameter(OptionHandle& handle, const char* name, const char* description,
                                          std::vector<std::string> choices, std::size_t initial) {
  return parameters.Add(
      handle,
      {.name = name, .description = description, .defaultValue = choices.at(initial), .options = std::move(choices)});
}

void UnitDeclarations::ThermoVersion(OptionHandle& handle) {
  Parameter(handle, kThermoVersion, "Thermodynamics CAPE-OPEN Interface version", {"1.0", "1.1"});
  thermoVersion = static_cast<int>(parameters.PositionOf(handle));
}

void UnitDeclarations::Parameter(PortCount& count, const char* key, const char* name, const char* description,
                                 std::int32_t lowest, std::int32_t highest) {
  Parameter(count.parameter, name, description, lowest, lowest, highest).Output();
  count.setting.SetRange(lowest, highest);
  settings.Add(count.setting, key, DeclaredSettings::Kept::kInValue, count.parameter).Label(name, description);
}

SettingRow UnitDeclarations::Setting(ChoiceSetting& handle, const char* key, std::vector<const char*> choices) {
  handle.SetChoices(std::move(choices));
  return settings.Add(handle, key);
}

SettingRow UnitDeclarations::Setting(ChoiceSetting& handle, const char* key, std::vector<const char*> choices,
                                     OptionHandle& keptIn) {
  handle.SetChoices(std::move(choices));
  return settings.Add(handle, key, DeclaredSettings::Kept::kInFlagWord, keptIn);
}

void UnitDeclarations::Create() {
  ports.Clear();
  parameters.Create();
  (void)ports.Commit(ports.Prepare());
  Refresh();
}

void UnitDeclarations::Refresh() {
  parameters.Refresh();
  settings.Refresh();
}

}  // namespace morvelan
