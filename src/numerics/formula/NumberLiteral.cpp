#include "numerics/formula/NumberLiteral.h"

#include <cmath>

namespace morvelan::numerics {
namespace {

constexpr double kLargestExponent = 1e6;  // far beyond any number, small enough to be counted exactly

/// Walks over the characters of one number.
class NumberReader {
 public:
  NumberReader(std::string_view wholeText, std::size_t start) : text(wholeText) { literal.end = start; }

  NumberLiteral Read() {
    while (AtDigit()) literal.value = literal.value * 10 + Digit();
    if (At('.')) ReadFraction();
    if (!literal.error && (At('e') || At('E'))) ReadExponent();
    return literal;
  }

 private:
  [[nodiscard]] bool AtEnd() const { return literal.end >= text.size(); }
  [[nodiscard]] bool At(char c) const { return !AtEnd() && text[literal.end] == c; }
  [[nodiscard]] bool AtDigit() const { return !AtEnd() && text[literal.end] >= '0' && text[literal.end] <= '9'; }
  double Digit() { return text[literal.end++] - '0'; }

  void ReadFraction() {
    literal.isInteger = false;
    ++literal.end;
    if (!AtDigit()) literal.error = "expected number to follow decimal point";
    for (double place = 0.1; AtDigit(); place *= 0.1) literal.value += place * Digit();
  }

  void ReadExponent() {
    literal.isInteger = false;
    ++literal.end;
    const bool negative = At('-'), hasSign = negative || At('+');
    if (hasSign) ++literal.end;
    if (!AtDigit()) {
      literal.error = !hasSign  ? "syntax error in real number, missing exponent"
                      : AtEnd() ? "unexpected end of input in real number"
                                : "syntax error in real number, expected digit";
      return;
    }
    double exponent = 0;
    while (AtDigit()) exponent = std::fmin(exponent * 10 + Digit(), kLargestExponent);
    literal.value *= std::pow(10.0, negative ? -exponent : exponent);
  }

  std::string_view text;
  NumberLiteral literal;
};

}  // namespace

NumberLiteral ReadNumber(std::string_view text, std::size_t start) { return NumberReader(text, start).Read(); }

}  // namespace morvelan::numerics
