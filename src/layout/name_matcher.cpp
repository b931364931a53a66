// Finds what a pattern demands at both ends, and compiles the rest when it is asked for.
#include "layout/name_matcher.h"

#include "layout/selection_pattern.h"

namespace tdm {

namespace {

bool letter_or_digit(char c)
{
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/// The length of a set of letters, digits and ranges of them, from `[` to `]`; 0 for other sets.
std::size_t plain_set(std::string_view text)
{
  std::size_t at = 1;
  if (at < text.size() && text[at] == '^') ++at;
  const std::size_t first = at;
  for (; at < text.size() && letter_or_digit(text[at]); ++at)
    if (at + 2 < text.size() && text[at + 1] == '-') {
      if (!letter_or_digit(text[at + 2]) || text[at + 2] < text[at]) return 0;
      at += 2;
    }
  return at > first && at < text.size() && text[at] == ']' ? at + 1 : 0;
}

} // namespace

bool plainly_right(std::string_view pattern)
{
  bool wildcards = false;
  for (std::size_t at = 0;;) {
    at = pattern.find_first_of("*?[]\\()|+", at);
    if (at == std::string_view::npos) return wildcards;
    wildcards = true;
    const char c = pattern[at];
    const std::size_t length = c == '*' || c == '?' ? 1
                               : c == '['           ? plain_set(pattern.substr(at))
                                                    : 0;
    if (length == 0) return false;
    at += length;
  }
}

NameMatcher::NameMatcher(std::string_view pattern, std::unique_ptr<RegularExpression> expression)
    : pattern_(pattern), expression_(std::move(expression))
{
  // Operators of the expression can repeat the last character, or leave the ends to one side.
  if (pattern.find_first_of("()|+") == std::string_view::npos) find_ends();
}

void NameMatcher::find_ends()
{
  const std::string_view rest = std::string_view(pattern_).substr(read_prefix());
  const std::size_t last = rest.find_last_of("*?[]\\");
  if (last == std::string_view::npos || rest[last] == '\\') return;
  suffix_ = rest.substr(last + 1);
  free_between_ = rest.substr(0, last + 1).find_first_not_of('*') == std::string_view::npos;
}

/// Where in the pattern the prefix ends. An escaped letter may mean something else than itself.
std::size_t NameMatcher::read_prefix()
{
  std::size_t at = 0;
  for (; at < pattern_.size(); ++at) {
    const char c = pattern_[at];
    if (c == '*' || c == '?' || c == '[' || c == ']') break;
    if (c == '\\') {
      if (at + 1 == pattern_.size() || letter_or_digit(pattern_[at + 1])) break;
      ++at;
    }
    prefix_ += pattern_[at];
  }
  return at;
}

RegularExpression &NameMatcher::expression()
{
  if (expression_ == nullptr)
    expression_ = std::make_unique<RegularExpression>(translate_pattern(pattern_).expression, true);
  return *expression_;
}

} // namespace tdm
