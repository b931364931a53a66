// Matches a subject by following the graph; what makes the graph is expression_compiler.cpp.
#include "layout/regular_expression.h"

#include "layout/expression_compiler.h"

RegularExpression::RegularExpression(std::string text, bool case_sensitive)
    : text_(std::move(text)), ignore_case_(!case_sensitive)
{
  tdm::ExpressionCompiler(*this).run();
}

bool RegularExpression::match(std::string_view subject, std::size_t start)
{
  prepare(here_);
  prepare(ahead_);
  subject_ = subject;
  first_ = start;
  steps_ = 0;
  begin_round(ahead_);
  for (std::size_t at = start; at <= subject.size() || at == start; ++at) {
    std::swap(here_, ahead_);
    begin_round(ahead_);
    // An attempt begins at each position; what is left of earlier ones waits in the set.
    add(here_, *start_);
    position_ = at;
    if (try_pending()) return true;
  }
  return false;
}

/// Tries all that waits at the position, and what follows there without moving; what moves on
/// waits for the next position. True when the end of the expression is reached.
bool RegularExpression::try_pending()
{
  const std::size_t here = position_;
  while (!here_.pending.empty()) {
    RENode &node = *here_.pending.back();
    here_.pending.pop_back();
    ++steps_;
    position_ = here;
    if (!node.match()) continue;
    if (node.next.empty()) return true;
    NodeSet &set = position_ == here ? here_ : ahead_;
    for (RENode *next : node.next) add(set, *next);
  }
  position_ = here;
  return false;
}

void RegularExpression::prepare(NodeSet &set)
{
  if (set.joined.size() == nodes_.size()) return;
  set.joined.assign(nodes_.size(), 0);
  set.pending.reserve(nodes_.size());
}

void RegularExpression::begin_round(NodeSet &set)
{
  ++set.round;
  set.pending.clear();
}

void RegularExpression::add(NodeSet &set, RENode &node)
{
  std::uint64_t &joined = set.joined[node.number];
  if (joined == set.round) return;
  joined = set.round;
  set.pending.push_back(&node);
}
