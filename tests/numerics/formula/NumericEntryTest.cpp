// What a user may type for a number, and what else is said to it. Values are worked by hand or are the
// standard library's for the same operation.

#include "numerics/formula/NumericEntry.h"

#include <span>

#include "tests/numerics/formula/ExpectEvaluation.h"

namespace morvelan::test::numeric_entry {

constexpr double kPi = 3.141592653589793;

const FormulaCase kNumbers[] = {
    {"0", 0},
    {"7", 7},
    {"007", 7},
    {"12345678901234567890", 12345678901234567890.0},
    {"1.5", 1.5},
    {".5", 0.5},
    {"0.3", 0.30000000000000004},  // the place factor of the digits is rounded
    {"298.15", 298.15},
    {"1e3", 1000},
    {"1E3", 1000},
    {"1e+3", 1000},
    {"1e-3", 0.001},
    {"2.5e2", 250},
    {".25e1", 2.5},
    {"1e0", 1},
    {"1e0007", 1e7},
    {"1e308", 1e308},
    {"1e-400", 0},
    {"0e5", 0},
    {"PI", kPi},
    {"pi", kPi},
    {"Pi", kPi},
    {"R", 8.314},
    {"r", 8.314},
    {"\"pi\"", kPi},  // what is no variable is what it is without quotes
    {"\"sqrt\"(16)", 4},
};

const FormulaCase kOperators[] = {
    {"1+2", 3},
    {"2-3-4", -5},
    {"2-(3-4)", 3},
    {"2*3+4", 10},
    {"2+3*4", 14},
    {"(2+3)*4", 20},
    {"8/4/2", 1},
    {"8/(4/2)", 4},
    {"8/4*2", 4},
    {"6-4/2", 4},
    {"2^3^2", 512},
    {"(2^3)^2", 64},
    {"2*3^2", 18},
    {"-2^2", -4},
    {"(-2)^2", 4},  // folded before the rule for negative bases
    {"(-8)^3", -512},
    {"2^-1", 0.5},
    {"2^-1*4", 2},
    {"2^-2^2", 0.0625},
    {"2^-(1+1)", 0.25},
    {"-2*3", -6},
    {"2*-3", -6},
    {"2--3", 5},
    {"2+-3", -1},
    {"--2", 2},
    {"-(-(2))", 2},
    {"-2/-4", 0.5},
    {"-0", -0.0},
    {"0*-1", -0.0},
    {"4^0.5", 2},
    {"0^0", 1},
    {"2^10", 1024},
    {"1.5^3", 3.375},
    {"10^15", 1e15},
    {"((((1))))", 1},
    {"2*PI*0.5^2", kPi / 2},
    {"R*298.15/101325", 8.314 * 298.15 / 101325},
    {"1e308*10/1e308*0+1", 0, "floating point exception in result: Not a number (NaN)"},
};

const FormulaCase kFunctions[] = {
    // Each once with a value that no other one has there, to twenty digits by an independent calculator.
    {"SQRT(3/4)", 0.86602540378443864676},
    {"SIN(3/4)", 0.68163876002333416673},
    {"COS(3/4)", 0.73168886887382088631},
    {"SINH(3/4)", 0.82231673193582998070},
    {"COSH(3/4)", 1.2946832846768446878},
    {"ASIN(3/4)", 0.84806207898148100805},
    {"ACOS(3/4)", 0.72273424781341561118},
    {"TAN(3/4)", 0.93159645994407246117},
    {"ATAN(3/4)", 0.64350110879328438680},
    {"ABS(-3/4)", 0.75},
    {"FLOOR(11/4)", 2},
    {"CEIL(9/4)", 3},
    {"ROUND(9/4)*10+ROUND(11/4)", 23},
    {"EXP(3/4)", 2.1170000166126746685},
    {"LOG(3/4)", -0.28768207245178092744},
    {"LOG10(3/4)", -0.12493873660829995313},
    {"TANH(3/4)", 0.63514895238728731921},
    {"MIN(17,5)", 5},
    {"MAX(17,5)", 17},
    {"MOD(17,5)", 2},
    {"SQRT(2)", std::sqrt(2.0)},
    {"sqrt(2)", std::sqrt(2.0)},
    {"Sqrt(2)", std::sqrt(2.0)},
    {"SIN(PI/6)", std::sin(kPi / 6)},
    {"SIN(0)", 0},
    {"COS(0)", 1},
    {"COS(PI)", -1},
    {"SINH(1)", std::sinh(1.0)},
    {"COSH(1)", std::cosh(1.0)},
    {"ASIN(1)", kPi / 2},
    {"ACOS(1)", 0},
    {"ACOS(-1)", kPi},
    {"TAN(1)", std::tan(1.0)},
    {"ATAN(1)", kPi / 4},
    {"ABS(-3.5)", 3.5},
    {"ABS(3.5)", 3.5},
    {"FLOOR(2.7)", 2},
    {"FLOOR(-2.7)", -3},
    {"CEIL(2.2)", 3},
    {"CEIL(-2.2)", -2},
    {"ROUND(2.5)", 3},
    {"ROUND(-2.5)", -2},  // halves go up
    {"ROUND(2.4)", 2},
    {"ROUND(-2.6)", -3},
    {"ROUND(-3.5)", -3},
    {"EXP(0)", 1},
    {"EXP(1)", std::exp(1.0)},
    {"LOG(10)", 2.302585092994046},  // folded before the rule for logarithms
    {"LOG(EXP(1))", 1},
    {"LOG10(1000)", 3},
    {"TANH(0.5)", std::tanh(0.5)},
    {"MIN(1,2)", 1},
    {"MIN(2,1)", 1},
    {"MIN(-1,-2)", -2},
    {"MAX(1,2)", 2},
    {"MAX(2,1)", 2},
    {"MAX(1,MAX(2,3))", 3},
    {"MOD(-7,3)", -1},
    {"MOD(7,-3)", 1},
    {"MOD(7.5,2)", 1.5},
    {"SQRT(,4)", 2},  // no argument before the comma
    {"MAX(,1,2)", 2},
    {"SQRT (4)", 2},
    {"SQRT( 4 )", 2},
    {"2*SQRT(4)^2", 8},
    {"-SQRT(4)", -2},
};

const FormulaCase kBlanks[] = {
    {" 1 + 2 ", 3},
    {"\t1\t+\t2\t", 3},
    {"1\r", 1},  // a carriage return that ends a number or a name goes with it
    {"1\r+2", 3},
    {"PI\r", kPi},
    Fails("1\r\n", "invalid character: '\n' at position 3"),
    Fails("1\n", "invalid character: '\n' at position 2"),
    Fails("1\r\r", "invalid character: '\r' at position 3"),
    Fails("1 \r", "invalid character: '\r' at position 3"),
    Fails("\r1", "invalid character: '\r' at position 1"),
    Fails("(1)\r", "invalid character: '\r' at position 4"),
    Fails("\"PI\"\r", "invalid character: '\r' at position 5"),
    Fails("1\v", "invalid character: '\v' at position 2"),
};

const FormulaCase kWrongNumbers[] = {
    Fails("1.", "expected number to follow decimal point at position 3, found end of input"),
    Fails(".", "expected number to follow decimal point at position 2, found end of input"),
    Fails("1.x", "expected number to follow decimal point at position 3, found 'x'"),
    Fails("2*.\xC3\xA9", "expected number to follow decimal point at position 4, found '\xC3\xA9'"),
    Fails("1.e5", "expected number to follow decimal point at position 3, found 'e'"),
    Fails("1.+2", "expected number to follow decimal point at position 3, found '+'"),
    Fails("1e", "syntax error in real number, missing exponent at position 3, found end of input"),
    Fails("1ex", "syntax error in real number, missing exponent at position 3, found 'x'"),
    Fails("2exp(1)", "syntax error in real number, missing exponent at position 3, found 'x'"),
    Fails("1e+", "unexpected end of input in real number at position 4"),
    Fails("1e-", "unexpected end of input in real number at position 4"),
    Fails("1e+x", "syntax error in real number, expected digit at position 4, found 'x'"),
    Fails("1e--3", "syntax error in real number, expected digit at position 4, found '-'"),
    Fails("1e999", "floating point exception in real constant: Overflow at position 1, in '1e999'"),
    Fails("2+1e99999999999 ", "floating point exception in real constant: Overflow at position 3, in '1e99999999999'"),
    Fails("0e999", "floating point exception in real constant: Overflow at position 1, in '0e999'"),
};

const FormulaCase kWrongTokens[] = {
    Fails("2 $ 3", "invalid character: '$' at position 3"),
    Fails("2=3", "invalid character: '=' at position 2"),
    Fails("\xC3\xA9", "invalid character: '\xC3\xA9' at position 1"),
    Fails("\"\xC3\xA9\"", "unknown token \xC3\xA9 at position 1"),
    Fails("1+(\"\xC3\xA9\xC3\xA9\")", "unknown token \xC3\xA9\xC3\xA9 at position 4"),
    Fails("1+\"PI\"$", "invalid character: '$' at position 7"),
    Fails("T1", "syntax error: unknown token T1 at position 1"),
    Fails("2*t_1", "syntax error: unknown token t_1 at position 3"),
    Fails("LOG100(5)", "syntax error: unknown token LOG100 at position 1"),
    Fails("_", "syntax error: unknown token _ at position 1"),
    Fails("PI2", "syntax error: unknown token PI2 at position 1"),
    Fails("sqrtx(2)", "syntax error: unknown token sqrtx at position 1"),
    Fails("\"T1\"", "unknown token T1 at position 1"),
    Fails("\"\"", "unknown token  at position 1"),
    Fails("2*\"T1", "missing closing quote at position 3"),
    Fails("\"", "missing closing quote at position 1"),
};

const FormulaCase kWrongGrammar[] = {
    Fails("", "syntax error: end of input"),
    Fails("   ", "syntax error: end of input"),
    Fails("2+", "syntax error: end of input"),
    Fails("(2", "syntax error: end of input"),
    Fails("SQRT", "syntax error: end of input"),
    Fails("SQRT(2", "syntax error: end of input"),
    Fails("+2", "syntax error: unexpected '+' at position 1"),
    Fails("2++2", "syntax error: unexpected '+' at position 3"),
    Fails("2*/3", "syntax error: unexpected '/' at position 3"),
    Fails("2**3", "syntax error: unexpected '*' at position 3"),
    Fails(")", "syntax error: unexpected ')' at position 1"),
    Fails("()", "syntax error: unexpected ')' at position 2"),
    Fails("(1+2))", "syntax error: unexpected ')' at position 6"),
    Fails("1,2", "syntax error: unexpected ',' at position 2"),
    Fails("(1,2)", "syntax error: unexpected ',' at position 3"),
    Fails("SQRT 4", "syntax error: unexpected integer 4 in constant at position 6"),
    Fails("2 3", "syntax error: unexpected integer 3 in constant at position 3"),
    Fails("2 0.25", "syntax error: unexpected real value 0.25 in constant at position 3"),
    Fails("2 1e3", "syntax error: unexpected real value 1000 in constant at position 3"),
    Fails("2 99999999999999999999", "syntax error: unexpected real value 1e+20 in constant at position 3"),
    Fails("1.5.2", "syntax error: unexpected real value 0.2 in constant at position 4"),
    Fails("2PI", "syntax error: unexpected 'PI' at position 2"),
    Fails("2 sqrt(4)", "syntax error: unexpected 'sqrt' at position 3"),
    Fails("(1)(2)", "syntax error: unexpected '(' at position 4"),
    Fails("PI(2)", "syntax error: unexpected '(' at position 3"),
    Fails("2\"PI\"", "syntax error: unexpected \"PI\" at position 2"),
    Fails("MAX(1,)", "syntax error: unexpected ')' at position 7"),
    Fails("MAX(,,1)", "syntax error: unexpected ',' at position 6"),
    Fails(") $", "syntax error: unexpected ')' at position 1"),  // the first mistake counts
};

const FormulaCase kRefusedByTheCheck[] = {
    Fails("1/0", "division by zero\r\n"),
    Fails("1/(2-2)", "division by zero\r\n"),
    Fails("0/0", "division by zero\r\n"),
    Fails("1/-0", "division by zero\r\n"),
    Fails("1+1/SIN(0)", "division by zero\r\n"),
    Fails("SQRT(4,2)", "SQRT should have one argument\r\n"),
    Fails("sqrt()", "SQRT should have one argument\r\n"),
    Fails("LOG10()", "LOG10 should have one argument\r\n"),
    Fails("MAX(1)", "MAX should have two arguments\r\n"),
    Fails("MAX()", "MAX should have two arguments\r\n"),
    Fails("MAX(,1)", "MAX should have two arguments\r\n"),
    Fails("mod(1,2,3)", "MOD should have two arguments\r\n"),
    Fails("1/0+SQRT()", "division by zero\r\n"),  // left to right
    Fails("SQRT()+1/0", "SQRT should have one argument\r\n"),
    Fails("SQRT(1/0,2)", "division by zero\r\n"),  // arguments first
};

const FormulaCase kNoNumberInTheEnd[] = {
    Fails("SQRT(-1)", "floating point exception in result: Not a number (NaN)"),
    Fails("LOG(-1)", "floating point exception in result: Not a number (NaN)"),
    Fails("ASIN(2)", "floating point exception in result: Not a number (NaN)"),
    Fails("ACOS(-2)", "floating point exception in result: Not a number (NaN)"),
    Fails("MOD(1,0)", "floating point exception in result: Not a number (NaN)"),
    Fails("(-8)^(1/3)", "floating point exception in result: Not a number (NaN)"),
    Fails("MIN(SQRT(-1),1)", "floating point exception in result: Not a number (NaN)"),
    Fails("MAX(1,SQRT(-1))", "floating point exception in result: Not a number (NaN)"),
    Fails("LOG(0)", "floating point exception in result: Overflow"),
    Fails("LOG10(0)", "floating point exception in result: Overflow"),
    Fails("EXP(1000)", "floating point exception in result: Overflow"),
    Fails("1e308*10", "floating point exception in result: Overflow"),
    Fails("0^-1", "floating point exception in result: Overflow"),
    Fails("-10^309", "floating point exception in result: Overflow"),
    // A divisor that is no number is not zero.
    Fails("1/SQRT(-1)", "floating point exception in result: Not a number (NaN)"),
    {"EXP(LOG(0))", 0},  // what is no number within does not matter
    {"ATAN(1e308*10)", kPi / 2},
    {"EXP(-1000)", 0},
};

struct Group {
  const char* name;
  std::span<const FormulaCase> cases;
};

const Group kGroups[] = {
    {"numbers", kNumbers},
    {"operators", kOperators},
    {"functions", kFunctions},
    {"blanks", kBlanks},
    {"wrong numbers", kWrongNumbers},
    {"wrong tokens", kWrongTokens},
    {"wrong grammar", kWrongGrammar},
    {"refused by the check", kRefusedByTheCheck},
    {"no number in the end", kNoNumberInTheEnd},
};

TEST(NumericEntry, HasTheValueOrTheMessage) {
  for (const Group& group : kGroups)
    for (const FormulaCase& c : group.cases) {
      SCOPED_TRACE(testing::Message() << group.name << ": " << c.text);
      ExpectOutcome(c, numerics::EvaluateNumericEntry(c.text));
    }
}

// A place factor and a power of ten, as they are rounded: not the nearest numbers to 0.3.
TEST(NumericEntry, ReadsDigitsOneByOne) {
  EXPECT_EQ(numerics::EvaluateNumericEntry("0.3").value, 0.30000000000000004);
  EXPECT_EQ(numerics::EvaluateNumericEntry("3e-1").value, 3 * 0.1);
}

TEST(NumericEntry, TakesATextWithZerosInside) {
  using namespace std::string_view_literals;
  EXPECT_EQ(numerics::EvaluateNumericEntry("1\0+1"sv).failure, "invalid character: '\0' at position 2"sv);
}

}  // namespace morvelan::test::numeric_entry
