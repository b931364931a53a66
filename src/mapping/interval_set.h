// An ordered set of intervals that share no span. An interval comes before another if it ends at or
// below the other's beginning; intervals that share a span are equivalent under this order, which
// is how those in the way of a new one are found. Spans that share addresses on different bits
// don't overlap: the set holds them as pieces with the masks of both, and so two byte lanes of one
// bus coexist.
#pragma once

#include <cstddef>
#include <set>

#include "common/block_pool.h"
#include "mapping/interval.h"

namespace tdm {

/// The order of IntervalSet: intervals whose spans meet are equivalent.
struct IntervalBefore {
  bool operator()(const Interval &a, const Interval &b) const { return a.high <= b.low; }
};

} // namespace tdm

class IntervalSet {
public:
  /// An insert met bits that are taken. Thrown by pointer.
  class OverlapException : public MauLibException {
  public:
    explicit OverlapException(const Interval &overlap) : overlap_(overlap) {}

    /// What the new interval and the member in its way share.
    [[nodiscard]] const Interval &overlap() const { return overlap_; }

  private:
    Interval overlap_;
  };

  using Members = std::set<Interval, tdm::IntervalBefore, tdm::PoolAllocator<Interval>>;
  using const_iterator = Members::const_iterator;

  /// Adds an interval, splitting members and it where their spans meet, and joins neighbours that
  /// touch and look alike (with `merge_priorities` whatever their priorities). An empty interval
  /// adds nothing. With `reject_overlap` an OverlapException is thrown at the first member, from
  /// the lowest, that shares bits; pieces below it stay. MauException, PatternOverflowException.
  void insert(const Interval &interval, bool reject_overlap, bool merge_priorities);

  [[nodiscard]] const_iterator begin() const { return members_.begin(); }
  [[nodiscard]] const_iterator end() const { return members_.end(); }
  [[nodiscard]] size_t size() const { return members_.size(); }

private:
  void coalesce(const Interval &around, bool merge_priorities);

  Members members_;
};
