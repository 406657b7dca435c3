#include "com/Module.h"

#include <dlfcn.h>
#include <link.h>

#include <fstream>
#include <stdexcept>

namespace morvelan::com {

std::filesystem::path ModuleFile() {
  Dl_info info{};
  link_map* module = nullptr;
  if (dladdr1(reinterpret_cast<const void*>(&ModuleFile), &info, reinterpret_cast<void**>(&module), RTLD_DL_LINKMAP) ==
          0 ||
      !module)
    throw std::runtime_error("The file of the library can't be found");
  const std::string name = module->l_name;  // empty for the program itself
  return name.empty() ? std::filesystem::read_symlink("/proc/self/exe") : std::filesystem::absolute(name);
}

std::string ProcessCommandLine() {
  std::ifstream stream("/proc/self/cmdline", std::ios::binary);
  std::string line;
  for (std::string argument; std::getline(stream, argument, '\0');)
    line += line.empty() ? '"' + argument + '"' : ' ' + argument;
  return line;
}

}  // namespace morvelan::com
