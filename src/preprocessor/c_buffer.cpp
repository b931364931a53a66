// Growing by doubling, so that appending stays linear in the length of the text.
#include "preprocessor/c_buffer.h"

#include <cstdlib>
#include <cstring>
#include <functional>

#include "preprocessor/orderly_stop.h"

namespace tdm {

namespace {
constexpr std::size_t default_size = 100;
}

TextBuffer::TextBuffer(std::size_t size) : first_size_(size == 0 ? default_size : size) {}

void TextBuffer::append(std::string_view text)
{
  if (text.empty()) return;
  const std::less<> before; // of any two pointers
  internal_check(begin_ == nullptr || before(text.data(), begin_) ||
                 !before(text.data(), begin_ + size_));
  if (static_cast<std::size_t>(begin_ + size_ - cursor_) < text.size()) grow(text.size());
  std::memcpy(cursor_, text.data(), text.size());
  cursor_ += text.size();
}

void TextBuffer::free()
{
  std::free(begin_);
  begin_ = cursor_ = nullptr;
  size_ = 0;
}

void TextBuffer::grow(std::size_t more)
{
  const std::size_t used = length();
  std::size_t size = size_ == 0 ? first_size_ : size_ * 2;
  while (size - used < more) size *= 2;
  auto *begin = static_cast<char *>(std::realloc(begin_, size));
  if (begin == nullptr) stop_no_memory("c-memory.c: Cannot allocate memory.\n");
  begin_ = begin;
  cursor_ = begin + used;
  size_ = size;
}

} // namespace tdm
