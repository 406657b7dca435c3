#include "com/Program.h"

#include <stdexcept>

#include "com/Text.h"
// After <windows.h>.
#include <shellapi.h>

namespace morvelan::com {

Program::Program(int, char**) {
  int count = 0;
  LPWSTR* wide = CommandLineToArgvW(GetCommandLineW(), &count);
  for (int i = 0; wide && i < count; ++i) arguments.push_back(ToUtf8(wide[i], std::wstring(wide[i]).size()));
  LocalFree(wide);
  SetConsoleOutputCP(CP_UTF8);
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) throw std::runtime_error("COM can't be initialized");
}

Program::~Program() { CoUninitialize(); }

bool Program::HasTerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

}  // namespace morvelan::com
