#include "numerics/formula/FaultCode.h"

#include <array>

namespace morvelan::numerics {
namespace {

constexpr std::array<const char*, 11> kMessages = {"No error",
                                                   "Invalid domain for function",
                                                   "Overflow",
                                                   "Singularity",
                                                   "unhandled exception, number out of range",
                                                   "Not a number (NaN)",
                                                   "Underflow",
                                                   "Total loss of significance",
                                                   "Integer overflow",
                                                   "Integer division by zero",
                                                   "Division by zero"};

}  // namespace

const char* FaultMessage(FaultCode code) { return kMessages.at(static_cast<std::size_t>(code)); }

std::string FaultText(std::string_view where, FaultCode code) {
  return "floating point exception in " + std::string(where) + ": " + FaultMessage(code);
}

}  // namespace morvelan::numerics
