#include "tests/cli/CommandRun.h"

#include <fstream>
#include <iterator>

namespace morvelan::test {

std::filesystem::path Scratch(const std::string& name) {
  const auto folder = std::filesystem::path(MORVELAN_SCRATCH) / "command";
  std::filesystem::create_directories(folder);
  return folder / name;
}

std::filesystem::path WriteScratch(const std::string& name, const std::string& text) {
  const auto file = Scratch(name);
  std::ofstream(file, std::ios::binary) << text;
  return file;
}

std::string ReadFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

FlowsheetOutcome RunFlowsheet(const std::string& text, const std::string& options) {
  const auto file = WriteScratch("flowsheet.json", text), results = Scratch("results.json");
  std::filesystem::remove(results);
  FlowsheetOutcome outcome{
      RunCommand("run \"" + file.string() + "\" --json \"" + results.string() + "\" " + options), {}};
  if (std::filesystem::exists(results)) outcome.results = Json::parse(ReadFile(results));
  return outcome;
}

}  // namespace morvelan::test
