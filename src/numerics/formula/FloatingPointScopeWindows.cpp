#include "numerics/formula/FloatingPointScope.h"

namespace morvelan::numerics {

// Several functions of mingw-w64 calculate in the older unit.
const bool kLibraryUsesOlderUnit = true;

}  // namespace morvelan::numerics
