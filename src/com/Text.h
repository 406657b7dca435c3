#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "com/Owned.h"

namespace morvelan::com {

/// UTF-8 of a UTF-16 text; a null text is empty, an unpaired surrogate becomes U+FFFD.
[[nodiscard]] std::string ToUtf8(BSTR text);
[[nodiscard]] std::string ToUtf8(const OLECHAR* text, std::size_t length);

/// A new BSTR; bytes that are not UTF-8 become U+FFFD. Throws std::bad_alloc.
[[nodiscard]] Bstr ToBstr(std::string_view utf8);

/// The file of that name; a path made of the bytes themselves would be another one on Windows.
[[nodiscard]] std::filesystem::path ToPath(std::string_view utf8);

/// A to Z become a to z; everything else stays.
template <class Character>
[[nodiscard]] constexpr Character AsciiLower(Character c) {
  return c >= 'A' && c <= 'Z' ? static_cast<Character>(c - 'A' + 'a') : c;
}

/// Equality without regard to the case of the letters A to Z.
[[nodiscard]] bool EqualNoCase(std::string_view a, std::string_view b);

/// A GUID in braces with upper-case digits.
[[nodiscard]] std::string ToText(const GUID& guid);

}  // namespace morvelan::com
