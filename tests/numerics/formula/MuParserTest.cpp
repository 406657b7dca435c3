// Random expressions of what both languages share, against muParser.

#include <gtest/gtest.h>
#include <muParser.h>

#include <cmath>
#include <random>

#include "numerics/formula/CalculatorFormula.h"
#include "tests/support/LongTests.h"

namespace morvelan::test::mu_parser {

using namespace numerics;

const std::vector<std::string> kNames = {"a", "b", "c"};

/// Makes expressions as people write them, with few parentheses. Powers and signs have them everywhere, because without
/// them they mean different things in the two languages.
class RandomExpression {
 public:
  explicit RandomExpression(unsigned seed) : random(seed) {}

  std::string Make() { return Sum(2); }
  double Value() { return std::ldexp(static_cast<double>(random() % 4096) + 1, -10); }

 private:
  std::size_t Below(std::size_t bound) { return random() % bound; }
  std::string Blank() { return Below(4) ? "" : " "; }

  std::string Sum(int depth) {
    std::string text = Product(depth);
    for (std::size_t i = Below(3); i > 0; --i) text += Blank() + (Below(2) ? "+" : "-") + Blank() + Product(depth);
    return text;
  }
  std::string Product(int depth) {
    std::string text = Factor(depth);
    for (std::size_t i = Below(3); i > 0; --i) text += (Below(2) ? "*" : "/") + Factor(depth);
    return text;
  }
  std::string Factor(int depth) {
    switch (Below(depth > 0 ? 8 : 3)) {
      case 0:
        return std::to_string(Below(1000));
      case 1:
        return std::to_string(Below(100)) + (Below(2) ? ".5" : "e2");  // both read these without rounding
      case 2:
        return '"' + kNames[Below(3)] + '"';
      case 3:
        return "(" + Sum(depth - 1) + ")";
      case 4:
        return "(-" + Factor(depth - 1) + ")";
      case 5:
        return "ABS(" + Sum(depth - 1) + ")^" + (Below(2) ? std::to_string(Below(6)) : "0.5^2");
      case 6:
        return std::string(Below(2) ? "MIN(" : "MAX(") + Sum(depth - 1) + "," + Sum(depth - 1) + ")";
      default:
        return Call(depth);
    }
  }
  /// Calls a function with an argument for which it is defined.
  std::string Call(int depth) {
    static constexpr std::pair<const char*, const char*> kCalls[] = {
        {"SIN(", ")"},       {"COS(", ")"},        {"ATAN(", ")"},           {"TANH(", ")"},      {"SQRT(ABS(", "))"},
        {"EXP(SIN(", "))"},  {"LOG(1+ABS(", "))"}, {"SINH(COS(", "))"},      {"COSH(SIN(", "))"}, {"ASIN(COS(", "))"},
        {"ACOS(SIN(", "))"}, {"TAN(", ")"},        {"LOG10(1+ABS(", "))"},   {"ROUND(", ")"},     {"EXP(", ")"},
        {"FLOOR(", ")"},     {"CEIL(", ")"},       {"MOD(17.5,1+ABS(", "))"}};
    const auto& [begin, end] = kCalls[Below(std::size(kCalls))];
    return begin + Sum(depth - 1) + end;
  }

  std::mt19937 random;
};

double RoundedHalfUp(double x) { return std::floor(x + 0.5); }
double Smaller(double x, double y) { return x < y ? x : y; }
double Larger(double x, double y) { return x > y ? x : y; }

struct Reference {
  Reference() {
    constexpr std::pair<const char*, double (*)(double)> kUnary[] = {
        {"SIN", std::sin},   {"COS", std::cos},       {"TAN", std::tan},     {"ATAN", std::atan},   {"ASIN", std::asin},
        {"ACOS", std::acos}, {"SINH", std::sinh},     {"COSH", std::cosh},   {"TANH", std::tanh},   {"SQRT", std::sqrt},
        {"EXP", std::exp},   {"LOG", std::log},       {"LOG10", std::log10}, {"FLOOR", std::floor}, {"CEIL", std::ceil},
        {"ABS", std::fabs},  {"ROUND", RoundedHalfUp}};
    constexpr std::pair<const char*, double (*)(double, double)> kBinary[] = {
        {"MOD", std::fmod}, {"MIN", Smaller}, {"MAX", Larger}};
    for (std::size_t i = 0; i < kNames.size(); ++i) parser.DefineVar(kNames[i], &values[i]);
    for (const auto& [name, function] : kUnary) parser.DefineFun(name, function);
    for (const auto& [name, function] : kBinary) parser.DefineFun(name, function);
  }

  double Evaluate(std::string text) {
    std::erase(text, '"');
    parser.SetExpr(text);
    return parser.Eval();
  }

  std::vector<double> values = std::vector<double>(3);
  mu::Parser parser;
};

/// The message of an operation without a usable value.
bool IsFault(const std::string& failure) {
  return failure.starts_with("floating point exception in ") || failure == "division by zero\r\n";
}

TEST(MuParser, AgreesOnWhatBothLanguagesShare) {
  RandomExpression expressions(99);
  Reference reference;
  const int count = ShortOrLong(500, 10'000);
  int values = 0, faults = 0, differences = 0;
  while (values < count) {
    const std::string text = expressions.Make();
    for (double& value : reference.values) value = expressions.Value();
    double expected = 0;
    ASSERT_NO_THROW(expected = reference.Evaluate(text)) << text;
    const FormulaCheck check = CheckFormula(text, kNames);
    Evaluation evaluation = FailedEvaluation(check.failure);
    if (check.formula) evaluation = check.formula->Evaluate(reference.values);
    if (evaluation.Succeeded()) {
      ++values;
      // muParser joins multiples of a variable, which rounds differently; differences and sines amplify that.
      if (!(std::fabs(evaluation.value - expected) <= 1e-9 * std::fabs(expected) + 1e-12)) ++differences;
    } else {
      // If muParser has a value here, an infinite or undefined value within has disappeared.
      ASSERT_TRUE(IsFault(evaluation.failure)) << text << ": " << evaluation.failure;
      ASSERT_LE(++faults, count / 10);
    }
  }
  EXPECT_LE(differences, count / 1000 + 1);
}

}  // namespace morvelan::test::mu_parser
