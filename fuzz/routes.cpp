// Routes and overlaps of a spec. Each route ends with what the translation of the same name tells,
// in the same order.
#include <tdm_c/tdm_inspect.h>
#include <tdm_c/tdm_inspect_overlap.h>
#include <tdm_c/tdm_inspect_route.h>

#include "../tests/runner/render.h"
#include "target.h"

extern "C" void ask_routes(const tdm_spec *spec);

namespace {

using cases::take;
using Hops = std::vector<tdm_inspect_hop>;

const tdm_addressvalue &arrived(const tdm_map_address_result &result)
{
  return result.address;
}

const tdm_interval &arrived(const tdm_map_interval_result &result)
{
  return result.interval;
}

std::string arrival(const tdm_inspect_hop &hop, const tdm_map_address_result &)
{
  return cases::render(hop.interval.low);
}

std::string arrival(const tdm_inspect_hop &hop, const tdm_map_interval_result &)
{
  return cases::render(hop.interval);
}

/// The last hops are the results.
template <class Result> void compare(const Hops &hops, tdm_arr *translated)
{
  const std::vector<Result> results = take<Result>(translated);
  // With so many hops that the routes are given up there are results alone.
  if (hops.empty() && results.size() > 1) return;
  std::size_t route = 0;
  for (std::size_t i = 0; i < hops.size(); ++i) {
    fuzz::require(hops[i].route == static_cast<std::int32_t>(route), "routes are counted");
    if (i + 1 < hops.size() && hops[i + 1].route == hops[i].route) continue;
    fuzz::require(route < results.size(), "no route without a result");
    const Result &result = results[route++];
    fuzz::require((hops[i].reserved != 0) == (result.reserved != 0), "both are reserved");
    fuzz::require(arrival(hops[i], result) == cases::render(arrived(result)),
                  "a route ends at its result", cases::render(arrived(result)));
  }
  fuzz::require(route == results.size(), "no result without a route");
}

template <class Result, class Translate> tdm_arr *translation(Translate translate)
{
  tdm_arr *results = nullptr;
  (void)translate(&results);
  return results;
}

void forward(const tdm_mapsource *source, const tdm_interval &interval)
{
  const auto *low = &interval.low;
  compare<tdm_map_interval_result>(
      take<tdm_inspect_hop>(tdm_inspect_interval_routes_to_memory(source, &interval)),
      translation<tdm_map_interval_result>([&](tdm_arr **results) {
        return tdm_inspect_mapsource_map_interval_forward_to_memory(source, &interval, results);
      }));
  compare<tdm_map_address_result>(
      take<tdm_inspect_hop>(tdm_inspect_addressvalue_routes_to_memory(source, low)),
      translation<tdm_map_address_result>([&](tdm_arr **results) {
        return tdm_inspect_mapsource_map_addressvalue_forward_to_memory(source, low, results);
      }));
}

void backward(const tdm_mapdestination *from, const tdm_interval &interval)
{
  const auto *low = &interval.low;
  const auto routes = [&](tdm_route_end end) {
    return take<tdm_inspect_hop>(tdm_inspect_interval_routes_back(from, end, &interval));
  };
  const auto routes_of_low = [&](tdm_route_end end) {
    return take<tdm_inspect_hop>(tdm_inspect_addressvalue_routes_back(from, end, low));
  };
  compare<tdm_map_interval_result>(
      routes(TDM_ROUTE_TO_BUS), translation<tdm_map_interval_result>([&](tdm_arr **results) {
        return tdm_inspect_mapdestination_map_interval_backward_to_bus(from, &interval, results);
      }));
  compare<tdm_map_interval_result>(
      routes(TDM_ROUTE_TO_SPACE), translation<tdm_map_interval_result>([&](tdm_arr **results) {
        return tdm_inspect_mapdestination_map_interval_backward_to_space(from, &interval, results);
      }));
  compare<tdm_map_address_result>(
      routes_of_low(TDM_ROUTE_TO_BUS), translation<tdm_map_address_result>([&](tdm_arr **results) {
        return tdm_inspect_mapdestination_map_addressvalue_backward_to_bus(from, low, results);
      }));
  compare<tdm_map_address_result>(
      routes_of_low(TDM_ROUTE_TO_SPACE),
      translation<tdm_map_address_result>([&](tdm_arr **results) {
        return tdm_inspect_mapdestination_map_addressvalue_backward_to_space(from, low, results);
      }));
}

void backward(const std::vector<tdm_memory *> &memories)
{
  for (tdm_memory *memory : memories) {
    tdm_interval range;
    tdm_memory_get_addressrange(memory, &range);
    backward(tdm_inspect_memory_as_destination(memory), range);
  }
}

} // namespace

void ask_routes(const tdm_spec *spec)
{
  for (const tdm_processor *processor : take<tdm_processor *>(tdm_spec_get_processors(spec))) {
    for (const tdm_core *core : take<tdm_core *>(tdm_processor_get_cores(processor)))
      for (tdm_space *space : take<tdm_space *>(tdm_core_get_spaces(core))) {
        tdm_interval valid;
        tdm_space_get_valid_interval(space, &valid);
        forward(tdm_inspect_space_as_source(space), valid);
      }
    backward(take<tdm_memory *>(tdm_processor_get_memories(processor)));
  }
  backward(take<tdm_memory *>(tdm_spec_get_memories(spec)));
  for (const auto &overlap : take<tdm_inspect_overlap>(tdm_inspect_spec_overlaps(spec)))
    fuzz::require(overlap.bits > 0, "an overlap has bits");
  for (const auto &overlap :
       take<tdm_inspect_mapping_overlap>(tdm_inspect_spec_mapping_overlaps(spec)))
    fuzz::require(overlap.bits > 0 && overlap.first != overlap.second,
                  "an overlap has bits, of two mappings");
}
