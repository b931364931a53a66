// All places where mappings take the same: memories that lie over each other on a bus, and mappings
// of one space. OverlapCheck and TDMAllocSpace refuse a description at the first one; this is for
// those who want to show them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "mapping/mapping.h"

struct TDMMemory;
struct TDMSpace;
struct TDMSpec;

namespace tdm {

/// Of two mappings of memories on a bus.
struct Overlap {
  TDMMapSource *source;
  const TDMMemory *first; ///< the one that comes first in the order of the check
  const TDMMemory *second;
  TDMMapping *first_mapping;
  TDMMapping *second_mapping;
  Interval range; ///< what both take of the source
  int64_t bits;   ///< how many bits that is; as many as fit the number
};

/// Of two mappings of a space, in the order of its definition.
struct MappingOverlap {
  TDMSpace *space;
  TDMMapping *first;
  TDMMapping *second;
  Interval range; ///< as above, of the space
  int64_t bits;
};

/// The search ends with so many: n mappings at one place overlap in n * n / 2 ways.
inline constexpr size_t most_overlaps = 10'000;

/// In the order of the second mapping and then of the first; both in the order of the check. What
/// would need a mask of more than 64 bits is passed over: the check may have failed before it.
/// MauException.
[[nodiscard]] std::vector<Overlap> find_overlaps(const TDMSpec &spec);

/// The same for the mappings of each space that a description defines.
[[nodiscard]] std::vector<MappingOverlap> find_mapping_overlaps(const TDMSpec &spec);

} // namespace tdm
