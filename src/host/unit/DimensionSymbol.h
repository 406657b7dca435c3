#pragma once

#include <string>

#include "host/objects/StreamParameter.h"

namespace morvelan::host {

/// The SI unit of a dimensionality: "W", "Pa", "J/(mol K)", ... ; empty for a number without one.
[[nodiscard]] std::string UnitSymbol(const Exponents& exponents);

}  // namespace morvelan::host
