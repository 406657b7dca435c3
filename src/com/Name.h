#pragma once

#include <string>

#include "com/Text.h"

namespace morvelan::com {

/// A text in the form that COM calls take, owned by somebody else: a property, a phase, a basis, a flash
/// type. Null equals the empty text, and comparisons ignore the case of the letters A to Z.
struct Name {
  BSTR text = nullptr;

  Name() = default;
  explicit Name(BSTR borrowed) : text(borrowed) {}
  explicit Name(const Bstr& owner) : text(owner.Get()) {}

  [[nodiscard]] bool IsEmpty() const { return SysStringLen(text) == 0; }
  friend bool operator==(Name a, Name b);
};

[[nodiscard]] std::string ToUtf8(Name name);

/// A name that lives as long as the module, for the constants that go to hosts on every calculation.
[[nodiscard]] Name KeepName(const char* utf8);

}  // namespace morvelan::com
