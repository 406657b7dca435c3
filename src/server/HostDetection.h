#pragma once

#include <string_view>

namespace morvelan::server {

/// The code of the simulator whose command line is given, by the name of its executable without regard to
/// case: 1 apwin.exe and apmain.exe, 2 hysys.exe, 3 proii.exe, 4 unisimdesign.exe, 5 quarn.exe and
/// quarn64.exe, 0 any other. The executable is the first token: up to the closing quote when it is quoted,
/// else up to the first blank.
[[nodiscard]] int HostCodeOf(std::string_view commandLine);

/// The code of this process, found once.
[[nodiscard]] int DetectHost();

}  // namespace morvelan::server
