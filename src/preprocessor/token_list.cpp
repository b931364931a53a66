// Chunks grow with what is asked for, up to a huge page, and are kept for reuse; one that was made
// for a longer list goes back as soon as it isn't used.
#include "preprocessor/token_list.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "common/huge_pages.h"
#include "preprocessor/orderly_stop.h"

namespace tdm {

namespace {
constexpr std::size_t first_chunk = std::size_t{64} * 1024;
constexpr std::size_t alignment = alignof(std::max_align_t);

void free_chunk(char *begin, std::size_t size)
{
  if (size == huge_page)
    unmap_huge_pages(begin, size);
  else
    std::free(begin);
}

} // namespace

void *TokenMemory::allocate(std::size_t size)
{
  size = (size + alignment - 1) / alignment * alignment;
  while (top_.chunk < chunks_.size()) {
    Chunk &chunk = chunks_[top_.chunk];
    if (chunk.size - top_.used >= size) {
      void *memory = chunk.begin + top_.used;
      top_.used += size;
      return memory;
    }
    ++top_.chunk;
    top_.used = 0;
  }
  const std::size_t usual =
      chunks_.size() < 4 ? first_chunk : std::min(chunks_.back().size * 2, huge_page);
  const std::size_t chunk_size = std::max(size, usual);
  auto *begin = static_cast<char *>(chunk_size == huge_page ? map_huge_pages(chunk_size)
                                                            : std::malloc(chunk_size));
  if (begin == nullptr) stop_no_memory("c-memory.c: Cannot allocate memory.\n");
  chunks_.push_back({begin, chunk_size});
  top_ = {chunks_.size() - 1, size};
  return begin;
}

const PpToken *TokenMemory::copy(const PpToken *items, std::size_t count)
{
  if (count == 0) return nullptr;
  void *memory = allocate(count * sizeof(PpToken));
  std::memcpy(memory, items, count * sizeof(PpToken));
  return static_cast<const PpToken *>(memory);
}

void TokenMemory::release(Mark mark)
{
  top_ = mark;
  while (chunks_.size() > mark.chunk + 1 && chunks_.back().size > huge_page) {
    free_chunk(chunks_.back().begin, chunks_.back().size);
    chunks_.pop_back();
  }
}

void TokenMemory::clear()
{
  for (const Chunk &chunk : chunks_) free_chunk(chunk.begin, chunk.size);
  chunks_.clear();
  top_ = {};
}

} // namespace tdm
