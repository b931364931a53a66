// Inserting into a set of intervals.
#include "mapping/interval_set.h"

#include <algorithm>

void IntervalSet::insert(const Interval &interval, bool reject_overlap, bool merge_priorities)
{
  if (interval.is_empty()) return;
  const auto put = [this](const Interval &piece) {
    if (!piece.is_empty()) members_.insert(piece);
  };

  // The members in the way are disjoint and in order. Each is cut together with what is left of
  // the new interval; what reaches past the member is cut with the next one.
  Interval rest = interval;
  bool rest_is_open = true;
  auto member = members_.lower_bound(interval);
  while (member != members_.end() && member->low < interval.high) {
    Interval overlap;
    if (reject_overlap && member->intersect(interval, overlap)) throw new OverlapException(overlap);
    Interval before;
    Interval middle;
    Interval after;
    member->split(before, middle, after, rest, true);
    rest_is_open = rest.high > member->high;
    member = members_.erase(member);
    put(before);
    put(middle);
    if (rest_is_open)
      rest = after;
    else
      put(after);
  }
  if (rest_is_open) put(rest);
  coalesce(interval, merge_priorities);
}

void IntervalSet::coalesce(const Interval &around, bool merge_priorities)
{
  auto member = members_.lower_bound(around);
  if (member != members_.begin()) --member;
  while (member != members_.end() && member->low < around.high) {
    const auto next = std::next(member);
    if (next == members_.end()) return;
    const bool alike = member->high == next->low && member->pattern == next->pattern &&
                       (merge_priorities || (member->priority == next->priority &&
                                             member->exec_priority == next->exec_priority));
    if (!alike) {
      member = next;
      continue;
    }
    const Interval joined(member->low, next->high, next->pattern,
                          std::min(member->priority, next->priority),
                          std::min(member->exec_priority, next->exec_priority));
    members_.erase(member);
    member = members_.insert(members_.erase(next), joined);
  }
}
