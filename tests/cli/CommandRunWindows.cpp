#include <stdexcept>

#include "com/Platform.h"
#include "com/Text.h"
#include "tests/cli/CommandRun.h"

namespace morvelan::test {
namespace {

/// A scratch file that a program writes to.
class OutputFile {
 public:
  explicit OutputFile(const char* name) : path(Scratch(name)) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    handle = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
  }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile() { Close(); }

  [[nodiscard]] HANDLE Handle() const { return handle; }
  /// What was written, without the carriage returns of this system's text files.
  [[nodiscard]] std::string Text() {
    Close();
    std::string text = ReadFile(path);
    std::erase(text, '\r');
    return text;
  }

 private:
  void Close() {
    if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
    handle = INVALID_HANDLE_VALUE;
  }

  std::filesystem::path path;
  HANDLE handle;
};

}  // namespace

CommandOutcome RunCommand(const std::string& arguments) {
  OutputFile output("output.txt"), errors("errors.txt");
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = output.Handle();
  startup.hStdError = errors.Handle();
  PROCESS_INFORMATION process{};
  std::wstring line = com::ToBstr("\"" MORVELAN_COMMAND "\" " + arguments).Get();
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process))
    throw std::runtime_error("the command can't be started: error " + std::to_string(GetLastError()));
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(process.hProcess, &status);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return {static_cast<int>(status), output.Text(), errors.Text()};
}

}  // namespace morvelan::test
