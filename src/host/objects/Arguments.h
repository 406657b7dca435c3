#pragma once

#include <string>
#include <vector>

#include "com/Values.h"

namespace morvelan::host {

// Reading of arguments that units pass. A single text or number stands for an array of one, and VT_EMPTY for no names.
// Both throw com::ValueError.
[[nodiscard]] std::vector<std::string> ReadNames(const VARIANT& names);
[[nodiscard]] std::vector<double> ReadNumbers(const VARIANT& numbers);

}  // namespace morvelan::host
