// What the two roads of the scanner share: how bytes are classed, the recogniser's loop, the rules
// of numbers and digraphs, and the state. Besides the roads, only what reads guards looks in here.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "preprocessor/c_buffer.h"
#include "preprocessor/pp_token.h"
#include "preprocessor/string_pool.h"

namespace tdm {

// How a token begins, by its first byte.
enum class Start : std::uint8_t {
  other,
  name,
  number,
  blank,
  newline,
  quote,
  slash,
  single, // a punctuator that begins no other one
  special // may be or begin a splice, a trigraph or the end of the block
};

// What a byte may be part of.
enum Part : std::uint8_t {
  in_name = 1,       // letters, digits, "_"
  is_digit = 2,      // 0 to 9
  stops_string = 4,  // quotes, newline, and what needs the other road
  stops_comment = 8, // "*", "/", and what needs a look or the other road
  stops_line = 16,   // newline, and what needs the other road
};

struct ByteTables {
  std::array<Start, 256> start{};
  std::array<std::uint8_t, 256> part{};
};

constexpr ByteTables make_byte_tables()
{
  ByteTables tables;
  const auto set = [&tables](std::string_view bytes, Start start, int part) {
    for (const char c : bytes) {
      tables.start[static_cast<unsigned char>(c)] = start;
      tables.part[static_cast<unsigned char>(c)] |= static_cast<std::uint8_t>(part);
    }
  };
  set("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_", Start::name, in_name);
  set("0123456789", Start::number, in_name | is_digit);
  set(" \t", Start::blank, 0);
  set("\n", Start::newline, stops_string | stops_line);
  set("\"'", Start::quote, stops_string);
  set("()[]{},;~", Start::single, 0);
  set("*", Start::other, stops_comment);
  set("/", Start::slash, stops_comment);
  set(std::string_view("\\?\0", 3), Start::special, stops_string | stops_comment | stops_line);
  return tables;
}

inline constexpr ByteTables byte_tables = make_byte_tables();

inline Start start_of(char c)
{
  return byte_tables.start[static_cast<unsigned char>(c)];
}

inline bool has_part(int c, int part)
{
  return c >= 0 && (byte_tables.part[static_cast<std::size_t>(c)] & part) != 0;
}

/// What the scanner is at.
struct ScannerState {
  PpToken token; ///< the one that is handed out
  TextBuffer buffer{100};
  const char *texts[token_count];
  const char *no_text;
  bool header_mode;
  bool keep_comments;
  bool kanji;
  bool line_comments;
  bool want_text;
  bool intern_strings;     ///< in every stream but the first one of a pool
  std::uint32_t last_pool; ///< the pool of the latest stream
};
[[gnu::visibility("hidden")]] extern ScannerState scanner;

/// Reads a token by logical characters, whatever is in it.
const PpToken &by_character();

// Follows the transition table; gives the state reached. A state that doesn't go on ends the match
// without a look at the next character.
template <class Source> int match(Source &source)
{
  int at = 0;
  do {
    const int c = source.peek();
    if (c < 0 || c > 127) break;
    const int next = recogniser.next[static_cast<std::size_t>(at)][static_cast<std::size_t>(c)];
    if (next == 0) break;
    source.take();
    at = next;
  } while (recogniser.goes_on[static_cast<std::size_t>(at)]);
  return at;
}

inline bool is_hex_digit(int c)
{
  return has_part(c, is_digit) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// The rest of a number, behind its first digit or "." and digit; gives tICON or tFCON.
template <class Source> int read_number(Source &source, bool leading_zero, bool seen_dot)
{
  bool hex = false;
  int last = 0;
  if (leading_zero && (source.peek() | 0x20) == 'x') {
    source.take();
    hex = true;
  }
  int c = source.peek();
  for (; (hex ? is_hex_digit(c) : has_part(c, is_digit)) || c == '.'; c = source.peek()) {
    if (c == '.') seen_dot = true;
    last = c;
    source.take();
  }
  const char exponent = hex ? 'p' : 'e';
  const int number = seen_dot || (c >= 0 && (c | 0x20) == exponent) ? tFCON : tICON;
  for (; has_part(c, in_name) || c == '.' || ((c == '+' || c == '-') && (last | 0x20) == exponent);
       c = source.peek()) {
    last = c;
    source.take();
  }
  return number;
}

inline int without_digraph(int number)
{
  switch (number) {
  case tLSQB2:
  case tRSQB2:
  case tLBRA2:
  case tRBRA2:
  case tHASH2:
  case tCONCAT2:
    return number - 1;
  default:
    return number;
  }
}

inline void set_text(const char *text, std::size_t length)
{
  scanner.token.text = text;
  scanner.token.length = length;
}

inline void set_interned(std::string_view text)
{
  if (scanner.want_text)
    set_text(intern(text), text.size());
  else
    set_text(scanner.no_text, 0);
}

inline void set_table_text(int number)
{
  set_text(scanner.texts[number], token_table[number].pattern.size());
}

} // namespace tdm
