// BSTR and GUID text. A BSTR is preceded by its length in bytes and followed by a terminator, as on Windows.

#include <cstdlib>
#include <limits>
#include <string_view>

#include <oaidl.h>

namespace {

constexpr std::size_t kPrefix = 8;  // keeps the text 8-byte aligned; the length stands in its last four bytes

int HexDigit(OLECHAR c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return -1;
}

/// The order in which the 16 bytes of a GUID stand in its text, as indices into its little-endian memory.
constexpr int kTextOrder[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
constexpr std::u16string_view kPattern = u"{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";

}  // namespace

EXTERN_C BSTR SysAllocStringLen(const OLECHAR* text, UINT length) {
  if (length > std::numeric_limits<UINT>::max() / 4) return nullptr;
  const std::size_t bytes = std::size_t{length} * sizeof(OLECHAR);
  char* block = static_cast<char*>(std::malloc(kPrefix + bytes + sizeof(OLECHAR)));
  if (!block) return nullptr;
  const auto prefix = static_cast<std::uint32_t>(bytes);
  std::memcpy(block + kPrefix - sizeof prefix, &prefix, sizeof prefix);
  BSTR result = reinterpret_cast<BSTR>(block + kPrefix);
  if (text)
    std::memcpy(result, text, bytes);
  else
    std::memset(result, 0, bytes);
  result[length] = 0;
  return result;
}

EXTERN_C BSTR SysAllocString(const OLECHAR* text) {
  return text ? SysAllocStringLen(text, static_cast<UINT>(std::u16string_view(text).size())) : nullptr;
}

EXTERN_C void SysFreeString(BSTR text) {
  if (text) std::free(reinterpret_cast<char*>(text) - kPrefix);
}

EXTERN_C UINT SysStringByteLen(BSTR text) {
  std::uint32_t bytes = 0;
  if (text) std::memcpy(&bytes, reinterpret_cast<char*>(text) - sizeof bytes, sizeof bytes);
  return bytes;
}

EXTERN_C UINT SysStringLen(BSTR text) { return SysStringByteLen(text) / UINT{sizeof(OLECHAR)}; }

EXTERN_C void* CoTaskMemAlloc(std::size_t size) { return std::malloc(size); }
EXTERN_C void CoTaskMemFree(void* memory) { std::free(memory); }

EXTERN_C HRESULT CLSIDFromString(LPCOLESTR text, CLSID* clsid) {
  if (!text || !clsid) return E_INVALIDARG;
  std::uint8_t bytes[16] = {};
  int digits = 0;
  const std::u16string_view given(text);
  if (given.size() != kPattern.size()) return CO_E_CLASSSTRING;
  for (std::size_t i = 0; i < given.size(); ++i) {
    if (kPattern[i] != u'x') {
      if (given[i] != kPattern[i]) return CO_E_CLASSSTRING;
      continue;
    }
    const int digit = HexDigit(given[i]);
    if (digit < 0) return CO_E_CLASSSTRING;
    std::uint8_t& byte = bytes[kTextOrder[digits / 2]];
    byte = static_cast<std::uint8_t>(byte * 16 + digit);
    ++digits;
  }
  std::memcpy(clsid, bytes, sizeof bytes);
  return S_OK;
}

EXTERN_C int StringFromGUID2(REFGUID guid, LPOLESTR text, int capacity) {
  const int needed = static_cast<int>(kPattern.size()) + 1;
  if (!text || capacity < needed) return 0;
  std::uint8_t bytes[16];
  std::memcpy(bytes, &guid, sizeof bytes);
  int digits = 0;
  for (std::size_t i = 0; i < kPattern.size(); ++i) {
    if (kPattern[i] != u'x') {
      text[i] = kPattern[i];
      continue;
    }
    const std::uint8_t byte = bytes[kTextOrder[digits / 2]];
    text[i] = u"0123456789ABCDEF"[digits % 2 == 0 ? byte >> 4 : byte & 15];
    ++digits;
  }
  text[kPattern.size()] = 0;
  return needed;
}
