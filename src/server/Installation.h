#pragma once

#include "com/Platform.h"

namespace morvelan::server {

/// Runs a step of an installation; its failure is shown to whoever installs, unless silently, and becomes a
/// code.
[[nodiscard]] HRESULT Install(void (*step)());

}  // namespace morvelan::server
