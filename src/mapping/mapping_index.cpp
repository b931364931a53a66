// A list sorted by beginnings is a balanced tree by itself: the middle of a part is its root. The
// recursion is as deep as the logarithm of the length.
#include "mapping/mapping_index.h"

#include <algorithm>

namespace tdm {

const MappingIndex *MappingIndex::of(const std::vector<TDMMapping *> &list, MapDirection direction)
{
  if (list.size() < min_length) return nullptr;
  auto &index = direction == MapDirection::forward ? list.front()->outgoing_index_
                                                   : list.front()->incoming_index_;
  if (index == nullptr || index->entries_.size() != list.size()) {
    const auto complete = [](const TDMMapping *mapping) { return mapping->is_complete(); };
    if (!std::all_of(list.begin(), list.end(), complete)) return nullptr;
    index.reset(new MappingIndex(list, direction));
  }
  return index.get();
}

MappingIndex::MappingIndex(const std::vector<TDMMapping *> &list, MapDirection direction)
{
  entries_.reserve(list.size());
  for (const TDMMapping *mapping : list) {
    const Interval &span = near_interval(*mapping, direction);
    entries_.push_back(
        {span.low.value, span.high.value, 0, static_cast<uint32_t>(entries_.size())});
  }
  std::sort(entries_.begin(), entries_.end(),
            [](const Entry &a, const Entry &b) { return a.low < b.low; });
  set_greatest_high(0, entries_.size());
}

int64_t MappingIndex::set_greatest_high(size_t begin, size_t end)
{
  if (begin == end) return INT64_MIN;
  const size_t middle = begin + (end - begin) / 2;
  const int64_t left = set_greatest_high(begin, middle);
  const int64_t right = set_greatest_high(middle + 1, end);
  Entry &entry = entries_[middle];
  entry.greatest_high = std::max({left, entry.high, right});
  return entry.greatest_high;
}

void MappingIndex::find(int64_t low, int64_t high, std::vector<uint32_t> &positions) const
{
  positions.clear();
  find(0, entries_.size(), low, high, positions);
  std::sort(positions.begin(), positions.end());
}

void MappingIndex::find(size_t begin, size_t end, int64_t low, int64_t high,
                        std::vector<uint32_t> &positions) const
{
  while (begin < end) {
    const size_t middle = begin + (end - begin) / 2;
    const Entry &entry = entries_[middle];
    if (entry.greatest_high < low) return;
    find(begin, middle, low, high, positions);
    if (entry.low > high) return;
    if (entry.high >= low) positions.push_back(entry.position);
    begin = middle + 1;
  }
}

} // namespace tdm
