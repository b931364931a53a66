// The frame of the parser: its window of tokens, the top level of a file, and the small rules that
// all definitions share.
#include "language/parser.h"

#include <antlr/NoViableAltException.hpp>

#include <string_view>

#include "common/failures.h"
#include "language/token.h"

namespace {
constexpr int nesting_limit = 256;
} // namespace

antlr::ParserSharedInputState TDMParser::shared_state(TDMLexer &lexer)
{
  auto buffer = std::make_unique<antlr::TokenBuffer>(lexer);
  auto state = std::make_unique<antlr::ParserInputState>(buffer.get());
  (void)buffer.release(); // the state's now
  antlr::ParserSharedInputState shared(state.get());
  (void)state.release();
  return shared;
}

void TDMParser::NestingGuard::enter()
{
  if (depth_ == nesting_limit)
    throw new TDMFileSyntaxException("nested too deeply, the limit is 256");
  ++depth_;
}

void TDMParser::fetch()
{
  lexer_.scan(window_[first_ ^ held_]);
  ++held_;
}

antlr::RefToken TDMParser::LT(unsigned int i)
{
  while (held_ < i) fetch();
  return TDMToken::make(window_[first_ ^ (i - 1)]);
}

void TDMParser::mismatch(int type)
{
  throw antlr::MismatchedTokenException(getTokenNames(), getNumTokens(), LT(1), type, false,
                                        getFilename());
}

void TDMParser::no_viable_alternative()
{
  throw antlr::NoViableAltException(LT(1), getFilename());
}

// One token does not do: a reserved range may begin with a parenthesised expression.
bool TDMParser::at_tag_list()
{
  return at(LPAREN) && LA(2) == KEY_tag;
}

tdm::Text TDMParser::identifier(TDMFileObject &record, LocationKey key)
{
  keep(record, key);
  return identifier();
}

tdm::Text TDMParser::string_value(TDMFileObject &record, LocationKey key)
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
    section_layout_definition(tdm::append_new(result.sectionLayouts), tdm::Text());
    break;
  case KEY_section_setup:
    section_setup_definition(tdm::append_new(result.sectionSetups));
    break;
  default:
    no_viable_alternative();
  }
}

// identifier: IDENTIFIER | "absolute" | "ranged" | "exec_priority" | "crc32" | "crc32w"
tdm::Text TDMParser::identifier()
{
  require_next(tdm::TokenSets::identifier_start);
  tdm::Text name(next_token().characters());
  consume();
  return name;
}

// string_value: STRING, without its quotes
tdm::Text TDMParser::string_value()
{
  const std::string_view quoted = next_token().characters(); // stays, as all texts of tokens do
  match(STRING);
  return tdm::Text(quoted.substr(1, quoted.size() - 2));
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
