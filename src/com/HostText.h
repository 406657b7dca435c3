#pragma once

#include <string>
#include <utility>

#include "com/Values.h"

namespace morvelan::com {

/// A text that goes to hosts again and again, in the forms in which they take it: converted once.
class HostText {
 public:
  HostText() = default;
  explicit HostText(std::string utf8)
      : text(std::move(utf8)), name(ToBstr(text)), list(MakeStrings(std::span(&text, 1))) {}
  HostText(const HostText& other) : HostText(other.text) {}
  HostText(HostText&&) noexcept = default;
  HostText& operator=(HostText other) noexcept {
    text.swap(other.text);
    std::swap(name, other.name);
    std::swap(list, other.list);
    return *this;
  }

  [[nodiscard]] const std::string& Text() const { return text; }
  [[nodiscard]] Name AsName() const { return Name(name); }
  /// An array with this text alone.
  [[nodiscard]] const VARIANT& AsList() const { return list.Get(); }

 private:
  std::string text;
  Bstr name;
  Variant list;
};

}  // namespace morvelan::com
