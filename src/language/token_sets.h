// Sets of token types, and those by which the parser decides: what an expression can start with,
// what can follow it, and the like.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>

#include "language/token_types.h"

namespace tdm {

class TokenSet {
public:
  constexpr TokenSet(std::initializer_list<int> types)
  {
    for (const int type : types) add(type);
  }

  [[nodiscard]] constexpr bool contains(int type) const
  {
    const auto index = static_cast<unsigned>(type);
    return (words_[index / 64] >> (index % 64) & 1U) != 0;
  }

  [[nodiscard]] constexpr TokenSet operator|(const TokenSet &other) const
  {
    TokenSet both = *this;
    for (std::size_t i = 0; i < words_.size(); ++i) both.words_[i] |= other.words_[i];
    return both;
  }

private:
  constexpr void add(int type)
  {
    const auto index = static_cast<unsigned>(type);
    words_[index / 64] |= std::uint64_t{1} << (index % 64);
  }

  std::array<std::uint64_t, (TDMTokenTypes::NUMBER_OF_TYPES + 63) / 64> words_ = {};
};

struct TokenSets : TDMTokenTypes {
  static constexpr TokenSet identifier_start = {IDENTIFIER,        KEY_absolute, KEY_ranged,
                                                KEY_exec_priority, KEY_crc32,    KEY_crc32w};

  static constexpr TokenSet number_start = {OCTAL_NUMBER, DECIMAL_NUMBER, HEXADECIMAL_NUMBER};

  static constexpr TokenSet builtin_start = {KEY_absolute, KEY_addressof, KEY_defined,
                                             KEY_exists,   KEY_max,       KEY_min,
                                             KEY_sizeof,   KEY_checksum};

  static constexpr TokenSet expression_start = identifier_start | number_start | builtin_start |
                                               TokenSet{STRING, LPAREN, NOT, BITWISE_NOT, MINUS};

  /// What can stand behind a whole expression.
  static constexpr TokenSet expression_end = {LBRACK, RBRACK,    RPAREN,   COMMA,
                                              COLON,  SEMICOLON, KEY_RANGE};

  /// What can stand behind an operand of an expression, and behind any other number.
  static constexpr TokenSet operand_end =
      expression_end | TokenSet{PLUS,          MINUS,      MUL,           DIV,        MOD,
                                SHIFT_RIGHT,   SHIFT_LEFT, GREATER,       LESS,       LESS_EQUAL,
                                GREATER_EQUAL, NOT_EQUALS, COMPARE_EQUAL, LOGICAL_OR, LOGICAL_AND,
                                BITWISE_AND,   XOR,        BAR,           QMARK};

  /// Behind a tag list stands a body, or the first end of a reserved range.
  static constexpr TokenSet tag_list_end = expression_start | TokenSet{LCURLY};

  static constexpr TokenSet statement_start = {STRING,      KEY_select,    KEY_reserved, KEY_stack,
                                               KEY_heap,    KEY_copytable, KEY_memcopy,  KEY_group,
                                               KEY_section, KEY_struct,    KEY_if,       LCURLY};

  /// Behind an element of a list.
  static constexpr TokenSet list_end = {COMMA, RPAREN};

  static constexpr TokenSet memory_name_end = {LBRACK, RPAREN, DIV, BAR, COMMA};
};

} // namespace tdm
