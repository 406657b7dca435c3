#pragma once

namespace morvelan::test {

/// Registers the built library for this process alone, so that tests create units as hosts do. Throws
/// std::runtime_error.
void RegisterBuiltLibrary();

}  // namespace morvelan::test
