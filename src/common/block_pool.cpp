// The slabs that blocks are cut from.
//
// Slabs grow with the pool: a short description has a small one, and the large ones of a large
// description are filled with pages at once, since a fault for each page costs more than the
// objects in it.
#include "common/block_pool.h"

#include <algorithm>
#include <sys/mman.h>

namespace tdm {

#ifdef TDM_PLAIN_BLOCKS

void pool_trim() noexcept {}

#else

namespace {

constexpr std::size_t first_slab = std::size_t{64} << 10;
constexpr std::size_t largest_slab = std::size_t{2} << 20;
constexpr std::align_val_t page{4096};

// Slabs double in size until they are large.
void *allocate_slab(std::size_t size)
{
  void *const memory = ::operator new(size, page);
#ifdef MADV_POPULATE_WRITE
  if (size == largest_slab)
    static_cast<void>(madvise(memory, size, MADV_POPULATE_WRITE)); // or later, one by one
#endif
  return memory;
}

} // namespace

BlockPool block_pool;

struct alignas(BlockPool::grain) BlockPool::Slab {
  Slab *next;
  std::size_t size;
};

// What is left of the slab before is lost.
void *pool_cut(std::size_t grains)
{
  const std::size_t size = grains * BlockPool::grain;
  if (static_cast<std::size_t>(block_pool.end - block_pool.cursor) < size) {
    const std::size_t last = block_pool.slabs == nullptr ? 0 : block_pool.slabs->size;
    const std::size_t room = std::clamp(last * 2, first_slab, largest_slab);
    auto *const slab = new (allocate_slab(room)) BlockPool::Slab{block_pool.slabs, room};
    block_pool.slabs = slab;
    block_pool.cursor = reinterpret_cast<char *>(slab + 1);
    block_pool.end = reinterpret_cast<char *>(slab) + room;
  }
  void *const block = block_pool.cursor;
  block_pool.cursor += size;
  ++block_pool.in_use;
  return block;
}

void pool_trim() noexcept
{
  if (block_pool.in_use != 0) return;
  while (block_pool.slabs != nullptr) {
    BlockPool::Slab *const slab = block_pool.slabs;
    block_pool.slabs = slab->next;
    ::operator delete(slab, page);
  }
  block_pool = {};
}

#endif

} // namespace tdm
