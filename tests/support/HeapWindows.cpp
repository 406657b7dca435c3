#include "com/Platform.h"
#include "tests/support/Heap.h"

namespace morvelan::test {

std::size_t HeapInUse() {
  std::size_t bytes = 0;
  const HANDLE heap = GetProcessHeap();
  HeapLock(heap);
  PROCESS_HEAP_ENTRY entry{};
  while (HeapWalk(heap, &entry))
    if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += entry.cbData;
  HeapUnlock(heap);
  return bytes;
}

}  // namespace morvelan::test
