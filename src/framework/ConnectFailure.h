#pragma once

#include <string>
#include <utility>

#include "errors/Failure.h"

namespace morvelan {

/// Why an object can't be connected to a port.
[[nodiscard]] inline Failure ConnectFailure(std::string why) {
  return Failure(UnitError{"failed to connect", std::move(why), {}, {}});
}

}  // namespace morvelan
