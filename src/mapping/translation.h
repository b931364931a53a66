// Takes a position or a span across one mapping, in either direction: through a change of units,
// bank numbers and partly connected data lines. Nothing in the mapping changes by it. Walks over
// many mappings stand in walk.h.
//
// All functions: false, and `out` as it was, if the mapping doesn't carry what was given; a
// mapping that isn't complete carries nothing. AddressValue::MauException if the unit isn't that
// of the end where the translation begins, Interval::PatternOverflowException if a mask would need
// more than 64 bits on the way.
#pragma once

#include "mapping/mapping.h"

namespace tdm {

/// What an address stands for: a position, or the end of a span, which isn't part of it.
enum class Bound : uint8_t { position, end };

/// From the source to the destination. The bits move with the connected data lines.
[[nodiscard]] bool map(const TDMMapping &mapping, const AddressValue &address, AddressValue &out,
                       Bound bound = Bound::position);
/// From the destination to the source.
[[nodiscard]] bool map_back(const TDMMapping &mapping, const AddressValue &address,
                            AddressValue &out, Bound bound = Bound::position);

/// From the source to the destination: clipped to the mapping, with the mask of the data lines that
/// come out, and with the mapping's priorities added. An empty interval is a position.
[[nodiscard]] bool map(const TDMMapping &mapping, const Interval &interval, Interval &out);
/// From the destination to the source, with the mapping's priorities subtracted.
[[nodiscard]] bool map_back(const TDMMapping &mapping, const Interval &interval, Interval &out);

} // namespace tdm
