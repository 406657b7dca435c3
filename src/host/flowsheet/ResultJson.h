#pragma once

#include "host/flowsheet/Results.h"

namespace morvelan::host {

/// The results as a JSON object. A value that is not set or not finite is null.
[[nodiscard]] Json ToJson(const Results& results);

}  // namespace morvelan::host
