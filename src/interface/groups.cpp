// Where groups are to go, in numbers of their space.
#include "interface/guard.h"
#include "interface/tdm.h"
#include "interface/values.h"
#include "layout/group.h"

using tdm::guarded;

namespace {

/// A range of the location, computed anew; nothing for an index that there isn't.
TDMGroupLocation::Bounds range_of(const tdm_group_location *location, int index)
{
  const auto ranges = location->ranges_in_space();
  if (index < 0 || static_cast<size_t>(index) >= ranges.size()) return {};
  return ranges[static_cast<size_t>(index)];
}

} // namespace

tdm_group_location *tdm_group_get_address(const tdm_group *group)
{
  return group->location.get();
}

tdm_source_location *tdm_group_get_source_location(const tdm_group *group)
{
  return tdm::handle(group->TDMObject::location("group"));
}

int tdm_group_location_is_address(const tdm_group_location *location)
{
  return location->is_address() ? 1 : 0;
}

int64_t tdm_group_location_get_address(const tdm_group_location *location)
{
  return guarded([&] { return location->address_in_space(); });
}

int tdm_group_location_count_ranges(const tdm_group_location *location)
{
  return guarded([&] { return static_cast<int>(location->ranges_in_space().size()); });
}

int64_t tdm_group_location_get_range_start(const tdm_group_location *location, int index)
{
  return guarded([&] { return range_of(location, index).first; });
}

int64_t tdm_group_location_get_range_end(const tdm_group_location *location, int index)
{
  return guarded([&] { return range_of(location, index).second; });
}
