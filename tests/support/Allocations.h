#pragma once

#include <cstddef>

namespace morvelan::test {

/// How often this thread has allocated memory with new, over-aligned types aside.
[[nodiscard]] std::size_t AllocationCount();

/// While it lives, one of this thread's allocations with new fails, or that one and all after it.
class FailingAllocation {
 public:
  enum class Lasts { kOnce, kForGood };

  /// `after` so many that succeed.
  FailingAllocation(std::size_t after, Lasts howLong);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  /// So many allocations were asked for that one has failed.
  [[nodiscard]] bool Happened() const;
};

}  // namespace morvelan::test
