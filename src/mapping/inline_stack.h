// A stack of plain values whose first N have room in the object itself: what a translation needs
// for itself lies on the machine's stack as long as routes are short, and asks the heap for
// nothing.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

namespace tdm {

template <class T, size_t N> class InlineStack {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);
  static_assert(alignof(T) <= alignof(std::max_align_t));

public:
  InlineStack() = default;
  InlineStack(const InlineStack &) = delete;
  InlineStack &operator=(const InlineStack &) = delete;

  [[nodiscard]] size_t size() const { return size_; }
  [[nodiscard]] bool empty() const { return size_ == 0; }

  [[nodiscard]] T &operator[](size_t i) { return items()[i]; }
  [[nodiscard]] const T &operator[](size_t i) const { return items()[i]; }
  [[nodiscard]] T &back() { return items()[size_ - 1]; }
  [[nodiscard]] T *begin() { return items(); }
  [[nodiscard]] T *end() { return items() + size_; }
  [[nodiscard]] const T *begin() const { return items(); }
  [[nodiscard]] const T *end() const { return items() + size_; }

  /// Moves the values when there is no more room: references to them end.
  void push_back(const T &value)
  {
    if (size_ == capacity_) [[unlikely]] {
      const T copy = value;
      grow();
      new (items() + size_++) T(copy);
      return;
    }
    new (items() + size_++) T(value);
  }

  /// Where the next value goes, for one that is made in its place: it counts after add(). Moves the
  /// values as push_back() does.
  [[nodiscard]] T &next()
  {
    if (size_ == capacity_) [[unlikely]]
      grow();
    return items()[size_];
  }
  void add() { ++size_; }

  /// Takes the last value off, which stands where it is until another comes.
  const T &pop_back() { return items()[--size_]; }

  /// Keeps the first `size` values.
  void cut(size_t size) { size_ = size; }

private:
  [[nodiscard]] T *items() const { return reinterpret_cast<T *>(room_); }

  [[gnu::noinline]] void grow()
  {
    std::unique_ptr<std::byte[]> larger(new std::byte[2 * capacity_ * sizeof(T)]);
    std::memcpy(larger.get(), room_, size_ * sizeof(T));
    heap_ = std::move(larger);
    room_ = heap_.get();
    capacity_ *= 2;
  }

  alignas(T) std::byte inline_[N * sizeof(T)];
  std::byte *room_ = inline_;
  size_t size_ = 0;
  size_t capacity_ = N;
  std::unique_ptr<std::byte[]> heap_;
};

} // namespace tdm
