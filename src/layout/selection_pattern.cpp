// Translates patterns to expressions, and tells which of them are plain names.
#include "layout/selection_pattern.h"

#include <array>
#include <cstdint>

#include "common/failures.h"
#include "layout/name_matcher.h"
#include "layout/regular_expression.h"
#include "preprocessor/string_pool.h"

namespace {

/// Whether each character is an operator of a pattern or of an expression.
constexpr std::array<bool, 256> operators = [] {
  std::array<bool, 256> result{};
  for (const char c : {'*', '?', '[', ']', '\\', '(', ')', '|', '+'})
    result[static_cast<unsigned char>(c)] = true;
  return result;
}();

/// The length of a set of letters, digits and ranges of them, from `[` to `]`; 0 for other sets.
std::size_t plain_set(std::string_view text)
{
  const auto plain = [text](std::size_t at) {
    const char c = at < text.size() ? text[at] : '\0';
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  };
  const std::size_t first = text.starts_with("[^") ? 2 : 1;
  std::size_t at = first;
  for (; plain(at); ++at)
    if (at + 1 < text.size() && text[at + 1] == '-') {
      if (!plain(at + 2) || text[at + 2] < text[at]) return 0;
      at += 2;
    }
  return at > first && at < text.size() && text[at] == ']' ? at + 1 : 0;
}

/// The expression for one character of a pattern that isn't escaped.
void append_unescaped(std::string &expression, char c, bool behind_bracket)
{
  switch (c) {
  case '*':
    expression += ".*";
    return;
  case '?':
    expression += '.';
    return;
  case '^':
    // At the start of a set it negates the set.
    expression += behind_bracket ? "^" : "\\^";
    return;
  case '.':
  case '$':
    expression += '\\';
    break;
  default:
    break;
  }
  expression += c;
}

} // namespace

namespace tdm {

PatternKind kind_of_pattern(std::string_view pattern)
{
  PatternKind kind = PatternKind::plain;
  for (std::size_t at = 0; at < pattern.size(); ++at) {
    const char c = pattern[at];
    if (!operators[static_cast<unsigned char>(c)]) continue;
    kind = PatternKind::right;
    if (c == '*' || c == '?') continue;
    const std::size_t set = c == '[' ? plain_set(pattern.substr(at)) : 0;
    if (set == 0) return PatternKind::unclear;
    at += set - 1;
  }
  return kind;
}

TranslatedPattern translate_pattern(std::string_view pattern)
{
  TranslatedPattern result;
  result.expression.reserve(pattern.size() + pattern.size() / 4 + 2);
  result.plain.reserve(pattern.size());
  result.expression += '^';
  bool escaped = false;
  bool behind_bracket = false;
  for (const char c : pattern) {
    if (c == '\\' && !escaped) {
      escaped = true;
      behind_bracket = false;
      continue;
    }
    if (escaped)
      (result.expression += '\\') += c;
    else
      append_unescaped(result.expression, c, behind_bracket);
    result.plain += c;
    behind_bracket = c == '[' && !escaped;
    escaped = false;
  }
  result.expression += '$';
  return result;
}

} // namespace tdm

/// What can be wrong is compiled at once; the rest when a name is first compared with it.
TDMSelectionPattern::TDMSelectionPattern(tdm::Text pattern_text, const TDMSourceLocation &location)
    : text_(pattern_text)
{
  const tdm::PatternKind kind = tdm::kind_of_pattern(pattern_text);
  literal_ = kind == tdm::PatternKind::plain;
  if (kind != tdm::PatternKind::unclear) return;
  tdm::TranslatedPattern translated = tdm::translate_pattern(pattern_text);
  try {
    auto expression = std::make_unique<RegularExpression>(std::move(translated.expression), true);
    literal_ = expression->literal();
    if (literal_)
      text_ = tdm::pooled_text(translated.plain);
    else
      matcher_ = std::make_unique<tdm::NameMatcher>(text_, std::move(expression));
  } catch (SyntaxError *error) {
    const std::unique_ptr<SyntaxError> owned(error);
    throw new TDMSyntaxException(location, "selection pattern error: " + owned->text());
  }
}

TDMSelectionPattern::~TDMSelectionPattern() = default;

bool TDMSelectionPattern::matches(std::string_view name) const
{
  return literal_ ? text_ == name : matcher().matches(name);
}

tdm::NameMatcher &TDMSelectionPattern::matcher() const
{
  if (matcher_ == nullptr) matcher_ = std::make_unique<tdm::NameMatcher>(text_, nullptr);
  return *matcher_;
}
