// An index over an arena. A text is interned for nearly every token that is read, so this is one of
// the busiest places of a parse.
//
// The index is open-addressed with a power of two of slots. A search looks at a byte of the hash
// for each slot first: these lie close together, so that they are at hand however large the index
// is, and a text that is new is nearly always found to be so without a look at anything else. The
// hashes are kept so that growing looks at no text.
#include "preprocessor/string_pool.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <utility>

#include "common/failures.h"
#include "common/huge_pages.h"
#include "common/source_location.h"
#include "common/text_hash.h"
#include "preprocessor/orderly_stop.h"

namespace tdm {

std::uint32_t detail::pool_number = 0;

namespace {

// Zero-filled memory; ends the process if there is none.
void *allocate_zeroed(std::size_t size, const char *failure)
{
  void *const memory = size % huge_page == 0 ? map_huge_pages(size) : std::calloc(1, size);
  if (memory == nullptr) stop_no_memory(failure);
  return memory;
}

void free_zeroed(void *memory, std::size_t size)
{
  if (memory == nullptr) return;
  if (size % huge_page == 0)
    unmap_huge_pages(memory, size);
  else
    std::free(memory);
}

// The texts, one behind the other.
class TextArena {
public:
  // Zero-filled; the size must be a multiple of 8.
  void *allocate(std::size_t size)
  {
    if (left_ < size) {
      const std::size_t needed = sizeof(Chunk) + size;
      if (needed > next_size_ / 4) return new_chunk(needed) + 1;
      cursor_ = reinterpret_cast<char *>(new_chunk(next_size_) + 1);
      left_ = next_size_ - sizeof(Chunk);
      next_size_ = std::min(next_size_ * 2, huge_page);
    }
    char *const item = cursor_;
    cursor_ += size;
    left_ -= size;
    return item;
  }

  // Parts with its texts, for free().
  [[nodiscard]] void *release() { return std::exchange(*this, {}).chunks_; }

  static void free(void *texts)
  {
    for (auto *chunk = static_cast<Chunk *>(texts); chunk != nullptr;) {
      Chunk *const next = chunk->next;
      free_zeroed(chunk, chunk->size);
      chunk = next;
    }
  }

private:
  struct Chunk {
    Chunk *next;
    std::size_t size;
  };

  Chunk *new_chunk(std::size_t size)
  {
    chunks_ =
        new (allocate_zeroed(size, "c-memory.c: Cannot allocate memory.\n")) Chunk{chunks_, size};
    return chunks_;
  }

  Chunk *chunks_ = nullptr;
  char *cursor_ = nullptr;
  std::size_t left_ = 0;
  std::size_t next_size_ = std::size_t{8} << 10;
};

// The arrays lie in one block, in this order.
struct Index {
  const char **texts = nullptr;
  std::uint32_t *hashes = nullptr; ///< the low halves
  std::uint8_t *tags = nullptr;    ///< of the high halves; 0 where the slot is free
  std::size_t mask = 0;            ///< the number of slots less one

