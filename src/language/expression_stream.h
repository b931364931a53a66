// The text of a single expression as a stream of characters, for a lexer: no preprocessor stands
// before it, so the text has no macros and no directives.
//
// Behind the text comes a semicolon on a line of its own, since no expression of the language ends
// at the end of the input. Unlike a stream of tokens it knows the place of each character, and the
// lexer says how many it has fetched ahead.
#pragma once

#include <cstddef>
#include <string_view>

#include "common/source_location.h"
#include "preprocessor/tdm_input_buffer.h"

namespace tdm {

class ExpressionStream final : public TDMInputBuffer {
public:
  /// What the text is called where places are told.
  static constexpr const char *name = "<expression>";

  /// Views the text.
  explicit ExpressionStream(std::string_view text) : text_(text) {}

  int getChar() override
  {
    if (at_ < text_.size()) return static_cast<unsigned char>(text_[at_++]);
    const std::size_t behind = at_ - text_.size();
    if (behind == ending.size()) return -1;
    ++at_;
    return ending[behind];
  }

  int getLine() const override { return place(0).line; }
  int getColumn() const override { return place(0).column; }
  const char *getFile() const override { return name; }

  /// Of the character that was fetched last but so many, or of the end of the text.
  [[nodiscard]] TDMSourceLocation place(std::size_t fetched) const;
  [[nodiscard]] TDMSourceLocation end() const { return place_at(text_.size()); }

private:
  static constexpr std::string_view ending = "\n;";

  [[nodiscard]] TDMSourceLocation place_at(std::size_t position) const;

  std::string_view text_;
  std::size_t at_ = 0;
  // The beginning of the line that was asked for last: places are asked for in ascending order.
  mutable std::size_t line_begin_ = 0;
  mutable int line_ = 1;
};

} // namespace tdm
