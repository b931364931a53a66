// All of a space in ascending order: each span with the memory that it shows, and those that show
// none.
#pragma once

#include <optional>
#include <vector>

#include <tdm_c/tdm_inspect.h>

#include "memory_map.h"

namespace tool {

struct SpaceRow {
  tdm_interval span;                ///< in units of the space
  const tdm_memory *memory;         ///< null for a span without one
  std::optional<tdm_interval> part; ///< of the memory, in its units; none if it can't be told
  bool reserved;
};

/// A span is without memory if there is none in any bank.
[[nodiscard]] std::vector<SpaceRow> rows_of(const tdm_space *space,
                                            const std::vector<Region> &regions);

} // namespace tool
