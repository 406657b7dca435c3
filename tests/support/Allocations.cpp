#include "tests/support/Allocations.h"

#include <cstdlib>
#include <new>

namespace {

struct Plan {
  bool armed = false, forGood = false, happened = false;
  std::size_t left = 0;  // that succeed

  bool Fails() {
    if (!armed || (happened && !forGood)) return false;
    if (left == 0) return happened = true;
    --left;
    return false;
  }
};

thread_local Plan plan;
thread_local std::size_t allocations = 0;

}  // namespace

// All other forms of new and delete come down to these, but for those of arrays and of over-aligned types
// under the address sanitizer, which has its own.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++allocations;
  return plan.Fails() ? nullptr : std::malloc(size > 0 ? size : 1);
}
void* operator new(std::size_t size) {
  if (void* memory = operator new(size, std::nothrow)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace morvelan::test {

std::size_t AllocationCount() { return allocations; }

FailingAllocation::FailingAllocation(std::size_t after, Lasts howLong) {
  plan = {true, howLong == Lasts::kForGood, false, after};
}
FailingAllocation::~FailingAllocation() { plan = {}; }
bool FailingAllocation::Happened() const { return plan.happened; }

}  // namespace morvelan::test
