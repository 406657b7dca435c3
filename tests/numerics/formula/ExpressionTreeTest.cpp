// Trees that no text leads to: what the check and the evaluation with domain rules say of them.

#include "numerics/formula/ExpressionTree.h"

#include <limits>

#include "numerics/formula/FunctionTable.h"
#include "numerics/formula/TreeCheck.h"
#include "numerics/formula/TreeEvaluation.h"
#include "tests/numerics/formula/ExpectEvaluation.h"

namespace morvelan::test::expression_tree {

using namespace numerics;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kHalfPi = 1.5707963267948966;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

ExpressionNode Function(std::string_view name, std::uint32_t children) {
  return OperationNode(FunctionKind(FindFunction(name).value()), children);
}
ExpressionNode Operator(NodeKind kind) { return OperationNode(kind, 2); }
ExpressionNode WithChildren(ExpressionNode node, std::uint32_t children) {
  node.childCount = children;
  return node;
}

TEST(ExpressionTree, KindsFollowTheTable) {
  // The numbers are part of the language: whoever stores a kind relies on them.
  const std::pair<const char*, int> kinds[] = {{"SQRT", 8},   {"ATAN", 16}, {"ROUND", 20}, {"LOG", 22},
                                               {"LOG10", 23}, {"MIN", 25},  {"MOD", 27}};
  for (const auto& [name, kind] : kinds) {
    EXPECT_EQ(static_cast<int>(FunctionKind(FindFunction(name).value())), kind);
    EXPECT_EQ(DisplayName(static_cast<NodeKind>(kind)), name);
  }
  EXPECT_EQ(DisplayName(NodeKind::kConstant), "real constant");
  EXPECT_EQ(DisplayName(NodeKind::kList), "expression list");
  EXPECT_EQ(DisplayName(NodeKind::kVariable), "");
  EXPECT_EQ(DisplayName(NodeKind::kUnresolvedCall), "");
  EXPECT_EQ(DisplayName(static_cast<NodeKind>(99)), "");
}

struct CheckCase {
  std::vector<ExpressionNode> nodes;
  const char* message;
};

TEST(ExpressionTree, CheckRefusesWhatTheGrammarCannotMake) {
  const ExpressionNode one = ConstantNode(1);
  const CheckCase cases[] = {
      {{}, "expression must result a scalar\r\n"},
      {{one, one}, "internal error: more than one expression remaining after parsing is finished\r\n"},
      {{OperationNode(NodeKind::kList, 0)}, "unexpected expression list\r\n"},
      {{one, OperationNode(NodeKind::kList, 1), OperationNode(NodeKind::kNegation, 1)},
       "unexpected expression list\r\n"},
      {{one, WithChildren(one, 1)}, "internal error: real constant with sub expressions\r\n"},
      {{one, WithChildren(VariableNode(0), 1)}, "internal error: variable with sub expressions\r\n"},
      {{OperationNode(static_cast<NodeKind>(29), 0)}, "internal error: unknown expression type\r\n"},
      {{CallNode(20, 0)}, "internal error: unknown expression type\r\n"},
      {{CallNode(-1, 0)}, "internal error: unknown expression type\r\n"},
      {{one, OperationNode(NodeKind::kAddition, 1)}, "internal error: unknown expression type\r\n"},
      {{one, Operator(NodeKind::kAddition)}, "internal error: unknown expression type\r\n"},
      {{one, one, Function("SIN", 2)}, "SIN should have one argument\r\n"},
      {{one, Function("MIN", 1)}, "MIN should have two arguments\r\n"},
  };
  for (const CheckCase& c : cases) {
    SCOPED_TRACE(c.message);
    ExpressionTree tree{c.nodes};
    EXPECT_EQ(CheckTree(tree), c.message);
  }
}

TEST(ExpressionTree, CheckFoldsWhatIsConstant) {
  // 2*3 + x*(4-1)
  ExpressionTree tree{{ConstantNode(2), ConstantNode(3), Operator(NodeKind::kMultiplication), VariableNode(0),
                       ConstantNode(4), ConstantNode(1), Operator(NodeKind::kSubtraction),
                       Operator(NodeKind::kMultiplication), Operator(NodeKind::kAddition)}};
  ASSERT_EQ(CheckTree(tree), "");
  ASSERT_EQ(tree.nodes.size(), 5u);
  EXPECT_EQ(tree.nodes[0].value, 6);
  EXPECT_EQ(tree.nodes[2].value, 3);
  EXPECT_EQ(EvaluatePlainly(tree, std::vector<double>{10}).value, 36);
}

struct RuleCase {
  const char* function;
  double argument;
  double value;
  const char* message;
};

// One function of a constant that no check has folded.
const RuleCase kRules[] = {
    {"LOG", 10, 0, "ln of negative number"},
    {"LOG", -1, 0, "ln of negative number"},
    {"LOG", kNaN, 0, "ln of negative number"},
    {"LOG", 0, -kInfinity, nullptr},
    {"LOG", -0.0, -kInfinity, nullptr},
    {"LOG10", 10, 0, "log of negative number"},
    {"LOG10", kInfinity, 0, "log of negative number"},
    {"LOG10", 0, -kInfinity, nullptr},
    {"SQRT", -1, 0, "sqrt of negative number"},
    {"SQRT", 4, 2, nullptr},
    {"SQRT", -0.0, -0.0, nullptr},
    {"ASIN", 1.5, 0, "domain error in asin"},
    {"ASIN", -1.5, 0, "domain error in asin"},
    {"ASIN", 0, 0, nullptr},
    {"ASIN", 1, kHalfPi, nullptr},
    {"ASIN", -1, -kHalfPi, nullptr},
    {"ACOS", 1.5, 0, "domain error in acos"},
    {"ACOS", -1.5, 0, "domain error in acos"},
    {"ACOS", 1, 0, nullptr},
    {"ACOS", -1, 2 * kHalfPi, nullptr},
    {"EXP", 1000, 0, "floating point exception in EXP: Overflow"},
    {"SIN", kInfinity, 0, "floating point exception in SIN: Invalid domain for function"},
    {"ABS", -3, 3, nullptr},
};

void ExpectChecked(const std::vector<ExpressionNode>& nodes, double value, const char* message) {
  const Evaluation evaluation = EvaluateChecked(ExpressionTree{nodes});
  EXPECT_EQ(evaluation.failure, message ? message : "");
  if (!message) EXPECT_EQ(evaluation.value, value);
}

TEST(ExpressionTree, CheckedEvaluationHasRulesForFunctions) {
  for (const RuleCase& c : kRules) {
    SCOPED_TRACE(testing::Message() << c.function << ' ' << c.argument);
    ExpectChecked({ConstantNode(c.argument), Function(c.function, 1)}, c.value, c.message);
  }
}

TEST(ExpressionTree, CheckedEvaluationHasRulesForOperators) {
  const auto expect = [](double a, NodeKind kind, double b, double value, const char* message) {
    SCOPED_TRACE(testing::Message() << a << ' ' << DisplayName(kind) << ' ' << b);
    ExpectChecked({ConstantNode(a), ConstantNode(b), Operator(kind)}, value, message);
  };
  expect(1, NodeKind::kDivision, 0, 0, "division by zero");
  expect(0, NodeKind::kDivision, -0.0, 0, "division by zero");
  expect(1, NodeKind::kDivision, 4, 0.25, nullptr);
  expect(-2, NodeKind::kPower, 2, 0, "negative base in power");
  expect(2, NodeKind::kPower, 5, 32, nullptr);
  expect(0, NodeKind::kPower, -1, 0, "floating point exception in power: Singularity");
  expect(1e308, NodeKind::kAddition, 1e308, 0, "floating point exception in addition: Overflow");
  expect(kInfinity, NodeKind::kSubtraction, 1, kInfinity, nullptr);
  // The first failure ends the evaluation; what has no place there is refused.
  ExpectChecked(
      {ConstantNode(-1), Function("SQRT", 1), ConstantNode(2), Function("ASIN", 1), Operator(NodeKind::kAddition)}, 0,
      "sqrt of negative number");
  for (const ExpressionNode& node : {VariableNode(0), OperationNode(NodeKind::kList, 0), CallNode(0, 0),
                                     OperationNode(static_cast<NodeKind>(29), 0)})
    ExpectChecked({node}, 0, "internal error: unknown expression type");
  ExpectChecked({ConstantNode(1), Operator(NodeKind::kAddition)}, 0, "internal error: unknown expression type");
  ExpectChecked({}, 0, "internal error: unknown expression type");
}

}  // namespace morvelan::test::expression_tree
