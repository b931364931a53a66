// c-scanner: turns the characters of the input stack into preprocessor tokens.
//
// White space, newlines and comments are tokens too, and every token keeps its text as it was
// written. Tokens that lie whole in a block and hold no backslash and no question mark in front of
// another one are read straight from the block with table lookups; all others go through
// input_next_char, character by character. Both ways use the same recogniser, and only the second
// one reports. Nothing is evaluated here.
#pragma once

#include <string_view>
#include <vector>

#include "preprocessor/pp_token.h"

namespace tdm {

void scanner_start();
void scanner_stop();

/// The interned text of a table row.
[[nodiscard]] const char *token_text(int number);

/// Scans a text on its own, with no splices and no trigraphs, and appends its tokens. All their
/// texts are interned.
void scanner_scan_text(std::string_view text, std::vector<PpToken> &tokens);

/// The token with a text that lasts, and has the address of its equals.
void keep_text(PpToken &token);

} // namespace tdm

/// Reads one token. The record is the scanner's own and good until the next call. With `want_text`
/// off the texts of names, numbers and strings are left empty, for tokens that are dropped.
const tdm::PpToken &scanner_next_token(bool want_text = true);

/// From here to the end of the line a token that starts with " or < is a file name.
void scanner_set_header_mode();

/// Puts a text in front of the input.
void scanner_push_back(std::string_view text);
