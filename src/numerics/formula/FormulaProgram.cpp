#include "numerics/formula/FormulaProgram.h"

#include <algorithm>
#include <cmath>

#include "numerics/formula/FormulaParser.h"

namespace morvelan::numerics {
namespace {

constexpr std::size_t kUsualStack = 32;
// A value that waits was an expression on the parser's stack, and the operator stood above it.
constexpr std::size_t kLargestStack = kLargestParserDepth / 2;

/// The operands of an arithmetic operator, left and right: a constant, a variable, the running value, or the value on
/// top of the stack.
enum Operands : std::uint32_t {
  kVariableVariable,
  kVariableConstant,
  kConstantVariable,
  kPushVariableVariable,
  kPushVariableConstant,
  kPushConstantVariable,
  kRunningVariable,
  kRunningConstant,
  kVariableRunning,
  kConstantRunning,
  kStackRunning,
  kOperandForms
};

/// The operations of steps. From kAdd on each stands for kOperandForms operations, one for each form of operands.
enum Operation : std::uint32_t {
  kEnd,
  kPush,
  kLoadConstant,
  kLoadVariable,
  kNegate,
  kSquare,
  kCallUnary,
  kCallBinary,
  kCallBinaryReversed,
  kAdd,
  kSubtract = kAdd + kOperandForms,
  kMultiply = kSubtract + kOperandForms,
  kDivide = kMultiply + kOperandForms
};

}  // namespace

/// Turns the nodes of a checked tree into the steps of a program.
class FormulaCompiler {
 public:
  explicit FormulaCompiler(FormulaProgram& target) : program(target) {}

  void Compile(const ExpressionTree& tree) {
    for (const ExpressionNode& node : tree.nodes) {
      if (node.kind == NodeKind::kConstant)
        operands.push_back({Operand::Origin::kConstant, node.value, 0});
      else if (node.kind == NodeKind::kVariable)
        operands.push_back({Operand::Origin::kVariable, 0, node.index});
      else
        CompileOperation(node.kind);
    }
    Load(Take());
    Emit(kEnd);
  }

 private:
  /// An operand: a constant or a variable that no step has used yet, or a value that the steps have computed.
  struct Operand {
    enum class Origin { kConstant, kVariable, kComputed } origin = Origin::kComputed;
    double constant = 0;
    std::int32_t variable = 0;

    [[nodiscard]] bool IsComputed() const { return origin == Origin::kComputed; }
    [[nodiscard]] bool IsConstant() const { return origin == Origin::kConstant; }
  };

  FormulaStep& Emit(Operation operation, const Operand& operand) {
    FormulaStep& step = program.steps.emplace_back();
    step.operation = operation;
    step.variable = operand.variable;
    step.constant = operand.constant;
    return step;
  }
  FormulaStep& Emit(Operation operation) { return Emit(operation, Operand()); }
  FormulaStep& Emit(Operation operation, Operands form, const Operand& operand) {
    return Emit(static_cast<Operation>(std::uint32_t{operation} + form), operand);
  }

  Operand Take() {
    const Operand operand = operands.back();
    operands.pop_back();
    if (operand.IsComputed()) --computed;
    return operand;
  }

  /// Whether an operation waits for the running value, which then has to go onto the stack before another value is
  /// computed.
  bool NeedsPush() {
    program.stackSize = std::max(program.stackSize, computed);
    return computed > 0;
  }

  /// Makes an operand that was just taken the running value.
  void Load(const Operand& operand) {
    if (operand.IsComputed()) return;
    if (NeedsPush()) Emit(kPush);
    Emit(operand.IsConstant() ? kLoadConstant : kLoadVariable, operand);
  }

