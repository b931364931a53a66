// The cost of a translation, on a description of the generator's profile `memories`: from the space
// of a core over its buses to a global memory, and back.
//
//     bench_translate [--count] FILE
//
// A unit is one translation: the call, and giving back its results.
#include <string_view>

#include "measured.h"

namespace {

constexpr std::size_t calls = 1000;

struct Place {
  const tdm_memory *memory;
  tdm_addressvalue in_memory;
  const tdm_space *space;
  tdm_addressvalue in_space;
};

tdm_interval span(const tdm_addressvalue &from, int64_t size)
{
  tdm_interval all{from, from, 1, 1, 0x10000, 0x10000};
  all.high.value += size;
  return all;
}

/// An address in some of the memories, and where the space shows it.
std::vector<Place> places(const bench::Description &description)
{
  std::vector<Place> found;
  for (const tdm_memory *memory : bench::sample(description.memories(), calls)) {
    Place place{memory, {0x10, 0, tdm_memory_get_mausize(memory), -1}, nullptr, {}};
    tdm_arr *results = nullptr;
    tdm_memory_map_addressvalue_backward_to_space(memory, &place.in_memory, &results);
    const auto *each = static_cast<tdm_map_address_result *>(results->items);
    for (uint32_t i = 0; i < results->count; ++i) {
      const tdm_space *space =
          tdm_mapsource_get_space(static_cast<tdm_mapsource *>(each[i].object));
      if (std::string_view(tdm_space_get_name(space)) != "linear") continue;
      place.space = space;
      place.in_space = each[i].address;
    }
    tdm_arr_del(results);
    bench::require(place.space != nullptr, "a memory that no space shows");
    found.push_back(place);
  }
  return found;
}

template <class Translate> void each(const std::vector<Place> &all, Translate translate)
{
  for (const Place &place : all) {
    tdm_arr *results = nullptr;
    bench::require(translate(place, &results) == 1, "nothing is reached");
    tdm_arr_del(results);
  }
}

} // namespace

int main(int argc, char **argv)
{
  const bench::Program program(argc, argv);
  bench::require(program.arguments().size() == 1, "bench_translate [--count] FILE");
  const bench::Description description(program.arguments()[0]);
  const std::vector<Place> all = places(description);
  const auto measured = [&all](const char *name, auto translate) {
    return bench::Case{name, all.size(), [&all, translate] { each(all, translate); }};
  };
  program.run({
      measured("address forward one step",
               [](const Place &at, tdm_arr **results) {
                 return tdm_space_map_addressvalue_forward(at.space, &at.in_space, results);
               }),
      measured("address forward to memory",
               [](const Place &at, tdm_arr **results) {
                 return tdm_space_map_addressvalue_forward_to_memory(at.space, &at.in_space,
                                                                     results);
               }),
      measured("interval forward to memory",
               [](const Place &at, tdm_arr **results) {
                 const tdm_interval part = span(at.in_space, 0x100);
                 return tdm_space_map_interval_forward_to_memory(at.space, &part, results);
               }),
      measured("address backward to buses",
               [](const Place &at, tdm_arr **results) {
                 return tdm_memory_map_addressvalue_backward_to_bus(at.memory, &at.in_memory,
                                                                    results);
               }),
      measured("address backward to spaces",
               [](const Place &at, tdm_arr **results) {
                 return tdm_memory_map_addressvalue_backward_to_space(at.memory, &at.in_memory,
                                                                      results);
               }),
      measured("interval backward to spaces",
               [](const Place &at, tdm_arr **results) {
                 const tdm_interval part = span(at.in_memory, 0x100);
                 return tdm_memory_map_interval_backward_to_space(at.memory, &part, results);
               }),
  });
}
