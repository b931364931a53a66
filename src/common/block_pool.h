// Small blocks of memory that come and go by the thousand: records of the parse, objects of the
// model, and lists of source locations.
//
// A pool hands freed blocks out again, by size. There is one for the process, whose memory goes
// back when its last block has been freed and the library ends (pool_trim), and one for each spec:
// while a PoolScope is open, new blocks come from its pool. A block goes back where it came from,
// whatever pool is open.
//
// The pool of a spec is a region: it ends with all that is still in it. So the many objects of a
// model needn't be destroyed one by one, which would fetch all of them into the caches for nothing.
// Who leaves objects to their region has to know that they own nothing outside of it but
// RegionGuests, which end with the region.
//
// Under a sanitizer every block is the general allocator's, so that each one is watched, and there
// are no regions: everything is destroyed. Like all of the library, pools belong to one thread at a
// time.
#pragma once

#include <cstddef>
#include <cstdint>
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

/// Gives all memory of the process's pool back if no block of it is in use.
void pool_trim() noexcept;

#ifdef TDM_PLAIN_BLOCKS

struct BlockPool {};

/// What regions are for.
class Region {
public:
  static constexpr bool ends_objects = false;

  [[nodiscard]] BlockPool &pool() { return pool_; }

private:
  BlockPool pool_;
};

inline BlockPool process_pool;

struct PoolScope {
  explicit PoolScope(BlockPool &) {}
  ~PoolScope() {}
};

class RegionGuest {
public:
  RegionGuest() = default;
  RegionGuest(const RegionGuest &) = delete;
  RegionGuest &operator=(const RegionGuest &) = delete;
  virtual ~RegionGuest() = default;

  void stay_with(const void *) {}
};

[[nodiscard]] inline void *pool_allocate(std::size_t size)
{
  return ::operator new(size);
}

inline void pool_free(void *block, std::size_t) noexcept
{
  ::operator delete(block);
}

[[nodiscard]] inline bool is_of_open_pool(const void *, std::size_t)
{
  return true;
}

#else

class RegionGuest;

/// Free lists by size over slabs.
struct BlockPool {
  static constexpr std::size_t grain = 16;
  static constexpr std::size_t largest = 1024; ///< of the blocks that lie in slabs
  /// Slabs begin at a multiple, so that the address of a block tells its slab.
  static constexpr std::size_t slab_alignment = std::size_t{2} << 20;

  struct FreeBlock {
    FreeBlock *next;
  };
  struct alignas(grain) Slab {
    BlockPool *pool;
    Slab *next;
    std::size_t size;
  };
  /// In front of each block that is too large for a slab.
  struct alignas(grain) LargeBlock {
    BlockPool *pool;
    LargeBlock *previous;
    LargeBlock *next;
  };

  [[nodiscard]] static Slab *slab_of(const void *block)
  {
    return reinterpret_cast<Slab *>(reinterpret_cast<std::uintptr_t>(block) &
                                    ~std::uintptr_t{slab_alignment - 1});
  }
  [[nodiscard]] static LargeBlock *large_block_of(void *block)
  {
    return static_cast<LargeBlock *>(block) - 1;
  }

  /// A block of so many bytes, a multiple of the grain, at the beginning of a new slab.
  [[nodiscard]] void *cut(std::size_t size);
  [[nodiscard]] void *allocate_large(std::size_t size);
  static void free_large(LargeBlock *block) noexcept;
  /// Gives all memory back.
  void clear() noexcept;

  FreeBlock *free[largest / grain + 1];
  char *cursor; ///< the rest of the newest slab
  char *end;
  Slab *slabs;
  LargeBlock *large_blocks;
  std::size_t in_use; ///< blocks in slabs
};

// Initialised before any code runs, and trivially destroyed: who frees a block late finds them.
[[gnu::visibility("hidden")]] extern BlockPool process_pool;
[[gnu::visibility("hidden")]] extern BlockPool *open_pool;

/// New blocks come from the pool, until the scope ends.
class PoolScope {
public:
  explicit PoolScope(BlockPool &pool) : before_(open_pool) { open_pool = &pool; }
  ~PoolScope() { open_pool = before_; }
  PoolScope(const PoolScope &) = delete;
  PoolScope &operator=(const PoolScope &) = delete;

private:
  BlockPool *before_;
};

/// A pool that ends with all that is in it.
class Region {
public:
  /// Whether objects may be left to a region.
  static constexpr bool ends_objects = true;

  Region();
  ~Region();
  Region(const Region &) = delete;
  Region &operator=(const Region &) = delete;

  [[nodiscard]] BlockPool &pool() { return pool_; }

private:
  friend class RegionGuest;

  [[nodiscard]] bool holds(const void *address) const;

  BlockPool pool_{};
  RegionGuest *guests_ = nullptr;
  Region *next_; ///< of all that there are
};

/// A base of what lies outside of a region and belongs to an object that may be in one. It ends
/// with its owner, or else with the region.
class RegionGuest {
public:
  RegionGuest() = default;
  RegionGuest(const RegionGuest &) = delete;
  RegionGuest &operator=(const RegionGuest &) = delete;
  virtual ~RegionGuest();

  /// Tells the region of the owner, if there is one, once.
  void stay_with(const void *owner);

private:
  RegionGuest *next_ = nullptr;
  RegionGuest **link_ = nullptr; ///< what leads here; null without a region
};

[[nodiscard]] inline void *pool_allocate(std::size_t size)
{
  BlockPool &pool = *open_pool;
  if (size > BlockPool::largest) return pool.allocate_large(size);
  const std::size_t grains = (size + BlockPool::grain - 1) / BlockPool::grain;
  if (BlockPool::FreeBlock *const block = pool.free[grains]) {
    pool.free[grains] = block->next;
    ++pool.in_use;
    return block;
  }
  const std::size_t whole = grains * BlockPool::grain;
  if (static_cast<std::size_t>(pool.end - pool.cursor) < whole) return pool.cut(whole);
  void *const block = pool.cursor;
  pool.cursor += whole;
  ++pool.in_use;
  return block;
}

/// The size must be the one that was asked for; null is no block.
inline void pool_free(void *block, std::size_t size) noexcept
{
  if (block == nullptr) return;
  if (size > BlockPool::largest) return BlockPool::free_large(BlockPool::large_block_of(block));
  BlockPool &pool = *BlockPool::slab_of(block)->pool;
  --pool.in_use;
  const std::size_t grains = (size + BlockPool::grain - 1) / BlockPool::grain;
  pool.free[grains] = new (block) BlockPool::FreeBlock{pool.free[grains]};
}

/// Whether a block of that size lives as long as new ones do.
[[nodiscard]] inline bool is_of_open_pool(void *block, std::size_t size)
{
  return open_pool == (size > BlockPool::largest ? BlockPool::large_block_of(block)->pool
                                                 : BlockPool::slab_of(block)->pool);
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
