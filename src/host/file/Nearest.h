#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace morvelan::host {

/// "; did you mean "methane"?" with the name that is nearest to a misspelled one; empty when none is near.
[[nodiscard]] std::string Suggestion(std::string_view misspelled, const std::vector<std::string>& names);

/// The names with commas between them.
[[nodiscard]] std::string Joined(const std::vector<std::string>& names);

/// The names in double quotes with commas between them.
[[nodiscard]] std::string Listed(const std::vector<std::string>& names);

/// A text with the letters A to Z in lower case.
[[nodiscard]] std::string LowerCase(std::string_view text);

/// The name of each thing: its member `name`, or the given member or function of it.
template <class Things, class Name>
[[nodiscard]] std::vector<std::string> NamesOf(const Things& things, Name name) {
  std::vector<std::string> names;
  for (const auto& thing : things) names.emplace_back(std::invoke(name, thing));
  return names;
}
template <class Things>
[[nodiscard]] std::vector<std::string> NamesOf(const Things& things) {
  return NamesOf(things, [](const auto& thing) { return thing.name; });
}

}  // namespace morvelan::host
