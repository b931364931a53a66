// A reader of the lines around the group.
#include "preprocessor/guarded_text.h"

#include "preprocessor/scanner_parts.h"

namespace tdm {

namespace {

class Outside {
public:
  explicit Outside(std::string_view text) : text_(text) {}

  void go_to(std::size_t place, std::uint32_t line)
  {
    place_ = place;
    line_ = line;
  }

  // Blanks and comments; the line goes on.
  void pass_rest()
  {
    const std::uint32_t line = line_;
    while (pass_blanks() || (pass_comment() && line_ == line)) {
    }
  }

  void pass_lines()
  {
    while (pass_blanks() || pass_newline() || pass_comment()) {
    }
  }

  // For the lexer the newline behind a line comment belongs to the comment, and what comes next
  // doesn't stand behind white space then. This shows in places, so such comments aren't passed.
  void pass_last_lines()
  {
    while (pass_blanks() || pass_newline() || (next() == '/' && at(1) == '*' && pass_comment())) {
    }
  }

  bool pass_newline()
  {
    if (next() != '\n') return false;
    ++line_;
    return pass_token(1);
  }

  // "#" and the name of a directive.
  bool pass_directive(std::string_view name)
  {
    pass_blanks();
    if (next() != '#') return false;
    pass_token(1);
    pass_blanks();
    return name_here() == name && pass_token(name.size());
  }

  bool pass_name()
  {
    const std::string_view name = name_here();
    return !name.empty() && !has_part(name.front(), is_digit) && pass_token(name.size());
  }

  bool pass_blanks()
  {
    std::size_t length = 0;
    while (start_of(at(length)) == Start::blank) ++length;
    return length > 0 && pass_token(length);
  }

  [[nodiscard]] bool at_end() const { return place_ == text_.size(); }
  [[nodiscard]] std::uint32_t line() const { return line_; }
  [[nodiscard]] std::uint32_t tokens() const { return tokens_; }

private:
  [[nodiscard]] char at(std::size_t distance) const
  {
    return place_ + distance < text_.size() ? text_[place_ + distance] : '\0';
  }
  [[nodiscard]] char next() const { return at(0); }

  bool pass_token(std::size_t length)
  {
    place_ += length;
    ++tokens_;
    return true;
  }

  [[nodiscard]] std::string_view name_here() const
  {
    std::size_t length = 0;
    while (has_part(static_cast<unsigned char>(at(length)), in_name)) ++length;
    return text_.substr(place_, length);
  }

  // Comments of one piece that nothing has to be said about.
  bool pass_comment()
  {
    if (next() != '/' || (at(1) != '*' && (at(1) != '/' || !scanner.line_comments))) return false;
    const std::string_view rest = text_.substr(place_);
    const bool line = at(1) == '/';
    const std::size_t end = rest.find(line ? "\n" : "*/", 2);
    if (end == rest.npos) return false;
    const std::string_view comment = rest.substr(0, line ? end : end + 2);
    if (comment.find_first_of(std::string_view("\\?\0", 3)) != comment.npos) return false;
    if (!line && comment.find("/*", 1) != comment.npos) return false;
    for (const char c : comment) {
      if (!line && static_cast<unsigned char>(c) > 127) return false; // the lexer refuses it
      if (c == '\n') ++line_;
    }
    return pass_token(comment.size());
  }

  std::string_view text_;
  std::size_t place_ = 0;
  std::uint32_t line_ = 1;
  std::uint32_t tokens_ = 0;
};

} // namespace

GuardedText find_guard(std::string_view text, std::uint32_t opening_line, std::size_t closing,
                       std::uint32_t closing_line)
{
  Outside outside(text);
  outside.pass_lines();
  if (outside.line() != opening_line || !outside.pass_directive("ifndef") ||
      !outside.pass_blanks() || !outside.pass_name())
    return {};
  outside.pass_rest();
  if (outside.line() != opening_line || !outside.pass_newline()) return {};
  outside.go_to(closing, closing_line);
  if (!outside.pass_directive("endif")) return {};
  outside.pass_rest();
  if (outside.line() != closing_line || !outside.pass_newline()) return {};
  outside.pass_last_lines();
  if (!outside.at_end() || text.back() != '\n') return {};
  return {opening_line, closing_line, outside.line() - 1, outside.tokens()};
}

} // namespace tdm
