#pragma once

#include <filesystem>
#include <string>

namespace morvelan::com {

/// The file from which the library or program that calls this was loaded. Throws std::runtime_error.
[[nodiscard]] std::filesystem::path ModuleFile();

/// The command line with which the process was started; its first token may be quoted.
[[nodiscard]] std::string ProcessCommandLine();

}  // namespace morvelan::com
