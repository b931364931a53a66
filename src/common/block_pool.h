// Small blocks of memory that come and go by the thousand: records of the parse, and lists of
// source locations.
//
// Freed blocks are kept by size and handed out again; large ones are the general allocator's. The
// memory goes back when the last block has been freed and the library ends (pool_trim). Under a
// sanitizer every block is the general allocator's, so that each one is watched. Like all of the
// library, the pool belongs to one thread at a time.
#pragma once

#include <cstddef>

namespace tdm {

[[nodiscard]] void *pool_allocate(std::size_t size);

/// The size must be the one that was asked for; null is no block.
void pool_free(void *block, std::size_t size) noexcept;

/// Gives all memory back if no block is in use.
void pool_trim() noexcept;

/// A base that makes objects live in the pool. What derives from it needs a virtual destructor, or
/// must be deleted as what it is.
struct Pooled {
  static void *operator new(std::size_t size) { return pool_allocate(size); }
  static void operator delete(void *block, std::size_t size) noexcept { pool_free(block, size); }
};

} // namespace tdm
