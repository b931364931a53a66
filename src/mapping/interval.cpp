// Intervals: their overlap, intersection and splitting. The masks stand in interval_pattern.cpp.
#include "mapping/interval.h"

#include <algorithm>

Interval::Interval(const AddressValue &low_, const AddressValue &high_)
    : low(low_), high(high_), pattern(Pattern::plain())
{
  if (high < low) high = low;
}

Interval::Interval(const AddressValue &low_, const AddressValue &high_, const Pattern &pattern_,
                   int32_t priority_, int32_t exec_priority_)
    : low(low_), high(high_), pattern(pattern_), priority(priority_), exec_priority(exec_priority_)
{
  if (high < low) high = low;
  pattern.reduce(low.mau);
}

Interval::Interval(const tdm_interval &record)
    : low(record.low), high(record.high), pattern(record.width, record.bits),
      priority(record.priority), exec_priority(record.exec_priority)
{
  if (high < low) high = low;
}

tdm_interval Interval::to_record() const
{
  return {low.to_record(), high.to_record(), pattern.width, pattern.bits, priority, exec_priority};
}

bool Interval::shares_span(const Interval &other) const
{
  return (low <= other.low && other.low < high) || (other.low <= low && low < other.high);
}

bool Interval::overlaps(const Interval &other) const
{
  return shares_span(other) && (pattern & other.pattern).bits != 0;
}

bool Interval::intersect(const Interval &other, Interval &out) const
{
  if (!shares_span(other)) return false;
  const Pattern common = pattern & other.pattern;
  if (common.bits == 0) return false;
  out = Interval(std::max(low, other.low), std::min(high, other.high), common,
                 std::max(priority, other.priority), std::max(exec_priority, other.exec_priority));
  return true;
}

bool Interval::looks_like(const Interval &other) const
{
  return pattern == other.pattern && priority == other.priority &&
         exec_priority == other.exec_priority;
}

void Interval::split(Interval &before, Interval &middle, Interval &after, const Interval &other,
                     bool merge) const
{
  const bool begins_first = low <= other.low;
  const Interval &first = begins_first ? *this : other;
  const Interval &second = begins_first ? other : *this;
  const bool ends_last = high > other.high;
  const Interval &last = ends_last ? *this : other;
  const Interval &ended = ends_last ? other : *this;

  const Interval head(first.low, second.low, first.pattern, first.priority, first.exec_priority);
  const Pattern both = pattern | other.pattern;
  Interval body = both.bits == 0
                      ? Interval(ended.high, ended.high)
                      : Interval(head.high, ended.high, both, std::max(priority, other.priority),
                                 std::max(exec_priority, other.exec_priority));
  Interval tail(body.high, last.high, last.pattern, last.priority, last.exec_priority);

  before = head;
  if (merge && !head.is_empty() && !body.is_empty() && head.looks_like(body)) {
    before = Interval(head.low, head.low);
    body.low = head.low;
  }
  if (merge && !tail.is_empty() && tail.looks_like(body)) {
    tail.low = body.low;
    body.high = body.low;
  }
  middle = body;
  after = tail;
}
