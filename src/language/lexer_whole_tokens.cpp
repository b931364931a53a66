// The lexer's short road: tokens of the preprocessor that are tokens of the language as they stand.
//
// What the preprocessor calls a name, a number or a string is nearly always one token here too, so
// the verdict is kept with the interned text, and the characters are looked at once for each text
// and not once for each use. What comes behind may still join the token (`a` before `.b`, `1` made
// by one macro before `2` made by another): then the rules go on from there.
//
// Both roads fetch from the stream in the same order and look at its place at the same moments, so
// that nobody can tell afterwards which one a token took.
#include <array>
#include <cstdint>
#include <cstring>

#include "language/characters.h"
#include "language/lexer.h"
#include "language/token_texts.h"
#include "preprocessor/string_pool.h"

namespace {

/// Kept in place of a type: the text is no whole token.
constexpr int not_whole = 1;

/// The tests that are made of whole texts, as bits of a table of bytes.
enum Class : std::uint8_t { decimal = 1, octal = 2, hexadecimal = 4, of_word = 8, unescaped = 16 };

constexpr std::array<std::uint8_t, 256> classes = [] {
  std::array<std::uint8_t, 256> table = {};
  for (int c = 0; c < 256; ++c) {
    std::uint8_t &entry = table[static_cast<std::size_t>(c)];
    if (tdm::is_digit(c)) entry |= decimal;
    if (tdm::is_octal_digit(c)) entry |= octal;
    if (tdm::is_hex_digit(c)) entry |= hexadecimal;
    if (tdm::is_word_character(c) && c != '.') entry |= of_word;
    if (tdm::is_unescaped(c)) entry |= unescaped;
  }
  return table;
}();

bool all(std::string_view text, Class wanted)
{
  for (const char c : text)
    if ((classes[static_cast<unsigned char>(c)] & wanted) == 0) return false;
  return true;
}

int type_of_number(std::string_view text)
{
  if (text[0] != '0') return all(text, decimal) ? TDMTokenTypes::DECIMAL_NUMBER : not_whole;
  if (text.size() > 2 && (text[1] == 'x' || text[1] == 'X'))
    return all(text.substr(2), hexadecimal) ? TDMTokenTypes::HEXADECIMAL_NUMBER : not_whole;
  return all(text, octal) ? TDMTokenTypes::OCTAL_NUMBER : not_whole;
}

// Strings with escapes take the long road.
int type_of_string(std::string_view text)
{
  if (text.size() < 2 || text.back() != '"') return not_whole;
  return all(text.substr(1, text.size() - 2), unescaped) ? TDMTokenTypes::STRING : not_whole;
}

int type_of(std::string_view text)
{
  if (tdm::is_digit(text[0])) return type_of_number(text);
  if (text[0] == '"') return type_of_string(text);
  const bool word = tdm::is_word_start(text[0]) && all(text, of_word);
  return word ? tdm::keyword_type(text, TDMTokenTypes::IDENTIFIER) : not_whole;
}

/// The verdict of the text, kept with it.
int kept_type_of(const tdm::PpToken &token)
{
  std::uint32_t &marks = tdm::pooled(token.text).marks;
  const std::uint32_t kept = marks >> tdm::mark_lexer_shift;
  if (kept != 0) return static_cast<int>(kept);
  const int type = type_of(token.view());
  marks |= static_cast<std::uint32_t>(type) << tdm::mark_lexer_shift;
  return type;
}

constexpr bool is_blank(int c)
{
  return c == ' ' || c == '\n' || c == '\t' || c == '\r' || c == '\f';
}

/// A newline, or white space but for a vertical tab; only blanks and tabs come in runs.
bool is_blank(const tdm::PpToken &token)
{
  return token.number == tNEWLINE || (token.number == tWHITE && is_blank(*token.text));
}

/// What a character is when it stands alone.
struct SingleCharacter {
  std::uint8_t type; ///< 0 where more has to be known
  std::uint8_t followed_by_equals;
};

constexpr std::array<SingleCharacter, 256> make_single_characters()
{
  using T = TDMTokenTypes;
  std::array<SingleCharacter, 256> table = {};
  table['$'] = {T::DOLLAR, 0};
  table['%'] = {T::MOD, 0};
  table['('] = {T::LPAREN, 0};
  table[')'] = {T::RPAREN, 0};
  table[','] = {T::COMMA, 0};
  table[';'] = {T::SEMICOLON, 0};
  table['?'] = {T::QMARK, 0};
  table['['] = {T::LBRACK, 0};
  table[']'] = {T::RBRACK, 0};
  table['^'] = {T::XOR, 0};
  table['{'] = {T::LCURLY, 0};
  table['}'] = {T::RCURLY, 0};
  table['~'] = {T::BITWISE_NOT, 0};
  table[':'] = {T::COLON, T::COLON_EQUALS};
  table['+'] = {T::PLUS, T::PLUS_EQUALS};
  table['-'] = {T::MINUS, T::MINUS_EQUALS};
  table['*'] = {T::MUL, T::MULT_EQUALS};
  table['!'] = {T::NOT, T::NOT_EQUALS};
  table['='] = {T::EQUALS, T::COMPARE_EQUAL};
  for (std::size_t digit = '1'; digit <= '9'; ++digit) table[digit] = {T::DECIMAL_NUMBER, 0};
  return table;
}

constexpr auto single_characters = make_single_characters();

bool has_high_byte(std::string_view text)
{
  std::uint64_t seen = 0;
  std::size_t i = 0;
  for (; i + sizeof seen <= text.size(); i += sizeof seen) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text.data() + i, sizeof bytes);
    seen |= bytes;
  }
  for (; i < text.size(); ++i) seen |= static_cast<unsigned char>(text[i]);
  return (seen & 0x8080808080808080) != 0;
}

} // namespace

