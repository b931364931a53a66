// A pool hands out elements from its free list, then from the rest of its newest block, then from a
// new block. When no element is in use any more, several blocks go back to the system while a
// single one stays, so that a program that builds one tree after the other doesn't allocate. The
// sanitizer is told which elements nobody may touch.
#include "expressions/exprlib/pool.h"

#include <cstdint>
#include <cstdlib>

#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(memory, size) ((void)(memory), (void)(size))
#define ASAN_UNPOISON_MEMORY_REGION(memory, size) ((void)(memory), (void)(size))
#endif

namespace exprlib {

namespace {

constexpr std::size_t block_bytes = 8176;
constexpr std::size_t largest_standard_size = 64;
constexpr std::size_t bucket_count = 511;

/// Stands at the start of each block, and in each free element.
struct Link {
  Link *next;
};

struct Pool {
  Pool *next_in_bucket;
  std::size_t size; // the key: a request rounded up to a multiple of 4
  std::size_t element_size;
  std::size_t block_size;
  Link *blocks;
  std::size_t blocks_held;
  char *cursor;
  std::size_t left;
  Link *free;
  std::size_t live;
};

struct Pools {
  Pool *buckets[bucket_count];
  bool started;
};

Pools pools;

std::size_t round_up(std::size_t size, std::size_t unit)
{
  return (size + unit - 1) / unit * unit;
}

Pool *find(std::size_t size)
{
  Pool *pool = pools.buckets[size % bucket_count];
  while (pool != nullptr && pool->size != size) pool = pool->next_in_bucket;
  return pool;
}

bool make(std::size_t size)
{
  auto *pool = static_cast<Pool *>(std::calloc(1, sizeof(Pool)));
  if (pool == nullptr) return false;
  pool->size = size;
  pool->element_size = round_up(size < 4 ? 4 : size, 8);
  pool->block_size = 4 * pool->element_size <= block_bytes
                         ? block_bytes / pool->element_size * pool->element_size
                         : 4 * pool->element_size;
  Pool *&bucket = pools.buckets[size % bucket_count];
  pool->next_in_bucket = bucket;
  bucket = pool;
  return true;
}

/// The pool of a size, or null. The standard pools are made on first use.
Pool *pool_of(std::size_t size)
{
  if (!pools.started) {
    pools.started = true;
    for (std::size_t standard = 4; standard <= largest_standard_size; standard += 4) make(standard);
  }
  return find(round_up(size == 0 ? 1 : size, 4));
}

bool add_block(Pool &pool)
{
  auto *block = static_cast<char *>(std::malloc(sizeof(Link) + pool.block_size));
  if (block == nullptr) return false;
  auto *link = reinterpret_cast<Link *>(block);
  link->next = pool.blocks;
  pool.blocks = link;
  ++pool.blocks_held;
  pool.cursor = block + sizeof(Link);
  pool.left = pool.block_size;
  ASAN_POISON_MEMORY_REGION(pool.cursor, pool.left);
  return true;
}

void drop_blocks(Pool &pool)
{
  while (pool.blocks != nullptr) {
    Link *block = pool.blocks;
    pool.blocks = block->next;
    std::free(block);
  }
  pool.blocks_held = 0;
  pool.cursor = nullptr;
  pool.left = 0;
  pool.free = nullptr;
}

/// What may be touched of an element: the bytes asked for, and the link that it once carried.
std::size_t element_bytes(std::size_t size)
{
  return size < sizeof(Link) ? sizeof(Link) : size;
}

} // namespace

bool add_pool(std::size_t size)
{
  return size <= largest_standard_size || pool_of(size) != nullptr || make(round_up(size, 4));
}

void *allocate(std::size_t size)
{
  Pool *pool = pool_of(size);
  if (pool == nullptr) return std::malloc(size);
  if (pool->free != nullptr) {
    Link *element = pool->free;
    ASAN_UNPOISON_MEMORY_REGION(element, element_bytes(size));
    pool->free = element->next;
    ++pool->live;
    return element;
  }
  if (pool->left == 0 && !add_block(*pool)) return nullptr;
  void *element = pool->cursor;
  ASAN_UNPOISON_MEMORY_REGION(element, element_bytes(size));
  pool->cursor += pool->element_size;
  pool->left -= pool->element_size;
  ++pool->live;
  return element;
}

void release(void *memory, std::size_t size)
{
  Pool *pool = pool_of(size);
  if (pool == nullptr) {
    std::free(memory);
    return;
  }
  auto *element = static_cast<Link *>(memory);
  element->next = pool->free;
  pool->free = element;
  ASAN_POISON_MEMORY_REGION(element, pool->element_size);
  if (--pool->live == 0 && pool->blocks_held > 1) drop_blocks(*pool);
}

PoolState pool_state(std::size_t size)
{
  const Pool *pool = pool_of(size);
  return pool == nullptr ? PoolState{} : PoolState{pool->live, pool->blocks_held};
}

} // namespace exprlib
