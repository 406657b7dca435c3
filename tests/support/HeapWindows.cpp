#include "com/Platform.h"
#include "tests/support/Heap.h"

namespace morvelan::test {
namespace {

std::size_t InUse(HANDLE heap) {
  std::size_t bytes = 0;
  HeapLock(heap);
  PROCESS_HEAP_ENTRY entry{};
  while (HeapWalk(heap, &entry))
    if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += entry.cbData;
  HeapUnlock(heap);
  return bytes;
}

}  // namespace

// The C++ runtime has a heap of its own beside the system's.
std::size_t HeapInUse() {
  HANDLE heaps[64];
  const DWORD count = GetProcessHeaps(64, heaps);
  std::size_t bytes = 0;
  for (DWORD i = 0; i < count && i < 64; ++i) bytes += InUse(heaps[i]);
  return bytes;
}

}  // namespace morvelan::test
