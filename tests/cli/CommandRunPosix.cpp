#include <sys/wait.h>

#include <cstdlib>
#include <stdexcept>

#include "tests/cli/CommandRun.h"

namespace morvelan::test {

int ExitStatus(const std::string& line) {
  const int ended = std::system(line.c_str());
  if (!WIFEXITED(ended)) throw std::runtime_error("the command did not end by itself: " + line);
  return WEXITSTATUS(ended);
}

}  // namespace morvelan::test
