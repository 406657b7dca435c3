#include "com/Program.h"

namespace morvelan::com {

Program::Program(int argc, char** argv) : arguments(argv, argv + argc) {}

Program::~Program() = default;

}  // namespace morvelan::com
