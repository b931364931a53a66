#include "space_table.h"

#include <tuple>

#include "session.h"

namespace tool {

namespace {

bool is_below(const tdm_addressvalue &a, const tdm_addressvalue &b)
{
  return std::tuple(a.value, a.bits) < std::tuple(b.value, b.bits);
}

auto length_of(const tdm_interval &interval)
{
  return std::tuple(size_of(interval), interval.high.bits - interval.low.bits);
}

/// What a region shows of its memory: the way back there. Over a bus that is passed twice, less of
/// it may be seen at the same addresses, so the longest one counts.
std::optional<tdm_interval> part_of(const tdm_space *space, const Region &region)
{
  tdm_arr *results = nullptr;
  tdm_space_map_interval_forward_to_memory(space, &region.span, &results);
  std::optional<tdm_interval> part;
  for (const auto &result : take_elements<tdm_map_interval_result>(results))
    if (result.object == region.memory &&
        (!part.has_value() || length_of(*part) < length_of(result.interval)))
      part = result.interval;
  return part;
}

SpaceRow unused(tdm_addressvalue low, tdm_addressvalue high)
{
  low.bank = high.bank = -1;
  return {{low, high, 1, 1, 0, 0}, nullptr, std::nullopt, false};
}

} // namespace

std::vector<SpaceRow> rows_of(const tdm_space *space, const std::vector<Region> &regions)
{
  tdm_interval valid;
  tdm_space_get_valid_interval(space, &valid);
  std::vector<SpaceRow> rows;
  tdm_addressvalue end = valid.low; // of what is told so far
  for (const Region &region : regions) {
    if (is_below(end, region.span.low)) rows.push_back(unused(end, region.span.low));
    if (is_below(end, region.span.high)) end = region.span.high;
    rows.push_back({region.span, region.memory, part_of(space, region), region.reserved});
  }
  if (is_below(end, valid.high)) rows.push_back(unused(end, valid.high));
  return rows;
}

} // namespace tool
