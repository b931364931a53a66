// The frame of the parser: its window of tokens, the top level of a file, and the small rules that
// all definitions share.
#include "language/parser.h"

#include <antlr/NoViableAltException.hpp>

#include <cstdlib>

#include "common/failures.h"

namespace {

constexpr int nesting_limit = 256;

} // namespace

void TDMParser::NestingGuard::enter()
{
  if (depth_ == nesting_limit)
    throw new TDMFileSyntaxException("nested too deeply, the limit is 256");
  ++depth_;
}

void TDMParser::fetch(unsigned int count)
{
  while (held_ < count) {
    window_[held_] = tokens_.nextToken();
    types_[held_] = window_[held_]->getType();
    ++held_;
  }
}

void TDMParser::consume()
{
  if (held_ == 0) fetch(1);
  window_[0] = window_[1];
  types_[0] = types_[1];
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

const TDMToken &TDMParser::next_token()
{
  if (held_ == 0) fetch(1);
  return static_cast<const TDMToken &>(*window_[0].get());
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
  std::string name = next_token().characters();
  consume();
  return name;
}

// string_value: STRING, without its quotes
std::string TDMParser::string_value()
{
  std::string text;
  if (at(STRING)) {
    const std::string &quoted = next_token().characters();
    text.assign(quoted, 1, quoted.size() - 2);
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
  static_assert(sizeof(long long) == sizeof(std::int64_t));
  int base = 0;
  switch (LA(1)) {
  case DECIMAL_NUMBER:
    base = 10;
    break;
  case HEXADECIMAL_NUMBER:
    base = 16;
    break;
  case OCTAL_NUMBER:
    base = 8;
    break;
  default:
    no_viable_alternative();
  }
  // A value that doesn't fit is the greatest one, and no failure.
  const std::int64_t value = std::strtoll(next_token().characters().c_str(), nullptr, base);
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
