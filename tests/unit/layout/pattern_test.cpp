// Selection patterns: their translation, the graphs of their expressions, and what they match.
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "common/failures.h"
#include "layout/regular_expression.h"
#include "layout/selection_pattern.h"
#include "unit/rows.h"

namespace {

using tdm_test::Row;
using tdm_test::rows;

tdm::Text text_of(const std::string &text)
{
  return tdm::Text(std::string_view(text));
}

TEST(PatternTranslation, CharacterByCharacter)
{
  for (const Row &row : rows("layout/patterns.json", "CharacterByCharacter")) {
    const tdm::TranslatedPattern translated = tdm::translate_pattern(row[0]);
    EXPECT_EQ(translated.expression, row[1]) << row[0];
    EXPECT_EQ(translated.plain, row[2]) << row[0];
  }
}

std::string shown(int character)
{
  if (character > ' ' && character < 127) return std::string(1, static_cast<char>(character));
  return "#" + std::to_string(character);
}

/// `0>2; 1; 2'a'>1` : number, test, and the numbers of what follows, for each node in order.
std::string dump(const RegularExpression &expression)
{
  std::ostringstream out;
  for (const auto &node : expression.nodes()) {
    if (node->number != 0) out << "; ";
    out << node->number;
    if (&expression.start() == node.get()) out << "!";
    if (const auto *literal = dynamic_cast<const RELiteralNode *>(node.get()))
      out << "'" << shown(literal->character()) << "'";
    if (dynamic_cast<const REWildcardNode *>(node.get()) != nullptr) out << ".";
    if (dynamic_cast<const REBeginOfStringNode *>(node.get()) != nullptr) out << "^";
    if (dynamic_cast<const REEndOfStringNode *>(node.get()) != nullptr) out << "$";
    if (const auto *set = dynamic_cast<const RESetNode *>(node.get())) {
      out << (set->negated() ? "[^" : "[");
      for (const auto &[low, high] : set->ranges())
        out << shown(low) << (low == high ? "" : "-" + shown(high));
      out << "]";
    }
    for (std::size_t i = 0; i < node->next.size(); ++i)
      out << (i == 0 ? ">" : ",") << node->next[i]->number;
  }
  return out.str();
}

/// The graph, or the text of the error.
std::string compiled(const std::string &text)
{
  try {
    return dump(RegularExpression(text, true));
  } catch (SyntaxError *error) {
    std::string shown_text = error->text();
    delete error;
    return shown_text;
  }
}

TEST(RegularExpression, GraphsAndErrors)
{
  for (const char *table : {"Graphs", "Errors"})
    for (const Row &row : rows("layout/patterns.json", table))
      EXPECT_EQ(compiled(row[0]), row[1]) << row[0];
}

TEST(RegularExpression, CaseAndStart)
{
  RegularExpression folded("^x[a-c]\\u0053$", false);
  EXPECT_TRUE(folded.match("XBs", 0));
  EXPECT_FALSE(folded.match("XDs", 0));
  RegularExpression anchored("^b", true);
  EXPECT_FALSE(anchored.match("ab", 0));
  EXPECT_TRUE(anchored.match("ab", 1)); // `^` is where the search begins
  RegularExpression free("b", true);
  EXPECT_TRUE(free.match("aab", 0));
  EXPECT_FALSE(free.match("ba", 1));
  EXPECT_FALSE(free.match("ab", 5));
}

TEST(SelectionPattern, Matches)
{
  for (const Row &row : rows("layout/patterns.json", "Matches"))
    EXPECT_EQ(TDMSelectionPattern(text_of(row[0]), {}).matches(row[1]), row[2] == "true")
        << row[0] << " on " << row[1];
}

TEST(SelectionPattern, PlainNames)
{
  for (const Row &row : rows("layout/patterns.json", "PlainNames")) {
    const TDMSelectionPattern pattern(text_of(row[0]), {});
    const tdm::Text *name = pattern.literal_name();
    EXPECT_EQ(name != nullptr ? *name : "<none>", row[1]) << row[0];
  }
}

TEST(SelectionPattern, ErrorsHaveThePlaceAndThePositionInTheExpression)
{
  const TDMSourceLocation place{"f.tdm", 3, 7};
  for (const Row &row :
       rows("layout/patterns.json", "ErrorsHaveThePlaceAndThePositionInTheExpression")) {
    try {
      const TDMSelectionPattern pattern(text_of(row[0]), place);
      ADD_FAILURE() << row[0] << " is accepted";
    } catch (TDMSyntaxException *failure) {
      EXPECT_EQ(failure->text(),
                "[\"f.tdm\" 3/7] syntax error: selection pattern error: " + row[1]);
      delete failure;
    }
  }
}

/// A slow matcher that reads the expression anew for every question. Answers with sets of
/// positions, a bit for each: where a part of the expression can end if it begins in the set.
class PlainMatcher {
public:
  PlainMatcher(const std::string &text, const std::string &subject) : text_(text), subject_(subject)
  {
  }

