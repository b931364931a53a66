// Making room in a table of names.
#include "common/name_table.h"

namespace tdm {

/// The names that are in already stay so.
void NameTable::resize(size_t count)
{
  size_t slots = 16;
  while (slots / 3 * 2 < count) slots *= 2;
  PooledVector<Slot> old(slots);
  old.swap(slots_);
  for (const Slot &slot : old) {
    if (slot.place == none) continue;
    size_t i = slot.hash & (slots - 1);
    while (slots_[i].place != none) i = (i + 1) & (slots - 1);
    slots_[i] = slot;
  }
}

} // namespace tdm
