// The additive translations: one mapping, any object, and routes hop by hop. All arithmetic is the
// mapping engine's.
#include "interface/guard.h"
#include "interface/tdm_inspect_route.h"
#include "interface/values.h"
#include "mapping/walk.h"
#include "model/bus.h"
#include "model/memory.h"
#include "model/space.h"

using tdm::guarded;
using tdm::guarded_array;
using tdm::NodeKind;

namespace {

tdm_map_address_result result_of(void *object, const AddressValue &value, bool reserved)
{
  return {object, value.to_record(), reserved ? 1 : 0};
}

tdm_map_interval_result result_of(void *object, const Interval &value, bool reserved)
{
  return {object, value.to_record(), reserved ? 1 : 0};
}

/// Hands the value, meant in the node, to the walk, and its routes to the caller. Memories and
/// their role as a destination have one address, so the routes to memories need no conversion.
template <class Node, class Given, class Walk>
int translate(const Node &node, const Given &given, tdm_arr **results, Walk walk)
{
  using Record = decltype(result_of(nullptr, tdm::imported(given, 1), false));
  *results = guarded_array<Record>([&] {
    return tdm::array_of(
        walk(node, tdm::imported(given, node.get_mau_size())),
        [](const auto &route) { return result_of(route.object, route.value, route.reserved); });
  });
  return *results != nullptr && (*results)->count > 0 ? 1 : 0;
}

template <class Given>
int translate_back_to(NodeKind kind, const TDMMapDestination &destination, const Given &given,
                      tdm_arr **results)
{
  return translate(destination, given, results, [kind](const auto &from, const auto &value) {
    return tdm::map_back_to(kind, from, value);
  });
}

/// Crosses one mapping, which begins at the near end.
template <class Node, class Given, class Cross>
int cross_mapping(const Node *near, const Given &given, Given &out, Cross cross)
{
  return guarded([&] {
    if (near == nullptr) return 0;
    auto value = tdm::imported(given, near->get_mau_size());
    if (!cross(value)) return 0;
    out = value.to_record();
    return 1;
  });
}

// ---- routes

template <class Value>
tdm_inspect_hop hop_record(const tdm::RouteHop<Value> &hop, const tdm_interval &interval,
                           bool forward)
{
  const TDMMapping &mapping = *hop.mapping;
  const tdm::DataLines &near = forward ? mapping.src_dbits : mapping.dest_dbits;
  const tdm::DataLines &far = forward ? mapping.dest_dbits : mapping.src_dbits;
  return {.route = static_cast<int32_t>(hop.route),
          .reserved = hop.reserved ? 1 : 0,
          .mapping = tdm::handle(hop.mapping),
          .source = mapping.source(),
          .destination = mapping.destination(),
          .interval = interval,
          .near_line_low = near.low,
          .near_line_high = near.high,
          .far_line_low = far.low,
          .far_line_high = far.high};
}

tdm_arr *hops_of(const std::vector<tdm::RouteHop<Interval>> &hops, bool forward)
{
  return tdm::array_of(hops, [forward](const tdm::RouteHop<Interval> &hop) {
    return hop_record(hop, hop.value.to_record(), forward);
  });
}

/// An address has no priorities of its own: those of its route are added up from 0.
tdm_arr *hops_of(const std::vector<tdm::RouteHop<AddressValue>> &hops, bool forward)
{
  size_t route = 0;
  tdm_interval interval{};
  return tdm::array_of(hops, [&](const tdm::RouteHop<AddressValue> &hop) {
    if (hop.route != route) interval = {};
    route = hop.route;
    const TDMMapping &mapping = *hop.mapping;
    const int32_t sign = forward ? 1 : -1;
    interval = {.low = hop.value.to_record(),
                .high = hop.value.to_record(),
                .width = 1,
                .bits = 1,
                .priority = tdm::wrap_add(interval.priority, tdm::wrap_mul(mapping.priority, sign)),
                .exec_priority = tdm::wrap_add(interval.exec_priority,
                                               tdm::wrap_mul(mapping.exec_priority, sign))};
    return hop_record(hop, interval, forward);
  });
}

template <class Given> tdm_arr *routes_forward(const TDMMapSource &source, const Given &given)
{
  return guarded_array<tdm_inspect_hop>([&] {
    return hops_of(tdm::routes_to_memory(source, tdm::imported(given, source.get_mau_size())),
                   true);
  });
}

template <class Given>
tdm_arr *routes_back(const TDMMapDestination &destination, int end, const Given &given)
{
  return guarded_array<tdm_inspect_hop>([&] {
    if (end != TDM_ROUTE_TO_BUS && end != TDM_ROUTE_TO_SPACE)
      return tdm::empty_array(sizeof(tdm_inspect_hop));
    const NodeKind kind = end == TDM_ROUTE_TO_BUS ? NodeKind::bus : NodeKind::space;
    const auto value = tdm::imported(given, destination.get_mau_size());
    return hops_of(tdm::routes_back_to(kind, destination, value), false);
  });
}

} // namespace

tdm_mapsource *tdm_inspect_space_as_source(tdm_space *space)
{
  return space;
}

