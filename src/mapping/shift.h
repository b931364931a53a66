// The short way across a mapping that only moves by a distance (TDMMapping::is_shift), for values
// that need no more than that. It gives what the long way of translation.cpp gives, and stands
// here so that walks can take it without a call.
#pragma once

#include "mapping/mapping.h"

namespace tdm {

enum class MapDirection : uint8_t { forward, backward };

/// The bank on the far side: the one selected there; none if the near side took one; else as it
/// was.
[[nodiscard]] inline int32_t far_bank(int32_t near_bank, int32_t selected, int32_t given)
{
  if (selected >= 0) return selected;
  return near_bank >= 0 ? -1 : given;
}

/// Whether the short way can take the value across the mappings of its unit. It is left to the long
/// way to put up with bits beyond a unit.
[[nodiscard]] inline bool is_plain(const AddressValue &address)
{
  return address.bits >= 0 && address.bits < address.mau && address.bank >= -1;
}

/// The same for a span, which mustn't be empty. The mask of such a mapping is that of all lines.
[[nodiscard]] inline bool is_plain(const Interval &interval)
{
  const Interval::Pattern &mask = interval.pattern;
  return is_plain(interval.low) && is_plain(interval.high) &&
         interval.low.bank == interval.high.bank && !interval.is_empty() &&
         ((mask.width == 1 && mask.bits == 1) ||
          (mask.width == interval.low.mau &&
           mask.bits == Interval::Pattern::mask(interval.low.mau)));
}

[[nodiscard]] inline bool has_unit(const AddressValue &address, int16_t unit)
{
  return address.mau == unit;
}
[[nodiscard]] inline bool has_unit(const Interval &interval, int16_t unit)
{
  return interval.low.mau == unit && interval.high.mau == unit;
}

/// Whether the short way takes the value across this mapping.
template <class Value>
[[nodiscard]] bool takes_short_way(const TDMMapping &mapping, const Value &value)
{
  return mapping.is_shift() && has_unit(value, mapping.source_unit()) && is_plain(value);
}

/// One end of a mapping, as the short way needs it.
struct ShiftEnd {
  int64_t offset;
  int32_t bank;
};

[[nodiscard]] inline ShiftEnd near_end(MapDirection direction, const TDMMapping &mapping)
{
  return direction == MapDirection::forward ? ShiftEnd{mapping.src_offset, mapping.bank}
                                            : ShiftEnd{mapping.dest_offset, mapping.dest_bank};
}

[[nodiscard]] inline ShiftEnd far_end(MapDirection direction, const TDMMapping &mapping)
{
  return near_end(
      direction == MapDirection::forward ? MapDirection::backward : MapDirection::forward, mapping);
}

/// Whether a plain value lies in the mapping, as far as whole MAUs tell.
[[nodiscard]] inline bool in_reach(MapDirection direction, const TDMMapping &mapping,
                                   const AddressValue &address)
{
  const int64_t distance = wrap_sub(address.value, near_end(direction, mapping).offset);
  return static_cast<uint64_t>(distance) < static_cast<uint64_t>(mapping.size);
}
[[nodiscard]] inline bool in_reach(MapDirection direction, const TDMMapping &mapping,
                                   const Interval &interval)
{
  const int64_t offset = near_end(direction, mapping).offset;
  return interval.low.value < offset + mapping.size && interval.high.value >= offset;
}

/// Takes a plain address across; false, and `out` as it was, if the mapping doesn't carry it.
[[nodiscard]] inline bool shift(MapDirection direction, const TDMMapping &mapping,
                                const AddressValue &address, AddressValue &out)
{
  const ShiftEnd near = near_end(direction, mapping);
  const ShiftEnd far = far_end(direction, mapping);
  const int64_t distance = wrap_sub(address.value, near.offset);
  if (static_cast<uint64_t>(distance) >= static_cast<uint64_t>(mapping.size)) return false;
  if (near.bank >= 0 && near.bank != address.bank) return false;
  out = AddressValue(far.offset + distance, address.bits, address.mau,
                     far_bank(near.bank, far.bank, address.bank));
  return true;
}

/// Clips a plain span to the mapping and takes it across; as above.
[[nodiscard]] inline bool shift(MapDirection direction, const TDMMapping &mapping,
                                const Interval &interval, Interval &out)
{
  const ShiftEnd near = near_end(direction, mapping);
  const ShiftEnd far = far_end(direction, mapping);
  const int64_t near_high = near.offset + mapping.size;
  const AddressValue &low = interval.low;
  const AddressValue &high = interval.high;
  // Without a bank of its own at either end a mapping lies in that of the span.
  if (low.bank != near.bank && (near.bank >= 0 || far.bank >= 0)) return false;
  if (low.value >= near_high || high.value < near.offset) return false;
  if (high.value == near.offset && high.bits == 0) return false;
  const int16_t mau = low.mau;
  const int32_t bank = far_bank(near.bank, far.bank, low.bank);
  const AddressValue begin =
      low.value < near.offset
          ? AddressValue(far.offset, 0, mau, bank)
          : AddressValue(far.offset + (low.value - near.offset), low.bits, mau, bank);
  const AddressValue end =
      high.value >= near_high
          ? AddressValue(far.offset + mapping.size, 0, mau, bank)
          : AddressValue(far.offset + (high.value - near.offset), high.bits, mau, bank);
  out.low = begin;
  out.high = end;
  out.pattern.width = mau;
  out.pattern.bits = Interval::Pattern::mask(mau);
  if (direction == MapDirection::forward) {
    out.priority = wrap_add(interval.priority, mapping.priority);
    out.exec_priority = wrap_add(interval.exec_priority, mapping.exec_priority);
  } else {
    out.priority = wrap_sub(interval.priority, mapping.priority);
    out.exec_priority = wrap_sub(interval.exec_priority, mapping.exec_priority);
  }
  return true;
}

} // namespace tdm
