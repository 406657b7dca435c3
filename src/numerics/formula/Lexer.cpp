#include "numerics/formula/Lexer.h"

#include <algorithm>
#include <cmath>

#include "numerics/formula/ExpressionTree.h"
#include "numerics/formula/FaultCode.h"
#include "numerics/formula/FunctionTable.h"
#include "numerics/formula/NumberLiteral.h"

namespace morvelan::numerics {
namespace {

// Only the letters of ASCII are letters, whatever the locale.
char UpperCase(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool StartsName(char c) { return (UpperCase(c) >= 'A' && UpperCase(c) <= 'Z') || c == '_'; }
bool ContinuesName(char c) { return StartsName(c) || IsDigit(c); }
bool ContinuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

std::string Quoted(std::string_view typed) { return "'" + std::string(typed) + "'"; }

bool EqualNoCase(std::string_view a, std::string_view b) { return std::ranges::equal(a, b, {}, UpperCase, UpperCase); }

/// What a name is when it is no variable.
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

/// A carriage return that ends a number or a name belongs to it.
void Lexer::SkipCarriageReturn() {
  if (position < text.size() && text[position] == '\r') ++position;
}

/// The character at a place, of one byte or more.
std::string_view Lexer::CharacterAt(std::size_t place) const {
  std::size_t end = place + 1;
  while (end < text.size() && ContinuesCharacter(text[end])) ++end;
  return text.substr(place, end - place);
}

/// What stood where a number went wrong, unless the error says so itself.
std::string Lexer::FoundInstead(const NumberLiteral& literal) const {
  if (literal.end < text.size()) return ", found " + Quoted(CharacterAt(literal.end));
  const bool isSaid = std::string_view(literal.error).find("end of input") != std::string_view::npos;
  return isSaid ? "" : ", found end of input";
}

Token Lexer::ReadNumberToken(Token token) {
  const NumberLiteral literal = ReadNumber(text, token.start);
  token.text = text.substr(token.start, literal.end - token.start);
  token.kind = TokenKind::kNumber;
  token.number = literal.value;
  token.isInteger = literal.isInteger;
  position = literal.end;
  if (literal.error) {
    token.kind = TokenKind::kError;
    token.error = literal.error;
    token.start = literal.end;
    token.remark = FoundInstead(literal);
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
  const auto variable = std::ranges::find_if(variables, [&](const std::string& v) { return EqualNoCase(v, name); });
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

}  // namespace morvelan::numerics
