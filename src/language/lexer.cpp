// The rules of the lexer.
#include "language/lexer.h"

#include <memory>

#include <antlr/CharStreamIOException.hpp>
#include <antlr/NoViableAltForCharException.hpp>
#include <antlr/TokenStreamIOException.hpp>
#include <antlr/TokenStreamRecognitionException.hpp>

#include <array>
#include <cstring>

#include "language/characters.h"
#include "language/token.h"
#include "language/token_texts.h"
#include "preprocessor/string_pool.h"

namespace {

using tdm::is_digit;
using tdm::is_hex_digit;
using tdm::is_plain;
using tdm::is_word_character;
using tdm::is_word_start;

constexpr int eof = antlr::CharScanner::EOF_CHAR;

/// The suffix that the letter stands for when it stands alone, or 0.
constexpr int suffix_type(int c)
{
  switch (c) {
  case 'k':
  case 'K':
    return TDMTokenTypes::KIBI;
  case 'm':
  case 'M':
    return TDMTokenTypes::MEBI;
  case 'g':
  case 'G':
    return TDMTokenTypes::GIBI;
  default:
    return 0;
  }
}

/// The state as the runtime's scanner makes it for itself, but not lost if memory ends in between.
antlr::LexerSharedInputState shared_state(antlr::InputBuffer &buffer)
{
  auto state = std::make_unique<antlr::LexerInputState>(buffer);
  antlr::LexerSharedInputState shared(state.get());
  (void)state.release();
  return shared;
}

} // namespace

TDMLexerBase::TDMLexerBase(antlr::InputBuffer &buffer)
    : CharScanner(shared_state(buffer), true), stream_(dynamic_cast<TDMInputBuffer &>(buffer)),
      tokens_(dynamic_cast<TDMPreprocessedFileInputStream *>(&stream_)),
      expression_(dynamic_cast<const tdm::ExpressionStream *>(&stream_)), state_(inputState.get())
{
}

void TDMLexerBase::consume()
{
  text += static_cast<char>(LA(1));
  pass();
}

void TDMLexerBase::resetText()
{
  text.clear();
  place_ = stream_place();
  settle();
}

void TDMLexerBase::settle()
{
  state_->tokenStartColumn = state_->column = place_.column;
  state_->tokenStartLine = state_->line = place_.line;
  if (place_.file != file_ || state_->filename.empty()) { // names are pooled
    file_ = place_.file;
    state_->filename = place_.file.text();
  }
}

antlr::RefToken TDMLexerBase::makeToken(int type)
{
  antlr::RefToken token = tokenFactory();
  auto &own = static_cast<TDMToken &>(*token.get());
  own.setType(type);
  own.setColumn(place_.column);
  own.setLine(place_.line);
  own.set_file(place_.file);
  return token;
}

TDMLexer::TDMLexer(antlr::InputBuffer &buffer) : TDMLexerBase(buffer)
{
  // The literals stand in the table of token types, which testLiteralsTable asks: a map would be
  // filled anew for every parse.
  setTokenObjectFactory(&TDMToken::factory);
}

template <typename Rule> int TDMLexer::with_failures_of_stream(Rule rule)
{
  try {
    return rule();
  } catch (antlr::RecognitionException &failure) {
    throw antlr::TokenStreamRecognitionException(failure);
  } catch (antlr::CharStreamIOException &failure) {
    throw antlr::TokenStreamIOException(failure.io);
  } catch (antlr::CharStreamException &failure) {
    throw antlr::TokenStreamException(failure.getMessage());
  }
}

void TDMLexer::scan_by_rules(tdm::Lexeme &next)
{
  for (;;) {
    if (next.type == 0) {
      if (has_whole_tokens()) {
        text.clear();
        settle(next.location);
      } else {
        resetText();
        next.location = place_;
      }
      next.type = with_failures_of_stream([this] { return any_token(); });
      if (next.type != antlr::Token::SKIP) return keep_text(next.type, next);
    }
    next.type = has_whole_tokens() ? quick_token(next) : 0;
    if (next.type > 0) return;
  }
}

