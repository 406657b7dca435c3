#pragma once

namespace morvelan::test {

/// Registers the built library for the tests, so that they create units as hosts do: where the tests have
/// data of their own, or a system of their own. Throws std::runtime_error.
void RegisterBuiltLibrary();

}  // namespace morvelan::test
