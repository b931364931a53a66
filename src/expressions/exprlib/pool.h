// Pools of blocks of one size, shared by all contexts of the process. They make it cheap to build
// and fold trees: in the steady state no request reaches the general allocator.
#pragma once

#include <cstddef>

namespace exprlib {

/// Sees to it that requests of this size are served by a pool; sizes 1 to 64 always are. A larger
/// size must be added before its first request, since memory goes back to where the size leads.
/// False without memory.
bool add_pool(std::size_t size);

/// Memory of the size, aligned for any pointer or double; null if there is none.
void *allocate(std::size_t size);

/// Gives memory back; the size is that of its request.
void release(void *memory, std::size_t size);

/// What a pool holds at present; for tests.
struct PoolState {
  std::size_t live = 0;
  std::size_t blocks = 0;
};
PoolState pool_state(std::size_t size);

} // namespace exprlib
