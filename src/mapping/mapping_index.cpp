// Making an index and searching in it.
#include "mapping/mapping_index.h"

#include <algorithm>
#include <tuple>

namespace tdm {

const MappingIndex *MappingIndex::made_for(const MappingList &list, MapDirection direction)
{
  const auto complete = [](const TDMMapping *mapping) { return mapping->is_complete(); };
  if (!std::all_of(list.begin(), list.end(), complete)) return nullptr;
  std::unique_ptr<MappingIndex> made(new MappingIndex(list, direction));
  made->stay_with(list[0]);
  delete list.block_->index; // of when the list was shorter
  return list.block_->index = made.release();
}

MappingIndex::MappingIndex(const MappingList &list, MapDirection direction)
{
  const auto bank_of = [&](uint32_t position) {
    return std::max(near_interval(*list[position], direction).low.bank, -1);
  };
  entries_.reserve(list.size());
  for (const TDMMapping *mapping : list) {
    const Interval span = near_interval(*mapping, direction);
    entries_.push_back(
        {span.low.value, span.high.value, static_cast<uint32_t>(entries_.size()), none, none, 0});
  }
  std::sort(entries_.begin(), entries_.end(), [&](const Entry &a, const Entry &b) {
    return std::tuple(bank_of(a.position), a.low) < std::tuple(bank_of(b.position), b.low);
  });
  for (uint32_t i = 0; i < entries_.size(); ++i) {
    const int32_t bank = bank_of(entries_[i].position);
    if (banks_.empty() || banks_.back().bank != bank) banks_.push_back({bank, i, i});
    banks_.back().end = i + 1;
  }
  for (const Bank &bank : banks_) link(bank);
}

/// The far links double their reach along a chain: each spans two of the same length in front of
/// it, if there are such, or else one step.
void MappingIndex::link(const Bank &bank)
{
  for (uint32_t i = bank.begin; i < bank.end; ++i) {
    Entry &entry = entries_[i];
    uint32_t later = i > bank.begin ? i - 1 : none;
    while (later != none && entries_[later].high <= entry.high) later = entries_[later].later;
    entry.later = entry.far_later = later;
    if (later == none) continue;
    const Entry &next = entries_[later];
    entry.depth = next.depth + 1;
    if (next.far_later == none) continue;
    const Entry &over = entries_[next.far_later];
    if (over.far_later != none &&
        next.depth - over.depth == over.depth - entries_[over.far_later].depth)
      entry.far_later = over.far_later;
  }
}

void MappingIndex::find(const Reach &reach, Positions &positions) const
{
  if (banks_.front().bank < 0) find_in(banks_.front(), reach, positions);
  if (reach.bank >= 0) {
    const auto bank =
        std::lower_bound(banks_.begin(), banks_.end(), reach.bank,
                         [](const Bank &each, int32_t wanted) { return each.bank < wanted; });
    if (bank != banks_.end() && bank->bank == reach.bank) find_in(*bank, reach, positions);
  }
  // Mostly there are two: a memory on a bus, and the way back to the bus in front of that.
  if (positions.size() > 2)
    sort(positions);
  else if (positions.size() == 2 && positions[1] < positions[0])
    std::swap(positions[0], positions[1]);
}

void MappingIndex::sort(Positions &positions)
{
  std::sort(positions.begin(), positions.end());
}

void MappingIndex::find_in(const Bank &bank, const Reach &reach, Positions &positions) const
{
  const Entry *const entries = entries_.data();
  const Entry *const begin = entries + bank.begin;
  const int64_t low = reach.low;
  // Bisection without a branch that would have to be guessed.
  const Entry *entry = begin;
  for (size_t length = bank.end - bank.begin; length > 0;) {
    const size_t half = (length + 1) / 2;
    entry = entry[half - 1].low <= reach.high ? entry + half : entry;
    length -= half;
  }
  while (entry != begin) {
    --entry;
    while (entry->high < low) {
      if (entry->far_later == none) return;
      const Entry *const far = entries + entry->far_later;
      entry = far->high < low ? far : entries + entry->later;
    }
    positions.push_back(entry->position);
  }
}

} // namespace tdm
