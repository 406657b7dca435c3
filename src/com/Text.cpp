#include "com/Text.h"

#include <algorithm>
#include <new>

namespace morvelan::com {
namespace {

constexpr char32_t kReplacement = 0xfffd;

void AppendUtf8(std::string& text, char32_t c) {
  const auto tail = [&](int shift) { text.push_back(static_cast<char>(0x80 | ((c >> shift) & 0x3f))); };
  if (c < 0x80) {
    text.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    text.push_back(static_cast<char>(0xc0 | (c >> 6)));
    tail(0);
  } else if (c < 0x10000) {
    text.push_back(static_cast<char>(0xe0 | (c >> 12)));
    tail(6);
    tail(0);
  } else {
    text.push_back(static_cast<char>(0xf0 | (c >> 18)));
    tail(12);
    tail(6);
    tail(0);
  }
}

/// Takes one character off the front of `text`.
char32_t TakeUtf8(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  text.remove_prefix(1);
  if (lead < 0x80) return lead;
  const int following = lead >= 0xf0 && lead < 0xf5   ? 3
                        : lead >= 0xe0 && lead < 0xf0 ? 2
                        : lead >= 0xc2 && lead < 0xe0 ? 1
                                                      : 0;
  if (following == 0) return kReplacement;
  char32_t c = lead & (0x3fu >> following);
  for (int i = 0; i < following; ++i) {
    if (text.empty() || (static_cast<unsigned char>(text.front()) & 0xc0) != 0x80) return kReplacement;
    c = c << 6 | (static_cast<unsigned char>(text.front()) & 0x3f);
    text.remove_prefix(1);
  }
  constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
  const bool valid = c >= kSmallest[following] && c <= 0x10ffff && !(c >= 0xd800 && c < 0xe000);
  return valid ? c : kReplacement;
}

}  // namespace

std::string ToUtf8(const OLECHAR* text, std::size_t length) {
  std::string result;
  result.reserve(length);
  for (std::size_t i = 0; i < length; ++i) {
    char32_t c = static_cast<char16_t>(text[i]);
    const bool high = c >= 0xd800 && c < 0xdc00;
    const char32_t next = high && i + 1 < length ? static_cast<char16_t>(text[i + 1]) : 0;
    if (next >= 0xdc00 && next < 0xe000) {
      c = 0x10000 + ((c - 0xd800) << 10) + (next - 0xdc00);
      ++i;
    } else if (c >= 0xd800 && c < 0xe000) {
      c = kReplacement;
    }
    AppendUtf8(result, c);
  }
  return result;
}

std::string ToUtf8(BSTR text) { return ToUtf8(text, SysStringLen(text)); }

Bstr ToBstr(std::string_view utf8) {
  std::basic_string<OLECHAR> wide;
  wide.reserve(utf8.size());
  while (!utf8.empty()) {
    const char32_t c = TakeUtf8(utf8);
    if (c < 0x10000) {
      wide.push_back(static_cast<OLECHAR>(c));
    } else {
      wide.push_back(static_cast<OLECHAR>(0xd800 + ((c - 0x10000) >> 10)));
      wide.push_back(static_cast<OLECHAR>(0xdc00 + ((c - 0x10000) & 0x3ff)));
    }
  }
  Bstr result(SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size())));
  if (!result.Get()) throw std::bad_alloc();
  return result;
}

std::filesystem::path ToPath(std::string_view utf8) { return std::u8string(utf8.begin(), utf8.end()); }

bool EqualNoCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return AsciiLower(x) == AsciiLower(y); });
}

std::string ToText(const GUID& guid) {
  OLECHAR text[39];
  StringFromGUID2(guid, text, 39);
  return ToUtf8(text, 38);
}

}  // namespace morvelan::com
