// An index over an arena, with a hash function that takes eight bytes at a time: a text is interned
// for nearly every token that is read, so this is one of the busiest places of a parse.
//
// The index is open-addressed with a power of two of slots, and keeps the whole hash next to each
// text, so that a search looks at one text only and growing looks at none.
#include "preprocessor/string_pool.h"

#include <cstdlib>
#include <cstring>

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

std::uint64_t load(const char *bytes, std::size_t count)
{
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, count);
  return word;
}

// The last eight bytes, or all of a text that has fewer, without a call and without reading past
// either end. Texts of one length with equal tails differ in front of them, if at all.
[[gnu::always_inline]] inline std::uint64_t load_tail(const char *bytes, std::size_t count)
{
  if (count >= 8) return load(bytes + count - 8, 8);
  if (count >= 4) return load(bytes, 4) << 32 | load(bytes + count - 4, 4);
  if (count == 0) return 0;
  const auto byte = [bytes](std::size_t i) {
    return std::uint64_t{static_cast<unsigned char>(bytes[i])};
  };
  return byte(0) << 16 | byte(count / 2) << 8 | byte(count - 1);
}

constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15;

std::uint64_t mix(std::uint64_t h, std::uint64_t word)
{
  h = (h ^ word) * multiplier;
  return h ^ h >> 32;
}

std::uint64_t hash_text(std::string_view text)
{
  std::uint64_t h = text.size();
  for (std::size_t i = 0; i + 8 < text.size(); i += 8) h = mix(h, load(text.data() + i, 8));
  return mix(h, load_tail(text.data(), text.size()));
}

// Whether the text of the pool has these bytes; its length is looked at first.
bool equal(const char *pooled_text, std::string_view text)
{
  if (pooled(pooled_text).length != text.size()) return false;
  for (std::size_t i = 0; i + 8 < text.size(); i += 8)
    if (load(text.data() + i, 8) != load(pooled_text + i, 8)) return false;
  return load_tail(text.data(), text.size()) == load_tail(pooled_text, text.size());
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
}

bool string_pool_started()
{
  return pool.slots != nullptr;
}

const char *intern(std::string_view text)
{
  const std::uint64_t hash = hash_text(text);
  std::size_t place = hash & pool.mask;
  for (; pool.slots[place].text != nullptr; place = (place + 1) & pool.mask)
    if (pool.slots[place].hash == hash && equal(pool.slots[place].text, text))
      return pool.slots[place].text;
  return add(text, hash, place);
}

} // namespace tdm
