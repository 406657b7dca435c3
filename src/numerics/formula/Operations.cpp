#include "numerics/formula/Operations.h"

#include <algorithm>
#include <cmath>

#include "numerics/formula/FunctionTable.h"
#include "numerics/formula/Power.h"

namespace morvelan::numerics {
namespace {

/// An infinity of finite operands is exact at a pole, and the outcome of an overflow elsewhere. Poles that
/// are no division's are all at zero.
FaultCode InfinityOf(NodeKind kind, const double* operands) {
  if (kind == NodeKind::kDivision) return operands[1] == 0 ? FaultCode::kDivisionByZero : FaultCode::kOverflow;
  return operands[0] == 0 ? FaultCode::kSingularity : FaultCode::kOverflow;
}

}  // namespace

double Compute(NodeKind kind, const double* operands) {
  switch (kind) {
    case NodeKind::kAddition:
      return operands[0] + operands[1];
    case NodeKind::kSubtraction:
      return operands[0] - operands[1];
    case NodeKind::kMultiplication:
      return operands[0] * operands[1];
    case NodeKind::kDivision:
      return operands[0] / operands[1];
    case NodeKind::kNegation:
      return -operands[0];
    case NodeKind::kPower:
      return Power(operands[0], operands[1]);
    default:
      const FormulaFunction& function = FunctionOf(kind);
      return function.unary ? function.unary(operands[0]) : function.binary(operands[0], operands[1]);
  }
}

FaultCode FaultOf(NodeKind kind, const double* operands, double result) {
  if (std::isfinite(result)) return FaultCode::kNone;
  const double* end = operands + OperandCount(kind).value_or(0);
  if (std::isnan(result))
    return std::any_of(operands, end, [](double x) { return std::isnan(x); }) ? FaultCode::kNone : FaultCode::kInvalid;
  return std::all_of(operands, end, [](double x) { return std::isfinite(x); }) ? InfinityOf(kind, operands)
                                                                               : FaultCode::kNone;
}

}  // namespace morvelan::numerics
