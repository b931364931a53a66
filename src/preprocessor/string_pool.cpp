// One hashtab over an arena. The hash function is one of our own that takes eight bytes at a time:
// a text is interned for nearly every token that is read, so this is one of the busiest places of
// a parse.
#include "preprocessor/string_pool.h"

#include <cstring>

#include "preprocessor/c_memory.h"
#include "preprocessor/hashtab.h"

namespace tdm {

namespace {

struct {
  MemoryArena arena;
  hashtab table;
  bool started = false;
} pool;

std::uint64_t load(const char *bytes, std::size_t count)
{
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, count);
  return word;
}

// Up to eight bytes without a call and without reading past either end.
std::uint64_t load_short(const char *bytes, std::size_t count)
{
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

std::uint32_t hash_text(std::string_view text)
{
  const char *bytes = text.data();
  std::size_t left = text.size();
  std::uint64_t h = left;
  for (; left > 8; bytes += 8, left -= 8) h = mix(h, load(bytes, 8));
  return static_cast<std::uint32_t>(mix(h, load_short(bytes, left)));
}

std::uint32_t hash_of_pooled(const void *text)
{
  return pooled(static_cast<const char *>(text)).hash;
}

const char *add(std::string_view text, std::uint32_t hash)
{
  auto *record = static_cast<PooledText *>(
      pool.arena.allocate(sizeof(PooledText) + ((text.size() + 8) & ~std::size_t{7})));
  record->hash = hash;
  record->length = text.size();
  char *copy = reinterpret_cast<char *>(record + 1);
  if (!text.empty()) std::memcpy(copy, text.data(), text.size()); // zero-filled: terminated
  hashtab_insert(&pool.table, copy);
  return copy;
}

} // namespace

void string_pool_start()
{
  if (pool.started) return;
  pool.table.hash = hash_of_pooled;
  hashtab_prepare(pool.table);
  pool.started = true;
}

void string_pool_end()
{
  hashtab_free(pool.table);
  pool.arena.clear();
  pool.started = false;
}

bool string_pool_started()
{
  return pool.started;
}

const char *intern(std::string_view text)
{
  if (text.data() == nullptr) text = "";
  const std::uint32_t hash = hash_text(text);
  const void *found = hashtab_search(pool.table, hash, [=](const void *entry) {
    const auto *candidate = static_cast<const char *>(entry);
    const PooledText &record = pooled(candidate);
    return record.hash == hash && record.length == text.size() &&
           std::memcmp(candidate, text.data(), text.size()) == 0;
  });
  return found != nullptr ? static_cast<const char *>(found) : add(text, hash);
}

} // namespace tdm
