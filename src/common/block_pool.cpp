// The slabs that blocks are cut from.
//
// Slabs grow with the pool: a short description has a small one, and the large ones of a large
// description are huge pages where the system has them, or many that are asked for at once: a fault
// for each small page costs more than the objects in it.
#include "common/block_pool.h"

#include <algorithm>
#include <cstdint>
#include <functional>

#include "common/huge_pages.h"

namespace tdm {

#ifdef TDM_PLAIN_BLOCKS

void pool_start() noexcept {}
void pool_trim() noexcept {}

#else

namespace {

constexpr std::size_t first_slab = std::size_t{64} << 10;
constexpr std::size_t largest_slab = huge_page;
constexpr std::align_val_t slab_alignment{BlockPool::chunk_size};

Region *regions = nullptr;

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

// Slabs of a spec that has ended, for the next one: who parses the same description again and again
// would else wait for fresh pages each time.
struct SpareSlab {
  SpareSlab *next;
  std::size_t size;
};
struct {
  SpareSlab *slabs;
  std::size_t room; ///< for more, in bytes
} spare;
constexpr std::size_t most_spare = std::size_t{8} << 20;

void *take_spare(std::size_t size)
{
  SpareSlab **link = &spare.slabs;
  while (*link != nullptr && (*link)->size != size) link = &(*link)->next;
  SpareSlab *const slab = *link;
  if (slab == nullptr) return nullptr;
  *link = slab->next;
  spare.room += size;
  return slab;
}

void unmap_slab(void *slab, std::size_t size) noexcept
{
  if (size == largest_slab)
    unmap_huge_pages(slab, size);
  else
    ::operator delete(slab, slab_alignment);
}

// Slabs double in size until they are large.
void *allocate_slab(std::size_t size)
{
  if (void *const slab = take_spare(size)) return slab;
  return size == largest_slab ? map_large_slab() : ::operator new(size, slab_alignment);
}

void free_slab(void *slab, std::size_t size) noexcept
{
  if (size <= spare.room) {
    spare.slabs = new (slab) SpareSlab{spare.slabs, size};
    spare.room -= size;
    return;
  }
  unmap_slab(slab, size);
}

} // namespace

constinit BlockPool process_pool{};
constinit BlockPool *open_pool = &process_pool;

void BlockPool::add_slab(bool of_records)
{
  const std::size_t size = std::clamp(slab_size * 2, first_slab, largest_slab);
  char *const begin = static_cast<char *>(allocate_slab(size));
  (of_records ? record_chunks : object_chunks) = {begin, begin + size};
  slabs = new (begin + sizeof(Chunk)) Slab{slabs, size, of_records};
  slab_size = size;
}

BlockPool::Room BlockPool::next_room(bool of_records)
{
  char *begin = reinterpret_cast<char *>(used_up);
  bool begins_slab = false;
  if (used_up != nullptr) {
    begins_slab = used_up->begins_slab;
    used_up = used_up->next;
  } else {
    Room &chunks = of_records ? record_chunks : object_chunks;
    if (chunks.cursor == chunks.end) {
      add_slab(of_records);
      begins_slab = true;
    }
    begin = chunks.cursor;
    chunks.cursor += chunk_size;
  }
  new (begin) Chunk{this, nullptr, 0, of_records, begins_slab};
  const std::size_t head = sizeof(Chunk) + (begins_slab ? sizeof(Slab) : 0);
  return {begin + head, begin + chunk_size};
}

// What is left of the chunk before is lost, here and below.
void *BlockPool::cut_object(std::size_t size)
{
  objects = next_room(false);
  void *const block = objects.cursor;
  objects.cursor += size;
  ++in_use;
  return block;
}

// A chunk whose blocks were all freed while it was still being cut is used up only now.
void BlockPool::end_records() noexcept
{
  if (records.end == nullptr) return;
  Chunk *const last = chunk_of(records.end - 1);
  records = {};
  if (last->in_use == 0) use_up(last);
}

void *BlockPool::cut_record(std::size_t size)
{
  const Room next = next_room(true);
  void *const block = next.cursor;
  end_records();
  records = {next.cursor + size, next.end};
  ++chunk_of(block)->in_use;
  return block;
}

void BlockPool::use_up(Chunk *chunk) noexcept
{
  if (records.end != nullptr && chunk == chunk_of(records.end - 1)) return;
  chunk->next = nullptr;
  (used_up != nullptr ? last_used_up->next : used_up) = chunk;
  last_used_up = chunk;
}

void *BlockPool::allocate_large(std::size_t size)
{
  if (size > SIZE_MAX - sizeof(LargeBlock)) throw std::bad_alloc();
  void *const memory = ::operator new(sizeof(LargeBlock) + size);
  auto *const block = new (memory) LargeBlock{this, nullptr, large_blocks};
  if (large_blocks != nullptr) large_blocks->previous = block;
  large_blocks = block;
  return block + 1;
}

void BlockPool::free_large(LargeBlock *block) noexcept
{
  (block->previous != nullptr ? block->previous->next : block->pool->large_blocks) = block->next;
  if (block->next != nullptr) block->next->previous = block->previous;
  ::operator delete(block);
}

/// Of a slab for records: whether nothing is left in what has been cut of it.
bool BlockPool::is_used_up(const Slab &slab) const
{
  char *const begin = reinterpret_cast<char *>(chunk_of(&slab));
  char *const end = begin + slab.size;
  char *const cut = record_chunks.end == end ? record_chunks.cursor : end;
  for (char *at = begin; at != cut; at += chunk_size) {
    const auto *const chunk = reinterpret_cast<const Chunk *>(at);
    if (!chunk->is_of_records || chunk->in_use != 0) return false;
  }
  return true;
}

// A pool with as little as is kept for the next spec anyway keeps all of it.
void BlockPool::give_back() noexcept
{
  std::size_t held = 0;
  for (const Slab *slab = slabs; slab != nullptr; slab = slab->next) held += slab->size;
  if (held <= most_spare) return;

  end_records();
  used_up = nullptr; // as hardly anything is made from here on
  for (Slab **link = &slabs; *link != nullptr;) {
    Slab *const slab = *link;
    if (!slab->is_of_records || !is_used_up(*slab)) {
      link = &slab->next;
      continue;
    }
    *link = slab->next;
    char *const begin = reinterpret_cast<char *>(chunk_of(slab));
    if (record_chunks.end == begin + slab->size) record_chunks = {};
    unmap_slab(begin, slab->size);
  }
}

void BlockPool::clear() noexcept
{
  for (LargeBlock *block = large_blocks; block != nullptr;) {
    LargeBlock *const next = block->next;
    ::operator delete(block);
    block = next;
  }
  while (slabs != nullptr) {
    Slab *const slab = slabs;
    slabs = slab->next;
    free_slab(chunk_of(slab), slab->size);
  }
  *this = {};
}

void pool_start() noexcept
{
  pool_trim();
  spare.room = most_spare;
}

void pool_trim() noexcept
{
  SpareSlab *slab = spare.slabs;
  spare = {};
  while (slab != nullptr) {
    SpareSlab *const next = slab->next;
    free_slab(slab, slab->size);
    slab = next;
  }
  if (process_pool.in_use == 0 && process_pool.large_blocks == nullptr) process_pool.clear();
}

Region::Region() : next_(regions)
{
  regions = this;
}

Region::~Region()
{
  // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): each takes itself out of the list
  while (guests_ != nullptr) delete guests_;
  Region **link = &regions;
  while (*link != this) link = &(*link)->next_;
  *link = next_;
  pool_.clear();
}

bool Region::holds(const void *address) const
{
  const auto *const wanted = static_cast<const char *>(address);
  for (const BlockPool::Slab *slab = pool_.slabs; slab != nullptr; slab = slab->next) {
    const auto *const begin = reinterpret_cast<const char *>(BlockPool::chunk_of(slab));
    if (!std::less<>{}(wanted, begin) && std::less<>{}(wanted, begin + slab->size)) return true;
  }
  return false;
}

RegionGuest::~RegionGuest()
{
  if (link_ == nullptr) return;
  *link_ = next_;
  if (next_ != nullptr) next_->link_ = link_;
}

void RegionGuest::stay_with(const void *owner)
{
  for (Region *region = regions; region != nullptr; region = region->next_) {
    if (!region->holds(owner)) continue;
    next_ = region->guests_;
    if (next_ != nullptr) next_->link_ = &next_;
    link_ = &region->guests_;
    region->guests_ = this;
    return;
  }
}

#endif

} // namespace tdm
