// What characters are in the lexer's rules. Values are those of unsigned bytes, or negative for the
// end of input; a char may be passed as it is, for the ones that count are below 128.
#pragma once

namespace tdm {

constexpr bool is_digit(int c)
{
  return c >= '0' && c <= '9';
}

constexpr bool is_octal_digit(int c)
{
  return c >= '0' && c <= '7';
}

constexpr bool is_hex_digit(int c)
{
  return is_digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

constexpr bool is_word_start(int c)
{
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

constexpr bool is_word_character(int c)
{
  return is_word_start(c) || is_digit(c) || c == '.';
}

/// The characters of which comments and strings are made.
constexpr bool is_plain(int c)
{
  return c >= 0 && c <= 127;
}

/// What stands for itself in a string.
constexpr bool is_unescaped(int c)
{
  return is_plain(c) && c != '\n' && c != '\r' && c != '"' && c != '\\';
}

} // namespace tdm
