// The line of addresses of a frame as heights. A memory of a few bytes and one of many megabytes
// are both to be read, so the scale isn't true: each row is as high as what stands in it needs,
// larger ones grow with the logarithm of their size, and gaps are folded to one height.
#pragma once

#include <cstdint>
#include <vector>

#include "chart_frames.h"

namespace tool::picture {

/// What has to find room between two positions.
struct Need {
  Span span;
  double height = 0;
};

struct Row {
  Span span;
  double top = 0;
  double height = 0;
  bool gap = false; ///< no need reaches into it
};

class Scale {
public:
  static constexpr double gap_height = 30;

  /// `ends` are positions that the line has to reach, in addition.
  Scale(std::vector<Need> needs, const std::vector<int64_t> &ends);

  [[nodiscard]] const std::vector<Row> &rows() const { return rows_; }
  [[nodiscard]] double height() const;
  /// Positions inside of a gap are in its middle.
  [[nodiscard]] double at(int64_t position) const;

private:
  std::vector<Row> rows_;
};

} // namespace tool::picture
