// One engine walks the graph in both directions, depth first, with a stack of its own: a chain of
// buses may be longer than the machine's stack is deep. The three walks differ in what they do when
// they arrive somewhere.
#include "mapping/walk.h"

#include <string>
#include <utility>

#include "common/failures.h"
#include "mapping/inline_stack.h"
#include "mapping/mapping_index.h"
#include "mapping/visited_set.h"

namespace tdm {
namespace {

constexpr const AddressValue &low_of(const AddressValue &address)
{
  return address;
}
constexpr const AddressValue &high_of(const AddressValue &address)
{
  return address;
}
constexpr const AddressValue &low_of(const Interval &interval)
{
  return interval.low;
}
constexpr const AddressValue &high_of(const Interval &interval)
{
  return interval.high;
}

/// What the two directions call their nodes and operations.
struct Forward {
  using Node = TDMMapSource;
  static constexpr MapDirection direction = MapDirection::forward;

  static const PooledVector<TDMMapping *> &mappings(const Node &node)
  {
    return node.outgoing_mappings();
  }
  static const Node *onward(const TDMMapping &mapping) { return mapping.destination_as_source(); }
  template <class Value> static bool cross(const TDMMapping &mapping, const Value &in, Value &out)
  {
    if (is_plain(mapping, in)) return shift(direction, mapping, in, out);
    return map(mapping, in, out);
  }
};

struct Backward {
  using Node = TDMMapDestination;
  static constexpr MapDirection direction = MapDirection::backward;

