// Lists of locations: their memory, and the index of the long ones.
#include "common/source_location.h"

#include <algorithm>
#include <new>
#include <utility>

#include "common/block_pool.h"

namespace {

// Numbers and names in expressions have one key, most other records a few, and some ten.
constexpr std::uint32_t capacity_above(std::uint32_t count)
{
  if (count < 4) return 4;
  return count < 8 ? 8 : count * 2;
}

} // namespace

void SourceLocations::reserve(std::uint32_t capacity)
{
  if (list_ != nullptr) return;
  void *memory = tdm::pool_allocate(sizeof(List) + capacity * sizeof(Entry));
  list_ = new (memory) List{1, 0, capacity, 0, 0, nullptr};
}

// Makes room for one more entry behind those that there are, in a list of this object's own.
void SourceLocations::renew()
{
  SourceLocations next;
  next.reserve(capacity_above(list_->count));
  next.list_->count = list_->count;
  std::memcpy(static_cast<void *>(next.list_->entries()), list_->entries(),
              list_->count * sizeof(Entry));
  std::swap(list_, next.list_); // what was shared or too small loses this user
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
