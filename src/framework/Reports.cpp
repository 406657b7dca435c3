#include "framework/Reports.h"

#include "com/Text.h"

namespace morvelan {

void Reports::Add(std::string name) { reports.push_back({std::move(name), kNotAvailable}); }

std::vector<std::string> Reports::Names() const {
  std::vector<std::string> names = {"Status"};
  for (const Report& report : reports) names.push_back(report.name);
  return names;
}

void Reports::Replace(std::vector<Report> others) noexcept {
  reports = std::move(others);
  if (selected > reports.size()) selected = 0;
}

bool Reports::Select(std::string_view name) {
  const auto names = Names();
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (!com::EqualNoCase(names[i], name)) continue;
    selected = i;
    return true;
  }
  return false;
}

}  // namespace morvelan
