#include <stdexcept>

#include "com/Platform.h"
#include "tests/support/LibraryRegistration.h"

namespace morvelan::test {

void RegisterBuiltLibrary() {
  const HMODULE library = LoadLibraryA(MORVELAN_LIBRARY);
  if (!library) throw std::runtime_error("the library can't be loaded");
  const auto registerServer =
      reinterpret_cast<HRESULT (*)()>(reinterpret_cast<void (*)()>(GetProcAddress(library, "DllRegisterServer")));
  if (!registerServer || registerServer() != S_OK) throw std::runtime_error("the library does not register");
}

}  // namespace morvelan::test
