#pragma once

#include <string>
#include <utility>
#include <vector>

#include "framework/DeclaredParameters.h"
#include "framework/ParameterRecord.h"
#include "framework/Settings.h"
#include "framework/UnitStream.h"

namespace morvelan {

/// What a unit is told beyond its parameters: the settings, the configuration as hosts get and set it, the form
/// of the edit window, and how streams keep all of it.
class DeclaredSettings {
 public:
  explicit DeclaredSettings(const DeclaredParameters& unitParameters) : parameters(unitParameters) {}

  /// Where streams keep a setting.
  enum class Kept {
    kByKey,
    kInValue,     // of an integer parameter, which shows it
    kInFlagWord,  // of an option
  };
  SettingRow Add(Setting& setting, const char* key);
  /// `parameter` is the one that keeps it.
  SettingRow Add(NumberedSetting& setting, const char* key, Kept kept, ParameterHandle& parameter);
  [[nodiscard]] bool IsEmpty() const { return rows.empty(); }

  /// Shows settings in the parameters that keep them.
  void Refresh() const;

  /// Every key with what is in force.
  [[nodiscard]] Json Configuration() const;
  /// The form of the edit window: groups with their fields.
  [[nodiscard]] Json Form() const;
  /// Puts the settings that are given beside those in force. Throws Failure.
  [[nodiscard]] std::vector<Setting*> Stage(const Json& configuration) const;

  // The same as the text of a JSON object.

  [[nodiscard]] std::string ConfigurationText() const;
  [[nodiscard]] std::vector<Setting*> StageText(const std::string& configuration) const;

  /// What streams keep under keys; nothing where all stand in parameters.
  void Write(UnitWriter& writer) const;
  struct Loaded {
    std::vector<Setting*> staged;
    std::vector<std::pair<CParameter*, std::string>> options;  // kept under keys too, which count
  };
  /// Puts what `Write` wrote, and what records keep, beside the settings in force. Throws Failure.
  [[nodiscard]] Loaded Read(UnitReader& reader, const std::vector<ParameterRecord>& records) const;

 private:
  struct Row {
    Setting* setting;
    // Where a parameter keeps it.
    Kept kept = Kept::kByKey;
    NumberedSetting* numbered = nullptr;
    ParameterHandle* parameter = nullptr;
  };

  [[nodiscard]] bool KeepsByKey() const;
  /// What streams keep under keys, as it stands.
  [[nodiscard]] Json ValuesByKey() const;
  void ReadRecords(const std::vector<ParameterRecord>& records, Loaded& loaded) const;
  void ReadKeys(UnitReader& reader, Loaded& loaded) const;

  const DeclaredParameters& parameters;
  std::vector<Row> rows;
};

}  // namespace morvelan
