#include "blocks.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace tool::picture {

namespace {

constexpr double label_height = 19;
constexpr double stripe_height = 5;
constexpr double most_extra = 44;
constexpr size_t most_banks = 8;   ///< more than these are folded
constexpr size_t fewest_views = 3; ///< so many views in a row are put together

const Appearance &first_of(const MemoryChart &chart, const Block &block)
{
  return chart.appearances[block.appearances.front()];
}

// ---- views one behind the other

bool follows(const MemoryChart &chart, const Block &first, const Block &next)
{
  const Appearance &a = first_of(chart, first);
  const Appearance &b = first_of(chart, next);
  return a.memory == b.memory && a.at.low.bank == b.at.low.bank && a.at.bits == b.at.bits &&
         a.at.width == b.at.width && a.cells_low == b.cells_low && a.cells_high == b.cells_high &&
         first.span.high == next.span.low && first.span.length() == next.span.length();
}

void mark_views(const MemoryChart &chart, std::vector<Block> &blocks)
{
  for (size_t i = 0; i < blocks.size();) {
    size_t end = i + 1;
    while (end < blocks.size() && follows(chart, blocks[end - 1], blocks[end])) ++end;
    if (end - i >= fewest_views) {
      blocks[i].views = end - i;
      for (size_t at = i + 1; at < end; ++at) blocks[at].stripe = true;
    }
    i = end;
  }
}

// ---- banks

/// Blocks from first to last share one span: a slot for each, the middle ones of many in one.
void stack(std::vector<Block> &blocks, size_t first, size_t last, std::vector<Block> &out)
{
  std::vector<Block> stacked(blocks.begin() + static_cast<ptrdiff_t>(first),
                             blocks.begin() + static_cast<ptrdiff_t>(last));
  if (stacked.size() > most_banks) {
    const size_t kept = most_banks / 2;
    Block middle = stacked[kept];
    for (size_t i = kept + 1; i + 1 < stacked.size(); ++i)
      middle.appearances.push_back(stacked[i].appearances.front());
    middle.folded_banks = middle.appearances.size();
    stacked.erase(stacked.begin() + static_cast<ptrdiff_t>(kept), stacked.end() - 1);
    stacked.insert(stacked.end() - 1, std::move(middle));
  }
  for (size_t i = 0; i < stacked.size(); ++i) {
    stacked[i].slot = i;
    stacked[i].slots = stacked.size();
    out.push_back(std::move(stacked[i]));
  }
}

std::vector<Block> stack_banks(const MemoryChart &chart, std::vector<Block> &blocks)
{
  std::vector<Block> result;
  for (size_t i = 0; i < blocks.size();) {
    size_t end = i + 1;
    while (end < blocks.size() && blocks[end].span == blocks[i].span &&
           first_of(chart, blocks[end]).at.low.bank != first_of(chart, blocks[end - 1]).at.low.bank)
      ++end;
    stack(blocks, i, end, result);
    i = end;
  }
  return result;
}

// ---- side by side

/// Blocks that reach over each other in the picture get a lane each: they differ in data lines or
/// banks, or claim the same addresses.
void spread(std::vector<Block> &blocks)
{
  for (size_t first = 0; first < blocks.size();) {
    std::vector<int64_t> lane_ends;
    std::vector<size_t> lanes;
    int64_t reach = blocks[first].span.high;
    size_t end = first;
    for (; end < blocks.size() && (end == first || blocks[end].span.low < reach); ++end) {
      const Block &block = blocks[end];
      reach = std::max(reach, block.span.high);
      if (block.slot > 0) { // beside the one that it is stacked on
        lanes.push_back(lanes.back());
        continue;
      }
      const auto free = std::find_if(lane_ends.begin(), lane_ends.end(),
                                     [&](int64_t taken) { return taken <= block.span.low; });
      lanes.push_back(static_cast<size_t>(free - lane_ends.begin()));
      if (free == lane_ends.end())
        lane_ends.push_back(block.span.high);
      else
        *free = block.span.high;
    }
    for (size_t i = first; i < end; ++i) {
      const auto count = static_cast<double>(lane_ends.size());
      blocks[i].left = static_cast<double>(lanes[i - first]) / count;
      blocks[i].right = static_cast<double>(lanes[i - first] + 1) / count;
    }
    first = end;
  }
}

} // namespace

double Block::top(const Scale &scale) const
{
  const double low = scale.at(span.low);
  const double high = scale.at(span.high);
  return low + (high - low) * static_cast<double>(slot) / static_cast<double>(slots);
}

double Block::bottom(const Scale &scale) const
{
  const double low = scale.at(span.low);
  const double high = scale.at(span.high);
  return low + (high - low) * static_cast<double>(slot + 1) / static_cast<double>(slots);
}

std::vector<Block> blocks_of(const MemoryChart &chart, size_t column, int64_t shift)
{
  std::vector<Block> blocks;
  const auto [first, last] = appearances_in(chart, column);
  for (auto one = first; one != last; ++one) {
    Block block;
    block.span = span_on_line(one->at, shift);
    block.appearances.push_back(static_cast<size_t>(one - chart.appearances.data()));
    if (block.span.low < block.span.high) blocks.push_back(std::move(block));
  }
  std::stable_sort(blocks.begin(), blocks.end(), [&](const Block &a, const Block &b) {
    const auto key = [&](const Block &block) {
      return std::tuple(block.span, first_of(chart, block).at.low.bank);
    };
    return key(a) < key(b);
  });
  mark_views(chart, blocks);
  blocks = stack_banks(chart, blocks);
  spread(blocks);
  return blocks;
}

double height_needed(const Block &block, bool labelled)
{
  if (block.stripe || !labelled) return stripe_height;
  if (block.slots > 1) return label_height * static_cast<double>(block.slots);
  // Up to 1 KiB a line of text; each doubling adds a little.
  const double doublings = std::log2(static_cast<double>(block.span.length())) - 13;
  return label_height + std::clamp(2.5 * doublings, 0.0, most_extra);
}

} // namespace tool::picture
