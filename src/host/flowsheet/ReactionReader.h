#pragma once

#include <vector>

#include "host/file/JsonNode.h"
#include "host/flowsheet/ThermoReader.h"
#include "host/reactions/Reaction.h"

namespace morvelan::host {

/// Reads the "reactions" array of a flowsheet file. Throws FileError.
[[nodiscard]] std::vector<Reaction> ReadReactions(const JsonNode& list, const FlowsheetCompounds& compounds);

}  // namespace morvelan::host
