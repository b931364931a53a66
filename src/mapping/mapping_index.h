// Finds, among the many mappings of one node, those whose span a value may meet: a list of mappings
// sorted by their banks and the beginning of their spans.
//
// What begins in reach is found by bisection. From there the search goes back, and passes over what
// has ended by links: each entry knows the nearest one in front of it that ends later, and so do
// those, which makes chains of rising ends; a second link leads far along the chain, so that a
// search takes a logarithm of steps for each mapping that it finds.
//
// The index looks at banks and whole MAUs alone, both ends counted in, and not at data lines or
// bits: it may give too much, never too little. A complete mapping never changes, so an index stays
// true until its list grows.
#pragma once

#include <cstdint>
#include <vector>

#include "common/block_pool.h"
#include "mapping/inline_stack.h"
#include "mapping/mapping.h"
#include "mapping/shift.h"

namespace tdm {

/// The span at the side of the mapping where a translation begins.
[[nodiscard]] inline Interval near_interval(const TDMMapping &mapping, MapDirection direction)
{
  return direction == MapDirection::forward ? mapping.source_interval()
                                            : mapping.destination_interval();
}

/// The unit at that side of a complete mapping.
[[nodiscard]] inline int16_t near_unit(const TDMMapping &mapping, MapDirection direction)
{
  return direction == MapDirection::forward ? mapping.source_unit() : mapping.destination_unit();
}

/// Values of one bank, as an index looks at them: [low, high] in whole MAUs, both included.
struct Reach {
  int32_t bank;
  int64_t low;
  int64_t high;
};

/// A span without a bank may meet values of every bank.
[[nodiscard]] inline bool may_meet(const Interval &span, const Reach &reach)
{
  return (span.low.bank < 0 || span.low.bank == reach.bank) && span.low.value <= reach.high &&
         span.high.value >= reach.low;
}

class MappingIndex : public RegionGuest {
public:
  /// Below this length a list is gone through as it is.
  static constexpr size_t min_length = 16;

  /// Positions in a list.
  using Positions = InlineStack<uint32_t, 16>;

  /// The index of a node's list, made when it is first asked for; null for a short list and for one
  /// with a mapping that isn't complete yet.
  [[nodiscard]] static const MappingIndex *of(const MappingList &list, MapDirection direction)
  {
    if (list.size() < min_length) return nullptr;
    const MappingIndex *index = list.block_->index;
    return index != nullptr && index->entries_.size() == list.size() ? index
                                                                     : made_for(list, direction);
  }

  /// Appends the positions of the mappings that may meet the values, in ascending order, to an
  /// empty stack.
  void find(const Reach &reach, Positions &positions) const;

private:
  static constexpr uint32_t none = UINT32_MAX;

  struct Entry {
    int64_t low;
    int64_t high;
    uint32_t position;
    uint32_t later;     ///< the nearest entry of the bank in front of this one that ends later
    uint32_t far_later; ///< one further along the chain of those
    uint32_t depth;     ///< length of the chain, while the index is made
  };
  /// The mappings of one bank, -1 for those without.
  struct Bank {
    int32_t bank;
    uint32_t begin;
    uint32_t end;
  };

  MappingIndex(const MappingList &list, MapDirection direction);

  static const MappingIndex *made_for(const MappingList &list, MapDirection direction);
  [[gnu::noinline]] static void sort(Positions &positions);
  void link(const Bank &bank);
  void find_in(const Bank &bank, const Reach &reach, Positions &positions) const;

  std::vector<Entry> entries_;
  std::vector<Bank> banks_; ///< ascending
};

} // namespace tdm
