// Finds, among the many mappings of one node, those whose span a value may meet: a list of mappings
// sorted by their banks and the beginning of their spans, with the greatest end of each part.
//
// The index looks at banks and whole MAUs alone, both ends counted in, and not at data lines or
// bits: it may give too much, never too little. A complete mapping never changes, so an index stays
// true until its list grows.
#pragma once

#include <cstdint>
#include <vector>

#include "mapping/mapping.h"

namespace tdm {

enum class MapDirection : uint8_t { forward, backward };

/// The span at the side of the mapping where a translation begins.
[[nodiscard]] inline const Interval &near_interval(const TDMMapping &mapping,
                                                   MapDirection direction)
{
  return direction == MapDirection::forward ? mapping.source_interval()
                                            : mapping.destination_interval();
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

class MappingIndex {
public:
  /// Below this length a list is gone through as it is.
  static constexpr size_t min_length = 32;

  /// The index of a node's list, made when it is first asked for; null for a short list and for one
  /// with a mapping that isn't complete yet.
  [[nodiscard]] static const MappingIndex *of(const std::vector<TDMMapping *> &list,
                                              MapDirection direction);

  /// Positions in the list of the mappings that may meet the values, in ascending order.
  void find(const Reach &reach, std::vector<uint32_t> &positions) const;

private:
  struct Entry {
    int32_t bank; ///< -1 for none
    int64_t low;
    int64_t high;
    int64_t greatest_high; ///< of the part of the list whose middle this is
    uint32_t position;
  };

  MappingIndex(const std::vector<TDMMapping *> &list, MapDirection direction);

  int64_t set_greatest_high(size_t begin, size_t end);
  /// Appends what is found among the mappings of one bank, -1 for those without.
  void find_in_bank(int32_t bank, const Reach &reach, std::vector<uint32_t> &positions) const;
  void find(size_t begin, size_t end, const Reach &reach, std::vector<uint32_t> &positions) const;

  std::vector<Entry> entries_;
};

} // namespace tdm
