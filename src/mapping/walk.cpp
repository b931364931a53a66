// One engine walks the graph in both directions, depth first, with a stack of its own: a chain of
// buses may be longer than the machine's stack is deep. The three walks differ in what they do when
// they arrive somewhere.
#include "mapping/walk.h"

#include <algorithm>
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

  static const MappingList &mappings(const Node &node) { return node.outgoing_mappings(); }
  static const Node *onward(const TDMMapping &mapping) { return mapping.destination_as_source(); }
  template <class Value> static bool cross(const TDMMapping &mapping, const Value &in, Value &out)
  {
    return map(mapping, in, out);
  }
};

struct Backward {
  using Node = TDMMapDestination;
  static constexpr MapDirection direction = MapDirection::backward;

  static const MappingList &mappings(const Node &node) { return node.incoming_mappings(); }
  static const Node *onward(const TDMMapping &mapping) { return mapping.source_as_destination(); }
  template <class Value> static bool cross(const TDMMapping &mapping, const Value &in, Value &out)
  {
    return map_back(mapping, in, out);
  }
};

/// Of a route up to some place.
struct RouteState {
  uint32_t hops;
  uint32_t reserved; ///< 1 if some mapping on it is reserved
};

/// One mapping crossed, and what came out at its far end.
template <class Value> struct Hop {
  const TDMMapping *mapping;
  Value value;
  RouteState before; ///< of the route in front of it

  [[nodiscard]] bool reserved() const { return before.reserved != 0 || mapping->reserved; }
};

/// Room for what most walks have before them; more goes to the heap.
template <class Value> using Hops = InlineStack<Hop<Value>, 16>;

/// All mappings of a node have the node's unit at this side. The test is made once, so that
/// mappings out of reach can be passed over without another look at the unit.
template <class Way, class Value>
[[gnu::always_inline]] inline void require_unit(std::span<TDMMapping *const> list,
                                                const Value &value)
{
  for (const TDMMapping *mapping : list) {
    if (!mapping->is_complete()) continue;
    const int16_t unit = near_unit(*mapping, Way::direction);
    AddressValue::require_unit(low_of(value), unit);
    AddressValue::require_unit(high_of(value), unit);
    return;
  }
}

/// Where a step begins, and what it appends to. The value must not lie among the hops.
template <class Way, class Value> struct Step {
  const Value &value;
  bool plain; ///< of the value (shift.h)
  RouteState before;
  Hops<Value> &hops;

  void cross(const TDMMapping &mapping) const
  {
    Hop<Value> &hop = hops.next();
    const bool carried = plain && mapping.is_shift()
                             ? shift(Way::direction, mapping, value, hop.value)
                             : Way::cross(mapping, value, hop.value);
    if (!carried) return;
    hop.mapping = &mapping;
    hop.before = before;
    hops.add();
  }

  [[nodiscard]] Reach reach() const
  {
    return {low_of(value).bank, low_of(value).value, high_of(value).value};
  }

  /// Of a plain value.
  void cross_few(std::span<TDMMapping *const> list) const
  {
    for (const TDMMapping *mapping : list)
      if (mapping->is_shift() ? in_reach(Way::direction, *mapping, value)
                              : may_meet(near_interval(*mapping, Way::direction), reach()))
        cross(*mapping);
  }

  /// Of any value.
  [[gnu::noinline]] void cross_many(const MappingList &list) const
  {
    if (low_of(value).bank != high_of(value).bank) {
      // A span over several banks holds all values of the banks between its ends.
      for (const TDMMapping *mapping : list) cross(*mapping);
    } else if (const MappingIndex *index = MappingIndex::of(list, Way::direction)) {
      MappingIndex::Positions positions;
      index->find(reach(), positions);
      const std::span<TDMMapping *const> all = list.all();
      for (const uint32_t position : positions) cross(*all[position]);
    } else {
      for (const TDMMapping *mapping : list)
        if (may_meet(near_interval(*mapping, Way::direction), reach())) cross(*mapping);
    }
  }
};

/// The one-step list of a node, appended to `hops` with the route in front of it. Most lists are
/// short and most values plain: that stands in the walk itself, all else behind a call.
template <class Way, class Value>
[[gnu::always_inline]] inline void append_hops(const typename Way::Node &node, const Value &value,
                                               RouteState before, Hops<Value> &hops)
{
  const MappingList &list = Way::mappings(node);
  const std::span<TDMMapping *const> all = list.all();
  require_unit<Way>(all, value);
  const Step<Way, Value> step{value, is_plain(value), before, hops};
  if (step.plain && all.size() < MappingIndex::min_length)
    step.cross_few(all);
  else
    step.cross_many(list);
}

[[noreturn]] void give_up()
{
  throw new TDMSyntaxError("a translation over bus mappings was given up after " +
                           std::to_string(max_walk_steps) + " steps");
}

/// For walks that don't ask how they came to a hop.
struct NoTrail {
  template <class Value> void add(const Hop<Value> &) {}
};

