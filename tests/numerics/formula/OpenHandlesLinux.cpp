#include <filesystem>

#include "tests/numerics/formula/OpenHandles.h"

namespace morvelan::test {

std::size_t OpenHandles() {
  std::size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) ++count;
  return count - 1;  // without that of the listing
}

}  // namespace morvelan::test
