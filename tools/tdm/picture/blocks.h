// What stands in one column of the picture, from the top down: one block for each appearance of a
// memory, except where views of the same cells follow each other or banks lie over each other in
// such numbers that only a few are told apart.
#pragma once

#include <string>
#include <vector>

#include "chart_frames.h"
#include "scale.h"

namespace tool::picture {

struct Block {
  Span span;
  std::vector<size_t> appearances; ///< of the chart; more than one where blocks are put together
  bool stripe = false;             ///< a further view behind the first one: without a label
  size_t views = 1;                ///< of a first view: with the stripes behind it
  size_t folded_banks = 0;         ///< so many banks are put together here
  // Its part of the span's height, and of the column's width.
  size_t slot = 0;
  size_t slots = 1;
  double left = 0;
  double right = 1;

  /// Where it is placed within heights from `top` to `bottom`.
  [[nodiscard]] double top(const Scale &scale) const;
  [[nodiscard]] double bottom(const Scale &scale) const;
};

/// The blocks of a column with that shift, ascending.
[[nodiscard]] std::vector<Block> blocks_of(const MemoryChart &chart, size_t column, int64_t shift);

/// The height that a block asks for in the picture.
[[nodiscard]] double height_needed(const Block &block, bool labelled);

} // namespace tool::picture
