#include "com/SystemMessage.h"

#include "com/Text.h"

namespace morvelan::com {

std::optional<std::string> SystemMessage(HRESULT code) {
  LPWSTR text = nullptr;
  constexpr DWORD kFlags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  DWORD length =
      FormatMessageW(kFlags, nullptr, static_cast<DWORD>(code), 0, reinterpret_cast<LPWSTR>(&text), 0, nullptr);
  if (length == 0) return std::nullopt;
  if (length >= 2 && text[length - 2] == L'\r' && text[length - 1] == L'\n') length -= 2;
  std::string message = ToUtf8(text, length);
  LocalFree(text);
  return message;
}

}  // namespace morvelan::com