/// The hops of the route up to the latest one.
template <class Value> class Trail {
public:
  void add(const Hop<Value> &hop)
  {
    hops_.cut(hop.before.hops);
    hops_.push_back(hop);
  }
  [[nodiscard]] const Hops<Value> &hops() const { return hops_; }

private:
  Hops<Value> hops_;
};

/// Walks from a node. At each hop, in depth-first order, `arrive(hop, seen)` is asked whether the
/// walk goes on behind it: `seen` is whether the node reached was entered with the same value
/// before. The trail learns of each hop before that.
template <class Way, class Value, class Trail, class Arrive>
void walk(const typename Way::Node &start, const Value &value, Trail &trail, Arrive arrive)
{
  Hops<Value> ahead; // the next one on top
  VisitedSet<Value> visited;
  size_t steps = 0;

  const typename Way::Node *node = &start;
  Value entry = value;
  RouteState route{0, 0};
  for (;;) {
    const size_t others = ahead.size();
    append_hops<Way>(*node, entry, route, ahead);
    if (const size_t count = ahead.size() - others; count > 0) {
      steps += count;
      if (steps > max_walk_steps) give_up();
      visited.insert(node, entry);
      // Mostly there are two: one further on, and the way back that belongs to the last one.
      if (count == 2)
        std::swap(ahead[others], ahead[others + 1]);
      else if (count > 2)
        std::reverse(ahead.begin() + others, ahead.end());
    }
    // On to the next hop behind which the walk goes on.
    for (node = nullptr; node == nullptr;) {
      if (ahead.empty()) return;
      const Hop<Value> &hop = ahead.pop_back();
      trail.add(hop);
      const typename Way::Node *onward = Way::onward(*hop.mapping);
      const bool seen = onward != nullptr && visited.contains(onward, hop.value);
      if (!arrive(hop, seen) || onward == nullptr) continue;
      node = onward;
      entry = hop.value;
      route = {hop.before.hops + 1, hop.reserved()};
    }
  }
}

template <class Way, class Value, class Arrive>
void walk(const typename Way::Node &start, const Value &value, Arrive arrive)
{
  NoTrail trail;
  walk<Way>(start, value, trail, arrive);
}

} // namespace

template <class Value>
void append_forward(const TDMMapSource &source, const Value &value,
                    Routes<ForwardRoute<Value>> &routes)
{
  Hops<Value> hops;
  append_hops<Forward>(source, value, {0, 0}, hops);
  for (const Hop<Value> &hop : hops)
    routes.push_back({hop.mapping->destination(), hop.value, hop.mapping->reserved});
}

template <class Value>
void append_backward(const TDMMapDestination &destination, const Value &value,
                     Routes<BackwardRoute<Value>> &routes)
{
  Hops<Value> hops;
  append_hops<Backward>(destination, value, {0, 0}, hops);
  for (const Hop<Value> &hop : hops)
    routes.push_back({hop.mapping->source(), hop.value, hop.mapping->reserved});
}

template <class Value>
void append_to_memory(const TDMMapSource &source, const Value &value,
                      Routes<ForwardRoute<Value>> &routes)
{
  walk<Forward>(source, value, [&](const Hop<Value> &hop, bool seen) {
    if (hop.mapping->destination_as_source() != nullptr) return !seen;
    if (hop.mapping->destination_kind() == NodeKind::memory)
      routes.push_back({hop.mapping->destination(), hop.value, hop.reserved()});
    return false;
  });
}

template <class Value>
void append_back_to(NodeKind kind, const TDMMapDestination &destination, const Value &value,
                    Routes<BackwardRoute<Value>> &routes)
{
  walk<Backward>(destination, value, [&](const Hop<Value> &hop, bool seen) {
    if (seen) return false;
    if (hop.mapping->source_kind() == kind)
      routes.push_back({hop.mapping->source(), hop.value, hop.reserved()});
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
  walk<Backward>(destination, value, [&](const Hop<Value> &hop, bool seen) {
    if (hop.mapping->source() != &target) return !seen;
    routes.push_back({hop.mapping->source(), hop.value, hop.before.reserved != 0});
    return false;
  });
  return routes;
}

namespace {

/// Appends a route that ends at the hop reached.
template <class Value>
void append_route(std::vector<RouteHop<Value>> &hops, const Trail<Value> &trail)
{
  const size_t route = hops.empty() ? 0 : hops.back().route + 1;
  for (const Hop<Value> &hop : trail.hops())
    hops.push_back({hop.mapping, hop.value, route, hop.reserved()});
  if (hops.size() > max_walk_steps) give_up();
}

} // namespace

template <class Value>
std::vector<RouteHop<Value>> routes_to_memory(const TDMMapSource &source, const Value &value)
{
  std::vector<RouteHop<Value>> hops;
  Trail<Value> trail;
  walk<Forward>(source, value, trail, [&](const Hop<Value> &hop, bool seen) {
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
  Trail<Value> trail;
  walk<Backward>(destination, value, trail, [&](const Hop<Value> &hop, bool seen) {
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
