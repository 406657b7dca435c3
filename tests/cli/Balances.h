#pragma once

#include "tests/cli/IdentityCases.h"

namespace morvelan::test {

/// Expects that feeds are as they were listed, that the phases of every stream make up the whole, and that every unit
/// keeps what it was given and conserves material or elements, energy, and what else it says of itself.
void ExpectBalances(const Subject& subject, const Json& results);

}  // namespace morvelan::test
