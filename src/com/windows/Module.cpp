#include "com/Module.h"

#include <stdexcept>

#include "com/Text.h"

namespace morvelan::com {

std::filesystem::path ModuleFile() {
  HMODULE module = nullptr;
  constexpr DWORD kFlags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (!GetModuleHandleExW(kFlags, reinterpret_cast<LPCWSTR>(&ModuleFile), &module))
    throw std::runtime_error("The module can't be found");
  std::wstring file(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(module, file.data(), static_cast<DWORD>(file.size()));
    if (length == 0) throw std::runtime_error("The file of the module can't be found");
    if (length < file.size()) {
      file.resize(length);
      return file;
    }
    file.resize(2 * file.size());
  }
}

std::string ProcessCommandLine() {
  const std::wstring line = GetCommandLineW();
  return ToUtf8(line.data(), line.size());
}

}  // namespace morvelan::com
