#include "tests/windows/RegistrySnapshot.h"

#include <algorithm>
#include <cwchar>
#include <vector>

#include "com/Platform.h"
#include "com/Text.h"

namespace morvelan::test {
namespace {

std::string Show(DWORD type, const BYTE* data, DWORD bytes) {
  const std::wstring text(reinterpret_cast<const wchar_t*>(data), bytes / sizeof(wchar_t));
  if (type == REG_SZ) return com::ToUtf8(text.data(), std::min(text.find(L'\0'), text.size()));
  std::string shown = "type " + std::to_string(type) + ':';
  for (DWORD i = 0; i < bytes; ++i) shown += ' ' + std::to_string(data[i]);
  return shown;
}

void AddKey(HKEY parent, const wchar_t* name, const std::string& path, RegistrySnapshot& snapshot) {
  HKEY key = nullptr;
  DWORD keys = 0, values = 0, longest = 0;
  if (RegOpenKeyExW(parent, name, 0, KEY_READ, &key) != ERROR_SUCCESS) return;
  snapshot.emplace(path, "");
  RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr, &longest, nullptr,
                   nullptr);
  std::vector<BYTE> data(longest);
  for (DWORD i = 0; i < values; ++i) {
    wchar_t value[1024];
    DWORD length = 1024, type = 0, bytes = longest;
    if (RegEnumValueW(key, i, value, &length, nullptr, &type, data.data(), &bytes) == ERROR_SUCCESS)
      snapshot[path + '|' + com::ToUtf8(value, length)] = Show(type, data.data(), bytes);
  }
  for (DWORD i = 0; i < keys; ++i) {
    wchar_t child[256];
    DWORD length = 256;
    // The 32-bit programs' view of the registry stands in the same place and repeats parts of it.
    if (RegEnumKeyExW(key, i, child, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
        std::wcscmp(child, L"Wow6432Node") != 0)
      AddKey(key, child, path + '\\' + com::ToUtf8(child, length), snapshot);
  }
  RegCloseKey(key);
}

}  // namespace

RegistrySnapshot TakeSnapshot() {
  RegistrySnapshot snapshot;
  AddKey(HKEY_LOCAL_MACHINE, L"Software\\Classes", "machine", snapshot);
  AddKey(HKEY_CURRENT_USER, L"Software\\Classes", "user", snapshot);
  return snapshot;
}

std::string Difference(const RegistrySnapshot& first, const RegistrySnapshot& second) {
  std::string difference;
  const auto show = [&](const char* sign, const RegistrySnapshot& without, const RegistrySnapshot& with) {
    for (const auto& [place, text] : with)
      if (const auto other = without.find(place); other == without.end() || other->second != text)
        difference += sign + place + " = " + text + '\n';
  };
  show("+ ", first, second);
  show("- ", second, first);
  return difference;
}

}  // namespace morvelan::test