  static const PooledVector<TDMMapping *> &mappings(const Node &node)
  {
    return node.incoming_mappings();
  }
  static const Node *onward(const TDMMapping &mapping) { return mapping.source_as_destination(); }
  template <class Value> static bool cross(const TDMMapping &mapping, const Value &in, Value &out)
  {
    if (is_plain(mapping, in)) return shift(direction, mapping, in, out);
    return map_back(mapping, in, out);
  }
};

/// One mapping crossed, and what came out at its far end.
template <class Value> struct Hop {
  const TDMMapping *mapping;
  Value value;
};

/// Room for the routes that descriptions have; longer ones go to the heap.
template <class Value> using Hops = InlineStack<Hop<Value>, 16>;

/// All mappings of a node have the node's unit at this side. The test is made once, so that
/// mappings out of reach can be passed over without another look at the unit.
template <class Way, class Value>
void require_unit(const PooledVector<TDMMapping *> &list, const Value &value)
{
  for (const TDMMapping *mapping : list) {
    if (!mapping->is_complete()) continue;
    const AddressValue &unit = near_interval(*mapping, Way::direction).low;
    AddressValue::require_same_mau(low_of(value), unit);
    AddressValue::require_same_mau(high_of(value), unit);
    return;
  }
}

/// The one-step list of a node, appended to `hops`. The value must not lie among them.
template <class Way, class Value>
void append_hops(const typename Way::Node &node, const Value &value, Hops<Value> &hops)
{
  const PooledVector<TDMMapping *> &list = Way::mappings(node);
  require_unit<Way>(list, value);
  const auto try_mapping = [&](const TDMMapping &mapping) {
    Hop<Value> hop{&mapping, {}};
    if (Way::cross(mapping, value, hop.value)) hops.push_back(hop);
  };

  const Reach reach{low_of(value).bank, low_of(value).value, high_of(value).value};
  if (low_of(value).bank != high_of(value).bank) {
    // A span over several banks holds all values of the banks between its ends.
    for (const TDMMapping *mapping : list) try_mapping(*mapping);
  } else if (const MappingIndex *index = MappingIndex::of(list, Way::direction)) {
    MappingIndex::Positions positions;
    index->find(reach, positions);
    for (const uint32_t position : positions) try_mapping(*list[position]);
  } else {
    for (const TDMMapping *mapping : list)
      if (may_meet(near_interval(*mapping, Way::direction), reach)) try_mapping(*mapping);
  }
}

[[noreturn]] void give_up()
{
  throw new TDMSyntaxError("a translation over bus mappings was given up after " +
                           std::to_string(max_walk_steps) + " steps");
}

/// A node that a walk is at: its hops lie on top of those of the frames below it.
struct Frame {
  size_t first;
  size_t next;
  bool reserved;
};

/// Walks from a node. At each hop, in depth-first order, `arrive(hop, reserved, visited, trail)` is
/// asked whether the walk goes on behind it: `reserved` is that of the route up to the hop, without
/// it, `visited` whether the node reached was entered with the same value before, and `trail(f)`
/// hands each hop of the route to a function, this one last.
template <class Way, class Value, class Arrive>
void walk(const typename Way::Node &start, const Value &value, Arrive arrive)
{
  InlineStack<Frame, 16> frames;
  Hops<Value> hops;
  VisitedSet<Value> visited;
  size_t steps = 0;

  const auto enter = [&](const typename Way::Node &node, const Value &entry, bool reserved) {
    const size_t first = hops.size();
    append_hops<Way>(node, entry, hops);
    if (hops.size() == first) return;
    steps += hops.size() - first;
    if (steps > max_walk_steps) give_up();
    visited.insert(&node, entry);
    frames.push_back({first, first, reserved});
  };

  const auto trail = [&](auto function) {
    for (const Frame &frame : frames) function(hops[frame.next - 1]);
  };

  enter(start, value, false);
  while (!frames.empty()) {
    Frame &frame = frames.back();
    if (frame.next == hops.size()) {
      hops.cut(frame.first);
      frames.cut(frames.size() - 1);
      continue;
    }
    const Hop<Value> hop = hops[frame.next++];
    const bool reserved = frame.reserved;
    const typename Way::Node *onward = Way::onward(*hop.mapping);
    const bool seen = onward != nullptr && visited.contains(onward, hop.value);
    if (arrive(hop, reserved, seen, trail) && onward != nullptr)
      enter(*onward, hop.value, reserved || hop.mapping->reserved);
  }
}

} // namespace

template <class Value>
void append_forward(const TDMMapSource &source, const Value &value,
                    Routes<ForwardRoute<Value>> &routes)
{
  Hops<Value> hops;
  append_hops<Forward>(source, value, hops);
  for (const Hop<Value> &hop : hops)
    routes.push_back({hop.mapping->destination(), hop.value, hop.mapping->reserved});
}

template <class Value>
void append_backward(const TDMMapDestination &destination, const Value &value,
                     Routes<BackwardRoute<Value>> &routes)
{
  Hops<Value> hops;
  append_hops<Backward>(destination, value, hops);
  for (const Hop<Value> &hop : hops)
    routes.push_back({hop.mapping->source(), hop.value, hop.mapping->reserved});
}

template <class Value>
void append_to_memory(const TDMMapSource &source, const Value &value,
                      Routes<ForwardRoute<Value>> &routes)
{
  walk<Forward>(source, value, [&](const Hop<Value> &hop, bool reserved, bool seen, const auto &) {
    if (hop.mapping->destination_as_source() != nullptr) return !seen;
    if (hop.mapping->destination_kind() == NodeKind::memory)
      routes.push_back({hop.mapping->destination(), hop.value, reserved || hop.mapping->reserved});
    return false;
  });
}

template <class Value>
void append_back_to(NodeKind kind, const TDMMapDestination &destination, const Value &value,
                    Routes<BackwardRoute<Value>> &routes)
{
  walk<Backward>(
      destination, value, [&](const Hop<Value> &hop, bool reserved, bool seen, const auto &) {
        if (seen) return false;
        if (hop.mapping->source_kind() == kind)
          routes.push_back({hop.mapping->source(), hop.value, reserved || hop.mapping->reserved});
        return true;
      });
}

template <class Value>
std::vector<ForwardRoute<Value>> map_forward(const TDMMapSource &source, const Value &value)
{
  Routes<ForwardRoute<Value>> routes;
  append_forward(source, value, routes);
  return {routes.begin(), routes.end()};
}

template <class Value>
std::vector<BackwardRoute<Value>> map_backward(const TDMMapDestination &destination,
                                               const Value &value)
{
  Routes<BackwardRoute<Value>> routes;
  append_backward(destination, value, routes);
  return {routes.begin(), routes.end()};
}

template <class Value>
std::vector<ForwardRoute<Value>> map_to_memory(const TDMMapSource &source, const Value &value)
{
  Routes<ForwardRoute<Value>> routes;
  append_to_memory(source, value, routes);
  return {routes.begin(), routes.end()};
}

template <class Value>
std::vector<BackwardRoute<Value>> map_back_to(NodeKind kind, const TDMMapDestination &destination,
                                              const Value &value)
{
  Routes<BackwardRoute<Value>> routes;
  append_back_to(kind, destination, value, routes);
  return {routes.begin(), routes.end()};
}

template <class Value>
std::vector<BackwardRoute<Value>> map_back_to_object(const TDMMapSource &target,
                                                     const TDMMapDestination &destination,
                                                     const Value &value)
{
  std::vector<BackwardRoute<Value>> routes;
  walk<Backward>(destination, value,
                 [&](const Hop<Value> &hop, bool reserved, bool seen, const auto &) {
                   if (hop.mapping->source() != &target) return !seen;
                   routes.push_back({hop.mapping->source(), hop.value, reserved});
                   return false;
                 });
  return routes;
}

namespace {

/// Appends a route that ends at the hop reached.
template <class Value, class Trail>
void append_route(std::vector<RouteHop<Value>> &hops, const Trail &trail)
{
  const size_t route = hops.empty() ? 0 : hops.back().route + 1;
  bool reserved = false;
  trail([&](const Hop<Value> &hop) {
    reserved = reserved || hop.mapping->reserved;
    hops.push_back({hop.mapping, hop.value, route, reserved});
  });
  if (hops.size() > max_walk_steps) give_up();
}

} // namespace

template <class Value>
std::vector<RouteHop<Value>> routes_to_memory(const TDMMapSource &source, const Value &value)
{
  std::vector<RouteHop<Value>> hops;
  walk<Forward>(source, value, [&](const Hop<Value> &hop, bool, bool seen, const auto &trail) {
    if (hop.mapping->destination_as_source() != nullptr) return !seen;
    if (hop.mapping->destination_kind() == NodeKind::memory) append_route(hops, trail);
    return false;
  });
  return hops;
}

template <class Value>
std::vector<RouteHop<Value>> routes_back_to(NodeKind kind, const TDMMapDestination &destination,
                                            const Value &value)
{
  std::vector<RouteHop<Value>> hops;
  walk<Backward>(destination, value,
                 [&](const Hop<Value> &hop, bool, bool seen, const auto &trail) {
                   if (seen) return false;
                   if (hop.mapping->source_kind() == kind) append_route(hops, trail);
                   return true;
                 });
  return hops;
}

// NOLINTBEGIN(bugprone-macro-parentheses): of types
#define TDM_INSTANTIATE(Value)                                                                     \
  template void append_forward(const TDMMapSource &, const Value &,                                \
                               Routes<ForwardRoute<Value>> &);                                     \
  template void append_backward(const TDMMapDestination &, const Value &,                          \
                                Routes<BackwardRoute<Value>> &);                                   \
  template void append_to_memory(const TDMMapSource &, const Value &,                              \
                                 Routes<ForwardRoute<Value>> &);                                   \
  template void append_back_to(NodeKind, const TDMMapDestination &, const Value &,                 \
                               Routes<BackwardRoute<Value>> &);                                    \
  template std::vector<ForwardRoute<Value>> map_forward(const TDMMapSource &, const Value &);      \
  template std::vector<BackwardRoute<Value>> map_backward(const TDMMapDestination &,               \
                                                          const Value &);                          \
  template std::vector<ForwardRoute<Value>> map_to_memory(const TDMMapSource &, const Value &);    \
  template std::vector<BackwardRoute<Value>> map_back_to(NodeKind, const TDMMapDestination &,      \
                                                         const Value &);                           \
  template std::vector<RouteHop<Value>> routes_to_memory(const TDMMapSource &, const Value &);     \
  template std::vector<RouteHop<Value>> routes_back_to(NodeKind, const TDMMapDestination &,        \
                                                       const Value &);                             \
  template std::vector<BackwardRoute<Value>> map_back_to_object(                                   \
      const TDMMapSource &, const TDMMapDestination &, const Value &);
// NOLINTEND(bugprone-macro-parentheses)

TDM_INSTANTIATE(AddressValue)
TDM_INSTANTIATE(Interval)
#undef TDM_INSTANTIATE

} // namespace tdm
