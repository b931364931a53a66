// Lists as the additive readers give them: new arrays, empty after a failure.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "interface/guard.h"
#include "interface/values.h"

namespace tdm {

template <class Object, class Allocator>
[[nodiscard]] tdm_arr *handle_list(const std::vector<std::unique_ptr<Object>, Allocator> &objects)
{
  return guarded_array<void *>([&] { return array_of_pointers(objects); });
}

template <class Pointers> [[nodiscard]] tdm_arr *handle_list(const Pointers &objects)
{
  return guarded_array<void *>(
      [&] { return array_of(objects, [](auto *object) { return object; }); });
}

template <typename Texts> [[nodiscard]] tdm_arr *text_list(const Texts &texts)
{
  return guarded_array<const char *>(
      [&] { return array_of(texts, [](const auto &text) { return text_result(text); }); });
}

/// Of numbers by value, 32 bits each.
template <class Numbers> [[nodiscard]] tdm_arr *number_list(const Numbers &numbers)
{
  return guarded_array<int32_t>(
      [&] { return array_of(numbers, [](int32_t number) { return number; }); });
}

} // namespace tdm
