#pragma once

#include <cstddef>

namespace morvelan::numerics::test {

/// How often this thread has allocated memory with new, over-aligned types aside.
[[nodiscard]] std::size_t AllocationCount();

}  // namespace morvelan::numerics::test
