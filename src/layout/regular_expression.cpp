// Matches a subject by following the graph; what makes the graph is expression_compiler.cpp.
#include "layout/regular_expression.h"

#include <algorithm>
#include <typeinfo>

#include "layout/expression_compiler.h"

using tdm::StateTable;

RegularExpression::RegularExpression(std::string text, bool case_sensitive, std::size_t max_states)
    : text_(std::move(text)), ignore_case_(!case_sensitive), max_states_(max_states)
{
  tdm::ExpressionCompiler(*this).run();
}

/// Goes from state to state of the table. Where that has no room, the rest goes without it.
bool RegularExpression::match(std::string_view subject, std::size_t start)
{
  if (table_ == nullptr) prepare();
  subject_ = subject;
  first_ = start;
  steps_ = 0;
  for (StateTable::Place place{StateTable::initial, start};; ++place.position) {
    place = table_->follow(place, subject);
    const bool at_end = place.position >= subject.size();
    StateTable::Cell next =
        at_end ? table_->at_end(place.state) : table_->behind(place.state, subject[place.position]);
    if (next == StateTable::unknown) {
      next = learn(place);
      if (next == StateTable::unknown) return match_without_table(place.position + 1);
    }
    if (!StateTable::is_state(next)) return next == StateTable::accepted;
    place.state = next;
  }
}

/// Finds by trying what a state leads to at its position. Unknown if that is a state for which the
/// table has no room; the nodes then wait in the set ahead.
StateTable::Cell RegularExpression::learn(const StateTable::Place &place)
{
  begin_round(here_);
  begin_round(ahead_);
  for (const std::uint32_t number : table_->nodes(place.state)) add(here_, *nodes_[number]);
  const bool matched = try_pending(place.position);
  if (place.position >= subject_.size()) {
    const StateTable::Cell verdict = matched ? StateTable::accepted : StateTable::refused;
    table_->learn_end(place.state, verdict);
    return verdict;
  }
  const StateTable::Cell next = matched ? StateTable::accepted : state_ahead();
  table_->learn(place.state, subject_[place.position], next);
  return next;
}

StateTable::Cell RegularExpression::state_ahead()
{
  if (ahead_.pending.empty() && only_at_first_) return StateTable::refused;
  numbers_.clear();
  for (const RENode *node : ahead_.pending) numbers_.push_back(node->number);
  std::sort(numbers_.begin(), numbers_.end());
  return table_->state_of(numbers_);
}

bool RegularExpression::match_without_table(std::size_t position)
{
  for (; position <= subject_.size(); ++position) {
    std::swap(here_, ahead_);
    begin_round(ahead_);
    if (try_pending(position)) return true;
  }
  return false;
}

/// Tries all that waits at the position, and what follows there without moving; what moves on
/// waits for the next position. True when the end of the expression is reached.
bool RegularExpression::try_pending(std::size_t position)
{
  // An attempt begins at each position; what is left of earlier ones waits in the set.
  add(here_, *start_);
  while (!here_.pending.empty()) {
    RENode &node = *here_.pending.back();
    here_.pending.pop_back();
    ++steps_;
    position_ = position;
    if (!node.match()) continue;
    if (node.next.empty()) return true;
    NodeSet &set = position_ == position ? here_ : ahead_;
    for (RENode *next : node.next) add(set, *next);
  }
  return false;
}

void RegularExpression::prepare()
{
  for (NodeSet *set : {&here_, &ahead_}) {
    set->joined.assign(nodes_.size(), 0);
    set->pending.reserve(nodes_.size());
  }
  numbers_.reserve(nodes_.size());
  only_at_first_ = begins_only_at_first();
  tdm::CharacterClasses classes;
  if (ignore_case_)
    classes.separate_all();
  else
    for (const auto &node : nodes_) node->separate(classes);
  // Most expressions have fewer states than nodes.
  table_ = std::make_unique<StateTable>(classes, std::min(max_states_, nodes_.size() + 1));
}

/// Whether each way from the start comes to a `^` before it comes to anything else.
bool RegularExpression::begins_only_at_first()
{
  begin_round(here_);
  add(here_, *start_);
  while (!here_.pending.empty()) {
    const RENode &node = *here_.pending.back();
    here_.pending.pop_back();
    if (typeid(node) == typeid(REBeginOfStringNode)) continue;
    if (typeid(node) != typeid(RENode) || node.next.empty()) return false;
    for (RENode *next : node.next) add(here_, *next);
  }
  return true;
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
