// The rules of numbers and expressions, from operands to conditions.
#include "language/parser.h"

#include <limits>

#include "common/failures.h"

namespace {

/// A binary operator: a higher level binds tighter, and all associate to the left.
struct BinaryRow {
  int token;
  std::int32_t op;
  int level;
};

constexpr BinaryRow binary_rows[] = {
    {TDMTokenTypes::LOGICAL_OR, tdm::kBinaryLogicalOr, 1},
    {TDMTokenTypes::LOGICAL_AND, tdm::kBinaryLogicalAnd, 2},
    {TDMTokenTypes::BAR, tdm::kBinaryOr, 3},
    {TDMTokenTypes::XOR, tdm::kBinaryXor, 4},
    {TDMTokenTypes::BITWISE_AND, tdm::kBinaryAnd, 5},
    {TDMTokenTypes::COMPARE_EQUAL, tdm::kBinaryEqual, 6},
    {TDMTokenTypes::NOT_EQUALS, tdm::kBinaryNotEqual, 6},
    {TDMTokenTypes::GREATER, tdm::kBinaryGreater, 7},
    {TDMTokenTypes::LESS, tdm::kBinaryLess, 7},
    {TDMTokenTypes::GREATER_EQUAL, tdm::kBinaryGreaterEqual, 7},
    {TDMTokenTypes::LESS_EQUAL, tdm::kBinaryLessEqual, 7},
    {TDMTokenTypes::SHIFT_RIGHT, tdm::kBinaryShiftRight, 8},
    {TDMTokenTypes::SHIFT_LEFT, tdm::kBinaryShiftLeft, 8},
    {TDMTokenTypes::PLUS, tdm::kBinaryAdd, 9},
    {TDMTokenTypes::MINUS, tdm::kBinarySub, 9},
    {TDMTokenTypes::MUL, tdm::kBinaryMul, 10},
    {TDMTokenTypes::DIV, tdm::kBinaryDiv, 10},
    {TDMTokenTypes::MOD, tdm::kBinaryMod, 10},
};

/// Level 0 is that of everything that is no binary operator.
constexpr BinaryRow no_operator = {0, 0, 0};

/// The operators by token type.
constexpr auto binary_table = [] {
  std::array<BinaryRow, TDMTokenTypes::NUMBER_OF_TYPES> table = {};
  table.fill(no_operator);
  for (const BinaryRow &row : binary_rows) table[static_cast<std::size_t>(row.token)] = row;
  return table;
}();

std::int32_t unary_operator(int token)
{
  switch (token) {
  case TDMTokenTypes::NOT:
    return tdm::kUnaryNot;
  case TDMTokenTypes::BITWISE_NOT:
    return tdm::kUnaryComplement;
  case TDMTokenTypes::MINUS:
    return tdm::kUnaryMinus;
  default:
    return 0;
  }
}

constexpr std::uint64_t value_of_digit(char digit)
{
  if (digit <= '9') return static_cast<std::uint64_t>(digit - '0');
  return static_cast<std::uint64_t>(digit | 0x20) - 'a' + 10;
}

// A value that doesn't fit is the greatest one, and no failure.
std::int64_t value_of_digits(std::string_view digits, std::uint64_t base)
{
  constexpr std::uint64_t greatest = std::numeric_limits<std::int64_t>::max();
  constexpr std::size_t always_fit = 15; // digits of base 16, and of any below it
  std::uint64_t value = 0;
  if (digits.size() <= always_fit) {
    for (const char digit : digits) value = value * base + value_of_digit(digit);
    return static_cast<std::int64_t>(value);
  }
  for (const char digit : digits) {
    if (value > greatest / base) return static_cast<std::int64_t>(greatest);
    value = value * base + value_of_digit(digit); // at most greatest + base - 1: no wrap
  }
  return static_cast<std::int64_t>(value < greatest ? value : greatest);
}

} // namespace

// expression: logical_or ["?" expression ":" expression]
tdm::ExpressionPtr TDMParser::expression()
{
  tdm::ExpressionPtr condition = logical_or();
  if (!at(QMARK)) {
    require_next(tdm::TokenSets::expression_end);
    return condition;
  }
  const NestingGuard guard(*this);
  consume();
  tdm::ExpressionPtr first = expression();
  match(COLON);
  tdm::ExpressionPtr second = expression();
  return std::make_unique<TDMExprConditional>(std::move(condition), std::move(first),
                                              std::move(second));
}

// single_expression: expression ";" EOF
tdm::ExpressionPtr TDMParser::single_expression()
{
  tdm::ExpressionPtr result = expression();
  if (!at(SEMICOLON) || LA(2) != EOF_) no_viable_alternative();
  return result;
}

