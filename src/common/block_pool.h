// Small blocks of memory that come and go by the thousand: records of the parse, objects of the
// model, and lists of source locations.
//
// Freed blocks are kept by size and handed out again; large ones are the general allocator's. The
// memory goes back when the last block has been freed and the library ends (pool_trim). Under a
// sanitizer every block is the general allocator's, so that each one is watched. Like all of the
// library, the pool belongs to one thread at a time.
#pragma once

#include <cstddef>
#include <new>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#define TDM_PLAIN_BLOCKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TDM_PLAIN_BLOCKS 1
#endif
#endif

namespace tdm {

/// Gives all memory back if no block is in use.
void pool_trim() noexcept;

#ifdef TDM_PLAIN_BLOCKS

[[nodiscard]] inline void *pool_allocate(std::size_t size)
{
  return ::operator new(size);
}

inline void pool_free(void *block, std::size_t) noexcept
{
  ::operator delete(block);
}

#else

/// Free lists by size over slabs.
struct BlockPool {
  static constexpr std::size_t grain = 16;
  static constexpr std::size_t largest = 1024;

  struct FreeBlock {
    FreeBlock *next;
  };
  struct Slab;

  FreeBlock *free[largest / grain + 1];
  char *cursor; ///< the rest of the newest slab
  char *end;
  Slab *slabs;
  std::size_t in_use;
};
[[gnu::visibility("hidden")]] extern BlockPool block_pool;

/// A block of so many bytes, a multiple of the grain, at the beginning of a new slab.
[[nodiscard]] void *pool_cut(std::size_t size);

[[nodiscard]] inline void *pool_allocate(std::size_t size)
{
  if (size > BlockPool::largest) return ::operator new(size);
  const std::size_t grains = (size + BlockPool::grain - 1) / BlockPool::grain;
  if (BlockPool::FreeBlock *const block = block_pool.free[grains]) {
    block_pool.free[grains] = block->next;
    ++block_pool.in_use;
    return block;
  }
  const std::size_t whole = grains * BlockPool::grain;
  if (static_cast<std::size_t>(block_pool.end - block_pool.cursor) < whole) return pool_cut(whole);
  void *const block = block_pool.cursor;
  block_pool.cursor += whole;
  ++block_pool.in_use;
  return block;
}

/// The size must be the one that was asked for; null is no block.
inline void pool_free(void *block, std::size_t size) noexcept
{
  if (block == nullptr) return;
  if (size > BlockPool::largest) return ::operator delete(block);
  --block_pool.in_use;
  const std::size_t grains = (size + BlockPool::grain - 1) / BlockPool::grain;
  block_pool.free[grains] = new (block) BlockPool::FreeBlock{block_pool.free[grains]};
}

#endif

/// Makes containers keep their elements in the pool.
template <typename T> struct PoolAllocator {
  using value_type = T;

  PoolAllocator() = default;
  template <typename Other> PoolAllocator(const PoolAllocator<Other> &) noexcept {}

  [[nodiscard]] T *allocate(std::size_t count)
  {
    return static_cast<T *>(pool_allocate(count * sizeof(T)));
  }
  void deallocate(T *elements, std::size_t count) noexcept
  {
    pool_free(elements, count * sizeof(T));
  }

  friend bool operator==(PoolAllocator, PoolAllocator) { return true; }
};

/// A vector that keeps its elements in the pool: for the short lists of the many.
template <typename T> using PooledVector = std::vector<T, PoolAllocator<T>>;

/// A base that makes objects live in the pool. What derives from it needs a virtual destructor, or
/// must be deleted as what it is.
struct Pooled {
  static void *operator new(std::size_t size) { return pool_allocate(size); }
  static void operator delete(void *block, std::size_t size) noexcept { pool_free(block, size); }
};

} // namespace tdm
