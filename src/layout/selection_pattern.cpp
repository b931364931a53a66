// Translates patterns to expressions and asks these.
#include "layout/selection_pattern.h"

#include "common/failures.h"
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

TDMSelectionPattern::TDMSelectionPattern(std::string_view pattern_text,
                                         const TDMSourceLocation &location)
{
  if (obviously_plain(pattern_text)) {
    literal_ = pattern_text;
    return;
  }
  tdm::TranslatedPattern translated = tdm::translate_pattern(pattern_text);
  literal_ = std::move(translated.plain);
  try {
    regex_ = std::make_unique<RegularExpression>(std::move(translated.expression), true);
  } catch (SyntaxError *error) {
    const std::string text = error->text();
    delete error;
    throw new TDMSyntaxException(location, "selection pattern error: " + text);
  }
}

TDMSelectionPattern::~TDMSelectionPattern() = default;

const std::string *TDMSelectionPattern::literal_name() const
{
  return regex_ == nullptr || regex_->literal() ? &literal_ : nullptr;
}

bool TDMSelectionPattern::matches(std::string_view name) const
{
  // Plain names never reach the matcher.
  if (literal_name() != nullptr) return literal_ == name;
  return regex_->match(name, 0);
}
