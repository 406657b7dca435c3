#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace morvelan::numerics {

/// What went wrong in an operation on floating-point numbers.
enum class FaultCode : std::int32_t {
  kNone,
  kInvalid,
  kOverflow,
  kSingularity,
  kOutOfRange,
  kNotANumber,
  kUnderflow,
  kTotalLoss,
  kIntegerOverflow,
  kIntegerDivisionByZero,
  kDivisionByZero
};

/// The code in words.
[[nodiscard]] const char* FaultMessage(FaultCode code);

/// The failure text of a fault in the operation of that name.
[[nodiscard]] std::string FaultText(std::string_view where, FaultCode code);

}  // namespace morvelan::numerics
