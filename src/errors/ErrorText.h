#pragma once

#include <string>

#include "com/Platform.h"

namespace morvelan {

/// What a foreign object's failure code means: for a CAPE-OPEN code the object's own description or name,
/// else the standard's text for the code; for any other code the system's text. `object` may be null.
[[nodiscard]] std::string ErrorText(IUnknown* object, HRESULT code);

}  // namespace morvelan
