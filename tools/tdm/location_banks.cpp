// The library tells the routes of a memory in one order, here and where it tells the numbers of a
// location; numbers are compared nevertheless, so that a bank never stands at a place of another
// route.
#include "location_banks.h"

#include <algorithm>
#include <optional>

#include <tdm_c/tdm_inspect.h>

#include "address.h"
#include "format.h"
#include "session.h"

namespace tool {

namespace {

/// Nothing for what only a link can tell.
std::optional<int64_t> value_of(const tdm_expression *expression, int64_t otherwise)
{
  if (expression == nullptr) return otherwise;
  int64_t value = 0;
  if (tdm_inspect_expression_evaluate(expression, nullptr, nullptr, &value) == 0)
    return std::nullopt;
  return value;
}

tdm_interval as_interval(const tdm_interval &at)
{
  return at;
}
tdm_interval as_interval(const tdm_addressvalue &at)
{
  return {at, at, 1, 1, 0, 0};
}

const tdm_interval &place_of(const tdm_map_interval_result &result)
{
  return result.interval;
}
const tdm_addressvalue &place_of(const tdm_map_address_result &result)
{
  return result.address;
}

/// Those of the results that lie in the space.
template <class Result>
std::vector<tdm_interval> places_of(const tdm_space *space, tdm_arr *results)
{
  std::vector<tdm_interval> places;
  for (const auto &result : take_elements<Result>(results))
    if (tdm_mapsource_get_space(static_cast<tdm_mapsource *>(result.object)) == space)
      places.push_back(as_interval(place_of(result)));
  return places;
}

std::vector<tdm_interval> shown_in(const tdm_space *space, const tdm_mapdestination *from,
                                   const tdm_interval &at)
{
  tdm_arr *results = nullptr;
  tdm_inspect_mapdestination_map_interval_backward_to_space(from, &at, &results);
  return places_of<tdm_map_interval_result>(space, results);
}

std::vector<tdm_interval> shown_in(const tdm_space *space, const tdm_mapdestination *from,
                                   const tdm_addressvalue &at)
{
  tdm_arr *results = nullptr;
  tdm_inspect_mapdestination_map_addressvalue_backward_to_space(from, &at, &results);
  return places_of<tdm_map_address_result>(space, results);
}

bool cross_back(const tdm_mapping *mapping, const tdm_interval &at, tdm_interval &out)
{
  return tdm_inspect_mapping_map_interval_backward(mapping, &at, &out) != 0;
}

bool cross_back(const tdm_mapping *mapping, const tdm_addressvalue &at, tdm_addressvalue &out)
{
  return tdm_inspect_mapping_map_addressvalue_backward(mapping, &at, &out) != 0;
}

/// Where a place in a memory shows up in the space, through the mapping if one is named.
template <class Place>
std::vector<tdm_interval> places_in(const tdm_space *space, tdm_memory *memory,
                                    const tdm_mapping *mapping, const Place &at)
{
  if (mapping == nullptr) return shown_in(space, tdm_inspect_memory_as_destination(memory), at);
  tdm_inspect_mapping record;
  Place start{};
  if (tdm_inspect_get_mapping(mapping, &record) == 0 || !cross_back(mapping, at, start)) return {};
  if (tdm_bus *bus = tdm_mapsource_get_bus(record.source))
    return shown_in(space, tdm_inspect_bus_as_destination(bus), start);
  tdm_space *source = tdm_mapsource_get_space(record.source);
  if (source == space) return {as_interval(start)};
  return shown_in(space, tdm_inspect_space_as_destination(source), start);
}

std::vector<tdm_interval> places_of(const tdm_space *space, const tdm_inspect_location_range &range)
{
  if (range.memory == nullptr) return {};
  const auto low = value_of(range.low, 0);
  const auto high = value_of(range.high, tdm_memory_get_size(range.memory));
  if (!low || !high) return {};
  const int32_t mau = tdm_memory_get_mausize(range.memory);
  const tdm_interval at{{*low, 0, mau, -1}, {*high, 0, mau, -1}, 1, 1, 0, 0};
  return places_in(space, range.memory, range.mapping, at);
}

} // namespace

int32_t bank_of_address(const tdm_group_location *location, int64_t address)
{
  tdm_inspect_group_location record;
  if (tdm_inspect_get_group_location(location, &record) == 0 || record.memory == nullptr) return -1;
  const auto value = value_of(record.address, 0);
  if (!value) return -1;
  const tdm_addressvalue at{*value, 0, tdm_memory_get_mausize(record.memory), -1};
  for (const tdm_interval &place : places_in(record.space, record.memory, record.mapping, at))
    if (place.low.value == address) return place.low.bank;
  return -1;
}

void set_banks(const tdm_group_location *location, std::vector<BankedRange> &ranges)
{
  tdm_inspect_group_location record;
  if (tdm_inspect_get_group_location(location, &record) == 0) return;
  auto next = ranges.begin();
  for (const auto &written :
       take_elements<tdm_inspect_location_range>(tdm_inspect_group_location_ranges(location))) {
    if (written.memory == nullptr) {
      if (next != ranges.end()) ++next;
      continue;
    }
    for (const tdm_interval &place : places_of(record.space, written)) {
      next = std::find_if(next, ranges.end(), [&](const BankedRange &range) {
        return range.low == place.low.value && range.high == place.high.value;
      });
      if (next == ranges.end()) return;
      (next++)->bank = place.low.bank;
    }
  }
}

std::string range_text(const BankedRange &range)
{
  return address_text({range.low, 0, 1, range.bank}) + ".." + hex(range.high);
}

} // namespace tool
