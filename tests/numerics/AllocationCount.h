#pragma once

#include <cstddef>

namespace morvelan::numerics::test {

/// How often this thread has allocated memory with new.
[[nodiscard]] std::size_t AllocationCount();

}  // namespace morvelan::numerics::test
