// Lists of locations: their memory, and the index of the long ones.
#include "common/source_location.h"

#include <algorithm>
#include <new>

#include "common/block_pool.h"

namespace {

// Numbers and names in expressions have one key, most other records a few, and some ten.
constexpr std::uint32_t capacity_above(std::uint32_t count)
{
  for (const std::uint32_t capacity : {1U, 4U, 8U})
    if (count < capacity) return capacity;
  return count * 2;
}

} // namespace

// Makes room for one more entry, in a list of this object's own.
void SourceLocations::renew()
{
  const std::uint32_t count = list_ == nullptr ? 0 : list_->count;
  const std::uint32_t capacity = capacity_above(count);
  void *memory = tdm::pool_allocate(sizeof(List) + capacity * sizeof(Entry));
  List *const list = new (memory) List{1, count, capacity, 0, 0, nullptr};
  if (count > 0)
    std::memcpy(static_cast<void *>(list->entries()), list_->entries(), count * sizeof(Entry));
  if (list_ != nullptr && --list_->users == 0) free(list_);
  list_ = list;
}

void SourceLocations::free(List *list)
{
  delete[] list->index;
  tdm::pool_free(list, sizeof(List) + list->capacity * sizeof(Entry));
}

const TDMSourceLocation *SourceLocations::find_indexed(LocationKey key) const
{
  if (list_->indexed != list_->count) update_index(*list_);
  const std::uint32_t mask = list_->slots - 1;
  for (std::uint32_t slot = key.hash() & mask; list_->index[slot] != 0; slot = (slot + 1) & mask) {
    const Entry &entry = list_->entries()[list_->index[slot] - 1];
    if (entry.first == key) return &entry.second;
  }
  return nullptr;
}

// Every key stands in the list once. At least half of the slots stay free.
void SourceLocations::update_index(List &list)
{
  if (list.slots < list.count * 2) {
    const std::uint32_t slots = std::max(list.slots * 2, flat_limit * 4);
    auto *index = new std::uint32_t[slots]();
    delete[] list.index;
    list.index = index;
    list.slots = slots;
    list.indexed = 0;
    return update_index(list);
  }
  const std::uint32_t mask = list.slots - 1;
  for (; list.indexed < list.count; ++list.indexed) {
    std::uint32_t slot = list.entries()[list.indexed].first.hash() & mask;
    while (list.index[slot] != 0) slot = (slot + 1) & mask;
    list.index[slot] = list.indexed + 1;
  }
}
