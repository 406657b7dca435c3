#include "tests/numerics/AllocationCount.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t allocations = 0;

}  // namespace

// All other forms of new and delete come down to these, but for those of over-aligned types.
void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size > 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace morvelan::numerics::test {

std::size_t AllocationCount() { return allocations; }

}  // namespace morvelan::numerics::test
