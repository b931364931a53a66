// Puts each memory on the buses that its own mappings come from, one step back.
#include "model/overlap_check.h"

#include "common/failures.h"
#include "mapping/walk.h"
#include "model/memory.h"

namespace tdm {

void OverlapCheck::add(const TDMMemory &memory)
{
  for (const auto &hop : map_backward<Interval>(memory, memory.address_range())) {
    Occupied &occupied = buses_[hop.object];
    try {
      occupied.ranges.insert(hop.value, true, false);
    } catch (IntervalSet::OverlapException *overlap) {
      delete overlap;
      report(memory, *hop.object, hop.value, occupied);
    }
    occupied.owners.emplace_back(hop.value, &memory);
  }
}

void OverlapCheck::report(const TDMMemory &memory, const TDMMapSource &bus,
                          const Interval &interval, const Occupied &occupied)
{
  std::string bus_name;
  bus.get_full_name(bus_name);
  const TDMMemory *other = &memory;
  for (const auto &[range, owner] : occupied.owners)
    if (range.overlaps(interval)) {
      other = owner;
      break;
    }
  if (other == &memory)
    throw new TDMSemanticException(memory.location_or("map"),
                                   "memory \"" + memory.full_name() +
                                       "\" has two overlapping mappings to bus \"" + bus_name +
                                       "\"");
  throw new TDMSemanticException(memory.location_or("map"),
                                 "memories \"" + memory.full_name() + "\" and \"" +
                                     other->full_name() + "\" have overlapping mappings to bus \"" +
                                     bus_name + "\"");
}

} // namespace tdm