// The rule of white space ends by looking at the first character of what is behind it. So the place
// of a token that is a single character is that of the token behind it, if white space came first.
int TDMLexer::quick_token(tdm::Lexeme &next)
{
  TDMPreprocessedFileInputStream &stream = tokens();
  const tdm::PpToken *token = &stream.current_token();
  bool behind_blanks = false;
  if (characters_held() > 0) {
    const int c = LA(1);
    const bool begun = characters_held() == 1 && stream.characters_taken() == 1;
    if (characters_held() == 2 || !is_blank(c)) {
      next.location = stream.place();
      if (begun) return whole_token(*token, next);
      return characters_held() == 1 ? single_character(c, next) : 0;
    }
    if (begun) token = &stream.skip_blanks();
    drop_held(1);
    behind_blanks = true;
  }
  for (; is_blank(*token); behind_blanks = true) token = &stream.skip_blanks();
  next.location = stream.start_of_token();
  if (token->length > 1) return whole_token(*token, next);
  const int c = look_behind();
  if (behind_blanks) next.location = stream.place();
  return single_character(c, next);
}

// The token that comes next; its first character may have been taken, for LA(1).
int TDMLexer::whole_token(const tdm::PpToken &token, tdm::Lexeme &next)
{
  if (token.number == tIDENT || token.number == tICON || token.number == tSTRING)
    return whole_text(token, next);
  return token.number == tCOMMENT ? whole_comment(token, next.location) : 0;
}

// A character that has been a token of the preprocessor, in the most frequent forms.
int TDMLexer::single_character(int c, tdm::Lexeme &next)
{
  if (c < 0) return 0;
  const SingleCharacter &known = single_characters[static_cast<std::size_t>(c)];
  if (known.type == 0) return 0;
  next.set_text(tdm::single_text(c));
  drop_held(1);
  if (known.followed_by_equals != 0) {
    if (look_behind() != '=') return known.type;
    drop_held(1);
    next.set_text(tdm::operator_texts[known.followed_by_equals]);
    return known.followed_by_equals;
  }
  if (known.type == DECIMAL_NUMBER && tdm::is_digit(look_behind())) return merged(known.type, next);
  return known.type;
}

int TDMLexer::whole_text(const tdm::PpToken &token, tdm::Lexeme &next)
{
  const int type = kept_type_of(token);
  if (type == not_whole) return 0;
  next.set_text(token.view());
  leave_out_token();
  if (type == STRING) return type;
  const int c = look_behind();
  bool goes_on = false;
  if (type < OCTAL_NUMBER || type > HEXADECIMAL_NUMBER)
    goes_on = tdm::is_word_character(c);
  else if (type == DECIMAL_NUMBER)
    goes_on = tdm::is_digit(c);
  else
    goes_on = type == OCTAL_NUMBER ? tdm::is_octal_digit(c) : tdm::is_hex_digit(c);
  return goes_on ? merged(type, next) : type;
}

// The token goes on in the next one of the preprocessor.
int TDMLexer::merged(int type, tdm::Lexeme &next)
{
  settle(next.location);
  text.assign(next.characters());
  state().column += static_cast<int>(next.length);
  type = rest_by_rule(type);
  keep_text(type, next);
  return type;
}

// The preprocessor has found the end of the comment, unless the input ended first; only characters
// that are refused here, and a CR, which ends a line comment, need a look.
int TDMLexer::whole_comment(const tdm::PpToken &token, const TDMSourceLocation &place)
{
  const std::string_view characters = token.view();
  if (characters[1] == '*') {
    const bool closed = characters.size() >= 4 && characters.ends_with("*/");
    if (!closed || has_high_byte(characters)) return 0;
    leave_out_token();
    return antlr::Token::SKIP;
  }
  if (characters.find('\r') != characters.npos) return 0;
  settle(place);
  if (characters.find('\t') == characters.npos)
    state().column += static_cast<int>(characters.size());
  else
    for (const char c : characters) advance(c);
  leave_out_token();
  return rest_by_rule(antlr::Token::SKIP);
}
