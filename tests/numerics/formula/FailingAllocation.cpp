#include "tests/numerics/formula/FailingAllocation.h"

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

}  // namespace

// All other forms of new and delete come down to these, but for those of over-aligned types.
void* operator new(std::size_t size) {
  if (plan.Fails()) throw std::bad_alloc();
  if (void* memory = std::malloc(size > 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace morvelan::test {

FailingAllocation::FailingAllocation(std::size_t after, Lasts howLong) {
  plan = {true, howLong == Lasts::kForGood, false, after};
}
FailingAllocation::~FailingAllocation() { plan = {}; }
bool FailingAllocation::Happened() const { return plan.happened; }

}  // namespace morvelan::test
