#pragma once

#include "numerics/formula/ExpressionTree.h"
#include "numerics/formula/FaultCode.h"

namespace morvelan::numerics {

/// The value of an operator or function, computed plainly. `operands` has as many as OperandCount says.
[[nodiscard]] double Compute(NodeKind kind, const double* operands);

/// The fault that computing `result` was: the exceptional conditions of IEEE 754 that leave no usable number.
/// They are read from operands and result, as not every system's mathematical functions report them. What was
/// already infinite or not a number before is no fault of this operation; underflow and rounding are none
/// either.
[[nodiscard]] FaultCode FaultOf(NodeKind kind, const double* operands, double result);

}  // namespace morvelan::numerics
