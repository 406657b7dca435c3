#include <windows.h>

#include <cstdint>

#include "tests/numerics/formula/OpenHandles.h"

namespace morvelan::test {

// The system gives the lowest free numbers. (Wine does not keep the count of the process.)
std::size_t OpenHandles() {
  constexpr int kMostFree = 100;  // in a row: behind them none is open
  std::size_t count = 0;
  int free = 0;
  for (std::uintptr_t number = 4; free < kMostFree; number += 4) {
    DWORD flags = 0;
    const bool isOpen = GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags) != 0;
    free = isOpen ? 0 : free + 1;
    count += isOpen;
  }
  return count;
}

}  // namespace morvelan::test
