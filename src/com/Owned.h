#pragma once

#include <utility>

#include "com/Platform.h"

namespace morvelan::com {

/// The single owner of a plain value that must be released: `Traits` names its type, how it is empty and how
/// it is released.
template <class Traits>
class Owned {
 public:
  using Value = typename Traits::Value;

  Owned() : value(Traits::Empty()) {}
  explicit Owned(Value owned) : value(owned) {}
  Owned(Owned&& other) noexcept : value(std::exchange(other.value, Traits::Empty())) {}
  Owned& operator=(Owned&& other) noexcept {
    std::swap(value, other.value);
    return *this;
  }
  ~Owned() { Traits::Free(value); }

  const Value& Get() const { return value; }

  /// For a call that writes or replaces the value through a pointer; what was held is released first.
  [[nodiscard]] Value* Put() {
    Traits::Free(value);
    value = Traits::Empty();
    return &value;
  }

  /// Gives the value up to the caller.
  [[nodiscard]] Value Detach() { return std::exchange(value, Traits::Empty()); }

 private:
  Value value;
};

struct BstrTraits {
  using Value = BSTR;
  static BSTR Empty() { return nullptr; }
  static void Free(BSTR text) { SysFreeString(text); }
};

struct VariantTraits {
  using Value = VARIANT;
  static VARIANT Empty() {
    VARIANT empty;
    VariantInit(&empty);
    return empty;
  }
  static void Free(VARIANT& variant) { VariantClear(&variant); }
};

struct SafeArrayTraits {
  using Value = SAFEARRAY*;
  static SAFEARRAY* Empty() { return nullptr; }
  static void Free(SAFEARRAY* array) { SafeArrayDestroy(array); }
};

using Bstr = Owned<BstrTraits>;
using Variant = Owned<VariantTraits>;
using SafeArray = Owned<SafeArrayTraits>;

}  // namespace morvelan::com
