// The texts of tokens that need no copy: operators and single characters.
#pragma once

#include <array>
#include <string_view>

#include "language/token_types.h"

namespace tdm {

/// The texts of the types up to DOLLAR; the rules of operators make none.
inline constexpr std::array<std::string_view, TDMTokenTypes::DOLLAR + 1> operator_texts = {
    "",   "",   "",   "",   "",   "[",  "]",  "{",  "}",  "(", ")", "=", ":=", "+",
    "+=", "-",  "-=", "*=", "/=", "!=", "==", "||", "&&", "&", "~", "*", "/",  "%",
    ">>", "<<", ">",  "<",  ">=", "<=", "^",  "|",  ",",  ":", ";", "!", "?",  "$"};

/// Each character as a text.
struct SingleTexts {
  char text[128][2] = {};
};

constexpr SingleTexts make_single_texts()
{
  SingleTexts texts;
  for (int c = 0; c < 128; ++c) texts.text[c][0] = static_cast<char>(c);
  return texts;
}

inline constexpr SingleTexts single_texts = make_single_texts();

inline std::string_view single_text(int c)
{
  return {single_texts.text[c], 1};
}

} // namespace tdm
