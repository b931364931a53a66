// Renders what the library answers as lines of text, through the getters alone.
//
// Values that a definition leaves out (0, -1, null) are not shown, so that an expectation can be
// written by hand, and every value that deviates from them is.
#pragma once

#include <string>
#include <vector>

#include <tdm_c/tdm.h>

namespace cases {

using Lines = std::vector<std::string>;

[[nodiscard]] std::string hex(uint64_t value);
[[nodiscard]] std::string hex(int64_t value);
[[nodiscard]] std::string render(const tdm_addressvalue &address);
[[nodiscard]] std::string render(const tdm_interval &interval);

/// The elements of an array of the library, which is given back.
template <typename Element> std::vector<Element> take(tdm_arr *array)
{
  const Element *first = static_cast<const Element *>(array->items);
  std::vector<Element> elements(first, first + array->count);
  tdm_arr_del(array);
  return elements;
}

/// All processors, cores, spaces, memories, buses and file dependencies.
void render_model(const tdm_spec *spec, Lines &out);

[[nodiscard]] std::string name_of(tdm_bus *bus);
[[nodiscard]] std::string name_of(tdm_space *space);
[[nodiscard]] std::string name_of(tdm_memory *memory);
[[nodiscard]] std::string name_of(tdm_mapsource *source);
[[nodiscard]] std::string name_of(tdm_mapdestination *destination);

} // namespace cases
