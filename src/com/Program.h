#pragma once

#include <string>
#include <vector>

namespace morvelan::com {

/// What a program needs around its work: COM for its thread, and text as UTF-8 in its arguments and on its
/// output.
class Program {
 public:
  Program(int argc, char** argv);
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program();

  /// Whether somebody reads standard error as it is written.
  [[nodiscard]] static bool HasTerminal();

  /// With the program's name first.
  [[nodiscard]] const std::vector<std::string>& Arguments() const { return arguments; }

 private:
  std::vector<std::string> arguments;
};

}  // namespace morvelan::com
