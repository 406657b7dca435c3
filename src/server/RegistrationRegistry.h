#pragma once

#include "com/Platform.h"

namespace morvelan::server {

// The class table in the registry, below "Software\Classes" of a root key: HKEY_LOCAL_MACHINE for all users,
// HKEY_CURRENT_USER for one. Both throw std::exception, and leave nothing half written.

void RegisterClassesIn(HKEY root);
void UnregisterClassesIn(HKEY root);

}  // namespace morvelan::server
