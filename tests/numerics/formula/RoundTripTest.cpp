// Random trees, written as texts and parsed again, have the same values to the last bit.

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "numerics/formula/CalculatorFormula.h"
#include "tests/numerics/formula/TreeText.h"
#include "tests/support/LongTests.h"

namespace morvelan::test::round_trip {

using namespace numerics;

const std::vector<std::string> kNames = {"a", "b", "c"};

class RandomTree {
 public:
  explicit RandomTree(unsigned seed) : random(seed) {}

  ExpressionTree Make() {
    tree.nodes.clear();
    Add(Below(7));
    return tree;
  }
  /// A value for a variable; some lead to infinity and NaN.
  double VariableValue() {
    constexpr double kExtremes[] = {0, -0.0, 1e200, -1e200, 1e-200, -1};
    return Below(4) == 0 ? kExtremes[Below(6)] : Value();
  }
  double Value() { return std::ldexp(static_cast<double>(Below(1 << 20)) - (1 << 19), -15); }

 private:
  int Below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }

  void Add(int depth) {
    if (depth == 0 || Below(8) == 0) {
      tree.nodes.push_back(Below(2) ? VariableNode(Below(3)) : ConstantNode(std::fabs(Value())));
      return;
    }
    const ExpressionNode node = Below(3) == 0 ? RandomCall() : RandomOperation();
    for (std::uint32_t i = 0; i < node.childCount; ++i) Add(depth - 1);
    tree.nodes.push_back(node);
  }
  ExpressionNode RandomOperation() {
    const auto kind = static_cast<NodeKind>(1 + Below(6));
    return OperationNode(kind, OperandCount(kind).value());
  }
  ExpressionNode RandomCall() {
    const int function = Below(static_cast<int>(FormulaFunctions().size()));
    return CallNode(function, OperandCount(FunctionKind(function)).value());
  }

  std::mt19937 random;
  ExpressionTree tree;
};

TEST(RoundTrip, PrintedTreesMeanTheSame) {
  RandomTree trees(20240611);
  int values = 0, faults = 0, divisions = 0;
  const int count = ShortOrLong(1000, 20'000);
  for (int i = 0; i < count; ++i) {
    const ExpressionTree tree = trees.Make();
    const std::vector<double> at = {trees.VariableValue(), trees.VariableValue(), trees.VariableValue()};
    const std::string text = TreeText(tree, kNames);
    const FormulaCheck check = CheckFormula(text, kNames);
    if (check.failure == "division by zero\r\n") {  // the check finds it before any evaluation
      ++divisions;
      continue;
    }
    ASSERT_TRUE(check.formula.has_value()) << text << ": " << check.failure;
    const Evaluation parsed = check.formula->Evaluate(at);
    ExpressionTree folded = tree;
    ASSERT_EQ(CheckTree(folded), "") << text;
    const Evaluation direct = RefuseNonFinite(EvaluateTree(folded, at));
    ++(direct.Succeeded() ? values : faults);
    EXPECT_EQ(parsed.failure, direct.failure) << text;
    EXPECT_TRUE(SameValue(parsed.value, direct.value)) << text << ": " << parsed.value << ", " << direct.value;
  }
  EXPECT_TRUE(values > count * 4 / 10 && faults > count / 10)
      << values << " values, " << faults << " faults, " << divisions << " divisions by zero";
}

TEST(RoundTrip, NumbersAreReadExactlyFromExactTexts) {
  std::mt19937_64 random(3);
  for (int i = 0; i < 1000; ++i) {
    const double value = std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 60) - 60);
    const FormulaCheck check = CheckFormula(ExactText(value), {});
    ASSERT_TRUE(check.formula.has_value()) << ExactText(value);
    EXPECT_EQ(check.formula->Evaluate({}).value, value) << ExactText(value);
  }
}

}  // namespace morvelan::test::round_trip
