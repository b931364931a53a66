// Finds the objects of a list by name: of each name, the place of the first that has it.
//
// A hash table with linear probing. It keeps its own copy of the names, all in one text, so that it
// can hold names that no object stores as they are asked for, such as full names.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/text_hash.h"

namespace tdm {

class NameTable {
public:
  static constexpr uint32_t none = UINT32_MAX;

  /// Makes room for so many names.
  void reserve(size_t count);

  /// Does nothing if the name is known.
  void add(std::string_view name, uint32_t place);

  /// The place of the name, or `none`. The hash is that of the name.
  [[nodiscard]] uint32_t find(std::string_view name, uint32_t hash) const
  {
    if (slots_.empty()) return none;
    return slots_[slot_of(name, hash)].place;
  }
  [[nodiscard]] uint32_t find(std::string_view name) const
  {
    return find(name, static_cast<uint32_t>(text_hash(name)));
  }

private:
  struct Slot {
    uint32_t hash = 0;
    uint32_t begin = 0; ///< in the texts
    uint32_t length = 0;
    uint32_t place = none; ///< none: free
  };

  /// The slot that holds the name, or the free one where it belongs. There is always a free one.
  [[nodiscard]] size_t slot_of(std::string_view name, uint32_t hash) const
  {
    const Slot *slots = slots_.data();
    const size_t last = slots_.size() - 1;
    for (size_t i = hash & last;; i = (i + 1) & last) {
      const Slot &slot = slots[i];
      if (slot.place == none || (slot.hash == hash && slot.length == name.size() &&
                                 same_bytes(texts_.data() + slot.begin, name.data(), name.size())))
        return i;
    }
  }
  void resize(size_t slots);

  std::vector<Slot> slots_; ///< a power of two, or none
  std::string texts_;
  size_t count_ = 0;
};

} // namespace tdm
