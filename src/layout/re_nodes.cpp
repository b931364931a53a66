// What each node tests and takes.
#include "layout/re_nodes.h"

#include <algorithm>
#include <cctype>

#include "layout/regular_expression.h"
#include "layout/state_table.h"

namespace {

char upper(char c)
{
  return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

signed char upper(signed char c)
{
  return static_cast<signed char>(upper(static_cast<char>(c)));
}

} // namespace

bool RENode::match()
{
  return true;
}

bool REBeginOfStringNode::match()
{
  return owner().position() == owner().first();
}

bool REEndOfStringNode::match()
{
  return owner().at_end();
}

bool RELiteralNode::match()
{
  RegularExpression &at = owner();
  if (at.at_end()) return false;
  const bool same =
      at.ignores_case() ? upper(at.current()) == upper(character_) : at.current() == character_;
  if (same) at.advance();
  return same;
}

void RELiteralNode::separate(tdm::CharacterClasses &classes) const
{
  const auto plain = static_cast<signed char>(character_);
  classes.separate(plain, plain);
}

bool REWildcardNode::match()
{
  if (owner().at_end()) return false;
  owner().advance();
  return true;
}

bool RESetNode::match()
{
  RegularExpression &at = owner();
  if (at.at_end() || contains(at.current()) == negated_) return false;
  at.advance();
  return true;
}

void RESetNode::separate(tdm::CharacterClasses &classes) const
{
  for (const auto &[low, high] : ranges_) classes.separate(low, high);
}

bool RESetNode::contains(char character) const
{
  const auto plain = static_cast<signed char>(character);
  if (!owner().ignores_case())
    return std::any_of(ranges_.begin(), ranges_.end(), [plain](const Range &range) {
      return range.first <= plain && plain <= range.second;
    });
  const signed char folded = upper(plain);
  return std::any_of(ranges_.begin(), ranges_.end(), [folded](const Range &range) {
    return upper(range.first) <= folded && folded <= upper(range.second);
  });
}
