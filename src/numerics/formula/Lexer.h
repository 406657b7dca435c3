#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace morvelan::numerics {

struct NumberLiteral;

/// What the lexer found; a single character stands for itself.
enum class TokenKind { kEnd, kCharacter, kNumber, kFunction, kVariable, kPi, kGasConstant, kError };

struct Token {
  TokenKind kind = TokenKind::kEnd;
  std::size_t start = 0;       // the place of its first byte
  std::string_view text;       // as it was typed
  double number = 0;           // of a number
  bool isInteger = false;      // a number without decimal point and exponent
  std::int32_t index = 0;      // of a function or a variable
  std::string error;           // why it is no token
  std::string remark;          // what was found there, to be said after the place
  bool isUnknownName = false;  // the error is an unquoted name that means nothing
};

/// Cuts a formula into tokens. A name in double quotes is a variable, or else what the name is without
/// quotes.
class Lexer {
 public:
  /// Both the text and the names, in the order of the variables' indices, must outlive the lexer.
  Lexer(std::string_view formula, std::span<const std::string> variableNames);

  /// After an error the text is not read on.
  [[nodiscard]] Token Next();

 private:
  [[nodiscard]] Token ReadNumberToken(Token token);
  [[nodiscard]] Token ReadIdentifier(Token token);
  [[nodiscard]] Token ReadQuotedName(Token token);
  [[nodiscard]] Token InvalidCharacter(Token token) const;
  [[nodiscard]] std::string FoundInstead(const NumberLiteral& literal) const;
  [[nodiscard]] std::string_view CharacterAt(std::size_t place) const;
  void SkipCarriageReturn();

  std::string_view text;
  std::span<const std::string> variables;
  std::size_t position = 0;
};

}  // namespace morvelan::numerics
