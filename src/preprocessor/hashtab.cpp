// Searching, growing and walking. The table grows before it is three quarters full, so that every
// search meets a null slot; slots of deleted entries count as full until the next growth.
#include "preprocessor/hashtab.h"

#include <cstdlib>
#include <cstring>
#include <iterator>

#include "preprocessor/orderly_stop.h"

namespace tdm {

char hashtab_sentinel;

namespace {

constexpr std::uint32_t primes[] = {
    11,        31,        67,         131,        257,        521,      1021,     2039,
    4093,      8179,      16381,      32749,      65521,      131063,   262139,   524269,
    1048573,   2097143,   4194301,    8388593,    16777213,   33554393, 67108859, 134217689,
    268435399, 536870909, 1073741789, 2147483629, 4294967295,
};

void allocate_slots(hashtab &h, std::uint32_t size)
{
  h.table = static_cast<void **>(std::calloc(size, sizeof(void *)));
  if (h.table == nullptr) stop_no_memory("hashtab_calloc: Cannot allocate memory.\n");
  h.size = size;
  h.low_mark = static_cast<std::uint32_t>(std::uint64_t{size / 10} * 25 / 10);
  h.high_mark = static_cast<std::uint32_t>(std::uint64_t{size / 10} * 75 / 10);
  h.step_mask = 1;
  while (h.step_mask < size / 2) h.step_mask = h.step_mask * 2 + 1;
  h.curpos = h.iterator = nullptr;
}

bool live(const void *entry)
{
  return entry != nullptr && entry != &hashtab_sentinel;
}

// Bytes are taken as signed; the shift and the product stay in 32 bits.
std::uint32_t hash_bytes(const char *bytes, std::size_t length)
{
  std::uint32_t h = 0;
  for (std::size_t i = 0; i < length; ++i)
    h = (h >> 15) + static_cast<std::uint32_t>(static_cast<signed char>(bytes[i])) + h * 16;
  return h;
}

std::uint32_t hash_key(const hashtab &h, const void *key)
{
  if (h.hash != nullptr) return h.hash(key);
  if (h.key_length < 0) return hash_bytes(reinterpret_cast<const char *>(&key), sizeof key);
  const auto *bytes = static_cast<const char *>(key);
  return hash_bytes(bytes, h.key_length == 0 ? std::strlen(bytes)
                                             : static_cast<std::size_t>(h.key_length));
}

const void *key_of(const hashtab &h, const void *entry)
{
  return h.key != nullptr ? h.key(entry) : entry;
}

bool keys_equal(const hashtab &h, const void *key, const void *other)
{
  if (h.equal != nullptr) return h.equal(key, other);
  if (h.key_length < 0) return key == other;
  if (h.key_length > 0) return std::memcmp(key, other, static_cast<std::size_t>(h.key_length)) == 0;
  return std::strcmp(static_cast<const char *>(key), static_cast<const char *>(other)) == 0;
}

// The number of slots to grow beyond: the present one, or twice the live entries where deleted
// ones have filled the table.
std::uint64_t size_to_exceed(const hashtab &h)
{
  if (h.deleted == 0) return h.size;
  const std::uint64_t alive = h.used - h.deleted;
  return alive < 10000 ? alive * 100 / 50 : alive * 10 / 50 * 10;
}

void grow(hashtab &h)
{
  const std::uint64_t bound = size_to_exceed(h);
  const std::uint32_t *prime = primes;
  while (*prime <= bound)
    if (++prime == primes + std::size(primes))
      stop_no_memory("hashtab_calloc: Cannot allocate memory.\n");

  void **old = h.table;
  const std::uint32_t old_size = h.size;
  allocate_slots(h, *prime);
  for (void **slot = old; slot != old + old_size; ++slot) {
    if (!live(*slot)) continue;
    // All keys differ, so the search for a place compares nothing.
    hashtab_search(h, hash_key(h, key_of(h, *slot)), [](const void *) { return false; });
    *h.curpos = *slot;
  }
  h.used -= h.deleted;
  h.deleted = 0;
  std::free(old);
}

} // namespace

void hashtab_prepare(hashtab &h)
{
  if (h.table == nullptr) allocate_slots(h, primes[0]);
}

void hashtab_free(hashtab &h)
{
  std::free(h.table);
  h.table = h.curpos = h.iterator = nullptr;
  h.size = h.used = h.deleted = h.low_mark = h.high_mark = h.step_mask = 0;
}

} // namespace tdm

void *hashtab_lookup(hashtab *h, const void *key)
{
  tdm::hashtab_prepare(*h);
  return tdm::hashtab_search(*h, tdm::hash_key(*h, key), [h, key](const void *entry) {
    return tdm::keys_equal(*h, key, tdm::key_of(*h, entry));
  });
}

void hashtab_insert(hashtab *h, void *data)
{
  tdm::internal_check(data != nullptr);
  tdm::internal_check(h->curpos != nullptr && *h->curpos == nullptr);
  *h->curpos = data;
  h->curpos = nullptr;
  if (++h->used > h->high_mark) tdm::grow(*h);
}

void hashtab_delete(hashtab *h)
{
  tdm::internal_check(h->curpos != nullptr && tdm::live(*h->curpos));
  *h->curpos = &tdm::hashtab_sentinel;
  ++h->deleted;
}

void *hashtab_first(hashtab *h)
{
  h->iterator = h->table;
  return hashtab_next(h);
}

void *hashtab_next(hashtab *h)
{
  if (h->iterator == nullptr) return nullptr;
  for (void **end = h->table + h->size; h->iterator != end; ++h->iterator)
    if (tdm::live(*h->iterator)) return *h->iterator++;
  return nullptr;
}
