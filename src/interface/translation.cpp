// The ten translations: what is given is checked and converted, the mapping engine walks, and each
// route becomes a record of the result.
#include "mapping/walk.h"

#include "interface/guard.h"
#include "interface/tdm.h"
#include "interface/values.h"
#include "model/memory.h"
#include "model/space.h"

namespace {

// What a value looks like when it comes back. Memories and their role as a destination have one
// address, so the routes to memories need no conversion of their own.
template <class Given> struct Result;
template <> struct Result<tdm_addressvalue> {
  using Record = tdm_map_address_result;
};
template <> struct Result<tdm_interval> {
  using Record = tdm_map_interval_result;
};

/// Hands the value, meant in the node, to the walk, and its routes to the caller.
template <auto walk, class Route, class Node, class Given>
int translate(const Node &node, const Given &given, tdm_arr **results)
{
  using Record = typename Result<Given>::Record;
  *results = tdm::guarded_array<Record>([&] {
    tdm::Routes<Route> routes;
    walk(node, tdm::imported(given, node.mau_size), routes);
    return tdm::array_of(routes, [](const Route &route) {
      return Record{route.object, route.value.to_record(), route.reserved ? 1 : 0};
    });
  });
  return *results != nullptr && (*results)->count > 0 ? 1 : 0;
}

template <class Value> using RoutesBack = tdm::Routes<tdm::BackwardRoute<Value>>;

template <class Value>
void back_to_bus(const TDMMemory &memory, const Value &value, RoutesBack<Value> &routes)
{
  tdm::append_back_to(tdm::NodeKind::bus, memory, value, routes);
}

template <class Value>
void back_to_space(const TDMMemory &memory, const Value &value, RoutesBack<Value> &routes)
{
  tdm::append_back_to(tdm::NodeKind::space, memory, value, routes);
}

} // namespace

int tdm_space_map_interval_forward(const tdm_space *space, const tdm_interval *interval,
                                   tdm_arr **results)
{
  return translate<tdm::append_forward<Interval>, tdm::ForwardRoute<Interval>>(*space, *interval,
                                                                               results);
}

int tdm_space_map_addressvalue_forward(const tdm_space *space, const tdm_addressvalue *address,
                                       tdm_arr **results)
{
  return translate<tdm::append_forward<AddressValue>, tdm::ForwardRoute<AddressValue>>(
      *space, *address, results);
}

int tdm_space_map_interval_forward_to_memory(const tdm_space *space, const tdm_interval *interval,
                                             tdm_arr **results)
{
  return translate<tdm::append_to_memory<Interval>, tdm::ForwardRoute<Interval>>(*space, *interval,
                                                                                 results);
}

int tdm_space_map_addressvalue_forward_to_memory(const tdm_space *space,
                                                 const tdm_addressvalue *address, tdm_arr **results)
{
  return translate<tdm::append_to_memory<AddressValue>, tdm::ForwardRoute<AddressValue>>(
      *space, *address, results);
}

int tdm_memory_map_interval_backward(const tdm_memory *memory, const tdm_interval *interval,
                                     tdm_arr **results)
{
  return translate<tdm::append_backward<Interval>, tdm::BackwardRoute<Interval>>(*memory, *interval,
                                                                                 results);
}

int tdm_memory_map_addressvalue_backward(const tdm_memory *memory, const tdm_addressvalue *address,
                                         tdm_arr **results)
{
  return translate<tdm::append_backward<AddressValue>, tdm::BackwardRoute<AddressValue>>(
      *memory, *address, results);
}

int tdm_memory_map_interval_backward_to_bus(const tdm_memory *memory, const tdm_interval *interval,
                                            tdm_arr **results)
{
  return translate<back_to_bus<Interval>, tdm::BackwardRoute<Interval>>(*memory, *interval,
                                                                        results);
}

int tdm_memory_map_addressvalue_backward_to_bus(const tdm_memory *memory,
                                                const tdm_addressvalue *address, tdm_arr **results)
{
  return translate<back_to_bus<AddressValue>, tdm::BackwardRoute<AddressValue>>(*memory, *address,
                                                                                results);
}

int tdm_memory_map_interval_backward_to_space(const tdm_memory *memory,
                                              const tdm_interval *interval, tdm_arr **results)
{
  return translate<back_to_space<Interval>, tdm::BackwardRoute<Interval>>(*memory, *interval,
                                                                          results);
}

int tdm_memory_map_addressvalue_backward_to_space(const tdm_memory *memory,
                                                  const tdm_addressvalue *address,
                                                  tdm_arr **results)
{
  return translate<back_to_space<AddressValue>, tdm::BackwardRoute<AddressValue>>(*memory, *address,
                                                                                  results);
}
