// Texts of any depth and length end in a value or in the message for a full stack, and never end the process.

#include <gtest/gtest.h>

#include <functional>
#include <optional>

#include "numerics/formula/CalculatorFormula.h"
#include "numerics/formula/NumericEntry.h"
#include "tests/support/LongTests.h"

namespace morvelan::test::nesting {

using namespace numerics;

std::string Repeated(std::string_view piece, std::size_t times) {
  std::string text;
  text.reserve(piece.size() * times);
  for (std::size_t i = 0; i < times; ++i) text += piece;
  return text;
}

struct NestingCase {
  const char* name;
  std::function<std::string(std::size_t)> text;  // nested so many times
};

const NestingCase kNestings[] = {
    {"parentheses", [](std::size_t n) { return Repeated("(", n) + "1" + Repeated(")", n); }},
    {"unary minus", [](std::size_t n) { return Repeated("-", n) + "1"; }},
    {"powers", [](std::size_t n) { return Repeated("1^", n) + "1"; }},
    {"functions", [](std::size_t n) { return Repeated("ABS(", n) + "1" + Repeated(")", n); }},
    {"arguments", [](std::size_t n) { return Repeated("MAX(1,", n) + "1" + Repeated(")", n); }},
    {"open parentheses", [](std::size_t n) { return Repeated("(", n); }},
};

TEST(Nesting, BeyondTheStackIsRefused) {
  const std::size_t depth = ShortOrLong(20'000, 1'700'000);
  for (const NestingCase& c : kNestings) {
    SCOPED_TRACE(c.name);
    const std::string text = c.text(depth);
    EXPECT_EQ(EvaluateNumericEntry(text).failure, "memory exhausted");
    EXPECT_EQ(CheckFormula(text, {}).failure, "parser stack overflow");
  }
}

TEST(Nesting, TwoThousandDeepHasAValue) {
  for (const NestingCase& c : std::span(kNestings).first<5>()) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(EvaluateNumericEntry(c.text(2000)).value, 1);
  }
}

// Every product waits for those on its right, so that the evaluation needs a deep stack as well.
TEST(Nesting, DeepFormulasAreEvaluated) {
  constexpr std::size_t kDepth = 2400;
  const std::string text = Repeated("\"x\"*\"y\"+(", kDepth) + "1" + Repeated(")", kDepth);
  const FormulaCheck check = CheckFormula(text, std::vector<std::string>{"x", "y"});
  ASSERT_TRUE(check.formula.has_value()) << check.failure;
  EXPECT_EQ(check.formula->Evaluate(std::vector<double>{2, 3}).value, 6 * 2400 + 1);
  EXPECT_EQ(check.formula->Evaluate(std::vector<double>{1e200, 1e200}).failure,
            "floating point exception in multiplication: Overflow");
}

// The most values that can wait: each takes two places of the parser's stack, its own and the operator's.
TEST(Nesting, TheDeepestFormulaIsEvaluated) {
  std::optional<CalculatorFormula> deepest;
  for (std::size_t depth = 4990;; ++depth) {
    FormulaCheck check = CheckFormula(Repeated("(2*\"x\")^", depth) + "\"x\"", std::vector<std::string>{"x"});
    if (!check.formula) break;
    deepest = std::move(check.formula);
  }
  ASSERT_TRUE(deepest.has_value());
  EXPECT_EQ(deepest->Evaluate(std::vector<double>{0.5}).value, 1);
}

TEST(Nesting, LongTextsHaveAValue) {
  const std::size_t length = ShortOrLong(200'000, 10'000'000);
  EXPECT_EQ(EvaluateNumericEntry(Repeated("1." + Repeated("0", 997) + "+", length / 1000) + "1").value,
            length / 1000 + 1);
  EXPECT_EQ(EvaluateNumericEntry(Repeated(" ", length) + "2").value, 2);
  EXPECT_EQ(EvaluateNumericEntry(Repeated("0", length) + "3").value, 3);
  EXPECT_EQ(EvaluateNumericEntry("1." + Repeated("0", length)).value, 1);
  EXPECT_EQ(EvaluateNumericEntry("1e" + Repeated("0", length) + "2").value, 100);
  const std::string ones = Repeated("1", length), name = Repeated("x", length);
  EXPECT_EQ(EvaluateNumericEntry(ones).failure,
            "floating point exception in real constant: Overflow at position 1, in '" + ones + "'");
  EXPECT_EQ(EvaluateNumericEntry(name).failure, "syntax error: unknown token " + name + " at position 1");
  const std::string sum = Repeated("\"x\"" + Repeated(" ", 36) + "+", length / 40) + "1";
  const FormulaCheck check = CheckFormula(sum, std::vector<std::string>{"x"});
  ASSERT_TRUE(check.formula.has_value()) << check.failure;
  EXPECT_EQ(check.formula->Evaluate(std::vector<double>{2}).value, length / 20 + 1);
}

}  // namespace morvelan::test::nesting
