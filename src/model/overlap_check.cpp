// Puts each memory on the buses that its own mappings come from, one step back.
#include "model/overlap_check.h"

#include <algorithm>
#include <functional>

#include "common/failures.h"
#include "mapping/shift.h"
#include "mapping/walk.h"
#include "model/spec.h"

namespace tdm {

namespace {

/// What memories take of buses, as long as that is a matter of addresses alone.
class PlainClaims {
public:
  /// Memories of one owner. False if there is more to them than addresses, or if two of them meet.
  bool lie_apart(const PooledVector<std::unique_ptr<TDMMemory>> &memories, bool global)
  {
    claims_.clear();
    for (const auto &memory : memories)
      if (!add(*memory, global)) return false;
    std::sort(claims_.begin(), claims_.end());
    for (size_t i = 1; i < claims_.size(); ++i)
      if (claims_[i].bus == claims_[i - 1].bus && claims_[i].low < claims_[i - 1].high)
        return false;
    return true;
  }

private:
  struct Claim {
    const TDMMapSource *bus;
    int64_t low;
    int64_t high;

    friend bool operator<(const Claim &a, const Claim &b)
    {
      return a.bus != b.bus ? std::less<>()(a.bus, b.bus) : a.low < b.low;
    }
  };

  /// Memories of different owners don't meet unless a global one is on the bus of a processor.
  bool add(const TDMMemory &memory, bool global)
  {
    const Interval whole = memory.address_range();
    for (const TDMMapping *mapping : memory.incoming_mappings()) {
      Interval claim;
      if (mapping->source_kind() != NodeKind::bus || !takes_short_way(*mapping, whole))
        return false;
      if (global && static_cast<const TDMBus *>(mapping->source())->processor_name != nullptr)
        return false;
      if (!shift(MapDirection::backward, *mapping, whole, claim)) continue;
      if (claim.low.bank != -1 || claim.low.bits != 0 || claim.high.bits != 0) return false;
      if (claim.low.value >= claim.high.value) return false; // nothing, or past the last address
      claims_.push_back({mapping->source(), claim.low.value, claim.high.value});
    }
    return true;
  }

  std::vector<Claim> claims_;
};

} // namespace

bool memories_lie_apart(const TDMSpec &spec)
{
  PlainClaims claims;
  if (!claims.lie_apart(spec.memories, true)) return false;
  for (const auto &processor : spec.processors)
    if (!claims.lie_apart(processor->memories, false)) return false;
  return true;
}

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