  void CompileOperation(NodeKind kind) {
    switch (kind) {
      case NodeKind::kAddition:
        CompileArithmetic(kAdd);
        break;
      case NodeKind::kSubtraction:
        CompileArithmetic(kSubtract);
        break;
      case NodeKind::kMultiplication:
        CompileArithmetic(kMultiply);
        break;
      case NodeKind::kDivision:
        CompileArithmetic(kDivide);
        break;
      case NodeKind::kPower:
        CompilePower();
        break;
      case NodeKind::kNegation:
        CompileUnary(kNegate);
        break;
      default:
        if (const FormulaFunction& function = FunctionOf(kind); function.unary)
          CompileUnaryCall(function.unary);
        else
          CompileBinaryCall(function.binary);
    }
    operands.push_back({});
    ++computed;
  }

  void CompileArithmetic(Operation operation) {
    const Operand right = Take(), left = Take();
    if (left.IsComputed() && right.IsComputed()) {
      Emit(operation, kStackRunning, right);
    } else if (left.IsComputed()) {
      Emit(operation, right.IsConstant() ? kRunningConstant : kRunningVariable, right);
    } else if (right.IsComputed()) {
      Emit(operation, left.IsConstant() ? kConstantRunning : kVariableRunning, left);
    } else {
      CompileLeaves(operation, left, right);
    }
  }

  /// Compiles an operation on two operands of which none is computed.
  void CompileLeaves(Operation operation, const Operand& left, const Operand& right) {
    if (left.IsConstant() && right.IsConstant()) {
      Load(left);
      Emit(operation, kRunningConstant, right);
      return;
    }
    const bool pushes = NeedsPush();
    if (left.IsConstant()) {
      Emit(operation, pushes ? kPushConstantVariable : kConstantVariable, right).constant = left.constant;
    } else if (right.IsConstant()) {
      Emit(operation, pushes ? kPushVariableConstant : kVariableConstant, left).constant = right.constant;
    } else {
      Emit(operation, pushes ? kPushVariableVariable : kVariableVariable, left).secondVariable = right.variable;
    }
  }

  void CompilePower() {
    const double exponent = operands.back().constant;  // zero unless it is a constant
    const bool isProduct =
        exponent >= kSmallestProductPower && exponent <= kLargestProductPower && exponent == std::floor(exponent);
    if (exponent != 2 && !isProduct) {
      CompileBinaryCall([](double base, double power) {
        const double operands[] = {base, power};
        return Compute(NodeKind::kPower, operands);
      });
      return;
    }
    (void)Take();
    if (isProduct)
      CompileUnaryCall(ProductPower(static_cast<int>(exponent)));
    else
      CompileUnary(kSquare);
  }

  void CompileUnary(Operation operation) {
    Load(Take());
    Emit(operation);
  }

  void CompileUnaryCall(UnaryFunction function) {
    CompileUnary(kCallUnary);
    program.steps.back().unary = function;
    program.callsFunctions = true;
  }

  void CompileBinaryCall(BinaryFunction function) {
    const Operand right = Take(), left = Take();
    const bool areBothComputed = left.IsComputed() && right.IsComputed();
    const bool isReversed = right.IsComputed() && !left.IsComputed();
    if (!isReversed) Load(left);
    // The operand that is loaded second finds the first as the running value.
    if (!areBothComputed) ++computed;
    Load(isReversed ? left : right);
    if (!areBothComputed) --computed;
    Emit(isReversed ? kCallBinaryReversed : kCallBinary).binary = function;
    program.callsFunctions = true;
  }

