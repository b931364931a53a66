// Small blocks of memory that come and go by the thousand: records of the parse, objects of the
// model, and lists of source locations.
//
// There is a pool for the process, whose memory goes back when its last block has been freed and
// the library ends (pool_trim), and one for each spec: while a PoolScope is open, new blocks come
// from its pool. A block goes back where it came from, whatever pool is open.
//
// Pools cut their blocks from chunks. Freed blocks of objects are handed out again, by size. Those
// of records aren't while a text is read (RecordScope): they lie in chunks of their own, in the
// order of the text, which is the order in which they are used up later; and a chunk that has been
// used up is cut anew, into whatever the model is made of. So the model grows into the room of the
// records that it is made from, the first ones first, and what is left over behind goes back.
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
#include <utility>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#define TDM_PLAIN_BLOCKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TDM_PLAIN_BLOCKS 1
#endif
#endif

namespace tdm {

/// From here on some memory of specs that end is kept for those that come.
void pool_start() noexcept;

/// Gives back what is kept, and all memory of the process's pool if no block of it is in use.
void pool_trim() noexcept;

#ifdef TDM_PLAIN_BLOCKS

struct BlockPool {};

/// What regions are for.
class Region {
public:
  static constexpr bool ends_objects = false;

  [[nodiscard]] BlockPool &pool() { return pool_; }
  void give_back() noexcept {}

private:
  BlockPool pool_;
};

inline BlockPool process_pool;

struct PoolScope {
  explicit PoolScope(BlockPool &) {}
  ~PoolScope() {}
};

struct RecordScope {
  RecordScope() {}
  ~RecordScope() {}
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

[[nodiscard]] inline void *record_allocate(std::size_t size)
{
  return pool_allocate(size);
}

inline void record_free(void *block, std::size_t size) noexcept
{
  pool_free(block, size);
}

[[nodiscard]] inline bool region_is_open()
{
  return false;
}

#else

class RegionGuest;

/// Chunks of one size, cut into blocks.
struct BlockPool {
  static constexpr std::size_t grain = 16;       ///< of the sizes of objects
  static constexpr std::size_t record_grain = 8; ///< of those of records
  static constexpr std::size_t largest = 1024;   ///< of the blocks that lie in chunks
  static constexpr std::size_t chunk_size = std::size_t{32} << 10; ///< and alignment

  struct FreeBlock {
    FreeBlock *next;
  };
  /// At the beginning of each chunk.
  struct alignas(grain) Chunk {
    BlockPool *pool;
    Chunk *next;          ///< the one that was used up after this one
    std::uint32_t in_use; ///< blocks, in a chunk of records
    bool is_of_records;
    bool begins_slab;
  };
  /// Chunks that were asked for in one piece, the first of them for records or for objects. Lies in
  /// the first one, behind its beginning.
  struct alignas(grain) Slab {
    Slab *next;
    std::size_t size;
    bool is_of_records;
  };
  /// In front of each block that is too large for a chunk.
  struct alignas(grain) LargeBlock {
    BlockPool *pool;
    LargeBlock *previous;
    LargeBlock *next;
  };
  /// What is left of the chunk that blocks are cut from, or of the slab that chunks are.
  struct Room {
    char *cursor;
    char *end;
  };

  [[nodiscard]] static Chunk *chunk_of(const void *block)
  {
    return reinterpret_cast<Chunk *>(reinterpret_cast<std::uintptr_t>(block) &
                                     ~std::uintptr_t{chunk_size - 1});
  }
  [[nodiscard]] static LargeBlock *large_block_of(void *block)
  {
    return static_cast<LargeBlock *>(block) - 1;
  }

  /// A block of so many bytes at the beginning of another chunk.
  [[nodiscard]] void *cut_object(std::size_t size);
  [[nodiscard]] void *cut_record(std::size_t size);
  /// Makes a chunk without a block in use ready for others.
  void use_up(Chunk *chunk) noexcept;
  [[nodiscard]] void *allocate_large(std::size_t size);
  static void free_large(LargeBlock *block) noexcept;
  /// Gives back the slabs of which all is used up, in a pool that has many. What is used up of the
  /// others isn't cut anew any more.
  void give_back() noexcept;
  /// Gives all memory back.
  void clear() noexcept;

