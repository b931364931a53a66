// The slabs that blocks are cut from.
#include "common/block_pool.h"

namespace tdm {

#ifdef TDM_PLAIN_BLOCKS

void pool_trim() noexcept {}

#else

namespace {
constexpr std::size_t slab_size = 64 * 1024 - 64;
}

BlockPool block_pool;

struct alignas(BlockPool::grain) BlockPool::Slab {
  Slab *next;
};

// What is left of the slab before is lost.
void *pool_cut(std::size_t grains)
{
  const std::size_t size = grains * BlockPool::grain;
  if (static_cast<std::size_t>(block_pool.end - block_pool.cursor) < size) {
    auto *const slab = new (::operator new(slab_size)) BlockPool::Slab{block_pool.slabs};
    block_pool.slabs = slab;
    block_pool.cursor = reinterpret_cast<char *>(slab + 1);
    block_pool.end = reinterpret_cast<char *>(slab) + slab_size;
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
    ::operator delete(slab);
  }
  block_pool = {};
}

#endif

} // namespace tdm
