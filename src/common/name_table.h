// Finds the objects of a list by name: of each name, the place of the first that has it.
//
// The table holds places alone and reads the names where they stand, through a function from a
// place to its name. Names that are made of parts are compared part by part, so that none is
// composed. Most lists are so short that going through them beats any table; a longer one gets a
// hash table with linear probing.
#pragma once

#include <cstdint>
#include <string_view>

#include "common/block_pool.h"
#include "common/text.h"
#include "common/text_hash.h"

namespace tdm {

[[nodiscard]] inline uint32_t name_hash(std::string_view name)
{
  return static_cast<uint32_t>(text_hash(name));
}
[[nodiscard]] inline bool same_name(std::string_view a, std::string_view b)
{
  return a.size() == b.size() && same_bytes(a.data(), b.data(), b.size());
}
/// Equal texts of the pool are mostly one.
[[nodiscard]] inline bool same_name(Text a, Text b)
{
  return a.size() == b.size() && (a.data() == b.data() || same_bytes(a.data(), b.data(), a.size()));
}

class NameTable {
public:
  static constexpr uint32_t none = UINT32_MAX;

  /// How many names it knows, repeated ones too.
  [[nodiscard]] uint32_t size() const { return count_; }

  /// Makes room for so many names in all.
  template <typename NameAt> void reserve(size_t count, NameAt name_at)
  {
    if (count <= few || count <= slots_.size() / 3 * 2) return;
    const bool first = slots_.empty();
    resize(count);
    if (!first) return;
    for (uint32_t place = 0; place < count_; ++place) enter(place, name_at);
  }

  /// Takes in the name at the next place. Gives the place of the first that has it, which is the
  /// next place itself unless the name is a repeated one.
  template <typename NameAt> uint32_t append(NameAt name_at)
  {
    reserve(size_t{count_} + 1, name_at);
    const uint32_t place = count_++;
    return slots_.empty() ? first_of(name_at(place), name_at) : enter(place, name_at);
  }

  /// The place of the name, or `none`.
  template <typename Name, typename NameAt>
  [[nodiscard]] uint32_t find(const Name &name, NameAt name_at) const
  {
    if (last_ == 0) return first_of(name, name_at);
    return slots_[slot_of(name, name_hash(name), name_at)].place;
  }

private:
  static constexpr uint32_t few = 4;

  struct Slot {
    uint32_t hash = 0;
    uint32_t place = none; ///< none: free
  };

  template <typename Name, typename NameAt>
  [[nodiscard]] uint32_t first_of(const Name &name, NameAt name_at) const
  {
    for (uint32_t place = 0; place < count_; ++place)
      if (same_name(name_at(place), name)) return place;
    return none;
  }

  /// The slot that holds the name, or the free one where it belongs. There is always a free one.
  template <typename Name, typename NameAt>
  [[nodiscard]] size_t slot_of(const Name &name, uint32_t hash, NameAt name_at) const
  {
    for (size_t i = hash & last_;; i = (i + 1) & last_) {
      const Slot &slot = slots_[i];
      if (slot.hash == hash && (slot.place == none || same_name(name_at(slot.place), name)))
        return i;
      if (slot.place == none) return i;
    }
  }

  template <typename NameAt> uint32_t enter(uint32_t place, NameAt name_at)
  {
    const auto &name = name_at(place);
    const uint32_t hash = name_hash(name);
    Slot &slot = slots_[slot_of(name, hash, name_at)];
    if (slot.place == none) slot = {hash, place};
    return slot.place;
  }

  void resize(size_t count);

  PooledVector<Slot> slots_; ///< a power of two; none for few names
  uint32_t count_ = 0;
  uint32_t last_ = 0; ///< of the slots
};

} // namespace tdm
