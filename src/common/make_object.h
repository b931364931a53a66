// Makes objects of the library's own classes, with the few steps in place that take a block from
// the pool: a parse makes objects by the hundred thousand, and TDMObject::operator new, which is
// there for clients too, costs a call each.
#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

#include "common/block_pool.h"
#include "common/tdm_object.h"

namespace tdm {

/// Where the object goes: a block of the open pool. Its destructor knows the way back.
template <class T> struct ObjectBlock {
  static_assert(std::is_base_of_v<TDMObject, T> || std::is_base_of_v<ObjectMemory, T>);
};
template <class T> inline constexpr ObjectBlock<T> object_block{};

/// As std::make_unique.
template <class T, class... Arguments>
[[nodiscard]] std::unique_ptr<T> make_object(Arguments &&...arguments);

} // namespace tdm

template <class T> [[nodiscard]] void *operator new(std::size_t size, tdm::ObjectBlock<T>)
{
  return tdm::pool_allocate(size);
}
/// For a constructor that fails.
template <class T> void operator delete(void *block, tdm::ObjectBlock<T>) noexcept
{
  tdm::pool_free(block, sizeof(T));
}

template <class T, class... Arguments> std::unique_ptr<T> tdm::make_object(Arguments &&...arguments)
{
  return std::unique_ptr<T>(::new (object_block<T>) T(std::forward<Arguments>(arguments)...));
}