  [[nodiscard]] std::size_t size() const
  {
    const std::size_t size = (mask + 1) * (sizeof *texts + sizeof *hashes + sizeof *tags);
    return size < huge_page ? size : (size + huge_page - 1) / huge_page * huge_page;
  }
};

struct {
  TextArena arena;
  Index index;                   ///< at least a third of it is free
  std::size_t used = 0;          ///< slots
  std::uint32_t last_number = 0; ///< of all pools so far
} pool;

TextKeeper *keepers = nullptr;

// Whether the text of the pool is this one; its length is looked at first.
bool equal(const char *pooled_text, std::string_view text)
{
  return pooled(pooled_text).length == text.size() &&
         same_bytes(pooled_text, text.data(), text.size());
}

std::uint8_t tag_of(std::uint64_t hash)
{
  return static_cast<std::uint8_t>(hash >> 56 | 1);
}

Index allocate_index(std::size_t slots)
{
  Index index;
  index.mask = slots - 1;
  index.texts = static_cast<const char **>(
      allocate_zeroed(index.size(), "hashtab_calloc: Cannot allocate memory.\n"));
  index.hashes = reinterpret_cast<std::uint32_t *>(index.texts + slots);
  index.tags = reinterpret_cast<std::uint8_t *>(index.hashes + slots);
  return index;
}

void free_index(const Index &index)
{
  free_zeroed(index.texts, index.size());
}

void put(const Index &index, std::size_t place, const char *text, std::uint32_t hash,
         std::uint8_t tag)
{
  index.texts[place] = text;
  index.hashes[place] = hash;
  index.tags[place] = tag;
}

void grow()
{
  const Index old = pool.index;
  const Index index = allocate_index((old.mask + 1) * 2);
  for (std::size_t i = 0; i <= old.mask; ++i) {
    if (old.tags[i] == 0) continue;
    std::size_t place = old.hashes[i] & index.mask;
    while (index.tags[place] != 0) place = (place + 1) & index.mask;
    put(index, place, old.texts[i], old.hashes[i], old.tags[i]);
  }
  free_index(old);
  pool.index = index;
}

const char *store(std::string_view text, std::uint32_t hash)
{
  if (text.size() > UINT32_MAX) stop_no_memory("c-memory.c: Cannot allocate memory.\n");
  auto *record = static_cast<PooledText *>(
      pool.arena.allocate(sizeof(PooledText) + ((text.size() + 8) & ~std::size_t{7})));
  record->hash = hash;
  record->length = static_cast<std::uint32_t>(text.size());
  char *copy = reinterpret_cast<char *>(record + 1);
  if (!text.empty()) std::memcpy(copy, text.data(), text.size()); // zero-filled: terminated
  return copy;
}

[[gnu::noinline]] const char *add(std::string_view text, std::uint64_t hash, std::size_t place)
{
  const char *const copy = store(text, static_cast<std::uint32_t>(hash));
  put(pool.index, place, copy, static_cast<std::uint32_t>(hash), tag_of(hash));
  if (++pool.used * 3 > pool.index.mask * 2) grow();
  return copy;
}

} // namespace

void string_pool_start()
{
  if (string_pool_started()) return;
  pool.index = allocate_index(1024);
  if (++pool.last_number == 0) ++pool.last_number;
  detail::pool_number = pool.last_number;
}

void string_pool_end()
{
  free_index(pool.index);
  pool.index = {};
  pool.used = 0;
  void *const texts = pool.arena.release();
  if (TextKeeper *const keeper = TextKeeper::of(detail::pool_number))
    keeper->texts_ = texts;
  else
    TextArena::free(texts);
  detail::pool_number = 0;
  forget_location_texts();
}

bool string_pool_started()
{
  return pool.index.texts != nullptr;
}

const char *keep_unindexed(std::string_view text)
{
  return store(text, 0);
}

TextKeeper::TextKeeper() : next_(keepers)
{
  keepers = this;
}

TextKeeper::~TextKeeper()
{
  TextKeeper **link = &keepers;
  while (*link != this) link = &(*link)->next_;
  *link = next_;
  if (texts_ == nullptr) return;
  if (TextKeeper *const other = of(pool_))
    other->texts_ = texts_;
  else
    TextArena::free(texts_);
}

TextKeeper *TextKeeper::of(std::uint32_t number)
{
  TextKeeper *keeper = keepers;
  while (keeper != nullptr && keeper->pool_ != number) keeper = keeper->next_;
  return keeper;
}

const char *intern(std::string_view text)
{
  const std::uint64_t hash = text_hash(text);
  const Index &index = pool.index;
  const std::uint8_t tag = tag_of(hash);
  std::size_t place = static_cast<std::uint32_t>(hash) & index.mask;
  for (; index.tags[place] != 0; place = (place + 1) & index.mask)
    if (index.tags[place] == tag && equal(index.texts[place], text)) return index.texts[place];
  return add(text, hash, place);
}

Text pooled_text(std::string_view text)
{
  if (!string_pool_started()) throw new TDMFileException("tdm_init has not been called");
  return Text(std::string_view(intern(text), text.size()));
}

Text joined_text(std::string_view left, char between, std::string_view right)
{
  std::string text;
  text.reserve(left.size() + 1 + right.size());
  return pooled_text(text.append(left).append(1, between).append(right));
}

} // namespace tdm
