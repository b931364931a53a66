// Reads an expression from left to right and links the nodes as the rules are complete.
#include "layout/expression_compiler.h"

namespace tdm {

void ExpressionCompiler::run()
{
  open_group();
  while (!at_end()) read_piece();
  if (groups_.size() > 1) refuse();
  end_sequence();
  expression_.start_ = groups_.back().alternatives.entry;
}

void ExpressionCompiler::read_piece()
{
  switch (text_[position_]) {
  case '(':
    ++position_;
    static_cast<void>(current()); // something has to follow
    return open_group();
  case ')':
    return close_group();
  case '|':
    end_sequence();
    ++position_;
    return;
  case '*':
  case '+':
  case '?':
  case ']':
    refuse();
  case '^': {
    ++position_;
    RENode *node = make<REBeginOfStringNode>();
    return append({node, node});
  }
  case '$': {
    ++position_;
    RENode *node = make<REEndOfStringNode>();
    return append({node, node});
  }
  default:
    return append_item(plain_atom());
  }
}

void ExpressionCompiler::open_group()
{
  RENode *entry = make<RENode>();
  RENode *exit = make<RENode>();
  groups_.push_back({{entry, exit}, {}});
}

/// The sequence becomes one more of the alternatives. One without a piece is refused.
void ExpressionCompiler::end_sequence()
{
  Group &group = groups_.back();
  if (group.sequence.entry == nullptr) refuse();
  group.alternatives.entry->next.push_back(group.sequence.entry);
  group.sequence.exit->next.push_back(group.alternatives.exit);
  group.sequence = {};
}

void ExpressionCompiler::close_group()
{
  if (groups_.size() == 1) refuse();
  end_sequence();
  ++position_;
  const Fragment atom = groups_.back().alternatives;
  groups_.pop_back();
  append_item(atom);
}

void ExpressionCompiler::append(const Fragment &fragment)
{
  Fragment &sequence = groups_.back().sequence;
  if (sequence.entry == nullptr)
    sequence.entry = fragment.entry;
  else
    sequence.exit->next.push_back(fragment.entry);
  sequence.exit = fragment.exit;
}

void ExpressionCompiler::append_item(Fragment atom)
{
  const char following = at_end() ? '\0' : text_[position_];
  if (following == '*' || following == '+' || following == '?') {
    ++position_;
    atom = repeated(atom, following);
  }
  append(atom);
}

ExpressionCompiler::Fragment ExpressionCompiler::repeated(const Fragment &atom, char repetition)
{
  RENode *entry = make<RENode>();
  RENode *exit = make<RENode>();
  entry->next.push_back(atom.entry);
  atom.exit->next.push_back(exit);
  if (repetition != '+') entry->next.push_back(exit);
  if (repetition != '?') atom.exit->next.push_back(atom.entry);
  return {entry, exit};
}

ExpressionCompiler::Fragment ExpressionCompiler::plain_atom()
{
  RENode *node = nullptr;
  switch (const char c = take(); c) {
  case '[':
    node = set_atom();
    break;
  case '\\':
    node = escaped_atom();
    break;
  case '.':
    expression_.literal_ = false;
    node = make<REWildcardNode>();
    break;
  default:
    node = make<RELiteralNode>(c);
    break;
  }
  return {node, node};
}

RENode *ExpressionCompiler::escaped_atom()
{
  switch (current()) {
  case 'd':
    return make_class("09", false);
  case 'D':
    return make_class("09", true);
  case 's':
    return make_class("\f\f\n\n\r\r\t\t  ", false);
  case 'S':
    return make_class("\f\f\n\n\r\r\t\t  ", true);
  case 'w':
    return make_class("AZaz09__", false);
  case 'W':
    return make_class("AZaz09__", true);
  default:
    return make<RELiteralNode>(escaped_character());
  }
}

/// `ranges` has the ends of each range, one pair behind the other.
RENode *ExpressionCompiler::make_class(const char *ranges, bool negated)
{
  ++position_;
  expression_.literal_ = false;
  std::vector<RESetNode::Range> pairs;
  for (; *ranges != '\0'; ranges += 2)
    pairs.emplace_back(static_cast<signed char>(ranges[0]), static_cast<signed char>(ranges[1]));
  return make<RESetNode>(std::move(pairs), negated);
}

RENode *ExpressionCompiler::set_atom()
{
  expression_.literal_ = false;
  const bool negated = current() == '^';
  if (negated) ++position_;
  if (current() == ']') refuse();
  std::vector<RESetNode::Range> ranges;
  while (current() != ']') {
    if (current() == '-') refuse();
    const auto low = static_cast<signed char>(set_character());
    auto high = low;
    if (current() == '-') {
      ++position_;
      const std::size_t behind_dash = position_;
      if (current() == ']') refuse();
      high = static_cast<signed char>(set_character());
      if (high < low) refuse_at(behind_dash);
    }
    ranges.emplace_back(low, high);
  }
  ++position_;
  return make<RESetNode>(std::move(ranges), negated);
}

char ExpressionCompiler::set_character()
{
  const char c = take();
  return c == '\\' ? escaped_character() : c;
}

/// What an escape means that stands for one character.
char ExpressionCompiler::escaped_character()
{
  switch (const char c = take(); c) {
  case 'b':
  case 'B':
    return '\b';
  case 'f':
  case 'F':
    return '\f';
  case 'n':
  case 'N':
    return '\n';
  case 'r':
  case 'R':
    return '\r';
  case 't':
  case 'T':
    return '\t';
  case 'u':
  case 'U':
    return hexadecimal_character();
  default:
    return c;
  }
}

char ExpressionCompiler::hexadecimal_character()
{
  unsigned value = 0;
  for (int digit = 0; digit < 4; ++digit) {
    const char c = current();
    if (c >= '0' && c <= '9')
      value = value * 16 + static_cast<unsigned>(c - '0');
    else if (c >= 'a' && c <= 'f')
      value = value * 16 + static_cast<unsigned>(c - 'a' + 10);
    else if (c >= 'A' && c <= 'F')
      value = value * 16 + static_cast<unsigned>(c - 'A' + 10);
    else
      refuse();
    ++position_;
  }
  return static_cast<char>(value & 0xFFU);
}

template <typename Node, typename... Arguments>
RENode *ExpressionCompiler::make(Arguments &&...arguments)
{
  auto node = std::make_unique<Node>(expression_, std::forward<Arguments>(arguments)...);
  node->number = static_cast<std::uint32_t>(expression_.nodes_.size());
  expression_.nodes_.push_back(std::move(node));
  return expression_.nodes_.back().get();
}

char ExpressionCompiler::current() const
{
  if (at_end()) throw new SyntaxError("unexpected end of input");
  return text_[position_];
}

char ExpressionCompiler::take()
{
  const char c = current();
  ++position_;
  return c;
}

void ExpressionCompiler::refuse_at(std::size_t position)
{
  throw new SyntaxError("syntax error at " + std::to_string(position));
}

} // namespace tdm
