// Random expressions of what both languages share, against muParser.

#include <muParser.h>

#include <random>

#include "numerics/formula/CalculatorFormula.h"
#include "numerics/formula/NumericEntry.h"
#include "tests/numerics/formula/ExpectEvaluation.h"

namespace morvelan::test::mu_parser {

using namespace numerics;

const std::vector<std::string> kNames = {"a", "b", "c"};

/// Makes expressions as people write them, with as few parentheses as happen to stand there. Powers and signs
/// mean the same in both languages only where parentheses say what belongs together.
class RandomExpression {
 public:
  explicit RandomExpression(unsigned seed) : random(seed) {}

  std::string Make() { return Sum(2); }
  double Value() { return std::ldexp(static_cast<double>(random() % 4096) + 1, -10); }

 private:
  int Below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }

  std::string Sum(int depth) {
    std::string text = Product(depth);
    for (int i = Below(3); i > 0; --i) text += Blank() + (Below(2) ? "+" : "-") + Blank() + Product(depth);
    return text;
  }
  std::string Product(int depth) {
    std::string text = Factor(depth);
    for (int i = Below(3); i > 0; --i) text += (Below(2) ? "*" : "/") + Factor(depth);
    return text;
  }
  std::string Factor(int depth) {
    switch (Below(depth > 0 ? 8 : 3)) {
      case 0:
        return std::to_string(Below(1000));
      case 1:
        return std::to_string(Below(100)) + (Below(2) ? ".5" : "e2");  // read without rounding by both
      case 2:
        return '"' + kNames[static_cast<std::size_t>(Below(3))] + '"';
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
  /// Of arguments that it is defined for.
  std::string Call(int depth) {
    static constexpr std::pair<const char*, const char*> kCalls[] = {
        {"SIN(", ")"},       {"COS(", ")"},        {"ATAN(", ")"},           {"TANH(", ")"},      {"SQRT(ABS(", "))"},
        {"EXP(SIN(", "))"},  {"LOG(1+ABS(", "))"}, {"SINH(COS(", "))"},      {"COSH(SIN(", "))"}, {"ASIN(COS(", "))"},
        {"ACOS(SIN(", "))"}, {"TAN(", ")"},        {"LOG10(1+ABS(", "))"},   {"ROUND(", ")"},     {"EXP(", ")"},
        {"FLOOR(", ")"},     {"CEIL(", ")"},       {"MOD(17.5,1+ABS(", "))"}};
    const auto& [begin, end] = kCalls[static_cast<std::size_t>(Below(static_cast<int>(std::size(kCalls))))];
    return begin + Sum(depth - 1) + end;
  }
  std::string Blank() { return Below(4) ? "" : " "; }

  std::mt19937 random;
};

struct Reference {
  Reference() {
    for (std::size_t i = 0; i < kNames.size(); ++i) parser.DefineVar(kNames[i], &values[i]);
    parser.DefineFun(
        "SIN", +[](double x) { return std::sin(x); });
    parser.DefineFun(
        "COS", +[](double x) { return std::cos(x); });
    parser.DefineFun(
        "TAN", +[](double x) { return std::tan(x); });
    parser.DefineFun(
        "ATAN", +[](double x) { return std::atan(x); });
    parser.DefineFun(
        "ASIN", +[](double x) { return std::asin(x); });
    parser.DefineFun(
        "ACOS", +[](double x) { return std::acos(x); });
    parser.DefineFun(
        "SINH", +[](double x) { return std::sinh(x); });
    parser.DefineFun(
        "COSH", +[](double x) { return std::cosh(x); });
    parser.DefineFun(
        "TANH", +[](double x) { return std::tanh(x); });
    parser.DefineFun(
        "SQRT", +[](double x) { return std::sqrt(x); });
    parser.DefineFun(
        "EXP", +[](double x) { return std::exp(x); });
    parser.DefineFun(
        "LOG", +[](double x) { return std::log(x); });
    parser.DefineFun(
        "LOG10", +[](double x) { return std::log10(x); });
    parser.DefineFun(
        "ROUND", +[](double x) { return std::floor(x + 0.5); });
    parser.DefineFun(
        "FLOOR", +[](double x) { return std::floor(x); });
    parser.DefineFun(
        "CEIL", +[](double x) { return std::ceil(x); });
    parser.DefineFun(
        "MOD", +[](double x, double y) { return std::fmod(x, y); });
    parser.DefineFun(
        "ABS", +[](double x) { return std::fabs(x); });
    parser.DefineFun(
        "MIN", +[](double x, double y) { return x < y ? x : y; });
    parser.DefineFun(
        "MAX", +[](double x, double y) { return x > y ? x : y; });
  }

  double Evaluate(std::string text) {
    std::erase(text, '"');
    parser.SetExpr(text);
    return parser.Eval();
  }

  std::vector<double> values = std::vector<double>(3);
  mu::Parser parser;
};

/// An operation without a usable value, as this language words it.
bool IsFault(const std::string& failure) {
  return failure.starts_with("floating point exception in ") || failure == "division by zero\r\n";
}

TEST(MuParser, AgreesOnWhatBothLanguagesShare) {
  RandomExpression expressions(99);
  Reference reference;
  int values = 0, faults = 0, differences = 0;
  while (values < 10000) {
    const std::string text = expressions.Make();
    for (double& value : reference.values) value = expressions.Value();
    double expected = 0;
    ASSERT_NO_THROW(expected = reference.Evaluate(text)) << text;
    const FormulaCheck check = CheckFormula(text, kNames);
    Evaluation evaluation = FailedEvaluation(check.failure);
    if (check.formula) evaluation = check.formula->Evaluate(reference.values);
    if (evaluation.Succeeded()) {
      ++values;
      // The other one joins multiples of a variable, which rounds differently; differences and sines amplify
      // that.
      if (!(std::fabs(evaluation.value - expected) <= 1e-9 * std::fabs(expected) + 1e-12)) ++differences;
    } else {
      // Where the other one has a value, what was infinite or undefined in the middle has disappeared.
      ASSERT_TRUE(IsFault(evaluation.failure)) << text << ": " << evaluation.failure;
      ASSERT_LE(++faults, 1000);
    }
  }
  EXPECT_LE(differences, 10);
}

}  // namespace morvelan::test::mu_parser
