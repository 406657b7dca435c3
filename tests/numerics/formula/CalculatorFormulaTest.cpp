// Formulas with variables: their names, their values and the faults of calculating with them.

#include "numerics/formula/CalculatorFormula.h"

#include <limits>
#include <random>
#include <vector>

#include "numerics/formula/FaultCode.h"
#include "numerics/formula/Power.h"
#include "tests/numerics/formula/ExpectEvaluation.h"

namespace morvelan::test::calculator_formula {

using namespace numerics;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const std::vector<std::string> kNames = {"T1", "T2", "sqrt", "R", "t1", "x_3"};
const std::vector<double> kValues = {300, 280, 5, 7, -1, 0.25};

Evaluation Evaluate(const char* text, const std::vector<std::string>& names, const std::vector<double>& values) {
  const FormulaCheck check = CheckFormula(text, names);
  EXPECT_EQ(check.formula.has_value(), check.failure.empty());
  return check.formula ? check.formula->Evaluate(values) : FailedEvaluation(check.failure);
}

const FormulaCase kFormulas[] = {
    {"\"T1\"-\"T2\"", 20},
    {"\"t1\"-\"t2\"", 20},  // case does not matter, and the first of the same name counts
    {"\"SQRT\"", 5},
    {"\"SQRT\"+SQRT(4)", 7},
    {"\"r\"", 7},
    {"\"R\"-R", 7 - 8.314},
    {"\"cos\"(0)", 1},
    {"\"pi\"", 3.141592653589793},
    {"-\"T1\"", -300},
    {"-\"x_3\"^2", -0.0625},
    {"(-\"x_3\")^2", 0.0625},
    {"(-\"x_3\")^3", -0.015625},
    {"2^\"x_3\"", std::pow(2.0, 0.25)},
    {"\"x_3\"^2+\"x_3\"^3+\"x_3\"^4+\"x_3\"^11", 0.0820314884185791},
    {"LOG(\"T1\")", std::log(300.0)},  // only numeric entries refuse this
    {"LOG10(\"T1\")", std::log10(300.0)},
    {"MIN(\"T1\",\"T2\")", 280},
    {"MAX(\"T1\",2*\"T2\")", 560},
    {"MAX(2*\"T2\",\"T1\")", 560},
    {"MOD(-\"sqrt\"-\"sqrt\",4)", -2},
    {"MOD(\"T1\",\"R\"+0)", 300 - 42 * 7},
    {"3-\"sqrt\"", -2},
    {"3-(\"sqrt\"+1)", -3},
    {"12/(\"sqrt\"+1)", 2},
    {"\"T1\"/(\"sqrt\"+1)", 50},
    {"(\"T1\"+\"T2\")/(\"sqrt\"-3)", 290},
    {"(\"T1\"+\"T2\")-(\"sqrt\"*2)", 570},
    {"2^(\"sqrt\"+1)", 64},
    {"(\"sqrt\"-3)^(\"sqrt\"+1)", 64},
    {"2*3+4", 10},
    Fails("", "parse error: end of input"),
    Fails("T1", "parse error: unknown token T1 at position 1"),
    Fails("\"T3\"", "unknown token T3 at position 1"),
    Fails("\"T1", "missing closing quote at position 1"),
    Fails("\"T1\"\"T2\"", "parse error: unexpected \"T2\" at position 5"),
    Fails("\"T1\"/0", "floating point exception in division: Division by zero"),
    Fails("\"T1\"+1/0", "division by zero\r\n"),
    Fails("SQRT(\"T1\",2)", "SQRT should have one argument\r\n"),
};

TEST(CalculatorFormula, HasTheValueOrTheMessage) {
  for (const FormulaCase& c : kFormulas) {
    SCOPED_TRACE(c.text);
    Evaluation evaluation = Evaluate(c.text, kNames, kValues);
    ExpectOutcome(c, evaluation);
  }
}

struct FaultCase {
  const char* text;
  double x;
  const char* message;
};

const FaultCase kFaults[] = {
    {"1/\"x\"", 0, "floating point exception in division: Division by zero"},
    {"1/\"x\"", -0.0, "floating point exception in division: Division by zero"},
    {"1/(1/\"x\")", 0, "floating point exception in division: Division by zero"},  // the result would be zero
    {"\"x\"/\"x\"", 0, "floating point exception in division: Invalid domain for function"},
    {"1e300/\"x\"", 1e-300, "floating point exception in division: Overflow"},
    {"\"x\"*\"x\"", 1e200, "floating point exception in multiplication: Overflow"},
    {"1/(\"x\"*\"x\")", 1e200, "floating point exception in multiplication: Overflow"},
    {"\"x\"+\"x\"", 1e308, "floating point exception in addition: Overflow"},
    {"-1e308-\"x\"", 1e308, "floating point exception in subtraction: Overflow"},
    {"\"x\"^2", 1e200, "floating point exception in power: Overflow"},
    {"\"x\"^3", -1e200, "floating point exception in power: Overflow"},
    {"\"x\"^5.5", 1e200, "floating point exception in power: Overflow"},
    {"\"x\"^0.5", -4, "floating point exception in power: Invalid domain for function"},
    {"\"x\"^-1", 0, "floating point exception in power: Singularity"},
    {"LOG(\"x\")", 0, "floating point exception in LOG: Singularity"},
    {"LOG(\"x\")", -1, "floating point exception in LOG: Invalid domain for function"},
    {"LOG10(\"x\")", 0, "floating point exception in LOG10: Singularity"},
    {"LOG10(\"x\")", -1, "floating point exception in LOG10: Invalid domain for function"},
    {"EXP(LOG(\"x\"))", 0, "floating point exception in LOG: Singularity"},
    {"SQRT(\"x\")", -1, "floating point exception in SQRT: Invalid domain for function"},
    {"ASIN(\"x\")", 2, "floating point exception in ASIN: Invalid domain for function"},
    {"ACOS(\"x\")", -2, "floating point exception in ACOS: Invalid domain for function"},
    {"EXP(\"x\")", 1000, "floating point exception in EXP: Overflow"},
    {"1/EXP(\"x\")", 1000, "floating point exception in EXP: Overflow"},
    {"ATAN(EXP(\"x\"))", 1000, "floating point exception in EXP: Overflow"},
    {"ATAN(\"x\"*\"x\")", 1e200, "floating point exception in multiplication: Overflow"},
    {"SINH(\"x\")", -1000, "floating point exception in SINH: Overflow"},
    {"COSH(\"x\")", 1000, "floating point exception in COSH: Overflow"},
    {"MOD(1,\"x\")", 0, "floating point exception in MOD: Invalid domain for function"},
    {"MIN(1/\"x\",1)", 0, "floating point exception in division: Division by zero"},
    {"MAX(SQRT(\"x\"),1)", -1, "floating point exception in SQRT: Invalid domain for function"},
    {"SQRT(\"x\")^0", -1, "floating point exception in SQRT: Invalid domain for function"},
    {"LOG(\"x\")+SQRT(\"x\")", -1, "floating point exception in LOG: Invalid domain for function"},  // the first one
    {"2-(3-LOG(\"x\"))", -1, "floating point exception in LOG: Invalid domain for function"},
    {"SIN(\"x\")", kInfinity, "floating point exception in SIN: Invalid domain for function"},
    {"\"x\"-\"x\"", kInfinity, "floating point exception in subtraction: Invalid domain for function"},
    {"\"x\"", kInfinity, "floating point exception in result: Overflow"},
    {"\"x\"+1", kNaN, "floating point exception in result: Not a number (NaN)"},
    {"MIN(\"x\",1)", kNaN, "floating point exception in result: Not a number (NaN)"},
    {"MIN(1,\"x\")", kNaN, "floating point exception in result: Not a number (NaN)"},
    {"MAX(\"x\",1)", kNaN, "floating point exception in result: Not a number (NaN)"},
    {"MAX(1,\"x\")", kNaN, "floating point exception in result: Not a number (NaN)"},
    {"EXP(\"x\"*900)", -1, nullptr},  // underflow is no fault
    {"\"x\"*\"x\"", 1e-200, nullptr},
    {"1/\"x\"", kInfinity, nullptr},
    {"ATAN(\"x\")", -kInfinity, nullptr},
};

TEST(CalculatorFormula, NamesTheFaultAndGoesOn) {
  for (const FaultCase& c : kFaults) {
    SCOPED_TRACE(testing::Message() << c.text << " at " << c.x);
    const FormulaCheck check = CheckFormula(c.text, std::vector<std::string>{"x"});
    ASSERT_TRUE(check.formula.has_value()) << check.failure;
    const Evaluation clean = check.formula->Evaluate(std::vector<double>{0.75});
    EXPECT_EQ(clean.failure, "");
    const Evaluation faulty = check.formula->Evaluate(std::vector<double>{c.x});
    EXPECT_EQ(faulty.failure, c.message ? c.message : "");
    EXPECT_EQ(std::isnan(faulty.value), c.message != nullptr);
    const Evaluation again = check.formula->Evaluate(std::vector<double>{0.75});
    EXPECT_EQ(again.failure, "");
    EXPECT_EQ(again.value, clean.value);
  }
}

TEST(CalculatorFormula, EveryFaultHasItsWords) {
  const std::pair<FaultCode, const char*> faults[] = {
      {FaultCode::kNone, "No error"},
      {FaultCode::kInvalid, "Invalid domain for function"},
      {FaultCode::kOverflow, "Overflow"},
      {FaultCode::kSingularity, "Singularity"},
      {FaultCode::kOutOfRange, "unhandled exception, number out of range"},
      {FaultCode::kNotANumber, "Not a number (NaN)"},
      {FaultCode::kUnderflow, "Underflow"},
      {FaultCode::kTotalLoss, "Total loss of significance"},
      {FaultCode::kIntegerOverflow, "Integer overflow"},
      {FaultCode::kIntegerDivisionByZero, "Integer division by zero"},
      {FaultCode::kDivisionByZero, "Division by zero"}};
  int code = 0;
  for (const auto& [fault, words] : faults) {
    EXPECT_EQ(static_cast<int>(fault), code++) << words;
    EXPECT_EQ(FaultText("SIN", fault), std::string("floating point exception in SIN: ") + words);
  }
}

TEST(CalculatorFormula, AsksForAValuePerVariable) {
  const FormulaCheck check = CheckFormula("\"T2\"", kNames);
  ASSERT_TRUE(check.formula.has_value());
  EXPECT_EQ(check.formula->VariableCount(), 6u);
  EXPECT_EQ(check.formula->Evaluate(std::vector<double>{1, 2}).failure, "internal error: 2 values for 6 variables");
}

// x^n beside the same product in more digits: half a unit in the last place and a little.
TEST(CalculatorFormula, PowersAreRoundedOnce) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> logarithm(-20, 20);
  for (int n = 2; n <= kLargestProductPower; ++n) {
    const FormulaCheck check = CheckFormula("\"x\"^" + std::to_string(n), std::vector<std::string>{"x"});
    ASSERT_TRUE(check.formula.has_value());
    for (int i = 0; i < 2000; ++i) {
      const double x = (i % 2 ? -1 : 1) * std::exp(logarithm(random));
      long double exact = 1;
      for (int k = 0; k < n; ++k) exact *= x;
      const double value = check.formula->Evaluate(std::vector<double>{x}).value;
      const auto unit = static_cast<long double>(std::nextafter(std::fabs(value), kInfinity) - std::fabs(value));
      ASSERT_LT(std::fabs((value - exact) / unit), 0.55L) << x << '^' << n;
    }
  }
}

}  // namespace morvelan::test::calculator_formula
