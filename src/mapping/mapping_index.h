// Finds, among the many mappings of one node, those whose span a value may meet: a list of mappings
// sorted by the beginning of their spans, with the greatest end of each part of the list.
//
// The index looks at whole MAUs alone, both ends counted in, and not at banks, data lines or bits:
// it may give too much, never too little. A complete mapping never changes, so an index stays true
// until its list grows.
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

/// Whether the whole MAUs of the span meet [low, high], both included.
[[nodiscard]] inline bool may_meet(const Interval &span, int64_t low, int64_t high)
{
  return span.low.value <= high && span.high.value >= low;
}

class MappingIndex {
public:
  /// Below this length a list is gone through as it is.
  static constexpr size_t min_length = 32;

  /// The index of a node's list, made when it is first asked for; null for a short list and for one
  /// with a mapping that isn't complete yet.
  [[nodiscard]] static const MappingIndex *of(const std::vector<TDMMapping *> &list,
                                              MapDirection direction);

  /// Positions in the list of the mappings that may meet [low, high], in ascending order.
  void find(int64_t low, int64_t high, std::vector<uint32_t> &positions) const;

private:
  struct Entry {
    int64_t low;
    int64_t high;
    int64_t greatest_high; ///< of the part of the list whose middle this is
    uint32_t position;
  };

  MappingIndex(const std::vector<TDMMapping *> &list, MapDirection direction);

  int64_t set_greatest_high(size_t begin, size_t end);
  void find(size_t begin, size_t end, int64_t low, int64_t high,
            std::vector<uint32_t> &positions) const;

  std::vector<Entry> entries_;
};

} // namespace tdm
