#pragma once

#include <cstddef>

namespace morvelan::test {

/// How many files and other things of the system this process has open.
[[nodiscard]] std::size_t OpenHandles();

}  // namespace morvelan::test
