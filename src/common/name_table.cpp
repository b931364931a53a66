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
  last_ = static_cast<uint32_t>(slots - 1);
  for (const Slot &slot : old) {
    if (slot.place == none) continue;
    size_t i = slot.hash & last_;
    while (slots_[i].place != none) i = (i + 1) & last_;
    slots_[i] = slot;
  }
}

} // namespace tdm
