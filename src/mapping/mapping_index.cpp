// The mappings of one bank, sorted by beginnings, are a balanced tree by themselves: the middle of
// a part is its root. The recursion is as deep as the logarithm of the length.
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
    entries_.push_back({std::max(span.low.bank, -1), span.low.value, span.high.value, 0,
                        static_cast<uint32_t>(entries_.size())});
  }
  std::sort(entries_.begin(), entries_.end(), [](const Entry &a, const Entry &b) {
    return a.bank != b.bank ? a.bank < b.bank : a.low < b.low;
  });
  for (size_t begin = 0, end = 0; begin < entries_.size(); begin = end) {
    while (end < entries_.size() && entries_[end].bank == entries_[begin].bank) ++end;
    set_greatest_high(begin, end);
  }
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

void MappingIndex::find(const Reach &reach, std::vector<uint32_t> &positions) const
{
  positions.clear();
  find_in_bank(-1, reach, positions);
  if (reach.bank >= 0) find_in_bank(reach.bank, reach, positions);
  std::sort(positions.begin(), positions.end());
}

void MappingIndex::find_in_bank(int32_t bank, const Reach &reach,
                                std::vector<uint32_t> &positions) const
{
  const auto begin =
      std::lower_bound(entries_.begin(), entries_.end(), bank,
                       [](const Entry &entry, int32_t wanted) { return entry.bank < wanted; });
  const auto end =
      std::upper_bound(begin, entries_.end(), bank,
                       [](int32_t wanted, const Entry &entry) { return wanted < entry.bank; });
  find(static_cast<size_t>(begin - entries_.begin()), static_cast<size_t>(end - entries_.begin()),
       reach, positions);
}

void MappingIndex::find(size_t begin, size_t end, const Reach &reach,
                        std::vector<uint32_t> &positions) const
{
  while (begin < end) {
    const size_t middle = begin + (end - begin) / 2;
    const Entry &entry = entries_[middle];
    if (entry.greatest_high < reach.low) return;
    find(begin, middle, reach, positions);
    if (entry.low > reach.high) return;
    if (entry.high >= reach.low) positions.push_back(entry.position);
    begin = middle + 1;
  }
}

} // namespace tdm
