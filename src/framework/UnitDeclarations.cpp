#include "framework/UnitDeclarations.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "framework/KeyedValues.h"

namespace morvelan {
namespace {

constexpr std::string_view kLoad = "Load";
constexpr std::string_view kPersistence = "IPersistStream";

std::string Quoted(const std::vector<std::string>& texts) {
  std::string list;
  for (const std::string& text : texts) list += (list.empty() ? "\"" : ", \"") + text + '"';
  return list;
}

}  // namespace

UnitDeclarations::~UnitDeclarations() {
  for (const auto* list : {&parameters, &extraParameters})
    for (const auto& parameter : *list) parameter->Orphan();
  for (const auto* list : {&inlets, &outlets})
    for (const auto& port : *list) port->Orphan();
}

// ---- Declaring

PortRow& UnitDeclarations::AddPorts(PortHandle& handle, CapePortDirection direction, const char* name,
                                    const char* description) {
  PortRow& row = portRows.emplace_back();
  row.name = name;
  row.description = description;
  row.direction = direction;
  row.handle = &handle;
  return row;
}

PortRow& UnitDeclarations::Port(InletStream& stream, const char* name, const char* description) {
  return AddPorts(stream, CAPE_INLET, name, description);
}

PortRow& UnitDeclarations::Port(OutletStream& stream, const char* name, const char* description) {
  return AddPorts(stream, CAPE_OUTLET, name, description);
}

PortRow& UnitDeclarations::Ports(InletStreams& streams, const char* name, const char* description,
                                 const PortCount& count) {
  PortRow& row = AddPorts(streams, CAPE_INLET, name, description);
  row.numbered = true;
  return row.As([&count] { return static_cast<std::size_t>(std::int32_t{count.setting}); });
}

PortRow& UnitDeclarations::Ports(OutletStreams& streams, const char* name, const char* description,
                                 const PortCount& count) {
  PortRow& row = AddPorts(streams, CAPE_OUTLET, name, description);
  row.numbered = true;
  return row.As([&count] { return static_cast<std::size_t>(std::int32_t{count.setting}); });
}

void UnitDeclarations::EnergyPort(morvelan::EnergyPort& port, const char* name, const char* description,
                                  std::function<PortSide()> side) {
  EnergyPort(port, name, description, name, description, std::move(side));
}

void UnitDeclarations::EnergyPort(morvelan::EnergyPort& port, const char* inletName, const char* inletDescription,
                                  const char* outletName, const char* outletDescription,
                                  std::function<PortSide()> side) {
  const auto add = [&](PortSide own, CapePortDirection direction, const char* name, const char* description) {
    PortRow& row = AddPorts(port, direction, name, description);
    row.type = CAPE_ENERGY;
    row.items = kEnergyItems;
    row.As([side, own] { return side() == own ? 1u : 0u; }).Optional();
  };
  add(PortSide::kInlet, CAPE_INLET, inletName, inletDescription);
  add(PortSide::kOutlet, CAPE_OUTLET, outletName, outletDescription);
}

ParameterRow& UnitDeclarations::AddParameter(ParameterHandle& handle, ParameterDeclaration declaration) {
  return parameterRows.emplace_back(std::move(declaration), &handle);
}

ParameterRow& UnitDeclarations::Parameter(Real& handle, const char* name, const char* description, double initial,
                                          const Quantity& quantity) {
  return AddParameter(handle, {.name = name,
                               .description = description,
                               .defaultValue = initial,
                               .lowerBound = quantity.lowest,
                               .upperBound = quantity.highest,
                               .dimensionality = quantity.dimension});
}

ParameterRow& UnitDeclarations::Parameter(Integer& handle, const char* name, const char* description,
                                          std::int32_t initial, std::int32_t lowest, std::int32_t highest) {
  return AddParameter(handle, {.name = name,
                               .description = description,
                               .defaultValue = initial,
                               .lowerBound = static_cast<double>(lowest),
                               .upperBound = static_cast<double>(highest)});
}

ParameterRow& UnitDeclarations::Parameter(Array& handle, const char* name, const char* description,
                                          std::vector<double> initial, const Quantity& quantity) {
  return AddParameter(handle, {.name = name,
                               .description = description,
                               .defaultValue = std::move(initial),
                               .lowerBound = quantity.lowest,
                               .upperBound = quantity.highest,
                               .dimensionality = quantity.dimension});
}

ParameterRow& UnitDeclarations::Parameter(OptionHandle& handle, const char* name, const char* description,
                                          std::vector<std::string> choices, std::size_t initial) {
  return AddParameter(
      handle,
      {.name = name, .description = description, .defaultValue = choices.at(initial), .options = std::move(choices)});
}

void UnitDeclarations::ThermoVersion(OptionHandle& handle) {
  thermoVersion = static_cast<int>(parameterRows.size());
  AddParameter(handle, ThermoVersionParameter());
}

void UnitDeclarations::Parameter(PortCount& count, const char* key, const char* name, const char* description,
                                 std::int32_t lowest, std::int32_t highest) {
  Parameter(count.parameter, name, description, lowest, lowest, highest).Output();
  count.setting.value = count.setting.lowest = lowest;
  count.setting.highest = highest;
  AddSetting(count.setting, key, {.setting = &count.setting, .inValue = &count.parameter, .count = &count.setting})
      .Label(name, description);
  counts.push_back(&count);
}

SettingRow UnitDeclarations::AddSetting(morvelan::Setting& setting, const char* key, KeptSetting kept) {
  setting.key = key;
  settings.push_back(kept);
  return SettingRow(setting);
}

SettingRow UnitDeclarations::Setting(Names& handle, const char* key) {
  return AddSetting(handle, key, {.setting = &handle});
}

SettingRow UnitDeclarations::Setting(Check& handle, const char* key) {
  return AddSetting(handle, key, {.setting = &handle});
}

SettingRow UnitDeclarations::Setting(TextSetting& handle, const char* key) {
  return AddSetting(handle, key, {.setting = &handle});
}

SettingRow UnitDeclarations::Setting(Numbers& handle, const char* key) {
  return AddSetting(handle, key, {.setting = &handle});
}

SettingRow UnitDeclarations::Setting(ChoiceSetting& handle, const char* key, std::vector<const char*> choices) {
  handle.choices = std::move(choices);
  return AddSetting(handle, key, {.setting = &handle});
}

SettingRow UnitDeclarations::Setting(ChoiceSetting& handle, const char* key, std::vector<const char*> choices,
                                     OptionHandle& keptIn) {
  handle.choices = std::move(choices);
  return AddSetting(handle, key, {.setting = &handle, .choice = &handle, .inFlagWord = &keptIn});
}

// ---- Creating and arranging

void UnitDeclarations::Create() {
  for (PortRow& row : portRows) row.ports.clear();
  for (const ParameterRow& row : parameterRows) {
    parameters.push_back(com::Make<CParameter>(row.declaration, &owner));
    if (row.handle) row.handle->parameter = parameters.back().Get();
  }
  PreparedPorts plan = PreparePorts();
  (void)Commit(std::move(plan));
  Refresh();
}

void UnitDeclarations::Refresh() {
  for (std::size_t i = 0; i < parameterRows.size() && i < parameters.size(); ++i)
    if (parameterRows[i].isInput) parameters[i]->SetMode(parameterRows[i].isInput() ? CAPE_INPUT : CAPE_OUTPUT);
  // A host may put the number, but only the configuration moves ports.
  for (PortCount* count : counts) {
    if (!count->parameter.parameter) continue;
    count->parameter.parameter->SetMode(CAPE_OUTPUT);
    count->parameter.Publish(count->setting);
  }
  for (const KeptSetting& kept : settings)
    if (kept.inFlagWord && kept.inFlagWord->parameter)
      kept.inFlagWord->parameter->SetFlagWord(static_cast<std::int32_t>(kept.choice->Place()));
}

com::Ref<CUnitPort> UnitDeclarations::MakePort(const PortRow& row, const std::string& name) {
  const PortDeclaration declaration = {name.c_str(), row.description.c_str(), row.direction, row.type, row.items};
  if (row.type == CAPE_MATERIAL) return com::Make<CUnitPort>(declaration, owner);
  return com::Make<CUnitInfoPort>(declaration, owner);
}

std::string UnitDeclarations::FreeName(const PortRow& row, std::size_t number, const PreparedPorts& plan) const {
  const auto isTaken = [&](const std::string& name) {
    const auto hasName = [&](const auto& port) { return com::EqualNoCase(port->ComponentName(), name); };
    for (const PortList* list : {&inlets, &outlets, &plan.inlets, &plan.outlets})
      if (std::ranges::any_of(*list, hasName)) return true;
    return false;
  };
  if (!row.numbered) return row.name;
  while (isTaken(row.name + std::to_string(number))) ++number;  // a host may have renamed a port
  return row.name + std::to_string(number);
}

UnitDeclarations::PreparedPorts UnitDeclarations::PreparePorts() {
  PreparedPorts plan;
  plan.gone.reserve(inlets.size() + outlets.size());
  for (PortRow& row : portRows) {
    const std::size_t wanted = row.count ? row.count() : 1;
    PortList& planned = plan.ofRows.emplace_back();
    PortList& all = row.direction == CAPE_INLET ? plan.inlets : plan.outlets;
    auto& pointers = plan.forHandles.emplace_back();
    for (std::size_t i = 0; i < wanted; ++i) {
      planned.push_back(i < row.ports.size() ? row.ports[i] : MakePort(row, FreeName(row, i + 1, plan)));
      all.push_back(planned.back());
      pointers.push_back(planned.back().Get());
    }
    plan.isChange = plan.isChange || wanted != row.ports.size();
    row.handle->Prepare(wanted);
  }
  return plan;
}

UnitDeclarations::PortList UnitDeclarations::Commit(PreparedPorts plan) noexcept {
  inlets.swap(plan.inlets);
  outlets.swap(plan.outlets);
  for (std::size_t i = 0; i < portRows.size(); ++i) {
    portRows[i].ports.swap(plan.ofRows[i]);
    portRows[i].handle->Attach({});
  }
  // (Two rows may share a handle: that of the side on which there is no port does not count.)
  for (std::size_t i = 0; i < portRows.size(); ++i)
    if (!plan.forHandles[i].empty()) portRows[i].handle->Attach(plan.forHandles[i]);
  for (const auto* former : {&plan.inlets, &plan.outlets})
    for (const auto& port : *former) {
      const auto isIt = [&](const auto& kept) { return kept.Get() == port.Get(); };
      if (std::ranges::none_of(inlets, isIt) && std::ranges::none_of(outlets, isIt)) plan.gone.push_back(port);
    }
  return std::move(plan.gone);
}

// ---- The configuration

Json UnitDeclarations::Configuration() const {
  Json configuration = Json::object();
  for (const KeptSetting& kept : settings) configuration[kept.setting->Key()] = kept.setting->Value();
  return configuration;
}

Json UnitDeclarations::Form() const {
  Json groups = Json::array();
  for (const KeptSetting& kept : settings) {
    const std::string title = kept.setting->group;
    auto group = std::ranges::find_if(groups, [&](const Json& g) { return g["title"] == title; });
    if (group == groups.end()) {
      groups.push_back({{"title", title}, {"fields", Json::array()}});
      group = std::prev(groups.end());
    }
    Json& fields = (*group)["fields"];
    if (!*kept.setting->table) {
      fields.push_back(kept.setting->Field());
      continue;
    }
    // Columns stand together in a field of their own.
    auto table = std::ranges::find_if(fields, [&](const Json& f) { return f["label"] == kept.setting->table; });
    if (table == fields.end()) {
      fields.push_back({{"kind", "table"}, {"label", kept.setting->table}, {"columns", Json::array()}});
      table = std::prev(fields.end());
    }
    (*table)["columns"].push_back(kept.setting->Field());
  }
  return {{"groups", std::move(groups)}};
}

std::vector<Setting*> UnitDeclarations::Stage(const Json& configuration) {
  std::vector<morvelan::Setting*> staged;
  for (const KeptSetting& kept : settings) {
    const auto given = configuration.find(kept.setting->Key());
    if (given == configuration.end()) continue;
    kept.setting->Stage(*given);
    staged.push_back(kept.setting);
  }
  return staged;
}

UnitDeclarations::ParameterRef UnitDeclarations::MakeExtra(const std::string& name, const std::string& description,
                                                           double initial, const Quantity& quantity,
                                                           const char* whyUnavailable) {
  auto parameter = com::Make<CParameter>(ParameterDeclaration{.name = name.c_str(),
                                                              .description = description.c_str(),
                                                              .defaultValue = initial,
                                                              .lowerBound = quantity.lowest,
                                                              .upperBound = quantity.highest,
                                                              .dimensionality = quantity.dimension},
                                         &owner);
  parameter->SetUnavailable(whyUnavailable);
  return parameter;
}

// ---- In streams

bool UnitDeclarations::KeepsByKey() const {
  return std::ranges::any_of(settings, [](const KeptSetting& kept) { return !kept.inValue && !kept.inFlagWord; }) ||
         std::ranges::any_of(parameterRows, [](const ParameterRow& row) { return row.keptKey; });
}

std::size_t UnitDeclarations::PositionOf(const ParameterHandle& handle) const {
  const auto row = std::ranges::find(parameterRows, &handle, &ParameterRow::handle);
  return static_cast<std::size_t>(row - parameterRows.begin());
}

void UnitDeclarations::WriteSettings(UnitWriter& writer) const {
  if (!KeepsByKey()) return;
  Json values = Json::object();
  for (const KeptSetting& kept : settings)
    if (!kept.inValue && !kept.inFlagWord) values[kept.setting->Key()] = kept.setting->Value();
  for (std::size_t i = 0; i < parameterRows.size(); ++i)
    if (parameterRows[i].keptKey) values[parameterRows[i].keptKey] = std::get<std::string>(parameters[i]->Value());
  WriteKeyedValues(writer, values);
  writer.Flush();
}

UnitDeclarations::LoadedSettings UnitDeclarations::ReadSettings(UnitReader& reader,
                                                                const std::vector<ParameterRecord>& records) try {
  LoadedSettings loaded;
  for (const KeptSetting& kept : settings) {
    if (!kept.inValue && !kept.inFlagWord) continue;
    const std::size_t position =
        PositionOf(kept.inValue ? static_cast<const ParameterHandle&>(*kept.inValue) : *kept.inFlagWord);
    if (records.size() <= position) continue;
    if (kept.count) kept.count->Stage(std::get<std::int32_t>(records[position].value));
    if (kept.choice)  // (any other word is the first choice's)
      kept.choice->StagePlace(records[position].flagWord == 1 ? 1 : 0);
    loaded.staged.push_back(kept.setting);
  }
  if (!KeepsByKey()) return loaded;
  Json known = Json::object();
  for (const KeptSetting& kept : settings)
    if (!kept.inValue && !kept.inFlagWord) known[kept.setting->Key()] = kept.setting->Value();
  for (const ParameterRow& row : parameterRows)
    if (row.keptKey) known[row.keptKey] = "";
  const Json values = ReadKeyedValues(reader, known);
  for (std::size_t i = 0; i < parameterRows.size(); ++i) {
    const char* key = parameterRows[i].keptKey;
    if (!key || !values.contains(key)) continue;
    const auto& choices = parameterRows[i].declaration.options;
    const std::string text = values.at(key).get<std::string>();
    // (Hosts may spell a choice in another case.)
    if (std::ranges::none_of(choices, [&](const auto& choice) { return com::EqualNoCase(choice, text); }))
      throw Failure(std::string("\"") + key + "\" of the configuration must be one of " + Quoted(choices));
    loaded.options.emplace_back(parameters[i].Get(), text);
  }
  for (morvelan::Setting* setting : Stage(values)) loaded.staged.push_back(setting);
  return loaded;
} catch (const Failure& failure) {
  throw Failure(failure.error.description, kLoad, kPersistence);
}

// ---- What there is

UnitDeclarations::PortList UnitDeclarations::AllPorts() const {
  PortList ports = inlets;
  ports.insert(ports.end(), outlets.begin(), outlets.end());
  return ports;
}

UnitDeclarations::ParameterList UnitDeclarations::AllParameters() const {
  ParameterList all = parameters;
  all.insert(all.end(), extraParameters.begin(), extraParameters.end());
  return all;
}

CUnitPort* UnitDeclarations::FirstConnectedMaterialInlet() const {
  for (const auto& inlet : inlets)
    if (inlet->IsConnectedMaterial()) return inlet.Get();
  return nullptr;
}

bool UnitDeclarations::HasOptionalPorts() const { return std::ranges::any_of(portRows, &PortRow::optional); }

const CParameter* UnitDeclarations::FindUnset() const {
  for (std::size_t i = 0; i < parameterRows.size() && i < parameters.size(); ++i) {
    const auto* number = std::get_if<double>(&parameters[i]->Value());
    if (number && parameters[i]->Mode() == CAPE_INPUT && IsMissing(*number) && !parameterRows[i].mayBeUnset)
      return parameters[i].Get();
  }
  return nullptr;
}

}  // namespace morvelan
