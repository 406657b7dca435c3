#pragma once

#include <string>

namespace morvelan::numerics {

inline constexpr const char* kOutOfMemory = "out of memory";
inline constexpr const char* kInvalidArguments = "invalid solver input arguments";

/// The message of a failure of KINSOL's solver (a KIN_ code). Some messages repeat `functionMessage`, the reason why
/// the residual could not be evaluated.
[[nodiscard]] std::string SolveFailureText(int outcome, const std::string& functionMessage);

/// The same for KINSOL's set-up functions; `invalid` is the message of an argument that was refused.
[[nodiscard]] const char* SetupFailureText(int outcome, const char* invalid);

/// The same for the functions of KINSOL's linear solver interface, which have other codes (KINLS_).
[[nodiscard]] const char* LinearSetupFailureText(int outcome);

}  // namespace morvelan::numerics
