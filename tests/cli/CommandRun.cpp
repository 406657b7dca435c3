#include "tests/cli/CommandRun.h"

#include <fstream>
#include <iterator>

namespace morvelan::test {

CommandOutcome RunCommand(const std::string& arguments) {
  const auto output = Scratch("output.txt"), errors = Scratch("errors.txt");
  const int status = ExitStatus("\"" MORVELAN_COMMAND "\" " + arguments + " > \"" + output.string() + "\" 2> \"" +
                                errors.string() + '"');
  CommandOutcome outcome = {status, ReadFile(output), ReadFile(errors)};
  for (std::string* text : {&outcome.output, &outcome.errors}) std::erase(*text, '\r');  // of text files of Windows
  return outcome;
}

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

}  // namespace morvelan::test
