#pragma once

#include <filesystem>

#include "host/flowsheet/Flowsheet.h"

namespace morvelan::host {

/// Reads a flowsheet file. `dataFolder` holds compounds.json and binary-interaction.json. Throws FileError.
[[nodiscard]] Flowsheet ReadFlowsheet(const std::filesystem::path& file, const std::filesystem::path& dataFolder);

}  // namespace morvelan::host
