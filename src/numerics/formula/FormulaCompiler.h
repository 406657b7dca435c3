#pragma once

#include <cstdint>
#include <vector>

#include "numerics/formula/ExpressionTree.h"
#include "numerics/formula/FormulaProgram.h"

namespace morvelan::numerics {

/// Turns the nodes of a checked tree into the steps of a program.
class FormulaCompiler {
 public:
  explicit FormulaCompiler(FormulaProgram& target) : program(target) {}

  void Compile(const ExpressionTree& tree);

 private:
  /// An operand: a constant or a variable that no step has fetched yet, or a value that the steps have
  /// computed.
  struct Operand {
    enum class Origin { kConstant, kVariable, kComputed } origin = Origin::kComputed;
    double constant = 0;
    std::int32_t variable = 0;

    [[nodiscard]] bool IsComputed() const { return origin == Origin::kComputed; }
  };
  struct ArithmeticSteps;

  [[nodiscard]] Operand Take();
  void Fetch(const Operand& operand);
  void Emit(FormulaOperation operation, const Operand& operand);
  void CompileOperation(NodeKind kind);
  void CompileUnary(NodeKind kind);
  void CompileArithmetic(const ArithmeticSteps& choice);
  void CompilePower();
  void CompileCall(double (*function)(double, double));

  FormulaProgram& program;
  std::vector<Operand> operands;
  std::size_t computed = 0;  // among the operands; the last one is the running value, the others are on the stack
};

}  // namespace morvelan::numerics
