#include "interface/values.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "common/failures.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

constexpr uint32_t first_capacity = 32;

/// calloc() for what is little: it clears more than some 2 kB by an instruction that takes its time
/// to start, and the results of a translation are that long. In pieces that doesn't happen.
void *zero_filled(size_t count, size_t size) noexcept
{
  constexpr size_t piece = 1024;
  const size_t bytes = count * size;
  if (size > SIZE_MAX / count || bytes > 8 * piece) return std::calloc(count, size);
  auto *room = static_cast<char *>(std::malloc(bytes));
  if (room == nullptr) return nullptr;
  for (size_t at = 0; at < bytes; at += piece)
    std::memset(room + at, 0, std::min(piece, bytes - at));
  return room;
}

tdm_arr *allocate(size_t element_size, uint32_t capacity) noexcept
{
  auto *arr = static_cast<tdm_arr *>(std::malloc(sizeof(tdm_arr)));
  void *items = zero_filled(capacity, element_size);
  if (arr == nullptr || items == nullptr) {
    std::free(arr);
    std::free(items);
    return nullptr;
  }
  *arr = {static_cast<uint32_t>(element_size), capacity, 0, items};
  return arr;
}

void require_mau(int32_t given, int expected)
{
  if (given != expected)
    throw new TDMFileException("address given in MAUs of " + std::to_string(given) +
                               " bits, expected " + std::to_string(expected));
}

} // namespace

void ArrayDelete::operator()(tdm_arr *arr) const
{
  std::free(arr->items);
  std::free(arr);
}

Array new_array(size_t element_size, size_t expected)
{
  uint32_t capacity = first_capacity;
  while (capacity < expected) {
    if (capacity > UINT32_MAX / 2) throw std::bad_alloc();
    capacity *= 2;
  }
  Array arr(allocate(element_size, capacity));
  if (arr == nullptr) throw std::bad_alloc();
  return arr;
}

tdm_arr *empty_array(size_t element_size) noexcept
{
  return allocate(element_size, first_capacity);
}

std::vector<std::string> texts_of(const tdm_arr *arr)
{
  std::vector<std::string> texts;
  if (arr == nullptr) return texts;
  const auto *items = static_cast<const char *const *>(arr->items);
  for (uint32_t i = 0; i < arr->count; ++i)
    if (items[i] != nullptr) texts.emplace_back(items[i]);
  return texts;
}

const char *text_result(std::string_view text)
{
  if (!string_pool_started()) throw new TDMFileException("tdm_init has not been called");
  // What callers read ends at the first NUL, and is one address with what is equal up to there.
  return intern(text.substr(0, text.find('\0')));
}

const char *text_result(const char *text)
{
  return text_result(std::string_view(text));
}

const char *text_result(const Text *text)
{
  return text != nullptr ? text_result(*text) : nullptr;
}

const char *text_result(const std::optional<Text> &text)
{
  return text.has_value() ? text_result(*text) : nullptr;
}

AddressValue imported(const tdm_addressvalue &address, int mau_size)
{
  require_mau(address.mau, mau_size);
  return AddressValue(address);
}

Interval imported(const tdm_interval &interval, int mau_size)
{
  require_mau(interval.low.mau, mau_size);
  require_mau(interval.high.mau, mau_size);
  return Interval(interval);
}

} // namespace tdm
