// Which columns of a chart stand beside each other on one line of addresses, and how far each is
// shifted on it. A bus that a space sees at 0x40000000 begins there on the line, though it counts
// from 0 itself; so what belongs together stands at one height.
#pragma once

#include <compare>
#include <cstdint>
#include <vector>

#include "memory_chart.h"

namespace tool::picture {

/// Columns on one line. A position on the line is a position in the column (in bits) plus its
/// shift.
struct Frame {
  std::vector<size_t> columns; ///< ascending; the line counts as the first one does
  std::vector<int64_t> shifts; ///< of each of them
};

[[nodiscard]] std::vector<Frame> make_frames(const MemoryChart &chart);

/// A span of the line.
struct Span {
  int64_t low = 0;
  int64_t high = 0;

  [[nodiscard]] uint64_t length() const
  {
    return static_cast<uint64_t>(high) - static_cast<uint64_t>(low);
  }
  // NOLINTNEXTLINE(modernize-use-nullptr): the check meets the 0 of what the compiler writes
  friend auto operator<=>(const Span &, const Span &) = default;
};

/// Whole units: which data lines of them are meant is another matter.
[[nodiscard]] Span span_on_line(const tdm_interval &at, int64_t shift);

} // namespace tool::picture
