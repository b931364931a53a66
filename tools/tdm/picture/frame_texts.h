// What the picture of a frame says: names, addresses and tooltips.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "blocks.h"
#include "chart_frames.h"
#include "memory_chart.h"

namespace tool::picture {

[[nodiscard]] std::string block_name(const MemoryChart &chart, const Block &block);

/// What may stand beside the name, the longest one first; never empty.
[[nodiscard]] std::vector<std::string> block_remarks(const MemoryChart &chart, const Block &block);

/// The memory, where it is seen, and the way from there to its cells.
[[nodiscard]] std::string block_tooltip(const MemoryChart &chart, const Block &block);

[[nodiscard]] std::string column_tooltip(const MemoryChart &chart, size_t column);

/// The position of a line as an address of a column with that shift.
[[nodiscard]] std::string column_address(const ChartColumn &column, int64_t position, int64_t shift,
                                         int digits);

/// The part of a column that a mapping covers.
struct WindowText {
  Span span; ///< of the line
  std::string text;
};

[[nodiscard]] std::vector<WindowText> window_texts(const MemoryChart &chart, size_t column,
                                                   int64_t shift);

/// The same parts, put together where they touch, ascending.
[[nodiscard]] std::vector<Span> column_spans(const MemoryChart &chart, size_t column,
                                             int64_t shift);

} // namespace tool::picture
