// Adding to a table of names.
#include "common/name_table.h"

#include <new>

namespace tdm {

void NameTable::reserve(size_t count)
{
  size_t slots = 4;
  while (slots < count + count / 2) slots *= 2;
  if (slots > slots_.size()) resize(slots);
}

void NameTable::add(std::string_view name, uint32_t place)
{
  reserve(count_ + 1);
  const auto hash = static_cast<uint32_t>(text_hash(name));
  Slot &slot = slots_[slot_of(name, hash)];
  if (slot.place != none) return;
  if (texts_.size() + name.size() > UINT32_MAX) throw std::bad_alloc();
  slot = {hash, static_cast<uint32_t>(texts_.size()), static_cast<uint32_t>(name.size()), place};
  texts_ += name;
  ++count_;
}

void NameTable::resize(size_t slots)
{
  std::vector<Slot> old(slots);
  old.swap(slots_);
  for (const Slot &slot : old) {
    if (slot.place == none) continue;
    const std::string_view name(texts_.data() + slot.begin, slot.length);
    slots_[slot_of(name, slot.hash)] = slot;
  }
}

} // namespace tdm
