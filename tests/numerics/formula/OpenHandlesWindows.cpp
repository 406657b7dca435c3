#include <windows.h>

#include <cstdint>

#include "tests/numerics/formula/OpenHandles.h"

namespace morvelan::test {

// The system gives the lowest free numbers. (Wine does not keep the count of the process.)
std::size_t OpenHandles() {
  std::size_t count = 0;
  for (std::uintptr_t number = 4; number <= 1024; number += 4) {
    DWORD flags = 0;
    count += GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags) != 0;
  }
  return count;
}

}  // namespace morvelan::test
