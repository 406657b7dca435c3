#pragma once

#include <filesystem>
#include <stdexcept>

#include "com/Platform.h"

namespace morvelan::test {

/// A library that the test loads as a host does, by its file; unloaded in the end.
class LoadedLibrary {
 public:
  explicit LoadedLibrary(const std::filesystem::path& file) : handle(LoadLibraryW(file.c_str())) {
    if (!handle) throw std::runtime_error(file.string() + " can't be loaded");
  }
  LoadedLibrary(const LoadedLibrary&) = delete;
  LoadedLibrary& operator=(const LoadedLibrary&) = delete;
  ~LoadedLibrary() { FreeLibrary(handle); }

  /// Calls one of the library's entry points.
  template <class... Arguments>
  HRESULT Call(const char* entryPoint, Arguments... arguments) const {
    const auto address = reinterpret_cast<void (*)()>(GetProcAddress(handle, entryPoint));
    if (!address) throw std::runtime_error(std::string(entryPoint) + " is not exported");
    return reinterpret_cast<HRESULT(STDAPICALLTYPE*)(Arguments...)>(address)(arguments...);
  }

  [[nodiscard]] HMODULE Handle() const { return handle; }

 private:
  HMODULE handle;
};

}  // namespace morvelan::test