tdm_mapsource *tdm_inspect_bus_as_source(tdm_bus *bus)
{
  return bus;
}

tdm_mapdestination *tdm_inspect_space_as_destination(tdm_space *space)
{
  return space;
}

tdm_mapdestination *tdm_inspect_bus_as_destination(tdm_bus *bus)
{
  return bus;
}

tdm_mapdestination *tdm_inspect_memory_as_destination(tdm_memory *memory)
{
  return memory;
}

int tdm_inspect_mapping_map_addressvalue_forward(const tdm_mapping *mapping,
                                                 const tdm_addressvalue *address,
                                                 tdm_addressvalue *out)
{
  return cross_mapping(mapping->source(), *address, *out,
                       [&](AddressValue &value) { return tdm::map(*mapping, value, value); });
}

int tdm_inspect_mapping_map_addressvalue_backward(const tdm_mapping *mapping,
                                                  const tdm_addressvalue *address,
                                                  tdm_addressvalue *out)
{
  return cross_mapping(mapping->destination(), *address, *out,
                       [&](AddressValue &value) { return tdm::map_back(*mapping, value, value); });
}

int tdm_inspect_mapping_map_interval_forward(const tdm_mapping *mapping,
                                             const tdm_interval *interval, tdm_interval *out)
{
  return cross_mapping(mapping->source(), *interval, *out,
                       [&](Interval &value) { return tdm::map(*mapping, value, value); });
}

int tdm_inspect_mapping_map_interval_backward(const tdm_mapping *mapping,
                                              const tdm_interval *interval, tdm_interval *out)
{
  return cross_mapping(mapping->destination(), *interval, *out,
                       [&](Interval &value) { return tdm::map_back(*mapping, value, value); });
}

int tdm_inspect_mapsource_map_addressvalue_forward(const tdm_mapsource *source,
                                                   const tdm_addressvalue *address,
                                                   tdm_arr **results)
{
  return translate(*source, *address, results, tdm::map_forward<AddressValue>);
}

int tdm_inspect_mapsource_map_interval_forward(const tdm_mapsource *source,
                                               const tdm_interval *interval, tdm_arr **results)
{
  return translate(*source, *interval, results, tdm::map_forward<Interval>);
}

int tdm_inspect_mapsource_map_addressvalue_forward_to_memory(const tdm_mapsource *source,
                                                             const tdm_addressvalue *address,
                                                             tdm_arr **results)
{
  return translate(*source, *address, results, tdm::map_to_memory<AddressValue>);
}

int tdm_inspect_mapsource_map_interval_forward_to_memory(const tdm_mapsource *source,
                                                         const tdm_interval *interval,
                                                         tdm_arr **results)
{
  return translate(*source, *interval, results, tdm::map_to_memory<Interval>);
}

int tdm_inspect_mapdestination_map_addressvalue_backward(const tdm_mapdestination *destination,
                                                         const tdm_addressvalue *address,
                                                         tdm_arr **results)
{
  return translate(*destination, *address, results, tdm::map_backward<AddressValue>);
}

int tdm_inspect_mapdestination_map_interval_backward(const tdm_mapdestination *destination,
                                                     const tdm_interval *interval,
                                                     tdm_arr **results)
{
  return translate(*destination, *interval, results, tdm::map_backward<Interval>);
}

int tdm_inspect_mapdestination_map_addressvalue_backward_to_bus(
    const tdm_mapdestination *destination, const tdm_addressvalue *address, tdm_arr **results)
{
  return translate_back_to(NodeKind::bus, *destination, *address, results);
}

int tdm_inspect_mapdestination_map_interval_backward_to_bus(const tdm_mapdestination *destination,
                                                            const tdm_interval *interval,
                                                            tdm_arr **results)
{
  return translate_back_to(NodeKind::bus, *destination, *interval, results);
}

int tdm_inspect_mapdestination_map_addressvalue_backward_to_space(
    const tdm_mapdestination *destination, const tdm_addressvalue *address, tdm_arr **results)
{
  return translate_back_to(NodeKind::space, *destination, *address, results);
}

int tdm_inspect_mapdestination_map_interval_backward_to_space(const tdm_mapdestination *destination,
                                                              const tdm_interval *interval,
                                                              tdm_arr **results)
{
  return translate_back_to(NodeKind::space, *destination, *interval, results);
}

tdm_arr *tdm_inspect_addressvalue_routes_to_memory(const tdm_mapsource *source,
                                                   const tdm_addressvalue *address)
{
  return routes_forward(*source, *address);
}

tdm_arr *tdm_inspect_interval_routes_to_memory(const tdm_mapsource *source,
                                               const tdm_interval *interval)
{
  return routes_forward(*source, *interval);
}

tdm_arr *tdm_inspect_addressvalue_routes_back(const tdm_mapdestination *destination, int end,
                                              const tdm_addressvalue *address)
{
  return routes_back(*destination, end, *address);
}

tdm_arr *tdm_inspect_interval_routes_back(const tdm_mapdestination *destination, int end,
                                          const tdm_interval *interval)
{
  return routes_back(*destination, end, *interval);
}
