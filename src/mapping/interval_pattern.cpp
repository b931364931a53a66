// The masks of intervals: up to 64 bits that repeat along the line of bits.
#include <algorithm>
#include <numeric>
#include <string>

#include "mapping/interval.h"

void Interval::Pattern::throw_bad_width(int64_t width)
{
  if (width > max_width)
    throw new PatternOverflowException(
        "Maximum mapping width (" + std::to_string(max_width) +
        ") exceeded. Use the mau size as bus width unless use of source_dbits and/or dest_dbits is "
        "necessary.");
  throw new PatternOverflowException("width " + std::to_string(width) +
                                     " of an interval's pattern is below 1");
}

uint64_t Interval::Pattern::repeated(int32_t to_width) const
{
  uint64_t result = bits;
  for (int32_t filled = width; filled < to_width; filled *= 2) result |= result << filled;
  return result & mask(to_width);
}

Interval::Pattern Interval::Pattern::slice(int64_t from, int64_t to) const
{
  const int32_t count = checked_width(tdm::wrap_add(tdm::wrap_sub(to, from), int64_t{1}));
  if (bits == mask(width)) return {count, mask(count)};
  auto position = static_cast<int32_t>(from % width);
  if (position < 0) position += width;
  uint64_t result = 0;
  for (int32_t filled = 0; filled < count;) {
    const int32_t piece = std::min(width - position, count - filled);
    result |= ((bits >> position) & mask(piece)) << filled;
    filled += piece;
    position = 0;
  }
  return {count, result};
}

Interval::Pattern operator&(const Interval::Pattern &a, const Interval::Pattern &b)
{
  const Interval::Pattern frame(std::lcm(a.width, b.width), 0);
  return {frame.width, a.repeated(frame.width) & b.repeated(frame.width)};
}

Interval::Pattern operator|(const Interval::Pattern &a, const Interval::Pattern &b)
{
  const Interval::Pattern frame(std::lcm(a.width, b.width), 0);
  return {frame.width, a.repeated(frame.width) | b.repeated(frame.width)};
}

void Interval::Pattern::reduce(int32_t unit)
{
  if (unit < 1 || unit > width / 2) return;
  if (bits == mask(width) && width % unit == 0) {
    *this = {unit, bits};
    return;
  }
  for (int32_t period = unit; period <= width / 2; period += unit) {
    if (width % period != 0) return;
    const Pattern head(period, bits);
    if (head.repeated(width) == bits) {
      *this = head;
      return;
    }
  }
}

bool operator==(const Interval::Pattern &a, const Interval::Pattern &b)
{
  if (a.width == b.width) return a.bits == b.bits;
  Interval::Pattern wider = a.width > b.width ? a : b;
  const Interval::Pattern &narrower = a.width > b.width ? b : a;
  wider.reduce(narrower.width);
  return wider.bits == narrower.bits;
}