// logical_or:     logical_and ("||" logical_and)*
// logical_and:    bitwise_or ("&&" bitwise_or)*
// bitwise_or:     bitwise_xor ("|" bitwise_xor)*
// bitwise_xor:    bitwise_and ("^" bitwise_and)*
// bitwise_and:    equality ("&" equality)*
// equality:       relational (("==" | "!=") relational)*
// relational:     shift ((">" | "<" | ">=" | "<=") shift)*
// shift:          additive ((">>" | "<<") additive)*
// additive:       multiplicative (("+" | "-") multiplicative)*
// multiplicative: unary (("*" | "/" | "%") unary)*
//
// One loop for the ten rules: an operand that stands before a tighter operator waits. At most one
// operand a level waits, whatever the length of the text.
tdm::ExpressionPtr TDMParser::logical_or()
{
  const std::size_t base = pending_.size();
  for (;;) {
    tdm::ExpressionPtr operand = at(tdm::TokenSets::number_start) ? number_literal() : unary();
    const BinaryRow &row = binary_table[static_cast<std::size_t>(LA(1))];
    while (pending_.size() > base && pending_.back().level >= row.level) {
      operand = std::make_unique<TDMExprBinaryApplication>(
          pending_.back().op, std::move(pending_.back().left), std::move(operand));
      pending_.pop_back();
    }
    if (row.level == 0) return operand;
    pending_.push_back({row.op, row.level, std::move(operand)});
    consume();
  }
}

// unary: ("!" | "~" | "-") unary | primary
tdm::ExpressionPtr TDMParser::unary()
{
  const std::int32_t op = unary_operator(LA(1));
  if (op == 0) return primary();
  const NestingGuard guard(*this);
  auto record = std::make_unique<TDMExprUnaryApplication>(op, nullptr);
  keep(*record, "op");
  consume();
  record->operand = unary();
  return record;
}

// primary: string_value | number | "(" expression ")" | identifier | builtin_call
//
// One token decides between the first three. A word needs a second one: `absolute` is a built-in
// before a parenthesis, and a name before whatever can follow an operand.
tdm::ExpressionPtr TDMParser::primary()
{
  switch (LA(1)) {
  case STRING:
    return symbol_reference();
  case OCTAL_NUMBER:
  case DECIMAL_NUMBER:
  case HEXADECIMAL_NUMBER:
    return number_literal();
  case LPAREN:
    return parenthesized();
  default:
    break;
  }
  if (at(tdm::TokenSets::identifier_start) && tdm::TokenSets::operand_end.contains(LA(2)))
    return variable_reference();
  if (at(tdm::TokenSets::builtin_start) && LA(2) == LPAREN) return builtin_call();
  no_viable_alternative();
}

tdm::ExpressionPtr TDMParser::parenthesized()
{
  const NestingGuard guard(*this);
  auto record = std::make_unique<TDMExprUnaryApplication>(tdm::kUnaryParentheses, nullptr);
  keep(*record, "op");
  match(LPAREN);
  record->operand = expression();
  match(RPAREN);
  return record;
}

tdm::ExpressionPtr TDMParser::symbol_reference()
{
  const TDMSourceLocation place = here();
  auto record = std::make_unique<TDMExprSymbolRef>(string_value());
  record->store_location("name", place);
  return record;
}

tdm::ExpressionPtr TDMParser::number_literal()
{
  const TDMSourceLocation place = here();
  auto record = std::make_unique<TDMExprNumber>(number());
  record->store_location("number", place);
  return record;
}

tdm::ExpressionPtr TDMParser::variable_reference()
{
  const TDMSourceLocation place = here();
  auto record = std::make_unique<TDMExprVarRef>(identifier());
  record->store_location("name", place);
  return record;
}

// number: plain_number [size_suffix]
std::int64_t TDMParser::number()
{
  const std::int64_t value = plain_number();
  if (!at(tdm::TokenSet{KIBI, MEBI, GIBI})) {
    require_next(tdm::TokenSets::operand_end);
    return value;
  }
  // The product wraps.
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(value) *
                                   static_cast<std::uint64_t>(size_suffix()));
}

// plain_number: DECIMAL_NUMBER | HEXADECIMAL_NUMBER | OCTAL_NUMBER
std::int64_t TDMParser::plain_number()
{
  const std::string_view text = next_token().characters();
  std::int64_t value = 0;
  switch (LA(1)) {
  case DECIMAL_NUMBER:
    value = value_of_digits(text, 10);
    break;
  case HEXADECIMAL_NUMBER:
    value = value_of_digits(text.substr(2), 16);
    break;
  case OCTAL_NUMBER:
    value = value_of_digits(text, 8);
    break;
  default:
    no_viable_alternative();
  }
  consume();
  return value;
}

// size_suffix: KIBI | MEBI | GIBI
std::int64_t TDMParser::size_suffix()
{
  switch (LA(1)) {
  case KIBI:
    consume();
    return 0x400;
  case MEBI:
    consume();
    return 0x100000;
  case GIBI:
    consume();
    return 0x40000000;
  default:
    no_viable_alternative();
  }
}

// expression_list: expression ("," expression)*
tdm::ExpressionList TDMParser::expression_list()
{
  tdm::ExpressionList list;
  comma_list([&] { list.push_back(expression()); });
  return list;
}

// range_value: expression ".." expression
tdm::FileRange TDMParser::range_value()
{
  tdm::FileRange range;
  range.low = expression();
  match(KEY_RANGE);
  range.high = expression();
  return range;
}
