#include <malloc.h>

#include "tests/support/Heap.h"

// Present when the address sanitizer's allocator is.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace morvelan::test {

std::size_t HeapInUse() {
  return __sanitizer_get_current_allocated_bytes ? __sanitizer_get_current_allocated_bytes() : mallinfo2().uordblks;
}

}  // namespace morvelan::test
