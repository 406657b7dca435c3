#pragma once

#include <vector>

#include "host/file/JsonNode.h"
#include "host/thermo/Compound.h"

namespace morvelan::host {

/// The compounds of an object `{"compounds": [...]}`, each name once. A value of a compound that is null is not known.
/// Throws FileError.
[[nodiscard]] std::vector<Compound> ReadCompounds(const JsonNode& object);

}  // namespace morvelan::host
