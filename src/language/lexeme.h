// A token on its way from the lexer to the parser: the light form, without the runtime's counting.
#pragma once

#include <cstddef>
#include <string_view>

#include "common/source_location.h"

namespace tdm {

struct Lexeme {
  int type = 0;
  /// The characters as they stood in the input, NUL-terminated; lives as long as the string pool.
  const char *text = "";
  std::size_t length = 0;
  TDMSourceLocation location;

  [[nodiscard]] std::string_view characters() const { return {text, length}; }
  void set_text(std::string_view characters)
  {
    text = characters.data();
    length = characters.size();
  }
};

} // namespace tdm
