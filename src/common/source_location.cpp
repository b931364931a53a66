// Lists of locations: their memory, and the index of the long ones; and what the numbers stand for
// that locations keep in place of texts.
#include "common/source_location.h"

#include <algorithm>
#include <bit>
#include <new>

#include "common/block_pool.h"
#include "common/text_numbers.h"

namespace {

/// What there is no constant for: names of files, and keys that the user's text gives.
struct {
  tdm::TextNumbers files; ///< counted from 1; 0 is the empty name
  tdm::TextNumbers keys;  ///< counted from the last known word on
} texts;

constexpr auto known_keys = static_cast<std::uint32_t>(tdm::location_keys.size());

} // namespace

FileName::FileName(const char *text)
{
  if (*text != '\0') number_ = texts.files.add(text) + 1;
}

const char *FileName::text() const
{
  return number_ == 0 || number_ > texts.files.size() ? "" : texts.files.text(number_ - 1);
}

LocationKey LocationKey::of(const char *text)
{
  const LocationKey known = find(text);
  if (known != LocationKey()) return known;
  return LocationKey(texts.keys.add(text) + known_keys + 1);
}

LocationKey LocationKey::find(const char *text)
{
  if (const std::uint32_t known = tdm::find_location_key(text); known != 0)
    return LocationKey(known);
  const std::uint32_t number = texts.keys.find(text);
  return number == tdm::TextNumbers::none ? LocationKey() : LocationKey(number + known_keys + 1);
}

const char *LocationKey::text() const
{
  if (number_ == 0) return "";
  if (number_ <= known_keys) return tdm::location_keys[number_ - 1].data();
  const std::uint32_t number = number_ - known_keys - 1;
  return number < texts.keys.size() ? texts.keys.text(number) : "";
}

void tdm::forget_location_texts()
{
  texts = {};
}

namespace {

// One less than a power of two, as the head takes the room of an entry: most records that have more
// than one key have a few, and some ten. What is long enough for an index gives it twice that
// power.
constexpr std::uint32_t capacity_above(std::uint32_t count)
{
  return std::bit_ceil(count + 2) - 1;
}

} // namespace

std::size_t SourceLocations::block_size(std::uint32_t capacity)
{
  const std::size_t size = sizeof(List) + capacity * sizeof(Entry);
  return capacity <= flat_limit ? size
                                : size + (std::size_t{capacity} + 1) * 2 * sizeof(std::uint32_t);
}

SourceLocations::List *SourceLocations::make_list(std::uint32_t capacity)
{
  void *memory = tdm::pool_allocate(block_size(capacity));
  return new (memory) List{0, capacity, 0, 0};
}

// An object that a client keeps beyond the spec has a list of its own.
void SourceLocations::copy_list(const SourceLocations &other)
{
  if (tdm::region_is_open())
    only_.first = other.only_.first = shared_mark;
  else
    set_list(copied(entries()));
}

// With room for one entry more.
SourceLocations::List *SourceLocations::copied(std::span<const Entry> entries)
{
  List *const copy = make_list(capacity_above(static_cast<std::uint32_t>(entries.size())));
  for (const Entry &entry : entries) copy->entries()[copy->count++] = entry;
  if (copy->capacity > flat_limit) std::fill_n(copy->index(), copy->slots(), 0U);
  return copy;
}

// Makes room for one more entry behind those that there are, in a list of this object's own.
void SourceLocations::renew()
{
  List *const next = copied(entries());
  if (owns_list()) free(list());
  set_list(next);
}

void SourceLocations::free(List *list)
{
  tdm::pool_free(list, block_size(list->capacity));
}

const TDMSourceLocation *SourceLocations::find_indexed(LocationKey key) const
{
  List &list = *this->list();
  if (list.indexed != list.count) update_index(list);
  const std::uint32_t last = list.slots() - 1;
  for (std::uint32_t slot = key.number() & last; list.index()[slot] != 0;
       slot = (slot + 1) & last) {
    const Entry &entry = list.entries()[list.index()[slot] - 1];
    if (entry.first == key) return &entry.second;
  }
  return nullptr;
}

// Every key stands in the list once, and keys are numbered one by one: their numbers spread over
// the index by themselves. At least half of it stays free.
void SourceLocations::update_index(List &list)
{
  const std::uint32_t last = list.slots() - 1;
  for (; list.indexed < list.count; ++list.indexed) {
    std::uint32_t slot = list.entries()[list.indexed].first.number() & last;
    while (list.index()[slot] != 0) slot = (slot + 1) & last;
    list.index()[slot] = list.indexed + 1;
  }
}
