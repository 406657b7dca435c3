#pragma once

#include <string>

#include "host/flowsheet/Results.h"

namespace morvelan::host {

/// The results for people: the streams side by side, then each unit with its parameters and reports, then the log.
/// UTF-8, lines ended by "\n" and as a rule no longer than 100 characters.
[[nodiscard]] std::string ToText(const Results& results);

}  // namespace morvelan::host
