#pragma once

#include <vector>

#include "host/flowsheet/JsonFile.h"
#include "host/flowsheet/ThermoReader.h"
#include "host/reactions/Reaction.h"

namespace morvelan::host {

/// Reads the "reactions" array of a flowsheet file. Throws FlowsheetError.
[[nodiscard]] std::vector<Reaction> ReadReactions(const JsonNode& list, const FlowsheetCompounds& compounds);

}  // namespace morvelan::host