  /// Nothing if the expression is wrong.
  std::optional<bool> run()
  {
    const unsigned everywhere = (2U << subject_.size()) - 1;
    const unsigned ends = alternatives(everywhere);
    if (wrong_ || at_ != text_.size()) return std::nullopt;
    return ends != 0;
  }

private:
  bool ends_sequence() const
  {
    return at_ == text_.size() || text_[at_] == ')' || text_[at_] == '|';
  }

  unsigned alternatives(unsigned from)
  {
    unsigned ends = sequence(from);
    while (!wrong_ && at_ < text_.size() && text_[at_] == '|') {
      ++at_;
      ends |= sequence(from);
    }
    return ends;
  }

  unsigned sequence(unsigned from)
  {
    wrong_ = wrong_ || ends_sequence();
    while (!wrong_ && !ends_sequence()) from = item(from);
    return from;
  }

  unsigned item(unsigned from)
  {
    const std::size_t begin = at_;
    unsigned ends = atom(from);
    const char repetition = at_ < text_.size() ? text_[at_] : '\0';
    if (wrong_ || (repetition != '*' && repetition != '+' && repetition != '?')) return ends;
    if (repetition != '?')
      for (unsigned more = ends, old = 0; more != old;) {
        old = more;
        at_ = begin;
        more |= atom(more);
        ends = more;
      }
    ++at_;
    return repetition == '+' ? ends : ends | from;
  }

  unsigned atom(unsigned from)
  {
    const char c = text_[at_++];
    switch (c) {
    case '(': {
      const unsigned ends = alternatives(from);
      wrong_ = wrong_ || at_ == text_.size() || text_[at_] != ')';
      ++at_;
      return ends;
    }
    case '*':
    case '+':
    case '?':
      wrong_ = true;
      return 0;
    case '^':
    case '$':
      // An anchor takes no repetition.
      wrong_ = at_ < text_.size() && (text_[at_] == '*' || text_[at_] == '?');
      return from & (c == '^' ? 1U : 1U << subject_.size());
    default:
      break;
    }
    unsigned ends = 0;
    for (std::size_t i = 0; i < subject_.size(); ++i)
      if ((from >> i & 1U) != 0 && (c == '.' || subject_[i] == c)) ends |= 2U << i;
    return ends;
  }

