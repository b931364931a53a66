// c-buffer: a growing text buffer, reused for one text after the other.
//
// It never shrinks; cleared, it keeps its memory. The text in it may hold NULs.
#pragma once

#include <cstddef>
#include <string_view>

namespace tdm {

class TextBuffer {
public:
  explicit TextBuffer(std::size_t size = 0);
  TextBuffer(const TextBuffer &) = delete;
  TextBuffer &operator=(const TextBuffer &) = delete;
  ~TextBuffer() { free(); }

  void append(char c)
  {
    if (cursor_ == begin_ + size_) grow(1);
    *cursor_++ = c;
  }

  /// The text must not lie in the buffer itself.
  void append(std::string_view text);

  void clear() { cursor_ = begin_; }

  /// Gives the memory back.
  void free();

  [[nodiscard]] std::string_view view() const
  {
    return {begin_, static_cast<std::size_t>(cursor_ - begin_)};
  }
  [[nodiscard]] std::size_t length() const { return static_cast<std::size_t>(cursor_ - begin_); }

private:
  void grow(std::size_t more);

  char *begin_ = nullptr;
  char *cursor_ = nullptr;
  std::size_t size_ = 0;
  std::size_t first_size_;
};

} // namespace tdm