antlr::RefToken TDMLexer::nextToken()
{
  tdm::Lexeme next;
  scan(next);
  place_ = next.location;
  _returnToken = makeToken(next.type);
  _returnToken->setText(std::string(next.characters()));
  return _returnToken;
}

void TDMLexer::keep_text(int type, tdm::Lexeme &next) const
{
  if (type <= DOLLAR)
    next.set_text(tdm::operator_texts[static_cast<std::size_t>(type)]);
  else if (text.size() == 1)
    next.set_text(tdm::single_text(text[0]));
  else
    next.set_text({tdm::intern(text), text.size()});
}

// The rest of a token whose front has been taken from the preprocessor whole.
int TDMLexer::rest_by_rule(int type)
{
  return with_failures_of_stream([this, type] {
    switch (type) {
    case antlr::Token::SKIP:
      return single_line_comment();
    case DECIMAL_NUMBER:
      return decimal_tail();
    case OCTAL_NUMBER:
      return octal_tail();
    case HEXADECIMAL_NUMBER:
      return hexadecimal_tail();
    default:
      return word_tail();
    }
  });
}

// Chooses by one character; the rules of operators look at the second one themselves.
int TDMLexer::any_token()
{
  const int c = LA(1);
  if (is_word_start(c)) return word();
  switch (c) {
  case ' ':
  case '\t':
  case '\f':
  case '\r':
  case '\n':
    return white_space();
  case '0':
    return number_with_leading_zero();
  case '"':
    return string();
  case '.':
    return range();
  case '/':
    return slash();
  case ':':
    return operator_with_equals(COLON, COLON_EQUALS);
  case '+':
    return operator_with_equals(PLUS, PLUS_EQUALS);
  case '-':
    return operator_with_equals(MINUS, MINUS_EQUALS);
  case '*':
    return operator_with_equals(MUL, MULT_EQUALS);
  case '!':
    return operator_with_equals(NOT, NOT_EQUALS);
  case '=':
    return operator_with_equals(EQUALS, COMPARE_EQUAL);
  case '>':
    return comparison(GREATER, SHIFT_RIGHT, GREATER_EQUAL);
  case '<':
    return comparison(LESS, SHIFT_LEFT, LESS_EQUAL);
  case '|':
    return doubled_operator(BAR, LOGICAL_OR);
  case '&':
    return doubled_operator(BITWISE_AND, LOGICAL_AND);
  case '$':
    return single(DOLLAR);
  case '%':
    return single(MOD);
  case '(':
    return single(LPAREN);
  case ')':
    return single(RPAREN);
  case ',':
    return single(COMMA);
  case ';':
    return single(SEMICOLON);
  case '?':
    return single(QMARK);
  case '[':
    return single(LBRACK);
  case ']':
    return single(RBRACK);
  case '^':
    return single(XOR);
  case '{':
    return single(LCURLY);
  case '}':
    return single(RCURLY);
  case '~':
    return single(BITWISE_NOT);
  case eof:
    uponEOF();
    return EOF_;
  default:
    if (is_digit(c)) return decimal_number();
    no_viable_alternative();
  }
}

// WS: one or more of space, tab, form feed, CR LF, CR, LF
int TDMLexer::white_space()
{
  for (;;) {
    switch (LA(1)) {
    case ' ':
    case '\t':
    case '\f':
    case '\r':
    case '\n':
      pass();
      break;
    default:
      return antlr::Token::SKIP;
    }
  }
}

// CR LF, CR or LF
void TDMLexer::line_end()
{
  if (LA(1) == '\r' && LA(2) == '\n') pass();
  pass();
  newline();
}

// ID_OR_POSTFIX: a suffix letter that stands alone, a keyword or an identifier
int TDMLexer::word()
{
  if (const int suffix = suffix_type(LA(1)); suffix != 0) {
    // Something must follow: a lone letter at the end of input is an identifier.
    const int next = LA(2);
    if (is_plain(next) && !is_word_character(next)) {
      consume();
      return suffix;
    }
  }
  consume();
  return word_tail();
}

