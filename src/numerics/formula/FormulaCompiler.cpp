#include "numerics/formula/FormulaCompiler.h"

#include <algorithm>
#include <cmath>

#include "numerics/formula/FunctionTable.h"
#include "numerics/formula/Power.h"

namespace morvelan::numerics {

using Op = FormulaOperation;

/// The steps of an arithmetic operator, by what its operands are.
struct FormulaCompiler::ArithmeticSteps {
  Op byConstant, byVariable;  // the right operand
  Op ofConstant, ofVariable;  // the left operand
  Op onStack;                 // both are computed
};

void FormulaCompiler::Compile(const ExpressionTree& tree) {
  for (const ExpressionNode& node : tree.nodes) {
    if (node.kind == NodeKind::kConstant)
      operands.push_back({Operand::Origin::kConstant, node.value, 0});
    else if (node.kind == NodeKind::kVariable)
      operands.push_back({Operand::Origin::kVariable, 0, node.index});
    else
      CompileOperation(node.kind);
  }
  Fetch(Take());
}

FormulaCompiler::Operand FormulaCompiler::Take() {
  const Operand operand = operands.back();
  operands.pop_back();
  if (operand.IsComputed()) --computed;
  return operand;
}

/// Makes an operand that was just taken the running value.
void FormulaCompiler::Fetch(const Operand& operand) {
  if (operand.IsComputed()) return;
  const bool isConstant = operand.origin == Operand::Origin::kConstant;
  if (computed == 0) {
    Emit(isConstant ? Op::kLoadConstant : Op::kLoadVariable, operand);
    return;
  }
  Emit(isConstant ? Op::kPushLoadConstant : Op::kPushLoadVariable, operand);
  program.stackSize = std::max(program.stackSize, computed);
}

void FormulaCompiler::Emit(FormulaOperation operation, const Operand& operand) {
  FormulaStep step;
  step.operation = operation;
  step.variable = operand.variable;
  step.constant = operand.constant;
  program.steps.push_back(step);
}

void FormulaCompiler::CompileOperation(NodeKind kind) {
  static constexpr ArithmeticSteps kAddition = {Op::kAddConstant, Op::kAddVariable, Op::kAddConstant, Op::kAddVariable,
                                                Op::kAddStack};
  static constexpr ArithmeticSteps kSubtraction = {Op::kSubtractConstant, Op::kSubtractVariable,
                                                   Op::kSubtractFromConstant, Op::kSubtractFromVariable,
                                                   Op::kSubtractFromStack};
  static constexpr ArithmeticSteps kMultiplication = {Op::kMultiplyConstant, Op::kMultiplyVariable,
                                                      Op::kMultiplyConstant, Op::kMultiplyVariable, Op::kMultiplyStack};
  static constexpr ArithmeticSteps kDivision = {Op::kDivideByConstant, Op::kDivideByVariable, Op::kDivideConstant,
                                                Op::kDivideVariable, Op::kDivideStack};
  switch (kind) {
    case NodeKind::kAddition:
      CompileArithmetic(kAddition);
      break;
    case NodeKind::kSubtraction:
      CompileArithmetic(kSubtraction);
      break;
    case NodeKind::kMultiplication:
      CompileArithmetic(kMultiplication);
      break;
    case NodeKind::kDivision:
      CompileArithmetic(kDivision);
      break;
    case NodeKind::kPower:
      CompilePower();
      break;
    default:
      if (OperandCount(kind) == 1u)
        CompileUnary(kind);
      else
        CompileCall(FunctionOf(kind).binary);
  }
  operands.push_back({});
  ++computed;
}

void FormulaCompiler::CompileUnary(NodeKind kind) {
  Fetch(Take());
  Emit(kind == NodeKind::kNegation ? Op::kNegate : Op::kUnary, {});
  if (kind == NodeKind::kNegation) return;
  program.steps.back().unary = FunctionOf(kind).unary;
  program.callsFunctions = true;
}

void FormulaCompiler::CompileArithmetic(const ArithmeticSteps& choice) {
  const Operand right = Take(), left = Take();
  if (right.IsComputed() && left.IsComputed()) {
    Emit(choice.onStack, {});
  } else if (right.IsComputed()) {
    Emit(left.origin == Operand::Origin::kConstant ? choice.ofConstant : choice.ofVariable, left);
  } else {
    Fetch(left);
    Emit(right.origin == Operand::Origin::kConstant ? choice.byConstant : choice.byVariable, right);
  }
}

void FormulaCompiler::CompilePower() {
  const double exponent = operands.back().constant;  // zero unless it is a constant
  const bool isProduct =
      exponent >= kSmallestProductPower && exponent <= kLargestProductPower && exponent == std::floor(exponent);
  if (exponent != 2 && !isProduct) {
    CompileCall(Power);
    return;
  }
  (void)Take();
  Fetch(Take());
  Emit(isProduct ? Op::kProductPower : Op::kSquare, {});
  program.steps.back().variable = static_cast<std::int32_t>(exponent);
  program.callsFunctions |= isProduct;
}

void FormulaCompiler::CompileCall(double (*function)(double, double)) {
  const Operand right = Take(), left = Take();
  const bool reversed = right.IsComputed() && !left.IsComputed();
  if (!reversed) Fetch(left);
  // The operand that is fetched second finds the other one as the running value.
  computed += right.IsComputed() && left.IsComputed() ? 0 : 1;
  Fetch(reversed ? left : right);
  computed -= right.IsComputed() && left.IsComputed() ? 0 : 1;
  Emit(reversed ? Op::kBinaryReversed : Op::kBinary, {});
  program.steps.back().binary = function;
  program.callsFunctions = true;
}

}  // namespace morvelan::numerics
