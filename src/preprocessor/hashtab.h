// hashtab: the hash table of the library, behind the string pool, the macro table and the other
// tables of the preprocessor.
//
// Open addressing with double hashing over a prime number of slots; an entry is one pointer. A
// lookup leaves the current slot at the entry found or at the null slot where the key belongs, and
// insert and delete work on that slot, so an operation on a key costs one search. The table owns
// neither keys nor entries.
#pragma once

#include <cstdint>

struct hashtab {
  using Hash = std::uint32_t (*)(const void *key);
  using Equal = bool (*)(const void *key, const void *key_of_entry);
  using Key = const void *(*)(const void *entry);

  void **table = nullptr;
  void **curpos = nullptr;
  void **iterator = nullptr;
  std::uint32_t size = 0;
  std::uint32_t used = 0;
  std::uint32_t deleted = 0;
  std::uint32_t low_mark = 0;
  std::uint32_t high_mark = 0;
  std::uint32_t step_mask = 0;
  Hash hash = nullptr;
  Equal equal = nullptr;
  Key key = nullptr;  ///< maps an entry to its key; null: the entry is the key
  int key_length = 0; ///< 0: NUL-terminated; above 0: that many bytes; below 0: the pointer itself
};

/// The entry for the key, or null; either way the current slot is set.
void *hashtab_lookup(hashtab *h, const void *key);

/// Writes the entry at the current slot, which must be null (a lookup has just missed).
void hashtab_insert(hashtab *h, void *data);

/// Replaces the current entry by a sentinel.
void hashtab_delete(hashtab *h);

/// A walk over the live entries in slot order; null at the end. The order means nothing.
void *hashtab_first(hashtab *h);
void *hashtab_next(hashtab *h);

namespace tdm {

/// Frees the array of slots; the table can be used again.
void hashtab_free(hashtab &h);

/// Makes sure that there is an array to search in.
void hashtab_prepare(hashtab &h);

/// The fixed sentinel that marks a deleted entry.
extern char hashtab_sentinel;

/// The search itself, for users that know hash and comparison at compile time. The table must have
/// been prepared. `equal` is called with an entry.
template <class EqualEntry>
inline void *hashtab_search(hashtab &h, std::uint32_t hash, EqualEntry equal)
{
  std::uint64_t slot = hash % h.size;
  const std::uint32_t step = (hash & h.step_mask) + 1;
  for (;;) {
    void *entry = h.table[slot];
    if (entry == nullptr || (entry != &hashtab_sentinel && equal(entry))) {
      h.curpos = h.table + slot;
      return entry;
    }
    slot += step;
    if (slot >= h.size) slot -= h.size;
  }
}

} // namespace tdm
