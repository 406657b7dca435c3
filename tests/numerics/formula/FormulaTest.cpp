// The formulas of formulas.txt, and what needs more than a line there.

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <fstream>
#include <limits>
#include <optional>
#include <random>
#include <sstream>

#include "numerics/formula/CalculatorFormula.h"
#include "numerics/formula/NumericEntry.h"

namespace morvelan::test::formula {

using namespace numerics;

/// A line of formulas.txt.
struct Row {
  int line = 0;
  std::string text;
  bool isTyped = false;
  std::vector<std::string> names;
  std::vector<double> values;
  std::string result;
};

std::optional<double> Number(const std::string& text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::string Unescaped(const std::string& field) {
  constexpr std::string_view kLetters = "trnv0s", kCharacters("\t\r\n\v\0 ", 6);
  std::string text;
  for (std::size_t i = 0; i < field.size(); ++i)
    text += field[i] == '\\' ? kCharacters[kLetters.find(field[++i])] : field[i];
  return text;
}

Row ReadRow(int line, const std::string& content) {
  constexpr std::string_view kSeparator = " | ";
  const std::size_t first = content.find(kSeparator), second = content.find(kSeparator, first + 1);
  Row row;
  row.line = line;
  row.text = Unescaped(content.substr(0, first));
  std::istringstream variables(content.substr(first + kSeparator.size(), second - first - kSeparator.size()));
  for (std::string variable; variables >> variable && variable != "typed";) {
    const std::size_t sign = variable.find('=');
    row.names.push_back(variable.substr(0, sign));
    row.values.push_back(Number(variable.substr(sign + 1)).value());
  }
  row.isTyped = row.names.empty();
  row.result = Unescaped(content.substr(second + kSeparator.size()));
  return row;
}

std::vector<Row> ReadRows() {
  std::vector<Row> rows;
  std::ifstream file(MORVELAN_FORMULAS, std::ios::binary);
  int number = 0;
  for (std::string line; std::getline(file, line);)
    if (++number; !line.empty() && line.front() != '#') rows.push_back(ReadRow(number, line));
  return rows;
}

/// A fault leaves no trace in the formula: values at which there is none give the same before and after it.
Evaluation EvaluateTwice(const Row& row) {
  const FormulaCheck check = CheckFormula(row.text, row.names);
  EXPECT_EQ(check.formula.has_value(), check.failure.empty());
  if (!check.formula) return FailedEvaluation(check.failure);
  const std::vector<double> others(row.names.size(), 0.75);
  const Evaluation before = check.formula->Evaluate(others);
  Evaluation evaluation = check.formula->Evaluate(row.values);
  const Evaluation after = check.formula->Evaluate(others);
  EXPECT_EQ(before.failure, after.failure);
  EXPECT_EQ(std::bit_cast<std::uint64_t>(before.value), std::bit_cast<std::uint64_t>(after.value));
  return evaluation;
}

TEST(Formula, HasTheValueOrTheMessage) {
  const std::vector<Row> rows = ReadRows();
  EXPECT_GT(rows.size(), 250u);
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << "formulas.txt:" << row.line << ": " << row.text);
    const Evaluation evaluation = row.isTyped ? EvaluateNumericEntry(row.text) : EvaluateTwice(row);
    const auto value = Number(row.result);
    EXPECT_EQ(evaluation.failure, value ? "" : row.result);
    EXPECT_EQ(std::isnan(evaluation.value), !value);
    if (!value) continue;
    EXPECT_NEAR(evaluation.value, *value, 1e-15 * std::abs(*value));  // a few roundings
    EXPECT_EQ(std::signbit(evaluation.value), std::signbit(*value));
  }
}

// The factor of a decimal place and the power of ten are rounded: these are not the nearest numbers to 0.3.
TEST(Formula, ReadsDigitsOneByOne) {
  EXPECT_EQ(EvaluateNumericEntry("0.3").value, 0.30000000000000004);
  EXPECT_EQ(EvaluateNumericEntry("3e-1").value, 3 * 0.1);
}

TEST(Formula, NeedsAValuePerVariable) {
  const FormulaCheck check = CheckFormula("\"b\"", std::vector<std::string>{"a", "b", "c"});
  ASSERT_TRUE(check.formula.has_value());
  EXPECT_EQ(check.formula->VariableCount(), 3u);
  EXPECT_EQ(check.formula->Evaluate(std::vector<double>{1, 2}).failure, "internal error: 2 values for 3 variables");
}

// x^n against the same product in the 64 bits of long double; half a unit in the last place is the best possible.
TEST(Formula, PowersAreRoundedOnce) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> logarithm(-20, 20);
  for (int n = 2; n <= kLargestProductPower; ++n) {
    const FormulaCheck check = CheckFormula("\"x\"^" + std::to_string(n), std::vector<std::string>{"x"});
    ASSERT_TRUE(check.formula.has_value());
    for (int i = 0; i < 1000; ++i) {
      const double x = (i % 2 ? -1 : 1) * std::exp(logarithm(random));
      long double exact = 1;
      for (int k = 0; k < n; ++k) exact *= x;
      const double value = check.formula->Evaluate(std::vector<double>{x}).value;
      const double next = std::nextafter(std::fabs(value), std::numeric_limits<double>::infinity());
      const auto unit = static_cast<long double>(next - std::fabs(value));
      ASSERT_LT(std::fabs((value - exact) / unit), 0.55L) << x << '^' << n;
      if (n < kSmallestProductPower) continue;
      for (const bool fused : {false, HasFusedMultiplyAdd()}) ASSERT_EQ(ProductPower(n, fused)(x), value) << x;
    }
  }
}

// No text leads to these trees, because the check makes constants of them. The rule for logarithms refuses all but
// zero.
TEST(Formula, DomainRulesRefuse) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  struct {
    const char* function;
    double argument, value;
    const char* message;
  } const cases[] = {{"LOG", 10, 0, "ln of negative number"},
                     {"LOG", 0, -kInfinity, ""},
                     {"LOG10", 10, 0, "log of negative number"},
                     {"SQRT", -1, 0, "sqrt of negative number"},
                     {"SQRT", 4, 2, ""},
                     {"ASIN", -1.5, 0, "domain error in asin"},
                     {"ACOS", 1.5, 0, "domain error in acos"},
                     {"ACOS", 1, 0, ""},
                     {"ABS", -3, 3, ""}};
  for (const auto& c : cases) {
    const NodeKind kind = FunctionKind(FindFunction(c.function).value());
    const Evaluation evaluation = EvaluateWithDomainRules({{ConstantNode(c.argument), OperationNode(kind, 1)}});
    EXPECT_EQ(evaluation.failure, c.message) << c.function;
    if (evaluation.Succeeded()) EXPECT_EQ(evaluation.value, c.value) << c.function;
  }
  const auto divided = {ConstantNode(1), ConstantNode(0), OperationNode(NodeKind::kDivision, 2)};
  EXPECT_EQ(EvaluateWithDomainRules({divided}).failure, "division by zero");
  const auto raised = {ConstantNode(-2), ConstantNode(2), OperationNode(NodeKind::kPower, 2)};
  EXPECT_EQ(EvaluateWithDomainRules({raised}).failure, "negative base in power");
}

}  // namespace morvelan::test::formula
