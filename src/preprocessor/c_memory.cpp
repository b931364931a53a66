// Chunks are linked through their first word; small requests are cut from the newest one, and a
// large request gets a chunk of its own, so that it doesn't waste the rest of a shared one.
#include "preprocessor/c_memory.h"

#include <cstdlib>
#include <cstring>

#include "preprocessor/orderly_stop.h"

namespace tdm {

namespace {

constexpr std::size_t chunk_size = 4092;
constexpr std::size_t largest_shared = 200;
constexpr int released_byte = 0x2A;

constexpr std::size_t rounded(std::size_t size)
{
  return (size + 3) & ~std::size_t{3};
}

} // namespace

void *MemoryArena::new_chunk(std::size_t size)
{
  auto *chunk = static_cast<Chunk *>(std::calloc(1, size));
  if (chunk == nullptr) stop_no_memory("c-memory.c: Cannot allocate memory.\n");
  chunk->next = chunks_;
  chunks_ = chunk;
  return chunk + 1;
}

MemoryArena::FreeList *MemoryArena::free_list_of(std::size_t size)
{
  for (FreeList &list : free_lists_)
    if (list.size == size) return &list;
  return nullptr;
}

void *MemoryArena::allocate(std::size_t size)
{
  if (size > SIZE_MAX - chunk_size) stop_no_memory("c-memory.c: Cannot allocate memory.\n");
  size = rounded(size == 0 ? 1 : size);
  if (FreeList *list = free_list_of(size); list != nullptr && list->head != nullptr) {
    FreeItem *item = list->head;
    list->head = item->next;
    std::memset(static_cast<void *>(item), 0, size);
    return item;
  }
  total_ += size;
  if (size > largest_shared) return new_chunk(sizeof(Chunk) + size);

  const std::size_t alignment = size % 8 == 0 ? 8 : 4;
  std::size_t padding =
      (alignment - reinterpret_cast<std::uintptr_t>(cursor_) % alignment) % alignment;
  if (left_ < size + padding) {
    cursor_ = static_cast<char *>(new_chunk(chunk_size));
    left_ = chunk_size - sizeof(Chunk);
    padding = 0; // chunks are aligned for everything
  }
  char *item = cursor_ + padding;
  cursor_ = item + size;
  left_ -= size + padding;
  return item;
}

void MemoryArena::release(void *item, std::size_t size)
{
  if (item == nullptr) return;
  size = rounded(size == 0 ? 1 : size);
  std::memset(item, released_byte, size);
  // The link of the free list must fit in, aligned.
  if (size < sizeof(FreeItem) || size % alignof(FreeItem) != 0) return;
  FreeList *list = free_list_of(size);
  if (list == nullptr && (list = free_list_of(0)) != nullptr) list->size = size;
  if (list == nullptr) return;
  auto *entry = static_cast<FreeItem *>(item);
  entry->next = list->head;
  list->head = entry;
}

void MemoryArena::clear()
{
  while (chunks_ != nullptr) {
    Chunk *next = chunks_->next;
    std::free(chunks_);
    chunks_ = next;
  }
  cursor_ = nullptr;
  left_ = 0;
  free_lists_[0] = free_lists_[1] = {};
  total_ = 0;
}

} // namespace tdm
