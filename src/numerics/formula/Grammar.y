/* The grammar of formulas. Each reduction adds a node to the tree, so that the nodes stand in the order in which they are
   computed; the parser's stack holds only numbers, places in tables and counts of arguments. */

%require "3.8"
%define api.pure full
%define api.prefix {formula}
%param { morvelan::numerics::FormulaParser& parser }

%code requires {
#include <cstdint>

namespace morvelan::numerics {
class FormulaParser;
}
}

%union {
  double number;
  std::int32_t index;
  std::uint32_t count;
}

%code {
#include "numerics/formula/FormulaParser.h"

// The limit of nesting.
#define YYINITDEPTH 200
#define YYMAXDEPTH morvelan::numerics::kLargestParserDepth

using morvelan::numerics::NodeKind;

static int formulalex(FORMULASTYPE* value, morvelan::numerics::FormulaParser& parser);
static void formulaerror(morvelan::numerics::FormulaParser& parser, const char* message);
}

%token <number> NUMBER
%token <index> FUNCTION VARIABLE
%token PI GAS_CONSTANT
%type <count> list

%left '+' '-'
%left '*' '/'
%precedence NEGATION
%right '^'

%%

expr:
    NUMBER                 { if (!parser.AddConstant($1)) YYNOMEM; }
  | PI                     { if (!parser.AddConstant(3.141592653589793)) YYNOMEM; }
  | GAS_CONSTANT           { if (!parser.AddConstant(8.314)) YYNOMEM; }  /* [J/(mol K)] */
  | FUNCTION '(' list ')'  { if (!parser.AddCall($1, $3)) YYNOMEM; }
  | VARIABLE               { if (!parser.AddVariable($1)) YYNOMEM; }
  | expr '+' expr          { if (!parser.AddOperation(NodeKind::kAddition, 2)) YYNOMEM; }
  | expr '-' expr          { if (!parser.AddOperation(NodeKind::kSubtraction, 2)) YYNOMEM; }
  | expr '*' expr          { if (!parser.AddOperation(NodeKind::kMultiplication, 2)) YYNOMEM; }
  | expr '/' expr          { if (!parser.AddOperation(NodeKind::kDivision, 2)) YYNOMEM; }
  | '-' expr %prec NEGATION  { if (!parser.AddOperation(NodeKind::kNegation, 1)) YYNOMEM; }
  | expr '^' expr          { if (!parser.AddOperation(NodeKind::kPower, 2)) YYNOMEM; }
  | '(' expr ')'           { }
  ;

/* The first argument may be missing: MAX(,1) has one argument. */
list:
    %empty                 { $$ = 0; }
  | expr                   { $$ = 1; }
  | list ',' expr          { $$ = $1 + 1; }
  ;

%%

static int formulalex(FORMULASTYPE* value, morvelan::numerics::FormulaParser& parser) {
  using morvelan::numerics::TokenKind;
  const morvelan::numerics::Token& token = parser.NextToken();
  switch (token.kind) {
    case TokenKind::kEnd: return FORMULAEOF;
    case TokenKind::kCharacter: return token.text.front();
    case TokenKind::kNumber: value->number = token.number; return NUMBER;
    case TokenKind::kFunction: value->index = token.index; return FUNCTION;
    case TokenKind::kVariable: value->index = token.index; return VARIABLE;
    case TokenKind::kPi: return PI;
    case TokenKind::kGasConstant: return GAS_CONSTANT;
    case TokenKind::kError: break;
  }
  return FORMULAerror;  /* the parser ends without calling formulaerror */
}

/* The last token does not fit, or the stack is full; then the value of formulaparse says so. */
static void formulaerror(morvelan::numerics::FormulaParser& parser, const char*) { parser.RefuseToken(); }

int morvelan::numerics::RunGrammar(FormulaParser& parser) { return formulaparse(parser); }
