// Translates patterns to expressions, and tells which of them are plain names.
#include "layout/selection_pattern.h"

#include "common/failures.h"
#include "layout/name_matcher.h"
#include "layout/regular_expression.h"

namespace {

/// Whether the text is a plain name at first sight: nothing of it is an operator of a pattern or of
/// an expression. Most patterns are such names, and need neither translation nor graph.
bool obviously_plain(std::string_view text)
{
  return text.find_first_of("*?[]\\()|+") == std::string_view::npos;
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

TranslatedPattern translate_pattern(std::string_view pattern)
{
  TranslatedPattern result;
  result.expression.reserve(pattern.size() + pattern.size() / 4 + 2);
  result.plain.reserve(pattern.size());
  result.expression = "^";
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
TDMSelectionPattern::TDMSelectionPattern(std::string_view pattern_text,
                                         const TDMSourceLocation &location)
    : text_(pattern_text)
{
  if (obviously_plain(pattern_text)) return;
  literal_ = false;
  if (tdm::plainly_right(pattern_text)) return;
  tdm::TranslatedPattern translated = tdm::translate_pattern(pattern_text);
  try {
    auto expression = std::make_unique<RegularExpression>(std::move(translated.expression), true);
    literal_ = expression->literal();
    if (literal_)
      text_ = std::move(translated.plain);
    else
      matcher_ = std::make_unique<tdm::NameMatcher>(text_, std::move(expression));
  } catch (SyntaxError *error) {
    const std::string text = error->text();
    delete error;
    throw new TDMSyntaxException(location, "selection pattern error: " + text);
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
