#include "numerics/formula/FormulaProgram.h"

#include <array>
#include <cmath>

#include "numerics/formula/FormulaCompiler.h"
#include "numerics/formula/FormulaParser.h"
#include "numerics/formula/Power.h"

namespace morvelan::numerics {
namespace {

constexpr std::size_t kUsualStack = 32;
// What waits here was an expression on the parser's stack, and what it waited for stood above it.
constexpr std::size_t kLargestStack = kLargestParserDepth / 2;

}  // namespace

FormulaProgram::FormulaProgram(const ExpressionTree& tree) { FormulaCompiler(*this).Compile(tree); }

double FormulaProgram::Run(const double* values, bool& suspicious) const noexcept {
  if (stackSize > kUsualStack) return RunDeep(values, suspicious);
  double stack[kUsualStack];
  return RunOn(stack, values, suspicious);
}

double FormulaProgram::RunDeep(const double* values, bool& suspicious) const noexcept {
  double stack[kLargestStack];
  return RunOn(stack, values, suspicious);
}

double FormulaProgram::RunOn(double* stack, const double* values, bool& suspicious) const noexcept {
  using Op = FormulaOperation;
  double x = 0;  // the running value
  const FormulaStep* const end = steps.data() + steps.size();
  for (const FormulaStep* step = steps.data(); step != end; ++step) {
    switch (step->operation) {
      // clang-format off
      case Op::kPushLoadConstant: *stack++ = x; x = step->constant; break;
      case Op::kPushLoadVariable: *stack++ = x; x = values[step->variable]; break;
      case Op::kLoadConstant: x = step->constant; break;
      case Op::kLoadVariable: x = values[step->variable]; break;
      case Op::kAddConstant: x += step->constant; break;
      case Op::kAddVariable: x += values[step->variable]; break;
      case Op::kAddStack: x = *--stack + x; break;
      case Op::kSubtractConstant: x -= step->constant; break;
      case Op::kSubtractVariable: x -= values[step->variable]; break;
      case Op::kSubtractFromConstant: x = step->constant - x; break;
      case Op::kSubtractFromVariable: x = values[step->variable] - x; break;
      case Op::kSubtractFromStack: x = *--stack - x; break;
      case Op::kMultiplyConstant: x *= step->constant; break;
      case Op::kMultiplyVariable: x *= values[step->variable]; break;
      case Op::kMultiplyStack: x = *--stack * x; break;
      case Op::kDivideByConstant: x /= step->constant; break;
      case Op::kDivideByVariable: x /= values[step->variable]; break;
      case Op::kDivideConstant: suspicious |= !std::isfinite(x); x = step->constant / x; break;
      case Op::kDivideVariable: suspicious |= !std::isfinite(x); x = values[step->variable] / x; break;
      case Op::kDivideStack: suspicious |= !std::isfinite(x); x = *--stack / x; break;
      case Op::kNegate: x = -x; break;
      case Op::kSquare: x = Square(x); break;
      case Op::kProductPower: x = ProductPower(x, step->variable); break;
      case Op::kUnary: suspicious |= !std::isfinite(x); x = step->unary(x); break;
      case Op::kBinary:
        --stack;
        suspicious |= !std::isfinite(x) || !std::isfinite(*stack);
        x = step->binary(*stack, x);
        break;
      case Op::kBinaryReversed:
        --stack;
        suspicious |= !std::isfinite(*stack);  // what was fetched last is not computed
        x = step->binary(x, *stack);
        break;
        // clang-format on
    }
  }
  return x;
}

}  // namespace morvelan::numerics
