#include "numerics/formula/FormulaParser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <new>
#include <utility>

namespace morvelan::numerics {
namespace {

// Only the letters of ASCII are letters, whatever the locale is.
char UpperCase(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool StartsName(char c) { return (UpperCase(c) >= 'A' && UpperCase(c) <= 'Z') || c == '_'; }
bool ContinuesName(char c) { return StartsName(c) || IsDigit(c); }
bool ContinuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, UpperCase, UpperCase);
}

std::string Quoted(std::string_view typed) { return "'" + std::string(typed) + "'"; }

/// A number as it is read from a text, digit by digit and without the locale. A value that is too large becomes
/// infinite or NaN.
class NumberLiteral {
 public:
  /// Reads the number that starts at `start` with a digit or a decimal point.
  NumberLiteral(std::string_view wholeText, std::size_t start) : end(start), text(wholeText) {
    while (AtDigit()) value = value * 10 + Digit();
    if (At('.')) ReadFraction();
    if (!error && (At('e') || At('E'))) ReadExponent();
  }

  double value = 0;
  std::size_t end;              // the place after its last character
  bool isInteger = true;        // it has neither decimal point nor exponent
  const char* error = nullptr;  // why it is no number; `end` is then the place where that shows

 private:
  static constexpr double kLargestExponent = 1e6;  // far beyond any number, and small enough to be counted exactly

  [[nodiscard]] bool AtEnd() const { return end >= text.size(); }
  [[nodiscard]] bool At(char c) const { return !AtEnd() && text[end] == c; }
  [[nodiscard]] bool AtDigit() const { return !AtEnd() && IsDigit(text[end]); }
  double Digit() { return text[end++] - '0'; }

  void ReadFraction() {
    isInteger = false;
    ++end;
    if (!AtDigit()) error = "expected number to follow decimal point";
    for (double place = 0.1; AtDigit(); place *= 0.1) value += place * Digit();
  }

  void ReadExponent() {
    isInteger = false;
    ++end;
    const bool negative = At('-'), hasSign = negative || At('+');
    if (hasSign) ++end;
    if (!AtDigit()) {
      error = !hasSign  ? "syntax error in real number, missing exponent"
              : AtEnd() ? "unexpected end of input in real number"
                        : "syntax error in real number, expected digit";
      return;
    }
    double exponent = 0;
    while (AtDigit()) exponent = std::fmin(exponent * 10 + Digit(), kLargestExponent);
    value *= std::pow(10.0, negative ? -exponent : exponent);
  }

  std::string_view text;
};

/// What a name means that is not a variable.
Token ResolveName(Token token, std::string_view name) {
  std::string upper(name);
  std::ranges::transform(upper, upper.begin(), UpperCase);
  if (const auto function = FindFunction(upper)) {
    token.kind = TokenKind::kFunction;
    token.index = *function;
  } else if (upper == "PI") {
    token.kind = TokenKind::kPi;
  } else if (upper == "R") {
    token.kind = TokenKind::kGasConstant;
  } else {
    token.kind = TokenKind::kError;
    token.error = "unknown token " + std::string(name);
  }
  return token;
}

std::string DescribeNumber(const Token& token) {
  constexpr double kLargestInteger = 9.2e18;  // fits 64 bits
  std::array<char, 40> digits{};
  const bool isInteger = token.isInteger && token.number < kLargestInteger;
  const auto end =
      isInteger
          ? std::to_chars(digits.data(), digits.data() + digits.size(), static_cast<std::int64_t>(token.number))
          : std::to_chars(digits.data(), digits.data() + digits.size(), token.number, std::chars_format::general, 15);
  return (isInteger ? "integer " : "real value ") + std::string(digits.data(), end.ptr) + " in constant";
}

/// A token in the words of a message.
std::string Describe(const Token& token) {
  if (token.kind == TokenKind::kNumber) return DescribeNumber(token);
  return token.text.front() == '"' ? std::string(token.text) : Quoted(token.text);
}

}  // namespace

Lexer::Lexer(std::string_view formula, std::span<const std::string> variableNames)
    : text(formula), variables(variableNames) {}

Token Lexer::Next() {
  while (position < text.size() && (text[position] == ' ' || text[position] == '\t')) ++position;
  Token token;
  token.start = position;
  if (position == text.size()) return token;
  const char c = text[position];
  if (IsDigit(c) || c == '.') return ReadNumberToken(std::move(token));
  if (StartsName(c)) return ReadIdentifier(std::move(token));
  if (c == '"') return ReadQuotedName(std::move(token));
  if (std::string_view("()*+,-/^").find(c) == std::string_view::npos) return InvalidCharacter(std::move(token));
  token.kind = TokenKind::kCharacter;
  token.text = text.substr(position++, 1);
  return token;
}

