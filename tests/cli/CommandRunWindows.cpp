#include <cstdlib>

#include "tests/cli/CommandRun.h"

namespace morvelan::test {

/// The shell takes the first and the last quote of a line away.
int ExitStatus(const std::string& line) { return std::system(('"' + line + '"').c_str()); }

}  // namespace morvelan::test
