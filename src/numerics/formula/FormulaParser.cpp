#include "numerics/formula/FormulaParser.h"

#include <array>
#include <charconv>
#include <new>

namespace morvelan::numerics {
namespace {

/// A number in the words of a message.
std::string DescribeNumber(const Token& token) {
  constexpr double kLargestInteger = 9.2e18;  // what fits 64 bits
  std::array<char, 40> digits{};
  const bool isInteger = token.isInteger && token.number < kLargestInteger;
  const auto end =
      isInteger
          ? std::to_chars(digits.data(), digits.data() + digits.size(), static_cast<std::int64_t>(token.number))
          : std::to_chars(digits.data(), digits.data() + digits.size(), token.number, std::chars_format::general, 15);
  return (isInteger ? "integer " : "real value ") + std::string(digits.data(), end.ptr) + " in constant";
}

std::string Describe(const Token& token) {
  if (token.kind == TokenKind::kNumber) return DescribeNumber(token);
  const std::string typed(token.text);
  return typed.front() == '"' ? typed : "'" + typed + "'";
}

}  // namespace

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

/// What was wrong with the last token, and where.
std::string FormulaParser::Refusal() const {
  if (refused && last.kind == TokenKind::kEnd) return std::string(dialect.syntaxError) + ": end of input";
  if (refused) return std::string(dialect.syntaxError) + ": unexpected " + Describe(last) + Place();
  return (last.isUnknownName ? std::string(dialect.syntaxError) + ": " : "") + last.error + Place() + last.remark;
}

/// In bytes, from one: characters of more than one can stand before it only in names of variables.
std::string FormulaParser::Place() const { return " at position " + std::to_string(last.start + 1); }

ParsedFormula ParseFormula(std::string_view text, std::span<const std::string> variables,
                           const FormulaDialect& dialect) {
  return FormulaParser(text, variables, dialect).Parse();
}

}  // namespace morvelan::numerics
