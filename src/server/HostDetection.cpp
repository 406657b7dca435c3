#include "server/HostDetection.h"

#include "com/Module.h"
#include "com/Text.h"

namespace morvelan::server {
namespace {

struct KnownHost {
  std::string_view executable;
  int code;
};

constexpr KnownHost kHosts[] = {
    {"apwin.exe", 1},        {"apmain.exe", 1}, {"hysys.exe", 2},   {"proii.exe", 3},
    {"unisimdesign.exe", 4}, {"quarn.exe", 5},  {"quarn64.exe", 5},
};

std::string_view ExecutableOf(std::string_view commandLine) {
  const bool quoted = commandLine.starts_with('"');
  if (quoted) commandLine.remove_prefix(1);
  const std::string_view path = commandLine.substr(0, commandLine.find(quoted ? '"' : ' '));
  return path.substr(path.find_last_of("\\/:") + 1);  // npos + 1 is 0: the whole
}

}  // namespace

int HostCodeOf(std::string_view commandLine) {
  const std::string_view executable = ExecutableOf(commandLine);
  for (const KnownHost& host : kHosts)
    if (com::EqualNoCase(executable, host.executable)) return host.code;
  return 0;
}

int DetectHost() {
  static const int code = HostCodeOf(com::ProcessCommandLine());
  return code;
}

}  // namespace morvelan::server
