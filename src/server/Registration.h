#pragma once

#include <string>

namespace morvelan::server {

// Publishing the class table to hosts. Both throw std::exception with the reason when they can't, and leave
// nothing half done.

void RegisterClasses();
void UnregisterClasses();

}  // namespace morvelan::server
