// Translations over the graph: one step over all mappings of a node, and the walks that repeat the
// step and collect every route.
//
// All functions are made for AddressValue and for Interval. An empty result means that there is no
// route, which is no failure. Records come in the order of the mappings, depth first. A node that
// is reached again with an equal value is not walked again, so that circles end. Failures are those
// of translation.h; a walk that takes more than max_walk_steps throws a TDMSyntaxError.
#pragma once

#include <cstddef>
#include <vector>

#include "mapping/inline_stack.h"
#include "mapping/translation.h"

namespace tdm {

/// Where a walk is given up. Buses that are mapped onto each other with different offsets can shift
/// a value in a circle without an end in sight, and a few lines of text must not hang the process.
[[gnu::visibility("hidden")]] inline size_t max_walk_steps = 1'000'000;

/// What was reached by one route forward.
template <class Value> struct ForwardRoute {
  TDMMapDestination *object;
  Value value;
  bool reserved; ///< some mapping on the route is reserved
};

/// What was reached by one route backward.
template <class Value> struct BackwardRoute {
  TDMMapSource *object;
  Value value;
  bool reserved; ///< some mapping on the route is reserved
};

/// Routes as they are found; few of them need no memory of the heap.
template <class Route> using Routes = InlineStack<Route, 8>;

// The walks as the interface makes them, which hands the routes on at once.

template <class Value>
void append_forward(const TDMMapSource &source, const Value &value,
                    Routes<ForwardRoute<Value>> &routes);
template <class Value>
void append_backward(const TDMMapDestination &destination, const Value &value,
                     Routes<BackwardRoute<Value>> &routes);
template <class Value>
void append_to_memory(const TDMMapSource &source, const Value &value,
                      Routes<ForwardRoute<Value>> &routes);
template <class Value>
void append_back_to(NodeKind kind, const TDMMapDestination &destination, const Value &value,
                    Routes<BackwardRoute<Value>> &routes);

/// One step over each mapping that leaves the source.
template <class Value>
[[nodiscard]] std::vector<ForwardRoute<Value>> map_forward(const TDMMapSource &source,
                                                           const Value &value);
/// One step over each mapping that reaches the destination.
template <class Value>
[[nodiscard]] std::vector<BackwardRoute<Value>> map_backward(const TDMMapDestination &destination,
                                                             const Value &value);

/// On to all memories.
template <class Value>
[[nodiscard]] std::vector<ForwardRoute<Value>> map_to_memory(const TDMMapSource &source,
                                                             const Value &value);
/// Back to all objects of the kind, bus or space, those in the middle of a route included.
template <class Value>
[[nodiscard]] std::vector<BackwardRoute<Value>>
map_back_to(NodeKind kind, const TDMMapDestination &destination, const Value &value);
/// Back to one object; `reserved` leaves out the mapping that arrives at it.
template <class Value>
[[nodiscard]] std::vector<BackwardRoute<Value>>
map_back_to_object(const TDMMapSource &target, const TDMMapDestination &destination,
                   const Value &value);

/// A mapping that a route crosses.
template <class Value> struct RouteHop {
  const TDMMapping *mapping;
  Value value;   ///< where the route arrives behind it: at its far end, in the units of that
  size_t route;  ///< number of the route, from 0
  bool reserved; ///< some mapping on the route up to here, this one included, is reserved
};

/// The routes of map_to_memory and map_back_to, each with all its hops from the start on. As many
/// hops as a walk may take steps, all routes together; beyond that, the failure of a walk.
template <class Value>
[[nodiscard]] std::vector<RouteHop<Value>> routes_to_memory(const TDMMapSource &source,
                                                            const Value &value);
template <class Value>
[[nodiscard]] std::vector<RouteHop<Value>>
routes_back_to(NodeKind kind, const TDMMapDestination &destination, const Value &value);

} // namespace tdm
