#include "numerics/formula/FloatingPointScope.h"

namespace morvelan::numerics {

// For doubles its functions use the same unit as arithmetic.
const bool kLibraryUsesOlderUnit = false;

}  // namespace morvelan::numerics
