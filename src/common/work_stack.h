// The stack of pending work of the loops over trees: the first entries stand in place, so that an
// ordinary expression costs no allocation, and the rest on the heap, as deep as the data goes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <type_traits>

namespace tdm {

template <typename T, std::size_t InPlace = 32> class WorkStack {
  static_assert(std::is_trivially_copyable_v<T>);

public:
  // Entries are written before they are read; clearing them all would cost every use.
  // cppcheck-suppress uninitMemberVar
  WorkStack() = default;
  WorkStack(const WorkStack &) = delete;
  WorkStack &operator=(const WorkStack &) = delete;

  [[nodiscard]] bool empty() const { return size_ == 0; }
  [[nodiscard]] T &top() { return items_[size_ - 1]; }

  void push(const T &item)
  {
    if (size_ == capacity_) grow();
    items_[size_++] = item;
  }

  T pop() { return items_[--size_]; }

private:
  void grow()
  {
    auto larger = std::make_unique<T[]>(capacity_ * 2);
    std::copy_n(items_, size_, larger.get());
    heap_ = std::move(larger);
    items_ = heap_.get();
    capacity_ *= 2;
  }

  T in_place_[InPlace];
  T *items_ = in_place_;
  std::size_t size_ = 0;
  std::size_t capacity_ = InPlace;
  std::unique_ptr<T[]> heap_;
};

} // namespace tdm
