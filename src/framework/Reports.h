#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace morvelan {

/// A unit's reports besides "Status", which is report 0 and made from the unit's state; named reports count
/// from 1.
class Reports {
 public:
  struct Report {
    std::string name;
    std::string text;
  };

  static constexpr const char* kNotAvailable = "Report is not available";

  /// Adds a report that is not available yet.
  void Add(std::string name);
  /// "Status" and the named reports in order.
  [[nodiscard]] std::vector<std::string> Names() const;
  /// Selects a report by name, without regard to case; false when there is none of that name.
  [[nodiscard]] bool Select(std::string_view name);
  [[nodiscard]] std::size_t Selected() const { return selected; }
  /// The named reports; index 0 here is report 1.
  [[nodiscard]] const std::vector<Report>& Named() const { return reports; }
  /// Puts other reports in place of the named ones; "Status" is selected when the selected one is gone.
  void Replace(std::vector<Report> others) noexcept;
  /// A named report. Throws std::out_of_range.
  [[nodiscard]] Report& At(std::size_t index) { return reports.at(index - 1); }

 private:
  std::vector<Report> reports;
  std::size_t selected = 0;
};

}  // namespace morvelan
