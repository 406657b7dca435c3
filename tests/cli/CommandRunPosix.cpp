#include <sys/wait.h>

#include <cstdlib>
#include <stdexcept>

#include "tests/cli/CommandRun.h"

namespace morvelan::test {

CommandOutcome RunCommand(const std::string& arguments) {
  const auto output = Scratch("output.txt"), errors = Scratch("errors.txt");
  const std::string line = std::string("\"" MORVELAN_COMMAND "\" ") + arguments + " > \"" + output.string() +
                           "\" 2> \"" + errors.string() + '"';
  const int ended = std::system(line.c_str());
  if (!WIFEXITED(ended)) throw std::runtime_error("the command did not end by itself: " + line);
  return {WEXITSTATUS(ended), ReadFile(output), ReadFile(errors)};
}

}  // namespace morvelan::test
