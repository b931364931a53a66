#include "ties.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

namespace tool::picture {

namespace {

constexpr size_t most_lanes = 16;

struct Sighting {
  Span span;
  int64_t cells_low;
  int64_t cells_high;
  double height;
  size_t column;
};

bool share_cells(const Sighting &a, const Sighting &b)
{
  return a.cells_low < b.cells_high && b.cells_low < a.cells_high;
}

/// One for each span, in the column farthest to the right.
std::vector<Sighting> one_for_each_span(std::vector<Sighting> all)
{
  std::stable_sort(all.begin(), all.end(), [](const Sighting &a, const Sighting &b) {
    return std::tuple(a.span, a.cells_low) < std::tuple(b.span, b.cells_low);
  });
  std::vector<Sighting> result;
  for (Sighting &one : all) {
    if (!result.empty() && result.back().span == one.span &&
        result.back().cells_low == one.cells_low)
      result.back() = one;
    else
      result.push_back(one);
  }
  return result;
}

bool touch(const Tie &a, const Tie &b)
{
  return a.ends.front().height <= b.ends.back().height &&
         b.ends.front().height <= a.ends.back().height;
}

/// Short ties first, so that long ones go around them. Those for which there is no lane are left
/// out: in such a thicket nobody could follow them.
void assign_lanes(std::vector<Tie> &ties)
{
  std::stable_sort(ties.begin(), ties.end(), [](const Tie &a, const Tie &b) {
    const auto key = [](const Tie &tie) {
      return std::pair(std::lround(tie.ends.back().height - tie.ends.front().height),
                       -std::lround(tie.ends.front().height));
    };
    return key(a) < key(b);
  });
  std::vector<std::vector<Tie>> lanes;
  for (Tie &tie : ties) {
    const auto free = std::find_if(lanes.begin(), lanes.end(), [&](const std::vector<Tie> &lane) {
      return std::none_of(lane.begin(), lane.end(),
                          [&](const Tie &other) { return touch(tie, other); });
    });
    tie.lane = static_cast<size_t>(free - lanes.begin());
    if (tie.lane == most_lanes) continue;
    if (free == lanes.end()) lanes.emplace_back();
    lanes[tie.lane].push_back(tie);
  }
  std::erase_if(ties, [](const Tie &tie) { return tie.lane == most_lanes; });
}

} // namespace

std::vector<Tie> make_ties(const MemoryChart &chart, const Scale &scale,
                           const std::vector<std::vector<Block>> &columns)
{
  std::vector<Tie> ties;
  std::map<size_t, std::vector<Sighting>> sightings;
  for (size_t i = 0; i < columns.size(); ++i)
    for (const Block &block : columns[i]) {
      if (block.stripe || block.folded_banks > 0) continue;
      const Appearance &seen = chart.appearances[block.appearances.front()];
      sightings[seen.memory].push_back({block.span, seen.cells_low, seen.cells_high,
                                        (block.top(scale) + block.bottom(scale)) / 2, i});
    }
  for (auto &[memory, all] : sightings) {
    std::vector<Sighting> left = one_for_each_span(std::move(all));
    while (left.size() > 1) {
      const Sighting first = left.front();
      Tie tie;
      tie.memory = memory;
      std::vector<Sighting> others;
      for (const Sighting &one : left) {
        if (share_cells(first, one))
          tie.ends.push_back({one.height, one.column});
        else
          others.push_back(one);
      }
      if (tie.ends.size() > 1) ties.push_back(std::move(tie));
      left = std::move(others);
    }
  }
  assign_lanes(ties);
  return ties;
}

} // namespace tool::picture
