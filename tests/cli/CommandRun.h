#pragma once

#include <filesystem>
#include <string>

namespace morvelan::test {

/// What a run of the `morvelan` command left behind.
struct CommandOutcome {
  int status = -1;
  std::string output;
  std::string errors;
};

/// Runs the built command in a folder of its own for scratch files.
[[nodiscard]] CommandOutcome RunCommand(const std::string& arguments);

/// Gives a line to the system's shell and returns the exit status. Each system has its own.
[[nodiscard]] int ExitStatus(const std::string& line);

/// Writes a scratch file and returns its path.
[[nodiscard]] std::filesystem::path WriteScratch(const std::string& name, const std::string& text);

/// The path of a scratch file.
[[nodiscard]] std::filesystem::path Scratch(const std::string& name);

/// A whole file.
[[nodiscard]] std::string ReadFile(const std::filesystem::path& file);

}  // namespace morvelan::test
