// Makes objects of the library's own classes, with the few steps in place that take a block from
// the pool: a parse makes objects by the hundred thousand, and TDMObject::operator new, which is
// there for clients too, costs a call each.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "common/block_pool.h"
#include "common/tdm_object.h"

namespace tdm {

/// As std::make_unique. The object goes into a block of the open pool, and its class's own delete
/// knows the way back.
template <class T, class... Arguments>
[[nodiscard]] std::unique_ptr<T> make_object(Arguments &&...arguments)
{
  static_assert(std::is_base_of_v<TDMObject, T> || std::is_base_of_v<ObjectMemory, T>);
  const auto give_back = [](void *block) { pool_free(block, sizeof(T)); };
  // Should the constructor fail.
  std::unique_ptr<void, decltype(give_back)> block(pool_allocate(sizeof(T)), give_back);
  std::unique_ptr<T> object(::new (block.get()) T(std::forward<Arguments>(arguments)...));
  static_cast<void>(block.release());
  return object;
}

} // namespace tdm
