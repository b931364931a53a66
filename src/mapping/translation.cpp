// The steps of a translation across one mapping. A span goes through clip, compress, meet, expand
// and clip again; its two ends go the way of addresses. "Near" is the side where the translation
// begins, "far" the side where it ends.
//
// The order and the arithmetic of the steps decide results where data lines are partly connected:
// masks are used in the reduced form of the mapping's intervals, and what lies above the width of a
// far mask is cut off. The step of a position forward limits its bits to the connected lines and
// moves them, the step backward does neither.
#include "mapping/translation.h"

#include <algorithm>

#include "mapping/shift.h"

namespace tdm {
namespace {

using Pattern = Interval::Pattern;

/// Whether the address lies in the span, taken in the address's own bank.
bool in_range(const AddressValue &address, const Interval &span, Bound bound)
{
  AddressValue::require_same_mau(address, span.low);
  if (address.bank < -1) return false;
  AddressValue low = span.low;
  AddressValue high = span.high;
  low.bank = high.bank = address.bank;
  return bound == Bound::position ? low <= address && address < high
                                  : low < address && address <= high;
}

/// Bits limited to the connected lines of the source and moved to those of the destination.
AddressValue move_bits(AddressValue address, const DataLines &from, const DataLines &to)
{
  int64_t bits = address.bits;
  if (bits < from.low) {
    bits = from.low;
  } else if (bits > from.high) {
    address.value = wrap_add(address.value, int64_t{1});
    bits = from.low;
  }
  const int64_t moved = int64_t{to.low} - from.low + bits;
  address.value = wrap_add(address.value, moved / address.mau);
  address.bits = static_cast<int16_t>(moved % address.mau);
  return address;
}

/// A mapping without banks serves every bank: for this translation its spans lie in the given one.
void take_over_bank(const TDMMapping &mapping, int32_t bank, Interval &near, Interval &far)
{
  if (mapping.bank != -1 || mapping.dest_bank != -1 || bank < 0) return;
  near.low.bank = near.high.bank = bank;
  far.low.bank = far.high.bank = bank;
}

/// Bits moved up by a number of places that may be negative or beyond the 64 bits.
uint64_t shifted(uint64_t bits, int64_t by)
{
  if (by <= -Pattern::max_width || by >= Pattern::max_width) return 0;
  return by < 0 ? bits >> -by : bits << by;
}

/// Only the connected lines of the mask, side by side: one run for each period of the near side.
Pattern compress(const Pattern &mask, const DataLines &lines, int64_t stride, int64_t periods)
{
  Pattern packed;
  for (int64_t k = 0; k < periods; ++k) {
    const Pattern run = mask.slice(lines.low + k * stride, lines.high + k * stride);
    const int64_t shift = k * lines.count();
    const Pattern placed(run.width + shift, shifted(run.bits, shift));
    packed = Pattern(std::max(packed.width, placed.width), packed.bits | placed.bits);
  }
  return packed;
}

/// The runs of a packed mask, each put back onto the far side's lines, period by period.
Pattern expand(const Pattern &packed, int64_t run, const DataLines &lines, int64_t stride)
{
  const int64_t runs = packed.width / run;
  const Pattern frame(stride * runs, 0);
  uint64_t bits = 0;
  for (int64_t k = 0; k < runs; ++k)
    bits |= shifted(packed.slice(k * run, (k + 1) * run - 1).bits, k * stride + lines.low);
  return {frame.width, bits};
}

/// The mask of the far side that shows what the near side's mask holds on the connected lines.
/// `periods`: how many periods of the near side the mask has.
Pattern carry_mask(const Pattern &mask, int64_t periods, const Pattern &near,
                   const DataLines &near_lines, const Pattern &far, const DataLines &far_lines)
{
  const Pattern packed = compress(mask, near_lines, near.width, periods);
  const Pattern connected = far.slice(far_lines.low, far_lines.high);
  return expand(packed & connected, connected.width, far_lines, far.width);
}

} // namespace

bool map(const TDMMapping &mapping, const AddressValue &address, AddressValue &out, Bound bound)
{
  if (bound == Bound::position && takes_short_way(mapping, address))
    return shift(MapDirection::forward, mapping, address, out);
  if (!mapping.is_complete() || !in_range(address, mapping.source_interval(), bound)) return false;
  if (mapping.bank >= 0 && mapping.bank != address.bank) return false;

  const int16_t far_mau = mapping.destination_unit();
  AddressValue moved = move_bits(address, mapping.src_dbits, mapping.dest_dbits);
  moved -= AddressValue(mapping.src_offset, 0, moved.mau);
  moved = moved.in_mau(far_mau);
  moved = moved + AddressValue(mapping.dest_offset, mapping.dest_dbits.low, far_mau);
  moved.bank = far_bank(mapping.bank, mapping.dest_bank, address.bank);
  out = moved;
  return true;
}

bool map_back(const TDMMapping &mapping, const AddressValue &address, AddressValue &out,
              Bound bound)
{
  if (bound == Bound::position && takes_short_way(mapping, address))
    return shift(MapDirection::backward, mapping, address, out);
  if (!mapping.is_complete() || !in_range(address, mapping.destination_interval(), bound))
    return false;
  if (mapping.dest_bank >= 0 && mapping.dest_bank != address.bank) return false;

  const int16_t far_mau = mapping.source_unit();
  AddressValue moved = address;
  moved -= AddressValue(mapping.dest_offset, 0, moved.mau);
  moved = moved.in_mau(far_mau);
  moved = moved + AddressValue(mapping.src_offset, mapping.src_dbits.low, far_mau);
  moved.bank = far_bank(mapping.dest_bank, mapping.bank, address.bank);
  out = moved;
  return true;
}

bool map(const TDMMapping &mapping, const Interval &interval, Interval &out)
{
  if (takes_short_way(mapping, interval))
    return shift(MapDirection::forward, mapping, interval, out);
  if (!mapping.is_complete()) return false;
  Interval result;
  if (interval.is_empty()) {
    AddressValue point;
    if (!map(mapping, interval.low, point)) return false;
    result = Interval(point, point);
  } else {
    Interval source = mapping.source_interval();
    Interval destination = mapping.destination_interval();
    take_over_bank(mapping, interval.low.bank, source, destination);

    Interval common;
    AddressValue low;
    AddressValue high;
    if (!interval.intersect(source, common)) return false;
    if (!map(mapping, common.low, low) || !map(mapping, common.high, high, Bound::end))
      return false;
    if (mapping.dest_dbits.count() < 1) return false;
    const Pattern lines =
        carry_mask(common.pattern, common.pattern.width / source.low.mau, source.pattern,
                   mapping.src_dbits, destination.pattern, mapping.dest_dbits);
    if (!Interval(low, high, lines).intersect(destination, result)) return false;
  }
  result.priority = wrap_add(interval.priority, mapping.priority);
  result.exec_priority = wrap_add(interval.exec_priority, mapping.exec_priority);
  out = result;
  return true;
}

bool map_back(const TDMMapping &mapping, const Interval &interval, Interval &out)
{
  if (takes_short_way(mapping, interval))
    return shift(MapDirection::backward, mapping, interval, out);
  if (!mapping.is_complete()) return false;
  Interval result;
  if (interval.is_empty()) {
    AddressValue point;
    if (!map_back(mapping, interval.low, point)) return false;
    result = Interval(point, point);
  } else {
    Interval source = mapping.source_interval();
    Interval destination = mapping.destination_interval();
    take_over_bank(mapping, interval.low.bank, destination, source);

    Interval common;
    AddressValue low;
    AddressValue high;
    if (!interval.intersect(destination, common)) return false;
    if (!map_back(mapping, common.low, low) || !map_back(mapping, common.high, high, Bound::end))
      return false;
    if (mapping.src_dbits.count() < 1) return false;
    const int32_t periods = std::max(common.pattern.width / destination.pattern.width, 1);
    const Pattern lines = carry_mask(common.pattern, periods, destination.pattern,
                                     mapping.dest_dbits, source.pattern, mapping.src_dbits);
    if (!Interval(low, high, lines).intersect(source, result)) return false;
  }
  result.priority = wrap_sub(interval.priority, mapping.priority);
  result.exec_priority = wrap_sub(interval.exec_priority, mapping.exec_priority);
  out = result;
  return true;
}

} // namespace tdm
