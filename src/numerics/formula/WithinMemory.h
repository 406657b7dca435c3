#pragma once

#include <new>

namespace morvelan::numerics {

/// The result of `operation`; when memory runs out on the way, a result whose failure is `words`, or "out of
/// memory" when there is not even enough left for those: strings hold so few characters without allocating.
template <class Operation>
[[nodiscard]] auto WithinMemory(const char* words, const Operation& operation) {
  try {
    return operation();
  } catch (const std::bad_alloc&) {
    decltype(operation()) result;
    try {
      result.failure = words;
    } catch (const std::bad_alloc&) {
      result.failure = "out of memory";
    }
    return result;
  }
}

}  // namespace morvelan::numerics
