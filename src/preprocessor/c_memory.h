// c-memory: arenas for records of few fixed sizes.
//
// An arena hands out zero-filled memory from chunks and gives it all back at once. Items of at most
// two sizes can be released one by one and are reused; an item of a third size is simply abandoned
// until the arena goes. Nothing here runs constructors or destructors.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tdm {

class MemoryArena {
public:
  MemoryArena() = default;
  MemoryArena(const MemoryArena &) = delete;
  MemoryArena &operator=(const MemoryArena &) = delete;
  ~MemoryArena() { clear(); }

  /// Zero-filled memory, aligned to 8 when the size (rounded up to 4) is a multiple of 8, else
  /// to 4. Exhausted memory ends the process with exit code 2.
  [[nodiscard]] void *allocate(std::size_t size);

  /// Gives one item back; `size` is the size that it was allocated with. A null item is ignored.
  void release(void *item, std::size_t size);

  /// Frees all chunks. The arena is then as new.
  void clear();

  /// Bytes handed out since the arena was new, reused items not counted again.
  [[nodiscard]] std::size_t total() const { return total_; }

private:
  struct Chunk {
    Chunk *next;
  };
  struct FreeItem {
    FreeItem *next;
  };
  struct FreeList {
    std::size_t size;
    FreeItem *head;
  };

  void *new_chunk(std::size_t size);
  FreeList *free_list_of(std::size_t size);

  Chunk *chunks_ = nullptr;
  char *cursor_ = nullptr;
  std::size_t left_ = 0;
  FreeList free_lists_[2] = {};
  std::size_t total_ = 0;
};

} // namespace tdm
