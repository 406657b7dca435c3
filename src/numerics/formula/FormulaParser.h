#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "numerics/formula/ExpressionTree.h"

namespace morvelan::numerics {

/// How deep an expression may nest: the entries of the parser's stack.
inline constexpr int kLargestParserDepth = 10000;

/// The words of a kind of formula for its refusals.
struct FormulaDialect {
  const char* syntaxError;
  const char* stackFull;
};

/// The expression of a text, or the reason why there is none.
struct ParsedFormula {
  ExpressionTree tree;
  std::string failure;  // empty on success
};

/// Parses a text in UTF-8. A name in double quotes is a variable if `variables` has it, and otherwise what it means
/// without quotes.
[[nodiscard]] ParsedFormula ParseFormula(std::string_view text, std::span<const std::string> variables,
                                         const FormulaDialect& dialect);

/// A kind of token. An operator, a parenthesis and a comma are characters.
enum class TokenKind { kEnd, kCharacter, kNumber, kFunction, kVariable, kPi, kGasConstant, kError };

struct Token {
  TokenKind kind = TokenKind::kEnd;
  std::size_t start = 0;       // the place of its first byte
  std::string_view text;       // as it was typed
  double number = 0;           // of a number
  bool isInteger = false;      // a number without decimal point and exponent
  std::int32_t index = 0;      // of a function or a variable
  std::string error;           // why it is no token
  std::string remark;          // what follows the place in the message of an error
  bool isUnknownName = false;  // the error is a name without quotes that means nothing
};

/// Cuts a formula into tokens.
class Lexer {
 public:
  /// Both the text and the names, in the order of the variables' indices, must outlive the lexer.
  Lexer(std::string_view formula, std::span<const std::string> variableNames);

  /// Must not be called again after an error.
  [[nodiscard]] Token Next();

 private:
  [[nodiscard]] Token ReadNumberToken(Token token);
  [[nodiscard]] Token ReadIdentifier(Token token);
  [[nodiscard]] Token ReadQuotedName(Token token);
  [[nodiscard]] Token InvalidCharacter(Token token) const;
  [[nodiscard]] std::string_view CharacterAt(std::size_t place) const;
  void SkipCarriageReturn();

  std::string_view text;
  std::span<const std::string> variables;
  std::size_t position = 0;
};

/// The state of one parse, for the actions of the grammar. No exception may pass through the generated parser.
class FormulaParser {
 public:
  FormulaParser(std::string_view formula, std::span<const std::string> variables, const FormulaDialect& words);

  [[nodiscard]] ParsedFormula Parse();

  // Each adds a node and returns false if there is no memory left.
  [[nodiscard]] bool AddConstant(double value) { return Add(ConstantNode(value)); }
  [[nodiscard]] bool AddVariable(std::int32_t index) { return Add(VariableNode(index)); }
  [[nodiscard]] bool AddCall(std::int32_t function, std::uint32_t count) { return Add(CallNode(function, count)); }
  [[nodiscard]] bool AddOperation(NodeKind kind, std::uint32_t count) { return Add(OperationNode(kind, count)); }

  /// The next token. It stays the last one until the next call.
  [[nodiscard]] const Token& NextToken() noexcept;

  /// Notes that the last token cannot stand where it stands. (A token that is an error is refused anyway.)
  void RefuseToken() noexcept { refused = true; }

 private:
  [[nodiscard]] bool Add(const ExpressionNode& node) noexcept;
  [[nodiscard]] std::string Refusal() const;

  FormulaDialect dialect;
  Lexer lexer;
  Token last;
  ExpressionTree tree;
  bool refused = false;
  bool memoryExhausted = false;
};

/// Runs the generated parser: 0 on success, 1 if something was refused, 2 if the stack or the memory is full.
[[nodiscard]] int RunGrammar(FormulaParser& parser);

}  // namespace morvelan::numerics