int TDMLexer::word_tail()
{
  while (is_word_character(LA(1))) {
    const bool dot = LA(1) == '.';
    consume();
    if (dot) word_start(); // a dot joins two words and never ends one
  }
  return testLiteralsTable(IDENTIFIER);
}

void TDMLexer::word_start()
{
  if (!is_word_start(LA(1))) no_viable_alternative();
  consume();
}

int TDMLexer::decimal_number()
{
  consume();
  return decimal_tail();
}

int TDMLexer::decimal_tail()
{
  while (is_digit(LA(1))) consume();
  return DECIMAL_NUMBER;
}

int TDMLexer::number_with_leading_zero()
{
  const int second = LA(2);
  consume();
  if (second != 'x' && second != 'X') return octal_tail();
  consume();
  if (!is_hex_digit(LA(1))) no_viable_alternative();
  return hexadecimal_tail();
}

int TDMLexer::octal_tail()
{
  while (tdm::is_octal_digit(LA(1))) consume();
  return OCTAL_NUMBER;
}

int TDMLexer::hexadecimal_tail()
{
  while (is_hex_digit(LA(1))) consume();
  return HEXADECIMAL_NUMBER;
}

// The text keeps quotes and escapes as they stand; whatever can't go on a string meets the
// closing quote, which then fails to match.
int TDMLexer::string()
{
  consume();
  for (;;) {
    const int c = LA(1);
    if (c == '\\') {
      const int escaped = LA(2);
      if (escaped == eof || escaped == 0 || std::strchr("\\\"'[]", escaped) == nullptr) break;
      consume();
    } else if (!is_plain(c) || c == '\n' || c == '\r' || c == '"') {
      break;
    }
    consume();
  }
  expect('"');
  return STRING;
}

int TDMLexer::range()
{
  consume();
  expect('.');
  return KEY_RANGE;
}

int TDMLexer::slash()
{
  switch (LA(2)) {
  case '/':
    return single_line_comment();
  case '*':
    return multi_line_comment();
  case '=':
    pass();
    return single(DIV_EQUALS);
  default:
    return single(DIV);
  }
}

// The line end is part of the comment and must be there.
int TDMLexer::single_line_comment()
{
  while (LA(1) != '\r' && LA(1) != '\n') {
    if (LA(1) == eof) no_viable_alternative();
    pass();
  }
  line_end();
  return antlr::Token::SKIP;
}

int TDMLexer::multi_line_comment()
{
  pass();
  pass();
  for (;;) {
    const int c = LA(1);
    if (!is_plain(c)) break;
    if (c == '*' && (LA(2) == '/' || !is_plain(LA(2)))) break;
    if (c == '\r' || c == '\n')
      line_end();
    else
      pass();
  }
  expect('*');
  expect('/');
  return antlr::Token::SKIP;
}

int TDMLexer::operator_with_equals(int alone, int with_equals)
{
  const bool both = LA(2) == '=';
  pass();
  return both ? single(with_equals) : alone;
}

int TDMLexer::comparison(int alone, int doubled, int with_equals)
{
  const int first = LA(1);
  const int second = LA(2);
  pass();
  if (second == first) return single(doubled);
  return second == '=' ? single(with_equals) : alone;
}

int TDMLexer::doubled_operator(int alone, int doubled)
{
  const bool both = LA(2) == LA(1);
  pass();
  return both ? single(doubled) : alone;
}

int TDMLexer::single(int type)
{
  pass();
  return type;
}

void TDMLexer::expect(int c)
{
  if (LA(1) != c) throw antlr::MismatchedCharException(LA(1), c, false, this);
  consume();
}

void TDMLexer::no_viable_alternative()
{
  throw antlr::NoViableAltForCharException(LA(1), getFilename(), getLine(), getColumn());
}