/// A carriage return at the end of a number or a name belongs to it.
void Lexer::SkipCarriageReturn() {
  if (position < text.size() && text[position] == '\r') ++position;
}

/// The character at a place, of one byte or more.
std::string_view Lexer::CharacterAt(std::size_t place) const {
  std::size_t end = place + 1;
  while (end < text.size() && ContinuesCharacter(text[end])) ++end;
  return text.substr(place, end - place);
}

Token Lexer::ReadNumberToken(Token token) {
  const NumberLiteral literal(text, token.start);
  token.text = text.substr(token.start, literal.end - token.start);
  token.kind = TokenKind::kNumber;
  token.number = literal.value;
  token.isInteger = literal.isInteger;
  position = literal.end;
  if (literal.error) {
    token.kind = TokenKind::kError;
    token.error = literal.error;
    token.start = literal.end;
    if (literal.end < text.size())
      token.remark = ", found " + Quoted(CharacterAt(literal.end));
    else if (token.error.find("end of input") == std::string::npos)
      token.remark = ", found end of input";
  } else if (!std::isfinite(literal.value)) {
    token.kind = TokenKind::kError;
    token.error = FaultText(DisplayName(NodeKind::kConstant), FaultCode::kOverflow);
    token.remark = ", in " + Quoted(token.text);
  }
  SkipCarriageReturn();
  return token;
}

Token Lexer::ReadIdentifier(Token token) {
  const auto rest = text.substr(position);
  token.text = rest.substr(0, static_cast<std::size_t>(std::ranges::find_if_not(rest, ContinuesName) - rest.begin()));
  position += token.text.size();
  SkipCarriageReturn();
  const std::string_view name = token.text;
  token = ResolveName(std::move(token), name);
  token.isUnknownName = token.kind == TokenKind::kError;
  return token;
}

Token Lexer::ReadQuotedName(Token token) {
  const std::size_t end = text.find('"', position + 1);
  if (end == std::string_view::npos) {
    token.kind = TokenKind::kError;
    token.error = "missing closing quote";
    return token;
  }
  token.text = text.substr(position, end + 1 - position);
  position = end + 1;
  const std::string_view name = token.text.substr(1, token.text.size() - 2);
  const auto isNamed = [&](const std::string& variable) { return EqualIgnoringCase(variable, name); };
  const auto variable = std::ranges::find_if(variables, isNamed);
  if (variable == variables.end()) return ResolveName(std::move(token), name);
  token.kind = TokenKind::kVariable;
  token.index = static_cast<std::int32_t>(variable - variables.begin());
  return token;
}

Token Lexer::InvalidCharacter(Token token) const {
  token.kind = TokenKind::kError;
  token.error = "invalid character: " + Quoted(CharacterAt(position));
  return token;
}

FormulaParser::FormulaParser(std::string_view formula, std::span<const std::string> variables,
                             const FormulaDialect& words)
    : dialect(words), lexer(formula, variables) {}

ParsedFormula FormulaParser::Parse() {
  const int outcome = RunGrammar(*this);
  if (outcome == 0) return {std::move(tree), {}};
  if (outcome == 1 && !memoryExhausted) return {{}, Refusal()};
  return {{}, dialect.stackFull};
}

const Token& FormulaParser::NextToken() noexcept {
  try {
    last = lexer.Next();
  } catch (const std::bad_alloc&) {
    last = {};
    last.kind = TokenKind::kError;
    memoryExhausted = true;
  }
  return last;
}

bool FormulaParser::Add(const ExpressionNode& node) noexcept {
  try {
    tree.nodes.push_back(node);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

/// What was wrong with the last token, and where. The position counts bytes from one; before it only names of variables
/// have characters of several bytes.
std::string FormulaParser::Refusal() const {
  const std::string syntaxError = std::string(dialect.syntaxError) + ": ";
  const std::string place = " at position " + std::to_string(last.start + 1);
  if (refused && last.kind == TokenKind::kEnd) return syntaxError + "end of input";
  if (refused) return syntaxError + "unexpected " + Describe(last) + place;
  return (last.isUnknownName ? syntaxError : "") + last.error + place + last.remark;
}

ParsedFormula ParseFormula(std::string_view text, std::span<const std::string> variables,
                           const FormulaDialect& dialect) {
  return FormulaParser(text, variables, dialect).Parse();
}

}  // namespace morvelan::numerics
