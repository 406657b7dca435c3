#include "host/file/Nearest.h"

#include <algorithm>
#include <numeric>

namespace morvelan::host {
namespace {

/// The number of letters to insert, remove or replace to turn one text into the other.
std::size_t Distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({row[j] + 1, diagonal + 1, replaced});
    }
  }
  return row.back();
}

std::string Enumerate(const std::vector<std::string>& names, const char* quote) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + (quote + name + quote);
  return text;
}

}  // namespace

std::string Suggestion(std::string_view misspelled, const std::vector<std::string>& names) {
  const auto distance = [&](const std::string& name) { return Distance(LowerCase(misspelled), LowerCase(name)); };
  const auto nearest = std::ranges::min_element(names, {}, distance);
  if (nearest == names.end() || distance(*nearest) > 1 + misspelled.size() / 3) return {};
  return "; did you mean \"" + *nearest + "\"?";
}

std::string Joined(const std::vector<std::string>& names) { return Enumerate(names, ""); }

std::string Listed(const std::vector<std::string>& names) { return Enumerate(names, "\""); }

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return lower;
}

}  // namespace morvelan::host
