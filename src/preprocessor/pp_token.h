// A token of the preprocessor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "common/tdm_types.h"
#include "preprocessor/token_table.h"

namespace tdm {

/// The text is interned, so that texts compare by pointer, with two exceptions that save the pool
/// for names: a run of blanks or tabs, and a comment, whose text is good until the next token only.
/// Numbers below 0 are items of token lists that are no tokens (see token_list.h).
struct PpToken {
  const char *text = "";
  std::size_t length = 0;
  int number = tEOF;
  std::uint32_t link = 0; ///< of use in lists only
  tdm_srcpos position = {};

  [[nodiscard]] std::string_view view() const { return {text, length}; }
};

[[nodiscard]] inline bool is_white(int number)
{
  return number == tWHITE || number == tCOMMENT;
}

} // namespace tdm
