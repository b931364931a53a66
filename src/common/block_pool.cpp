// The slabs that blocks are cut from.
//
// Slabs grow with the pool: a short description has a small one, and the large ones of a large
// description are huge pages where the system has them, or many that are asked for at once: a fault
// for each small page costs more than the objects in it.
#include "common/block_pool.h"

#include <algorithm>

#include "common/huge_pages.h"

namespace tdm {

#ifdef TDM_PLAIN_BLOCKS

void pool_trim() noexcept {}

#else

namespace {

constexpr std::size_t first_slab = std::size_t{64} << 10;
constexpr std::size_t largest_slab = huge_page;
constexpr std::align_val_t page{4096};

// As operator new does, it lets the handler try when there is none.
void *map_large_slab()
{
  for (;;) {
    if (void *const slab = map_huge_pages(largest_slab)) return slab;
    const std::new_handler handler = std::get_new_handler();
    if (handler == nullptr) throw std::bad_alloc();
    handler();
  }
}

// Slabs double in size until they are large.
void *allocate_slab(std::size_t size)
{
  return size == largest_slab ? map_large_slab() : ::operator new(size, page);
}

void free_slab(void *slab, std::size_t size)
{
  if (size == largest_slab)
    unmap_huge_pages(slab, size);
  else
    ::operator delete(slab, page);
}

} // namespace

BlockPool block_pool;

struct alignas(BlockPool::grain) BlockPool::Slab {
  Slab *next;
  std::size_t size;
};

// What is left of the slab before is lost.
void *pool_cut(std::size_t size)
{
  const std::size_t last = block_pool.slabs == nullptr ? 0 : block_pool.slabs->size;
  const std::size_t room = std::clamp(last * 2, first_slab, largest_slab);
  auto *const slab = new (allocate_slab(room)) BlockPool::Slab{block_pool.slabs, room};
  block_pool.slabs = slab;
  void *const block = slab + 1;
  block_pool.cursor = static_cast<char *>(block) + size;
  block_pool.end = reinterpret_cast<char *>(slab) + room;
  ++block_pool.in_use;
  return block;
}

void pool_trim() noexcept
{
  if (block_pool.in_use != 0) return;
  while (block_pool.slabs != nullptr) {
    BlockPool::Slab *const slab = block_pool.slabs;
    block_pool.slabs = slab->next;
    free_slab(slab, slab->size);
  }
  block_pool = {};
}

#endif

} // namespace tdm
