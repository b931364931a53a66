// Which places of a frame show the same cells of a memory. A tie joins such places by a line at the
// right of the frame, in a lane of its own where ties would touch.
#pragma once

#include <vector>

#include "blocks.h"
#include "memory_chart.h"
#include "scale.h"

namespace tool::picture {

struct TieEnd {
  double height = 0;
  size_t column = 0; ///< of the frame: the last one with that place
};

struct Tie {
  size_t memory = 0;
  std::vector<TieEnd> ends; ///< two or more, from the top down
  size_t lane = 0;          ///< from 0, nearest to the columns
};

/// Of the columns of a frame, each with its blocks.
[[nodiscard]] std::vector<Tie> make_ties(const MemoryChart &chart, const Scale &scale,
                                         const std::vector<std::vector<Block>> &columns);

} // namespace tool::picture
