// The way from what stands in a memory to the addresses at which a space shows it.
#pragma once

#include <vector>

struct TDMMapDestination;
struct TDMMapping;

namespace tdm {
class LayoutSpace;

/// Where a position or an interval of a memory shows up in the space, route by route: through the
/// mapping first, if there is one.
template <class Value>
[[nodiscard]] std::vector<Value> memory_to_space(const LayoutSpace &space,
                                                 const TDMMapDestination &memory,
                                                 const TDMMapping *mapping, const Value &value);

} // namespace tdm
