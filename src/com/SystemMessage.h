#pragma once

#include <optional>
#include <string>

#include "com/Platform.h"

namespace morvelan::com {

/// The operating system's text for a failure code, without a trailing line end; nothing when it has none.
[[nodiscard]] std::optional<std::string> SystemMessage(HRESULT code);

}  // namespace morvelan::com