  const std::string &text_;
  const std::string &subject_;
  std::size_t at_ = 0;
  bool wrong_ = false;
};

/// Every text of the alphabet with up to `length` characters.
std::vector<std::string> all_texts(const std::string &alphabet, std::size_t length)
{
  std::vector<std::string> texts{""};
  for (std::size_t i = 0; i < texts.size(); ++i)
    if (texts[i].size() < length)
      for (const char c : alphabet) texts.push_back(texts[i] + c);
  return texts;
}

/// None to spare, so that all is done without the table; too few; all that are needed.
constexpr std::size_t room_for_states[] = {1, 3, tdm::StateTable::default_states};

TEST(RegularExpression, AgreesWithASlowMatcher)
{
  const std::vector<std::string> names = all_texts("ab", 4);
  std::vector<std::string> texts = all_texts("ab.*?|()^$", 4);
  for (std::string &text : all_texts("a*|()", 7)) texts.push_back(std::move(text));
  std::size_t accepted = 0;
  for (const std::string &text : texts) {
    std::vector<std::unique_ptr<RegularExpression>> expressions;
    try {
      for (const std::size_t max_states : room_for_states)
        expressions.push_back(std::make_unique<RegularExpression>(text, true, max_states));
      ++accepted;
    } catch (SyntaxError *error) {
      delete error;
    }
    for (const std::string &name : names) {
      const std::optional<bool> wanted = PlainMatcher(text, name).run();
      ASSERT_EQ(wanted.has_value(), !expressions.empty()) << text;
      for (const auto &expression : expressions)
        ASSERT_EQ(expression->match(name, 0), *wanted) << text << " on " << name;
      if (expressions.empty()) break;
    }
  }
  EXPECT_GT(accepted, 1000U);
}

TEST(RegularExpression, StepsStayNodesTimesLength)
{
  for (const auto &[text, length] : {std::pair{"^.*a.*a.*a.*a.*a.*a.*a.*a.*b$", 100'000},
                                     std::pair{"^((a*)*)*b$", 1000}, std::pair{"(a|a|.)*b", 1000}})
    for (const std::size_t max_states : room_for_states) {
      const std::string name(static_cast<std::size_t>(length), 'a');
      RegularExpression expression(text, true, max_states);
      EXPECT_FALSE(expression.match(name, 0));
      EXPECT_LE(expression.steps(), expression.nodes().size() * (name.size() + 1)) << text;
      EXPECT_TRUE(expression.match(name + "b", 0));
    }
}

TEST(RegularExpression, NoNodeIsTriedAgainWhileThereIsRoom)
{
  const std::string name(1000, 'a');
  for (const char *text : {"^.*a.*a.*a.*a.*b$", "^((a*)*)*b$", "(a|a|.)*b", "^a*[b-d]$"}) {
    RegularExpression expression(text, true);
    EXPECT_FALSE(expression.match(name, 0));
    const std::size_t nodes = expression.nodes().size();
    EXPECT_LE(expression.steps(), nodes * (nodes + 2)) << text;
    EXPECT_FALSE(expression.match(name + name, 0));
    EXPECT_EQ(expression.steps(), 0U) << text;
    RegularExpression without(text, true, 1);
    EXPECT_FALSE(without.match(name, 0));
    EXPECT_GT(without.steps(), name.size()) << text;
  }
}

/// What is nine characters before the end can only be told with a state for each text of nine.
TEST(RegularExpression, MoreStatesThanThereIsRoomFor)
{
  std::string text = "^(a|b)*a";
  for (int i = 0; i < 9; ++i) text += "(a|b)";
  RegularExpression expression(text + "$", true);
  unsigned random = 1;
  for (int round = 0; round < 500; ++round) {
    std::string name;
    while (name.size() < 60) name += (random = random * 69069U + 1U) >> 16U & 1U ? 'a' : 'b';
    EXPECT_EQ(expression.match(name, 0), name[50] == 'a') << name;
    EXPECT_LE(expression.steps(), expression.nodes().size() * (name.size() + 1));
  }
  EXPECT_GT(expression.steps(), 0U);
}

/// What a pattern looks at before its expression, and instead of it, changes no answer.
TEST(SelectionPattern, AgreesWithItsExpression)
{
  const std::vector<std::string> names = all_texts("ab*", 3);
  std::vector<std::string> patterns = all_texts("ab*?[]\\", 5);
  for (const char *alphabet : {"a*|()+", "a[-b]^", "a*\\d1u"})
    for (std::string &pattern : all_texts(alphabet, 5)) patterns.push_back(std::move(pattern));
  for (const std::string &text : patterns) {
    const tdm::TranslatedPattern translated = tdm::translate_pattern(text);
    std::string wanted_error;
    std::unique_ptr<RegularExpression> expression;
    try {
      expression = std::make_unique<RegularExpression>(translated.expression, true, 1);
    } catch (SyntaxError *error) {
      wanted_error = "syntax error: selection pattern error: " + error->text();
      delete error;
    }
    try {
      const TDMSelectionPattern pattern(text_of(text), {});
      ASSERT_NE(expression, nullptr) << text << " is accepted";
      ASSERT_EQ(pattern.literal_name() != nullptr, expression->literal()) << text;
      for (const std::string &name : names)
        ASSERT_EQ(pattern.matches(name),
                  expression->literal() ? name == translated.plain : expression->match(name, 0))
            << text << " on " << name;
    } catch (TDMSyntaxException *failure) {
      const std::string error = failure->text();
      delete failure;
      ASSERT_TRUE(!wanted_error.empty() && error.ends_with(wanted_error)) << text << ": " << error;
    }
  }
}

TEST(SelectionPattern, AnyDepthAndLength)
{
  const std::string nested = std::string(100'000, '(') + "a*" + std::string(100'000, ')');
  const TDMSelectionPattern deep(text_of(nested), {});
  EXPECT_TRUE(deep.matches("abc"));
  EXPECT_FALSE(deep.matches("b"));

  const std::string letters(1'000'000, 'a');
  const std::string and_one_more = letters + "?";
  const TDMSelectionPattern longest(text_of(and_one_more), {});
  EXPECT_TRUE(longest.matches(letters + "b"));
  EXPECT_FALSE(longest.matches(letters));
}

} // namespace
