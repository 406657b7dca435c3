#pragma once

#include <cstdlib>

namespace morvelan::test {

/// The size of a test that takes long: the first one, or the second with the environment variable
/// MORVELAN_LONG_TESTS=1.
template <class Size>
[[nodiscard]] Size ShortOrLong(Size small, Size whole) {
  const char* wanted = std::getenv("MORVELAN_LONG_TESTS");
  return wanted && *wanted == '1' ? whole : small;
}

}  // namespace morvelan::test
