// Registers a library of unit operations, or unregisters it, on systems that have no tool for that.

#include <dlfcn.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string_view>

namespace {

constexpr int kFailed = 1;
constexpr int kWrongArguments = 2;

using EntryPoint = std::int32_t (*)();

int Call(const char* library, const char* operation) {
  const auto path = std::filesystem::absolute(library);
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* symbol = handle ? dlsym(handle, operation) : nullptr;
  if (!symbol) {
    std::fprintf(stderr, "morvelan-register: %s\n", dlerror());
    return kFailed;
  }
  const std::int32_t outcome = reinterpret_cast<EntryPoint>(symbol)();
  if (outcome >= 0) return 0;
  std::fprintf(stderr, "morvelan-register: %s of %s failed with code 0x%08X\n", operation, path.c_str(),
               static_cast<unsigned>(outcome));
  return kFailed;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && argv[1][0] != '-') return Call(argv[1], "DllRegisterServer");
  if (argc == 3 && std::string_view(argv[1]) == "--unregister") return Call(argv[2], "DllUnregisterServer");
  std::fprintf(stderr, "Usage: morvelan-register [--unregister] LIBRARY\n");
  return kWrongArguments;
}
