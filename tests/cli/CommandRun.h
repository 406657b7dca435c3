#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

namespace morvelan::test {

using Json = nlohmann::json;

/// What a run of the `morvelan` command left behind.
struct CommandOutcome {
  int status = -1;
  std::string output;
  std::string errors;
};

/// Runs the built command in a folder of its own for scratch files.
[[nodiscard]] CommandOutcome RunCommand(const std::string& arguments);

/// Writes a scratch file and returns its path.
[[nodiscard]] std::filesystem::path WriteScratch(const std::string& name, const std::string& text);

/// The path of a scratch file.
[[nodiscard]] std::filesystem::path Scratch(const std::string& name);

/// A whole file.
[[nodiscard]] std::string ReadFile(const std::filesystem::path& file);

/// Runs a flowsheet and reads its results; null when none were written.
struct FlowsheetOutcome : CommandOutcome {
  Json results;
};
[[nodiscard]] FlowsheetOutcome RunFlowsheet(const std::string& text, const std::string& options = {});

/// Expects equal texts and structure, and equal numbers within a relative tolerance.
void ExpectSame(const Json& a, const Json& b, double tolerance, const std::string& what);

}  // namespace morvelan::test
