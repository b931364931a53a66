// A stream over a text in memory, in the manner of the preprocessor's: characters come out of
// words, strings, comments and runs of white space, and the place of a character is that of the
// piece that the stream has reached. Fetching the last character of a piece moves on to the next.
#pragma once

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

#include "preprocessor/tdm_input_buffer.h"

class TextStream final : public TDMInputBuffer {
public:
  explicit TextStream(std::string_view text) : text_(text) { enter_piece(); }

  int getChar() override
  {
    if (at_ == text_.size()) return -1;
    const char c = text_[at_++];
    if (c == '\n') {
      ++next_line_;
      next_column_ = 1;
    } else {
      ++next_column_;
    }
    if (at_ == piece_end_) enter_piece();
    return c == '\xFF' ? 0xFF : c; // signed, as the preprocessor has them
  }

  int getLine() const override { return line_; }
  int getColumn() const override { return column_; }
  const char *getFile() const override { return "text"; }

private:
  void enter_piece()
  {
    line_ = next_line_;
    column_ = next_column_;
    piece_end_ = end_of_piece();
  }

  [[nodiscard]] std::size_t end_of_piece() const
  {
    const std::string_view rest = std::string_view(text_).substr(at_);
    if (rest.empty()) return at_;
    std::size_t length = 1;
    if (rest.front() == '"') {
      while (length < rest.size() && rest[length] != '"' && rest[length] != '\n')
        length += rest[length] == '\\' ? 2 : 1;
      ++length;
    } else if (rest.starts_with("/*")) {
      length = rest.find("*/", 2) + 2;
    } else if (rest.starts_with("//")) {
      length = rest.find('\n');
    } else if (is_word(rest.front())) {
      while (length < rest.size() && is_word(rest[length])) ++length;
    } else if (is_doubled_operator(rest.substr(0, 2))) {
      length = 2;
    }
    return at_ + std::min(length, rest.size());
  }

  static bool is_word(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

  static bool is_doubled_operator(std::string_view two)
  {
    if (two.size() < 2) return false;
    if (two[1] == '=') return std::string_view("=!<>+-*/").find(two[0]) != two.npos;
    return two[0] == two[1] && std::string_view(".<>|&").find(two[0]) != two.npos;
  }

  std::string text_;
  std::size_t at_ = 0;
  std::size_t piece_end_ = 0;
  int line_ = 1;
  int column_ = 1;
  int next_line_ = 1;
  int next_column_ = 1;
};
