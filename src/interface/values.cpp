#include "interface/values.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "common/block_pool.h"
#include "common/failures.h"
#include "interface/tdm.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

constexpr uint32_t first_capacity = 32;

/// memset() by the library's function, which for such lengths is faster than what compilers put in
/// its place; in pieces, as that turns to a slower way beyond some 2 kB.
void clear(void *room, size_t bytes)
{
  static void *(*const volatile fill)(void *, int, size_t) = std::memset;
  constexpr size_t piece = 2048;
  for (size_t at = 0; at < bytes; at += piece)
    fill(static_cast<char *>(room) + at, 0, std::min(piece, bytes - at));
}

/// The array of the latest translation, kept when it comes back, for the next one. malloc() has
/// quick lists for shorter blocks alone, and who translates address after address gives each result
/// back before the next call. All other arrays are the heap's.
class KeptArray {
public:
#ifdef TDM_PLAIN_BLOCKS
  static constexpr size_t least = SIZE_MAX; ///< none: each use after the end is to be seen
#else
  static constexpr size_t least = 1024;
#endif
  static constexpr size_t room = first_capacity * sizeof(tdm_map_interval_result);

  static bool serves(size_t bytes)
  {
    return bytes > least && bytes <= room;
  }

  /// The array, if it is here.
  tdm_arr *take()
  {
    if (!here_) return nullptr;
    here_ = false;
    return arr_;
  }
  /// From now on this one is kept, when it comes back.
  void lend(tdm_arr *arr)
  {
    arr_ = arr;
    items_ = arr->items;
  }
  /// False if it isn't this one, or not with the items that it went with.
  bool put_back(tdm_arr *arr)
  {
    if (arr != arr_) return false;
    here_ = arr->items == items_;
    if (!here_) arr_ = nullptr;
    return here_;
  }
  void end()
  {
    if (here_) {
      std::free(items_);
      std::free(arr_);
    }
    *this = {};
  }

private:
  tdm_arr *arr_ = nullptr;
  void *items_ = nullptr;
  bool here_ = false;
};

KeptArray kept;

tdm_arr *allocate(size_t element_size, uint32_t capacity) noexcept
{
  auto *arr = static_cast<tdm_arr *>(std::malloc(sizeof(tdm_arr)));
  void *items = std::calloc(capacity, element_size);
  if (arr == nullptr || items == nullptr) {
    std::free(arr);
    std::free(items);
    return nullptr;
  }
  *arr = {static_cast<uint32_t>(element_size), capacity, 0, items};
  return arr;
}

/// An array of the first capacity; null if there is no memory for it.
[[gnu::always_inline]] inline tdm_arr *first_array(size_t element_size) noexcept
{
  const size_t bytes = first_capacity * element_size;
  if (!KeptArray::serves(bytes)) return allocate(element_size, first_capacity);
  tdm_arr *arr = kept.take();
  if (arr != nullptr) {
    clear(arr->items, bytes);
  } else {
    // Longer than it need be, so that it serves addresses and intervals.
    arr = allocate(KeptArray::room, 1);
    if (arr == nullptr) return nullptr;
    kept.lend(arr);
  }
  *arr = {static_cast<uint32_t>(element_size), first_capacity, 0, arr->items};
  return arr;
}

/// An array of more than the first capacity; null if there is no memory for it.
tdm_arr *long_array(size_t element_size, size_t expected) noexcept
{
  uint32_t capacity = first_capacity;
  while (capacity < expected) {
    if (capacity > UINT32_MAX / 2) return nullptr;
    capacity *= 2;
  }
  return allocate(element_size, capacity);
}

} // namespace

void ArrayDelete::operator()(tdm_arr *arr) const
{
  if (kept.put_back(arr)) return;
  std::free(arr->items);
  std::free(arr);
}

void end_kept_array()
{
  kept.end();
}

tdm_arr *new_array(size_t element_size, size_t expected)
{
  tdm_arr *arr =
      expected <= first_capacity ? first_array(element_size) : long_array(element_size, expected);
  if (arr == nullptr) throw std::bad_alloc();
  return arr;
}

tdm_arr *empty_array(size_t element_size) noexcept
{
  return first_array(element_size);
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

void refuse_mau(int32_t given, int expected)
{
  throw new TDMFileException("address given in MAUs of " + std::to_string(given) +
                             " bits, expected " + std::to_string(expected));
}

} // namespace tdm
