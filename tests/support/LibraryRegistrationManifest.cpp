#include <dlfcn.h>

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "tests/support/LibraryRegistration.h"

namespace morvelan::test {

void RegisterBuiltLibrary() {
  setenv("XDG_DATA_HOME", MORVELAN_TEST_DATA_HOME, 1);
  void* library = dlopen(MORVELAN_LIBRARY, RTLD_NOW);
  if (!library) throw std::runtime_error(dlerror());
  const auto registerServer = reinterpret_cast<std::int32_t (*)()>(dlsym(library, "DllRegisterServer"));
  if (!registerServer || registerServer() != 0) throw std::runtime_error("the library does not register");
}

}  // namespace morvelan::test
