// Prints the code of the host that this process is taken for, and to which of its windows a unit's message
// box belongs when the active one is hidden. With "--start COMMAND-LINE" it starts itself with that command
// line instead, which need not tell the truth.

#include <cstdio>

#include "cape_open.h"
#include "com/Classes.h"
#include "com/Module.h"
#include "com/Program.h"
#include "server/ClassTable.h"
#include "server/HostDetection.h"
#include "tests/ui/WatchedBox.h"

namespace morvelan::test {
namespace {

int Start(const std::string& commandLine) {
  const std::wstring file = com::ModuleFile().wstring();
  std::wstring line = com::ToBstr(commandLine).Get();
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(file.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process))
    return 1;
  WaitForSingleObject(process.hProcess, INFINITE);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return 0;
}

const char* OwnerOfMessageBox() {
  const auto unit = com::CreateObject(server::UnitClasses()[0].clsid).As<ICapeUtilities>();
  const TestWindow hidden(false), visible(true);
  unit->Initialize();
  SetActiveWindow(hidden.handle);
  const auto box = BoxShownBy([&] { unit->Edit(); });
  if (!box) return "no message box";
  return box->owner == hidden.handle ? "active" : box->owner == visible.handle ? "visible" : "none";
}

}  // namespace
}  // namespace morvelan::test

int main(int argc, char** argv) {
  const morvelan::com::Program program(argc, argv);
  const auto& arguments = program.Arguments();
  if (arguments.size() == 3 && arguments[1] == "--start") return morvelan::test::Start(arguments[2]);
  std::printf("%d %s\n", morvelan::server::DetectHost(), morvelan::test::OwnerOfMessageBox());
  return 0;
}
