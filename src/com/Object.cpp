#include "com/Object.h"

namespace morvelan::com {

std::atomic<long>& ModuleUses() {
  static std::atomic<long> uses = 0;
  return uses;
}

}  // namespace morvelan::com
