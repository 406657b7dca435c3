// Reads any text as a numeric entry and as a formula with three variables. Besides not crashing, both must agree with
// each other and with an evaluation of the tree node by node, and must not change the host's floating-point
// environment. The first byte chooses the values of the variables.

#include <fenv.h>
#include <xmmintrin.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "numerics/formula/CalculatorFormula.h"
#include "numerics/formula/FormulaParser.h"
#include "numerics/formula/NumericEntry.h"
#include "tests/numerics/formula/TreeText.h"

namespace {

using namespace morvelan::numerics;
using namespace morvelan::test;

constexpr FormulaDialect kDialect = {"parse error", "parser stack overflow"};
const std::vector<std::string> kVariables = {"T1", "T2", "x"};
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::array<std::array<double, 3>, 8> kValues = {{{298.15, 310, 2},
                                                           {0, 0, 0},
                                                           {-1, -0.0, 0.5},
                                                           {1e308, 1e308, 1e-308},
                                                           {kInfinity, 1, -kInfinity},
                                                           {kNaN, 1, 0},
                                                           {5e-324, -5e-324, 710},
                                                           {3, -7, 1000}}};

void Require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "NOT TRUE: %s\n", what);
  std::abort();
}

/// A host that rounds upwards, traps faults and has the flags of an underflow and a rounding.
class OddHost {
 public:
  OddHost() {
    std::feclearexcept(FE_ALL_EXCEPT);
    std::fesetround(FE_UPWARD);
    std::feraiseexcept(FE_UNDERFLOW | FE_INEXACT);
    feenableexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW);
    control = _mm_getcsr();
  }
  ~OddHost() {
    Require(_mm_getcsr() == control && std::fegetround() == FE_UPWARD &&
                std::fetestexcept(FE_ALL_EXCEPT) == (FE_UNDERFLOW | FE_INEXACT) &&
                fegetexcept() == (FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW),
            "the environment is the host's");
    std::fesetenv(FE_DFL_ENV);
  }

 private:
  unsigned control;
};

void RequireOneOutcome(double value, const std::string& failure) {
  Require(failure.empty() ? std::isfinite(value) : std::isnan(value), "either a finite value or a message");
}

/// The message of a numeric entry in the words of a calculator.
std::string InCalculatorWords(const std::string& failure) {
  if (failure.starts_with("syntax error: ")) return "parse error: " + failure.substr(14);
  return failure == "memory exhausted" ? "parser stack overflow" : failure;
}

void CompareWithPlainEvaluation(const ExpressionTree& parsed, const std::array<double, 3>& values,
                                const Evaluation& evaluation) {
  const ExpressionTree unfolded = Resolved(parsed);
  ExpressionTree folded = parsed;
  Require(CheckTree(folded).empty(), "the check's outcome is the same again");
  double whole = 0, reduced = 0;
  (void)FormulaProgram(unfolded).Run(values.data(), whole);
  (void)FormulaProgram(folded).Run(values.data(), reduced);
  Require(SameValue(whole, reduced), "folding changes no bit");
  const Evaluation plain = RefuseNonFinite(EvaluateTree(folded, values));
  Require(plain.failure == evaluation.failure && SameValue(plain.value, evaluation.value),
          "the program and the tree agree");
}

void CompareWithPrintedTree(const ExpressionTree& parsed, const std::array<double, 3>& values,
                            const Evaluation& evaluation) {
  const FormulaCheck again = CheckFormula(TreeText(parsed, kVariables), kVariables);
  if (again.failure == kDialect.stackFull) return;  // it has more parentheses than the text
  Require(again.formula.has_value(), "a printed tree is a formula");
  const Evaluation second = again.formula->Evaluate(values);
  Require(second.failure == evaluation.failure && SameValue(second.value, evaluation.value),
          "a printed tree means the same");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::array<double, 3>& values = kValues[data[0] % kValues.size()];
  const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
  Evaluation entry, evaluation;
  FormulaCheck check;
  {
    const OddHost host;
    entry = EvaluateNumericEntry(text);
    check = CheckFormula(text, kVariables);
    if (check.formula) evaluation = check.formula->Evaluate(values);
  }
  RequireOneOutcome(entry.value, entry.failure);
  Require(check.formula.has_value() == check.failure.empty(), "either a formula or a message");
  if (check.formula) RequireOneOutcome(evaluation.value, evaluation.failure);
  if (text.find('"') == std::string_view::npos) {
    const std::string& failure = check.formula ? evaluation.failure : check.failure;
    Require(InCalculatorWords(entry.failure) == failure, "both front ends refuse the same");
    Require(SameValue(entry.value, evaluation.value), "both front ends give the same value");
  }
  if (!check.formula) return 0;
  const ParsedFormula parsed = ParseFormula(text, kVariables, kDialect);
  CompareWithPlainEvaluation(parsed.tree, values, evaluation);
  CompareWithPrintedTree(parsed.tree, values, evaluation);
  return 0;
}
