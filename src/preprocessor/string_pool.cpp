// An index over an arena. A text is interned for nearly every token that is read, so this is one of
// the busiest places of a parse.
//
// The index is open-addressed with a power of two of slots, and keeps the whole hash next to each
// text, so that a search looks at one text only and growing looks at none.
#include "preprocessor/string_pool.h"

#include <cstdlib>
#include <cstring>

#include "common/source_location.h"
#include "common/text_hash.h"
#include "preprocessor/c_memory.h"
#include "preprocessor/orderly_stop.h"

namespace tdm {

std::uint32_t detail::pool_number = 0;

namespace {

struct Slot {
  std::uint64_t hash;
  const char *text; ///< null where the slot is free
};

struct {
  MemoryArena arena;
  Slot *slots = nullptr; ///< at least a third of them is free
  std::size_t mask = 0;  ///< their number less one
  std::size_t used = 0;
  std::uint32_t last_number = 0; ///< of all pools so far
} pool;

// Whether the text of the pool is this one; its length is looked at first.
bool equal(const char *pooled_text, std::string_view text)
{
  return pooled(pooled_text).length == text.size() &&
         same_bytes(pooled_text, text.data(), text.size());
}

void allocate_slots(std::size_t count)
{
  pool.slots = static_cast<Slot *>(std::calloc(count, sizeof(Slot)));
  if (pool.slots == nullptr) stop_no_memory("hashtab_calloc: Cannot allocate memory.\n");
  pool.mask = count - 1;
}

void grow()
{
  Slot *const old = pool.slots;
  const std::size_t count = pool.mask + 1;
  allocate_slots(count * 2);
  for (const Slot *slot = old; slot != old + count; ++slot) {
    if (slot->text == nullptr) continue;
    std::size_t place = slot->hash & pool.mask;
    while (pool.slots[place].text != nullptr) place = (place + 1) & pool.mask;
    pool.slots[place] = *slot;
  }
  std::free(old);
}

[[gnu::noinline]] const char *add(std::string_view text, std::uint64_t hash, std::size_t place)
{
  auto *record = static_cast<PooledText *>(
      pool.arena.allocate(sizeof(PooledText) + ((text.size() + 8) & ~std::size_t{7})));
  record->hash = static_cast<std::uint32_t>(hash);
  record->length = text.size();
  char *copy = reinterpret_cast<char *>(record + 1);
  if (!text.empty()) std::memcpy(copy, text.data(), text.size()); // zero-filled: terminated
  pool.slots[place] = {hash, copy};
  if (++pool.used * 3 > pool.mask * 2) grow();
  return copy;
}

} // namespace

void string_pool_start()
{
  if (string_pool_started()) return;
  allocate_slots(1024);
  if (++pool.last_number == 0) ++pool.last_number;
  detail::pool_number = pool.last_number;
}

void string_pool_end()
{
  std::free(pool.slots);
  pool.slots = nullptr;
  pool.mask = pool.used = 0;
  pool.arena.clear();
  detail::pool_number = 0;
  forget_location_texts();
}

bool string_pool_started()
{
  return pool.slots != nullptr;
}

const char *intern(std::string_view text)
{
  const std::uint64_t hash = text_hash(text);
  std::size_t place = hash & pool.mask;
  for (; pool.slots[place].text != nullptr; place = (place + 1) & pool.mask)
    if (pool.slots[place].hash == hash && equal(pool.slots[place].text, text))
      return pool.slots[place].text;
  return add(text, hash, place);
}

} // namespace tdm
