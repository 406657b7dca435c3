#pragma once

#include <cstddef>

namespace morvelan::test {

/// Bytes that the process has allocated and not released.
[[nodiscard]] std::size_t HeapInUse();

}  // namespace morvelan::test
