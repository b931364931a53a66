#include "routes.h"

#include <tuple>
#include <utility>

#include "parts.h"
#include "session.h"

namespace tool {

namespace {

/// The hops of all routes, sorted out.
std::vector<Route> routes_of(const std::vector<tdm_inspect_hop> &hops, bool forward)
{
  std::vector<Route> routes;
  for (const tdm_inspect_hop &hop : hops) {
    if (static_cast<size_t>(hop.route) == routes.size()) routes.emplace_back();
    tdm_inspect_mapping mapping{};
    tdm_inspect_get_mapping(hop.mapping, &mapping);
    const End end = forward ? end_of(hop.destination) : end_of(hop.source);
    Route &route = routes.back();
    route.end = {end, hop.interval, hop.reserved != 0};
    route.hops.push_back({hop.mapping, mapping, end, hop.interval});
  }
  return routes;
}

/// Priorities begin at 0, so that what comes out is what the route adds.
void set_place(Answer &answer, const Place &place)
{
  answer.is_span = place.end.has_value();
  const tdm_addressvalue low = address_of(place, place.low, answer.mau);
  const tdm_addressvalue high = place.end ? address_of(place, *place.end, answer.mau) : low;
  answer.at = {low, high, 1, 1, 0, 0};
}

bool comes_before(const tdm_addressvalue &a, const tdm_addressvalue &b)
{
  return std::tuple(a.value, a.bits) < std::tuple(b.value, b.bits);
}

/// Whether a place is part of what was asked for.
bool lies_in(const tdm_interval &part, const Answer &answer)
{
  const tdm_interval &whole = answer.at;
  if (whole.low.bank >= 0 && whole.low.bank != part.low.bank) return false;
  if (!answer.is_span) return part.low.value == whole.low.value && part.low.bits == whole.low.bits;
  // Translated back, a span on some of the data lines may reach farther than its bits.
  tdm_interval below = part;
  tdm_interval above = part;
  if (comes_before(whole.low, below.high)) below.high = whole.low;
  if (comes_before(above.low, whole.high)) above.low = whole.high;
  return !holds_something(below) && !holds_something(above);
}

/// All spaces that lead to the end of a route, but for where it began.
std::vector<Appearance> other_appearances(const Answer &answer, const tdm_inspect_hop &last)
{
  tdm_interval at = last.interval;
  at.priority = at.exec_priority = 0;
  const auto back = checked([&] {
    return take_elements<tdm_inspect_hop>(
        answer.is_span
            ? tdm_inspect_interval_routes_back(last.destination, TDM_ROUTE_TO_SPACE, &at)
            : tdm_inspect_addressvalue_routes_back(last.destination, TDM_ROUTE_TO_SPACE, &at.low));
  });
  std::vector<Appearance> others;
  for (Route &route : routes_of(back, false)) {
    if (answer.is_span && !holds_something(route.end.at)) continue;
    if (route.end.end.name != answer.from.name || !lies_in(route.end.at, answer))
      others.push_back(std::move(route.end));
  }
  return others;
}

} // namespace

Answer routes_from(tdm_space *space, const Place &place)
{
  Answer answer;
  answer.from = {"space", text_of(tdm_space_get_full_name(space))};
  answer.mau = tdm_space_get_mausize(space);
  set_place(answer, place);
  const tdm_mapsource *source = tdm_inspect_space_as_source(space);
  const auto hops = checked([&] {
    return take_elements<tdm_inspect_hop>(
        answer.is_span ? tdm_inspect_interval_routes_to_memory(source, &answer.at)
                       : tdm_inspect_addressvalue_routes_to_memory(source, &answer.at.low));
  });
  answer.routes = routes_of(hops, true);
  for (size_t i = 0; i < hops.size(); ++i)
    if (i + 1 == hops.size() || hops[i + 1].route != hops[i].route)
      answer.routes[static_cast<size_t>(hops[i].route)].also = other_appearances(answer, hops[i]);
  if (answer.is_span) tell_parts(answer);
  return answer;
}

Answer routes_from(tdm_memory *memory, const std::optional<Place> &place)
{
  Answer answer;
  answer.from = {"memory", text_of(tdm_memory_get_full_name(memory))};
  answer.mau = tdm_memory_get_mausize(memory);
  answer.forward = false;
  if (place.has_value())
    set_place(answer, *place);
  else
    set_place(answer, {-1, {}, Place::Point{tdm_memory_get_size(memory), 0}});
  const tdm_mapdestination *destination = tdm_inspect_memory_as_destination(memory);
  for (const int end : {TDM_ROUTE_TO_SPACE, TDM_ROUTE_TO_BUS}) {
    const auto hops = checked([&] {
      return take_elements<tdm_inspect_hop>(
          answer.is_span ? tdm_inspect_interval_routes_back(destination, end, &answer.at)
                         : tdm_inspect_addressvalue_routes_back(destination, end, &answer.at.low));
    });
    for (Route &route : routes_of(hops, false)) answer.routes.push_back(std::move(route));
  }
  if (answer.is_span) tell_parts(answer);
  return answer;
}

} // namespace tool