  FormulaProgram& program;
  std::vector<Operand> operands;
  std::size_t computed = 0;  // operands that the steps have computed: the running value, and those on the stack
};

FormulaProgram::FormulaProgram(const ExpressionTree& tree) { FormulaCompiler(*this).Compile(tree); }

bool FormulaProgram::Run(const double* values, double& result) const noexcept {
  if (stackSize > kUsualStack) [[unlikely]]
    return RunDeep(values, result);
  double stack[kUsualStack];
  return callsFunctions ? RunOn<true>(stack, values, result) : RunOn<false>(stack, values, result);
}

bool FormulaProgram::RunDeep(const double* values, double& result) const noexcept {
  double stack[kLargestStack];
  return RunOn<true>(stack, values, result);
}

// Every operation ends with its own jump to the next one, because processors predict such jumps better than the one
// jump of a switch: this halves the time of a formula. GCC and Clang give the addresses of labels that this needs.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"

#define LABELS_OF(name)                                                                                             \
  &&name##VariableVariable, &&name##VariableConstant, &&name##ConstantVariable, &&name##PushVariableVariable,       \
      &&name##PushVariableConstant, &&name##PushConstantVariable, &&name##RunningVariable, &&name##RunningConstant, \
      &&name##VariableRunning, &&name##ConstantRunning, &&name##StackRunning

#define OPERATION(name, action) \
  name:                         \
  action;                       \
  goto* kLabels[(++step)->operation]

#define CALL(name, action) \
  OPERATION(               \
      name, if constexpr (kCallsFunctions) { action; })

#define ARITHMETIC(name, sign, check)                                                                          \
  OPERATION(name##VariableVariable, x = values[step->variable] sign values[step->secondVariable]);             \
  OPERATION(name##VariableConstant, x = values[step->variable] sign step->constant);                           \
  OPERATION(name##ConstantVariable, x = step->constant sign values[step->variable]);                           \
  OPERATION(name##PushVariableVariable, push(); x = values[step->variable] sign values[step->secondVariable]); \
  OPERATION(name##PushVariableConstant, push(); x = values[step->variable] sign step->constant);               \
  OPERATION(name##PushConstantVariable, push(); x = step->constant sign values[step->variable]);               \
  OPERATION(name##RunningVariable, x = x sign values[step->variable]);                                         \
  OPERATION(name##RunningConstant, x = x sign step->constant);                                                 \
  OPERATION(name##VariableRunning, check(x); x = values[step->variable] sign x);                               \
  OPERATION(name##ConstantRunning, check(x); x = step->constant sign x);                                       \
  OPERATION(name##StackRunning, check(x); x = pop() sign x)

// The instance without calls has no registers to save for them, which is faster for short formulas.
template <bool kCallsFunctions>
bool FormulaProgram::RunOn(double* stack, const double* values, double& result) const noexcept {
  static const void* const kLabels[] = {// In the order of Operation and Operands.
                                        &&End,
                                        &&Push,
                                        &&LoadConstant,
                                        &&LoadVariable,
                                        &&Negate,
                                        &&Square,
                                        &&CallUnary,
                                        &&CallBinary,
                                        &&CallBinaryReversed,
                                        LABELS_OF(Add),
                                        LABELS_OF(Subtract),
                                        LABELS_OF(Multiply),
                                        LABELS_OF(Divide)};
  double x = 0;  // the running value
  bool isFinite = true;
  const auto check = [&](double operand) { isFinite &= std::isfinite(operand); };
  const auto noCheck = [](double) {};
  const auto push = [&] { *stack++ = x; };
  const auto pop = [&] { return *--stack; };
  double left = 0;
  const FormulaStep* step = steps.data();
  goto* kLabels[step->operation];

  OPERATION(Push, push());
  OPERATION(LoadConstant, x = step->constant);
  OPERATION(LoadVariable, x = values[step->variable]);
  OPERATION(Negate, x = -x);
  OPERATION(Square, x = x * x);
  CALL(CallUnary, check(x); x = step->unary(x));
  CALL(CallBinary, left = pop(); check(left); check(x); x = step->binary(left, x));
  // Here the running value is the left operand, and was only loaded.
  CALL(CallBinaryReversed, left = x; x = pop(); check(x); x = step->binary(left, x));
  ARITHMETIC(Add, +, noCheck);
  ARITHMETIC(Subtract, -, noCheck);
  ARITHMETIC(Multiply, *, noCheck);
  ARITHMETIC(Divide, /, check);

End:
  result = x;
  return isFinite && std::isfinite(x);
}

#pragma GCC diagnostic pop

}  // namespace morvelan::numerics
