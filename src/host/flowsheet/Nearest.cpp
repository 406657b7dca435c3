#include "host/flowsheet/Nearest.h"

#include <algorithm>
#include <numeric>

namespace morvelan::host {
namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// Letters to insert, remove or replace to turn one text into the other, case aside.
std::size_t Distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (Lower(a[i]) == Lower(b[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({row[j] + 1, diagonal + 1, replaced});
    }
  }
  return row.back();
}

}  // namespace

std::string Suggestion(std::string_view misspelt, const std::vector<std::string>& names) {
  const auto nearest =
      std::ranges::min_element(names, {}, [&](const std::string& name) { return Distance(misspelt, name); });
  if (nearest == names.end() || Distance(misspelt, *nearest) > 1 + misspelt.size() / 3) return {};
  return "; did you mean \"" + *nearest + "\"?";
}

std::string Listed(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "\"" : ", \"") + name + '"';
  return text;
}

}  // namespace morvelan::host
