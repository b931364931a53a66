// The frame of the parser: its window of tokens, the top level of a file, and the small rules that
// all definitions share.
#include "language/parser.h"

#include <antlr/NoViableAltException.hpp>

#include <limits>
#include <string_view>

#include "common/failures.h"
#include "language/token.h"

namespace {

constexpr int nesting_limit = 256;

constexpr std::uint64_t value_of_digit(char digit)
{
  if (digit <= '9') return static_cast<std::uint64_t>(digit - '0');
  return static_cast<std::uint64_t>((digit | 0x20) - 'a' + 10);
}

// A value that doesn't fit is the greatest one, and no failure.
std::int64_t value_of_digits(std::string_view digits, std::uint64_t base)
{
  constexpr std::uint64_t greatest = std::numeric_limits<std::int64_t>::max();
  std::uint64_t value = 0;
  for (const char digit : digits) {
    if (value > greatest / base) return static_cast<std::int64_t>(greatest);
    value = value * base + value_of_digit(digit); // at most greatest + base - 1: no wrap
  }
  return static_cast<std::int64_t>(value < greatest ? value : greatest);
}

} // namespace

antlr::ParserSharedInputState TDMParser::shared_state(TDMLexer &lexer)
{
  auto buffer = std::make_unique<antlr::TokenBuffer>(lexer);
  auto state = std::make_unique<antlr::ParserInputState>(buffer.get());
  buffer.release(); // the state's now
  antlr::ParserSharedInputState shared(state.get());
  state.release();
  return shared;
}

void TDMParser::NestingGuard::enter()
{
  if (depth_ == nesting_limit)
    throw new TDMFileSyntaxException("nested too deeply, the limit is 256");
  ++depth_;
}

void TDMParser::fetch(unsigned int count)
{
  for (; held_ < count; ++held_) lexer_.scan(window_[first_ ^ held_]);
}

antlr::RefToken TDMParser::LT(unsigned int i)
{
  if (held_ < i) fetch(i);
  return TDMToken::make(window_[first_ ^ (i - 1)]);
}

void TDMParser::consume()
{
  if (held_ == 0) fetch(1);
  first_ ^= 1;
  --held_;
}

void TDMParser::match(int type)
{
  if (LA(1) != type)
    throw antlr::MismatchedTokenException(getTokenNames(), getNumTokens(), LT(1), type, false,
                                          getFilename());
  consume();
}

bool TDMParser::accept(int type)
{
  if (!at(type)) return false;
  consume();
  return true;
}

void TDMParser::no_viable_alternative()
{
  throw antlr::NoViableAltException(LT(1), getFilename());
}

const tdm::Lexeme &TDMParser::next_token()
{
  if (held_ == 0) fetch(1);
  return window_[first_];
}

// One token does not do: a reserved range may begin with a parenthesised expression.
bool TDMParser::at_tag_list()
{
  return at(LPAREN) && LA(2) == KEY_tag;
}

std::string TDMParser::identifier(TDMFileObject &record, LocationKey key)
{
  keep(record, key);
  return identifier();
}

std::string TDMParser::string_value(TDMFileObject &record, LocationKey key)
{
  keep(record, key);
  return string_value();
}

tdm::ExpressionPtr TDMParser::expression(TDMFileObject &record, LocationKey key)
{
  keep(record, key);
  return expression();
}

// target_file: definition+ EOF
std::unique_ptr<TDMFileInterface> TDMParser::target_file()
{
  constexpr tdm::TokenSet starts = {KEY_architecture, KEY_derivative,     KEY_memory,       KEY_bus,
                                    KEY_processor,    KEY_section_layout, KEY_section_setup};
  auto result = std::make_unique<TDMFileInterface>();
  require_next(starts);
  while (at(starts)) definition(*result);
  match(EOF_);
  return result;
}

// definition: architecture_definition | derivative_definition | memory_definition
//           | bus_definition | processor_definition | section_layout_definition
//           | section_setup_definition
void TDMParser::definition(TDMFileInterface &result)
{
  switch (LA(1)) {
  case KEY_architecture:
    architecture_definition(tdm::append_new(result.architectures));
    break;
  case KEY_derivative:
    derivative_definition(tdm::append_new(result.derivatives));
    break;
  case KEY_memory:
    memory_definition(tdm::append_new(result.memories));
    break;
  case KEY_bus:
    bus_definition(tdm::append_new(result.buses));
    break;
  case KEY_processor:
    processor_definition(tdm::append_new(result.processors));
    break;
  case KEY_section_layout:
    section_layout_definition(tdm::append_new(result.sectionLayouts), std::string());
    break;
  case KEY_section_setup:
    section_setup_definition(tdm::append_new(result.sectionSetups));
    break;
  default:
    no_viable_alternative();
  }
}

// identifier: IDENTIFIER | "absolute" | "ranged" | "exec_priority" | "crc32" | "crc32w"
std::string TDMParser::identifier()
{
  require_next(tdm::TokenSets::identifier_start);
  std::string name(next_token().characters());
  consume();
  return name;
}

// string_value: STRING, without its quotes
std::string TDMParser::string_value()
{
  std::string text;
  if (at(STRING)) {
    const std::string_view quoted = next_token().characters();
    text.assign(quoted.substr(1, quoted.size() - 2));
  }
  match(STRING);
  return text;
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

// tag_property: "tag" "=" STRING
void TDMParser::tag_property()
{
  match(KEY_tag);
  match(EQUALS);
  match(STRING); // nothing asks for tags
}

// tag_list: ["(" tag_property ("," tag_property)* ")"]
void TDMParser::tag_list()
{
  if (at_tag_list())
    parenthesized_list([this] { tag_property(); });
  else
    require_next(tdm::TokenSets::tag_list_end);
}
