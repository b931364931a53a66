// Free lists by size over slabs.
#include "common/block_pool.h"

#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define TDM_PLAIN_BLOCKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TDM_PLAIN_BLOCKS 1
#endif
#endif

namespace tdm {

#ifdef TDM_PLAIN_BLOCKS

void *pool_allocate(std::size_t size)
{
  return ::operator new(size);
}

void pool_free(void *block, std::size_t) noexcept
{
  ::operator delete(block);
}

void pool_trim() noexcept {}

#else

namespace {

constexpr std::size_t grain = 16;
constexpr std::size_t largest = 1024;
constexpr std::size_t slab_size = 64 * 1024 - 64;

struct FreeBlock {
  FreeBlock *next;
};

struct alignas(grain) Slab {
  Slab *next;
};

struct {
  FreeBlock *free[largest / grain + 1];
  char *cursor; ///< the rest of the newest slab
  char *end;
  Slab *slabs;
  std::size_t in_use;
} pool;

// Cuts a block off the newest slab, or off a new one; what is left of the old one is lost.
void *cut(std::size_t size)
{
  if (static_cast<std::size_t>(pool.end - pool.cursor) < size) {
    Slab *const slab = new (::operator new(slab_size)) Slab{pool.slabs};
    pool.slabs = slab;
    pool.cursor = reinterpret_cast<char *>(slab + 1);
    pool.end = reinterpret_cast<char *>(slab) + slab_size;
  }
  void *const block = pool.cursor;
  pool.cursor += size;
  return block;
}

} // namespace

void *pool_allocate(std::size_t size)
{
  if (size > largest) return ::operator new(size);
  const std::size_t index = (size + grain - 1) / grain;
  void *block = pool.free[index];
  if (block != nullptr)
    pool.free[index] = pool.free[index]->next;
  else
    block = cut(index * grain);
  ++pool.in_use;
  return block;
}

void pool_free(void *block, std::size_t size) noexcept
{
  if (block == nullptr) return;
  if (size > largest) return ::operator delete(block);
  --pool.in_use;
  const std::size_t index = (size + grain - 1) / grain;
  pool.free[index] = new (block) FreeBlock{pool.free[index]};
}

void pool_trim() noexcept
{
  if (pool.in_use != 0) return;
  while (pool.slabs != nullptr) {
    Slab *const slab = pool.slabs;
    pool.slabs = slab->next;
    ::operator delete(slab);
  }
  pool = {};
}

#endif

} // namespace tdm
