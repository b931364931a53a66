// The forms in which values cross the interface: arrays, texts of the pool, and the addresses
// and intervals that callers give.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/tdm_types.h"
#include "common/text.h"
#include "mapping/address_value.h"
#include "mapping/interval.h"

namespace tdm {

// ---- arrays

struct ArrayDelete {
  void operator()(tdm_arr *arr) const;
};
using Array = std::unique_ptr<tdm_arr, ArrayDelete>;

/// A new, zero-filled array with room for the expected number of elements; never null.
[[nodiscard]] tdm_arr *new_array(size_t element_size, size_t expected);

/// A new array of nothing, the result of a call that fails; null if there is no memory even for it.
[[nodiscard]] tdm_arr *empty_array(size_t element_size) noexcept;

/// Frees what is kept between translations.
void end_kept_array();

/// A new array of what `convert` makes of each element.
template <class Elements, class Convert>
[[nodiscard]] tdm_arr *array_of(const Elements &elements, Convert convert)
{
  using Element = decltype(convert(*elements.begin()));
  Array arr(new_array(sizeof(Element), elements.size()));
  auto *items = static_cast<Element *>(arr->items);
  for (const auto &element : elements) items[arr->count++] = convert(element);
  return arr.release();
}

/// A new array of pointers to the objects of a vector that owns them.
template <class Object, class Allocator>
[[nodiscard]] tdm_arr *
array_of_pointers(const std::vector<std::unique_ptr<Object>, Allocator> &objects)
{
  return array_of(objects, [](const std::unique_ptr<Object> &object) { return object.get(); });
}

/// The texts of an array that the caller built, null ones left out; no array holds none.
[[nodiscard]] std::vector<std::string> texts_of(const tdm_arr *arr);

// ---- texts

/// The pool's copy. A failure before tdm_init.
[[nodiscard]] const char *text_result(std::string_view text);
[[nodiscard]] const char *text_result(const char *text);
/// The same for what can be absent, as null.
[[nodiscard]] const char *text_result(const Text *text);
[[nodiscard]] const char *text_result(const std::optional<Text> &text);

/// A handle for what the model hands out as constant: callers hold it, and only the library reads.
template <class Object> [[nodiscard]] Object *handle(const Object *object)
{
  return const_cast<Object *>(object);
}

// ---- addresses and intervals

[[noreturn]] void refuse_mau(int32_t given, int expected);

/// Meant in an object whose MAU has that many bits: an address in other MAUs is a failure.
[[nodiscard]] inline AddressValue imported(const tdm_addressvalue &address, int mau_size)
{
  if (address.mau != mau_size) refuse_mau(address.mau, mau_size);
  return AddressValue(address);
}
/// The same for an interval; a mask that isn't one of 1 to 64 bits is a failure too.
[[nodiscard]] inline Interval imported(const tdm_interval &interval, int mau_size)
{
  if (interval.low.mau != mau_size) refuse_mau(interval.low.mau, mau_size);
  if (interval.high.mau != mau_size) refuse_mau(interval.high.mau, mau_size);
  return Interval(interval);
}

} // namespace tdm
