// map: where an address of a space leads, or where a place in a memory is seen from.
#include <stdexcept>
#include <string>
#include <vector>

#include <tdm_c/tdm.h>
#include <tdm_c/tdm_inspect.h>

#include "address.h"
#include "find.h"
#include "format.h"
#include "json_values.h"
#include "memory_map.h"
#include "verbs.h"

namespace tool {

namespace {

/// One route: what it reaches, of which kind, and where.
struct Route {
  const char *kind; ///< "memory", "space" or "bus"
  std::string name;
  tdm_interval at; ///< a point has low = high
  bool is_span;
  bool reserved;
};

/// All that was asked and answered.
struct Answer {
  const char *from_kind;
  std::string from;
  int mau = 0;
  tdm_interval at{};
  bool is_span = false;
  std::vector<Route> routes;
};

// ---- translation

Route route_to_memory(void *object)
{
  return {"memory",
          text_of(tdm_memory_get_full_name(static_cast<tdm_memory *>(object))),
          {},
          false,
          false};
}

Route route_to_source(void *object)
{
  auto *source = static_cast<tdm_mapsource *>(object);
  if (const tdm_bus *bus = tdm_mapsource_get_bus(source))
    return {"bus", text_of(tdm_bus_get_full_name(bus)), {}, false, false};
  const tdm_space *space = tdm_mapsource_get_space(source);
  return {"space", text_of(tdm_space_get_full_name(space)), {}, false, false};
}

/// A point travels as an address, a span as an interval.
template <class Object> struct Translation {
  int (*point)(const Object *, const tdm_addressvalue *, tdm_arr **);
  int (*span)(const Object *, const tdm_interval *, tdm_arr **);
  Route (*reached)(void *object);
};

template <class Object>
void translate(const Object *object, const Translation<Object> &translation, Answer &answer)
{
  const int64_t failures_before = tdm_inspect_failure_count();
  tdm_arr *results = nullptr;
  if (answer.is_span) {
    translation.span(object, &answer.at, &results);
    for (const auto &result : take_elements<tdm_map_interval_result>(results)) {
      Route route = translation.reached(result.object);
      route.at = result.interval;
      route.is_span = true;
      route.reserved = result.reserved != 0;
      answer.routes.push_back(std::move(route));
    }
  } else {
    translation.point(object, &answer.at.low, &results);
    for (const auto &result : take_elements<tdm_map_address_result>(results)) {
      Route route = translation.reached(result.object);
      route.at = {result.address, result.address, 1, 1, 0, 0};
      route.reserved = result.reserved != 0;
      answer.routes.push_back(std::move(route));
    }
  }
  if (tdm_inspect_failure_count() != failures_before)
    throw std::runtime_error(tdm_inspect_failure_text());
}

/// Priorities begin at 0, so that what comes out is what the route adds.
void set_place(Answer &answer, const Place &place)
{
  answer.is_span = place.end.has_value();
  const tdm_addressvalue low = address_of(place, place.low, answer.mau);
  const tdm_addressvalue high = place.end ? address_of(place, *place.end, answer.mau) : low;
  answer.at = {low, high, 1, 1, 0, 0};
}

Answer map_space(const Options &options, const tdm_spec *spec)
{
  const tdm_space *space = find_space(spec, options.space);
  Answer answer{
      "space", text_of(tdm_space_get_full_name(space)), tdm_space_get_mausize(space), {}, false,
      {}};
  set_place(answer, options.place);
  translate<tdm_space>(space,
                       {tdm_space_map_addressvalue_forward_to_memory,
                        tdm_space_map_interval_forward_to_memory, route_to_memory},
                       answer);
  return answer;
}

Answer map_memory(const Options &options, const tdm_spec *spec)
{
  const tdm_memory *memory = find_memory(spec, options.memory);
  Answer answer{"memory",
                text_of(tdm_memory_get_full_name(memory)),
                tdm_memory_get_mausize(memory),
                {},
                false,
                {}};
  set_place(answer, options.place);
  translate<tdm_memory>(memory,
                        {tdm_memory_map_addressvalue_backward_to_space,
                         tdm_memory_map_interval_backward_to_space, route_to_source},
                        answer);
  translate<tdm_memory>(memory,
                        {tdm_memory_map_addressvalue_backward_to_bus,
                         tdm_memory_map_interval_backward_to_bus, route_to_source},
                        answer);
  return answer;
}

// ---- output

std::string place_text(const tdm_interval &at, bool is_span)
{
  return is_span ? span_text(at) : address_text(at.low);
}

std::string size_text(const tdm_interval &at)
{
  return human_size(size_of(at), at.low.mau);
}

std::string priority_text(const tdm_interval &at)
{
  if (at.priority == 0 && at.exec_priority == 0) return "";
  std::string text = "priority " + fixed_point(at.priority);
  if (at.exec_priority != at.priority) text += ", to execute " + fixed_point(at.exec_priority);
  return text;
}

/// "reserved, priority 2, bits 0xFF of 16"
std::string remarks_of(const Route &route)
{
  std::string text;
  const auto add = [&](const std::string &remark) {
    if (!remark.empty()) text += (text.empty() ? "" : ", ") + remark;
  };
  if (route.reserved) add("reserved");
  if (!route.is_span) return text;
  add(priority_text(route.at));
  add(mask_text(route.at));
  return text;
}

void write_text(const Answer &answer, std::ostream &out)
{
  out << answer.from_kind << ' ' << answer.from << "  " << place_text(answer.at, answer.is_span);
  if (answer.is_span) out << "  " << size_text(answer.at);
  out << "  (" << answer.mau << "-bit MAUs)\n";
  if (answer.routes.empty()) {
    out << "  no route\n";
    return;
  }
  const bool forward = std::string_view(answer.from_kind) == "space";
  Table table;
  if (answer.is_span) table.align_right(4);
  for (const Route &route : answer.routes)
    table.add({forward ? "→" : "←", route.kind, route.name, place_text(route.at, route.is_span),
               route.is_span ? size_text(route.at) : "",
               "(" + std::to_string(route.at.low.mau) + "-bit MAUs)", remarks_of(route)});
  for (const std::string &line : table.lines()) out << "  " << line << '\n';
}

Json json_place(const tdm_interval &at, bool is_span)
{
  return is_span ? json_interval(at) : json_address(at.low);
}

void write_answer(const Answer &answer, std::ostream &out)
{
  const char *key = answer.is_span ? "interval" : "address";
  Json routes = Json::array();
  for (const Route &route : answer.routes) {
    Json one{
        {"kind", route.kind}, {"name", route.name}, {key, json_place(route.at, route.is_span)}};
    if (route.is_span) {
      one["priority"] = route.at.priority / 65536.0;
      one["exec_priority"] = route.at.exec_priority / 65536.0;
    }
    one["reserved"] = route.reserved;
    routes.push_back(std::move(one));
  }
  write_json(out, {{"schema_version", json_schema_version},
                   {"from",
                    {{"kind", answer.from_kind},
                     {"name", answer.from},
                     {key, json_place(answer.at, answer.is_span)}}},
                   {"routes", routes}});
}

} // namespace

int map(const Options &options, const Session &session, std::ostream &out)
{
  const Answer answer = options.space.empty() ? map_memory(options, session.spec())
                                              : map_space(options, session.spec());
  if (options.json)
    write_answer(answer, out);
  else
    write_text(answer, out);
  return answer.routes.empty() ? exit_no_route : exit_ok;
}

} // namespace tool
