#include "com/Program.h"

#include <unistd.h>

namespace morvelan::com {

Program::Program(int argc, char** argv) : arguments(argv, argv + argc) {}

Program::~Program() = default;

bool Program::HasTerminal() { return isatty(STDERR_FILENO) != 0; }

}  // namespace morvelan::com
