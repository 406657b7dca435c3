#pragma once

#include <filesystem>
#include <string>

#include "host/flowsheet/FlowsheetRun.h"

namespace morvelan::cli {

// Exit statuses.
inline constexpr int kSolved = 0;
inline constexpr int kNotSolved = 1;
inline constexpr int kWrongInput = 2;

struct RunArguments {
  std::filesystem::path file;
  std::string json;  // the file to write, "-" for standard output; empty for none
  host::RunOptions options;
  bool quiet = false;
};

// Each returns one of the codes above and throws std::exception for wrong input.

/// Runs a flowsheet and writes its results.
int Run(const RunArguments& arguments, const std::filesystem::path& dataFolder);
/// Lists the unit classes that are published.
int ListUnits();
/// Describes a unit class, by name, ProgID or class identifier.
int Describe(const std::string& className);

}  // namespace morvelan::cli
