#pragma once

#include <string>

namespace morvelan::numerics {

/// What the outcome of KINSOL's solver (a KIN_ code that is a failure) means in words. Some repeat why the
/// residual could not be evaluated, `functionMessage`.
[[nodiscard]] std::string SolveFailureText(int outcome, const std::string& functionMessage);

/// The same for KINSOL's set-up functions; `invalid` is the text of an argument that was refused.
[[nodiscard]] const char* SetupFailureText(int outcome, const char* invalid);

/// The same for the functions of KINSOL's linear solver interface, which have codes of their own (KINLS_).
[[nodiscard]] const char* LinearSetupFailureText(int outcome);

}  // namespace morvelan::numerics
