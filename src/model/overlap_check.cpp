// Puts each memory on the buses that its own mappings come from, one step back.
#include "model/overlap_check.h"

#include <algorithm>
#include <functional>

#include "common/failures.h"
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
    in_order_ = true;
    for (const auto &memory : memories)
      if (!add(*memory, global)) return false;
    if (in_order_) return true;
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
    for (const TDMMapping *mapping : memory.incoming_mappings()) {
      // Such a mapping doesn't leave the range of numbers, nor the memory if it ends inside.
      if (mapping->source_kind() != NodeKind::bus || !mapping->is_shift()) return false;
      if (mapping->dest_offset < 0 || mapping->dest_offset + mapping->size > memory.size)
        return false;
      if (global && static_cast<const TDMBus *>(mapping->source())->processor_name != nullptr)
        return false;
      if (mapping->dest_bank != -1) continue; // carries nothing that is in no bank
      if (mapping->bank != -1) return false;
      claim({mapping->source(), mapping->src_offset, mapping->src_offset + mapping->size});
    }
    return true;
  }

  void claim(const Claim &next)
  {
    if (!claims_.empty() && (claims_.back().bus != next.bus || next.low < claims_.back().high))
      in_order_ = false;
    claims_.push_back(next);
  }

  std::vector<Claim> claims_;
  bool in_order_ = true; ///< each on the bus of the one before, and behind it
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
