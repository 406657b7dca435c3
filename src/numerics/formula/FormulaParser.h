#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "numerics/formula/ExpressionTree.h"
#include "numerics/formula/Lexer.h"

namespace morvelan::numerics {

/// How deep an expression may nest: the entries of the parser's stack.
inline constexpr int kLargestParserDepth = 10000;

/// How a front end words its refusals.
struct FormulaDialect {
  const char* syntaxError;
  const char* stackFull;
};

/// The expression of a text, or why there is none.
struct ParsedFormula {
  ExpressionTree tree;
  std::string failure;  // empty on success
};

[[nodiscard]] ParsedFormula ParseFormula(std::string_view text, std::span<const std::string> variables,
                                         const FormulaDialect& dialect);

/// The state of one parse, for the grammar's actions.
class FormulaParser {
 public:
  FormulaParser(std::string_view formula, std::span<const std::string> variables, const FormulaDialect& words);

  [[nodiscard]] ParsedFormula Parse();

  // Each is false when there is no memory left: no exception may pass through the generated parser.
  [[nodiscard]] bool AddConstant(double value) { return Add(ConstantNode(value)); }
  [[nodiscard]] bool AddVariable(std::int32_t index) { return Add(VariableNode(index)); }
  [[nodiscard]] bool AddCall(std::int32_t function, std::uint32_t count) { return Add(CallNode(function, count)); }
  [[nodiscard]] bool AddOperation(NodeKind kind, std::uint32_t count) { return Add(OperationNode(kind, count)); }

  /// The next token, which stays the last one until the next call. An error is a refusal already.
  [[nodiscard]] const Token& NextToken() noexcept;

  /// The last token does not fit where it stands.
  void RefuseToken() noexcept { refused = true; }

 private:
  [[nodiscard]] bool Add(const ExpressionNode& node) noexcept;
  [[nodiscard]] std::string Refusal() const;
  [[nodiscard]] std::string Place() const;

  FormulaDialect dialect;
  Lexer lexer;
  Token last;
  ExpressionTree tree;
  bool refused = false;
  bool memoryExhausted = false;
};

/// The generated parser: 0 on success, 1 when something was refused, 2 when the stack or the memory is full.
[[nodiscard]] int RunGrammar(FormulaParser& parser);

}  // namespace morvelan::numerics
