// Finds what a pattern demands at both ends, and compiles the rest when it is asked for.
#include "layout/name_matcher.h"

#include "layout/selection_pattern.h"

namespace tdm {

namespace {

bool letter_or_digit(char c)
{
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

} // namespace

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

/// The pattern has no operators but wildcards and sets. A name matches one that ends in `*` as soon
/// as its beginning matches what is before that; so the expression isn't anchored at that end.
RegularExpression &NameMatcher::expression()
{
  if (expression_ == nullptr) {
    const std::string_view pattern = pattern_;
    const std::size_t length = pattern.find_last_not_of('*') + 1;
    std::string text = translate_pattern(pattern.substr(0, length)).expression;
    if (length != pattern.size()) text.pop_back();
    expression_ = std::make_unique<RegularExpression>(std::move(text), true);
  }
  return *expression_;
}

} // namespace tdm
