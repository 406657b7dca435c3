#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace morvelan::host {

/// "; did you mean "methane"?" with the name that is nearest to a misspelt one, empty when none is near.
[[nodiscard]] std::string Suggestion(std::string_view misspelt, const std::vector<std::string>& names);

/// The names in double quotes with commas between them.
[[nodiscard]] std::string Listed(const std::vector<std::string>& names);

}  // namespace morvelan::host
