// What a walk has entered already: nodes with the value that each was entered with. Short walks
// compare with all entries; longer ones go through a hash table that chains entries by number.
//
// Masks count as equal after an adjustment of their widths, which is no equivalence that could be
// hashed: the hash is that of the node and the ends, and the masks are compared.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "mapping/inline_stack.h"
#include "mapping/interval.h"

namespace tdm {

[[nodiscard]] inline bool same_value(const AddressValue &a, const AddressValue &b)
{
  return a == b;
}
[[nodiscard]] inline bool same_value(const Interval &a, const Interval &b)
{
  return a.low == b.low && a.high == b.high && a.pattern == b.pattern;
}

template <class Value> class VisitedSet {
public:
  void insert(const void *node, const Value &value)
  {
    entries_.push_back({node, value, none});
    if (entries_.size() > unhashed_limit) [[unlikely]]
      link_last();
  }

  [[nodiscard]] bool contains(const void *node, const Value &value) const
  {
    if (heads_.empty()) {
      for (const Entry &entry : entries_)
        if (entry.node == node && same_value(entry.value, value)) return true;
      return false;
    }
    return is_linked(node, value);
  }

private:
  static constexpr size_t unhashed_limit = 8;
  static constexpr uint32_t none = UINT32_MAX;

  struct Entry {
    const void *node;
    Value value;
    uint32_t next; ///< in the chain of its slot
  };

  static uint64_t mix(uint64_t hash, uint64_t word)
  {
    hash = (hash ^ word) * 0x9E3779B97F4A7C15U;
    return hash ^ (hash >> 29);
  }
  static uint64_t mix(uint64_t hash, const AddressValue &address)
  {
    hash = mix(hash, static_cast<uint64_t>(address.value));
    return mix(hash, (uint64_t{static_cast<uint32_t>(address.bank)} << 16) +
                         static_cast<uint16_t>(address.bits));
  }
  static uint64_t mix(uint64_t hash, const Interval &interval)
  {
    return mix(mix(hash, interval.low), interval.high);
  }

  [[nodiscard]] size_t slot(const void *node, const Value &value) const
  {
    const uint64_t hash = mix(mix(0, reinterpret_cast<uintptr_t>(node)), value);
    return static_cast<size_t>(hash ^ (hash >> 32)) & (heads_.size() - 1);
  }

  [[nodiscard, gnu::noinline]] bool is_linked(const void *node, const Value &value) const
  {
    for (uint32_t i = heads_[slot(node, value)]; i != none; i = entries_[i].next)
      if (entries_[i].node == node && same_value(entries_[i].value, value)) return true;
    return false;
  }

  void link(uint32_t number)
  {
    Entry &entry = entries_[number];
    uint32_t &head = heads_[slot(entry.node, entry.value)];
    entry.next = head;
    head = number;
  }

  /// Puts the latest entry into the table, which grows before it has less room than entries.
  [[gnu::noinline]] void link_last()
  {
    if (entries_.size() <= heads_.size()) {
      link(static_cast<uint32_t>(entries_.size() - 1));
      return;
    }
    heads_.assign(heads_.empty() ? 4 * unhashed_limit : 4 * heads_.size(), none);
    for (uint32_t i = 0; i < entries_.size(); ++i) link(i);
  }

  InlineStack<Entry, unhashed_limit> entries_;
  std::vector<uint32_t> heads_; ///< a power of two, or none while there are few entries
};

} // namespace tdm
