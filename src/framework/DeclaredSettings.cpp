#include "framework/DeclaredSettings.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "framework/KeyedValues.h"

namespace morvelan {

SettingRow DeclaredSettings::Add(Setting& setting, const char* key) {
  setting.key = key;
  rows.push_back({.setting = &setting});
  return SettingRow(setting);
}

SettingRow DeclaredSettings::Add(NumberedSetting& setting, const char* key, Kept kept, ParameterHandle& parameter) {
  setting.key = key;
  rows.push_back({&setting, kept, &setting, &parameter});
  return SettingRow(setting);
}

void DeclaredSettings::Refresh() const {
  for (const Row& row : rows) {
    CParameter* parameter = row.parameter ? row.parameter->parameter : nullptr;
    if (!parameter) continue;
    if (row.kept == Kept::kInFlagWord) {
      parameter->SetFlagWord(row.numbered->Number());
    } else {
      // A host may put the number, but only the configuration moves ports.
      parameter->SetMode(CAPE_OUTPUT);
      parameter->SetResult(row.numbered->Number());
    }
  }
}

Json DeclaredSettings::Configuration() const {
  Json configuration = Json::object();
  for (const Row& row : rows) configuration[row.setting->Key()] = row.setting->Value();
  return configuration;
}

Json DeclaredSettings::Form() const {
  const auto at = [](Json& list, const char* key, const std::string& text, const Json& otherwise) -> Json& {
    const auto has = [&](const Json& element) { return element[key] == text; };
    const auto found = std::ranges::find_if(list, has);
    return found != list.end() ? *found : list.emplace_back(otherwise);
  };
  Json groups = Json::array();
  for (const Row& row : rows) {
    const std::string title = row.setting->group;
    Json& fields = at(groups, "title", title, {{"title", title}, {"fields", Json::array()}})["fields"];
    const std::string table = row.setting->table;
    if (table.empty())
      fields.push_back(row.setting->Field());
    else  // columns stand together in a field of their own
      at(fields, "label", table, {{"kind", "table"}, {"label", table}, {"columns", Json::array()}})["columns"]
          .push_back(row.setting->Field());
  }
  return {{"groups", std::move(groups)}};
}

std::vector<Setting*> DeclaredSettings::Stage(const Json& configuration) const {
  std::vector<Setting*> staged;
  for (const Row& row : rows) {
    const auto given = configuration.find(row.setting->Key());
    if (given == configuration.end()) continue;
    row.setting->Stage(*given);
    staged.push_back(row.setting);
  }
  return staged;
}

std::string DeclaredSettings::ConfigurationText() const { return Configuration().dump(); }

std::vector<Setting*> DeclaredSettings::StageText(const std::string& configuration) const {
  return Stage(ParseConfiguration(configuration, Configuration()));
}

bool DeclaredSettings::KeepsByKey() const {
  return std::ranges::any_of(rows, [](const Row& row) { return row.kept == Kept::kByKey; }) ||
         !parameters.KeptByKey().empty();
}

Json DeclaredSettings::ValuesByKey() const {
  Json values = Json::object();
  for (const Row& row : rows)
    if (row.kept == Kept::kByKey) values[row.setting->Key()] = row.setting->Value();
  for (const auto& option : parameters.KeptByKey())
    values[option.key] = std::get<std::string>(option.parameter->Value());
  return values;
}

void DeclaredSettings::Write(UnitWriter& writer) const {
  if (!KeepsByKey()) return;
  WriteKeyedValues(writer, ValuesByKey());
  writer.Flush();
}

DeclaredSettings::Loaded DeclaredSettings::Read(UnitReader& reader, const std::vector<ParameterRecord>& records) const
    try {
  Loaded loaded;
  ReadRecords(records, loaded);
  if (KeepsByKey()) ReadKeys(reader, loaded);
  return loaded;
} catch (const Failure& failure) {
  throw LoadFailure(failure.error.description, failure.error.description);
}

void DeclaredSettings::ReadRecords(const std::vector<ParameterRecord>& records, Loaded& loaded) const {
  for (const Row& row : rows) {
    if (row.kept == Kept::kByKey) continue;
    const std::size_t position = parameters.PositionOf(*row.parameter);
    if (records.size() <= position) continue;
    const ParameterRecord& record = records[position];
    row.numbered->StageNumber(row.kept == Kept::kInValue ? std::get<std::int32_t>(record.value) : record.flagWord);
    loaded.staged.push_back(row.setting);
  }
}

void DeclaredSettings::ReadKeys(UnitReader& reader, Loaded& loaded) const {
  const Json values = ReadKeyedValues(reader, ValuesByKey());
  for (const auto& option : parameters.KeptByKey()) {
    if (!values.contains(option.key)) continue;
    std::string text = values.at(option.key).get<std::string>();
    // Hosts may spell a choice in another case.
    const auto isIt = [&](const std::string& choice) { return com::EqualNoCase(choice, text); };
    if (std::ranges::none_of(*option.choices, isIt))
      throw Failure(std::string("\"") + option.key + "\" of the configuration must be one of " +
                    Listed(*option.choices));
    loaded.options.emplace_back(option.parameter, std::move(text));
  }
  for (Setting* setting : Stage(values)) loaded.staged.push_back(setting);
}

}  // namespace morvelan