  FreeBlock *free[largest / grain + 1];
  Room objects;
  Room records;
  bool records_apart; ///< whether a RecordScope is open
  Chunk *used_up;     ///< the first that was used up, which is the next to be cut
  Chunk *last_used_up;
  Room object_chunks; ///< of the newest slab for objects
  Room record_chunks; ///< of the newest one for records
  Slab *slabs;
  std::size_t slab_size; ///< of the newest one
  LargeBlock *large_blocks;
  std::size_t in_use; ///< blocks of objects

private:
  [[nodiscard]] Room next_room(bool of_records);
  void add_slab(bool of_records);
  void end_records() noexcept;
  [[nodiscard]] bool is_used_up(const Slab &slab) const;
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

/// Records are kept apart from objects in the open pool, until the scope ends.
class RecordScope {
public:
  RecordScope() : pool_(*open_pool) { pool_.records_apart = true; }
  ~RecordScope() { pool_.records_apart = false; }
  RecordScope(const RecordScope &) = delete;
  RecordScope &operator=(const RecordScope &) = delete;

private:
  BlockPool &pool_;
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
  /// Gives back what the records of a long text had and the model didn't need, once there are no
  /// records any more.
  void give_back() noexcept { pool_.give_back(); }

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
  BlockPool::Room &room = pool.objects;
  if (static_cast<std::size_t>(room.end - room.cursor) < whole) return pool.cut_object(whole);
  void *const block = room.cursor;
  room.cursor += whole;
  ++pool.in_use;
  return block;
}

/// The size must be the one that was asked for; null is no block.
inline void pool_free(void *block, std::size_t size) noexcept
{
  if (block == nullptr) return;
  if (size > BlockPool::largest) return BlockPool::free_large(BlockPool::large_block_of(block));
  BlockPool &pool = *BlockPool::chunk_of(block)->pool;
  --pool.in_use;
  const std::size_t grains = (size + BlockPool::grain - 1) / BlockPool::grain;
  pool.free[grains] = new (block) BlockPool::FreeBlock{pool.free[grains]};
}

/// For records, and lists in them; aligned for pointers and numbers.
[[nodiscard]] inline void *record_allocate(std::size_t size)
{
  BlockPool &pool = *open_pool;
  if (!pool.records_apart || size > BlockPool::largest) return pool_allocate(size);
  const std::size_t whole =
      (size + BlockPool::record_grain - 1) / BlockPool::record_grain * BlockPool::record_grain;
  BlockPool::Room &room = pool.records;
  if (static_cast<std::size_t>(room.end - room.cursor) < whole) return pool.cut_record(whole);
  void *const block = room.cursor;
  room.cursor += whole;
  ++BlockPool::chunk_of(block)->in_use;
  return block;
}

/// As pool_free.
inline void record_free(void *block, std::size_t size) noexcept
{
  if (block == nullptr || size > BlockPool::largest) return pool_free(block, size);
  BlockPool::Chunk *const chunk = BlockPool::chunk_of(block);
  if (!chunk->is_of_records) return pool_free(block, size);
  if (--chunk->in_use == 0) chunk->pool->use_up(chunk);
}

/// Whether new blocks may be left to a region.
[[nodiscard]] inline bool region_is_open()
{
  return open_pool != &process_pool;
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

/// Appends to one of the lists that mostly get a few elements: the first brings room for four.
template <typename T> void append(PooledVector<T> &list, T element)
{
  if (list.capacity() == 0) list.reserve(4);
  list.push_back(std::move(element));
}

/// Makes containers keep their elements with the records.
template <typename T> struct RecordAllocator {
  static_assert(alignof(T) <= 8);
  using value_type = T;

  RecordAllocator() = default;
  template <typename Other> RecordAllocator(const RecordAllocator<Other> &) noexcept {}

  [[nodiscard]] T *allocate(std::size_t count)
  {
    return static_cast<T *>(record_allocate(count * sizeof(T)));
  }
  void deallocate(T *elements, std::size_t count) noexcept
  {
    record_free(elements, count * sizeof(T));
  }

  friend bool operator==(RecordAllocator, RecordAllocator) { return true; }
};

/// A base that makes objects live with the records. What derives from it needs a virtual
/// destructor, or must be deleted as what it is.
struct RecordMemory {
  static void *operator new(std::size_t size) { return record_allocate(size); }
  static void operator delete(void *block, std::size_t size) noexcept { record_free(block, size); }
};

} // namespace tdm
