// Routes and tables as JSON.
#include "map_output.h"

#include "model_json.h"

namespace tool {

namespace {

class RouteJson {
public:
  RouteJson(const Answer &answer, const Session &session, const Units &units)
      : answer_(answer), session_(session), units_(units), numbers_(session.spec())
  {
  }

  [[nodiscard]] Json json() const
  {
    Json routes = Json::array();
    for (const Route &route : answer_.routes) routes.push_back(of(route));
    Json from{{"kind", answer_.from.kind}, {"name", answer_.from.name}};
    add_place(from, answer_.at);
    Json json{{"schema_version", json_schema_version}, {"from", from}, {"routes", routes}};
    if (answer_.is_span) json["unused"] = unused();
    return json;
  }

private:
  void add_place(Json &json, const tdm_interval &at) const
  {
    if (answer_.is_span)
      json["interval"] = json_interval(units_.of(at));
    else
      json["address"] = json_address(units_.of(at.low));
  }

  [[nodiscard]] Json unused() const
  {
    if (!answer_.unused.has_value()) return nullptr;
    Json unused = Json::array();
    for (const tdm_interval &at : *answer_.unused) unused.push_back(json_interval(units_.of(at)));
    return unused;
  }

  [[nodiscard]] Json of(const Appearance &appearance) const
  {
    Json json{{"kind", appearance.end.kind}, {"name", appearance.end.name}};
    add_place(json, appearance.at);
    json["priority"] = json_fixed_point(appearance.at.priority);
    json["exec_priority"] = json_fixed_point(appearance.at.exec_priority);
    json["reserved"] = appearance.reserved;
    return json;
  }

  [[nodiscard]] Json of(const Route &route) const
  {
    Json json = of(route.end);
    if (answer_.is_span)
      json["part"] = route.part.has_value() ? json_interval(units_.of(*route.part)) : Json(nullptr);
    json["hops"] = Json::array();
    for (const Hop &hop : route.hops) json["hops"].push_back(of(hop));
    if (!answer_.forward) return json;
    json["also"] = Json::array();
    for (const Appearance &other : route.also) json["also"].push_back(of(other));
    return json;
  }

  [[nodiscard]] Json of(const Hop &hop) const
  {
    const tdm_inspect_mapping &mapping = hop.mapping;
    const Json source = json_lines(mapping.src_line_low, mapping.src_line_high, mapping.src_width);
    const Json destination =
        json_lines(mapping.dest_line_low, mapping.dest_line_high, mapping.dest_width);
    Json json{{"kind", hop.end.kind}, {"name", hop.end.name}};
    add_place(json, hop.at);
    json["mapping"] = {{"number", numbers_.of(hop.handle)},
                       {"name", json_text(mapping.name)},
                       {"place", place_of(hop.handle)},
                       {"near_lines", answer_.forward ? source : destination},
                       {"far_lines", answer_.forward ? destination : source},
                       {"reserved", mapping.reserved != 0},
                       {"priority", json_fixed_point(mapping.priority)},
                       {"exec_priority", json_fixed_point(mapping.exec_priority)}};
    return json;
  }

  [[nodiscard]] Json place_of(const tdm_mapping *mapping) const
  {
    tdm_srcpos place;
    if (tdm_inspect_position(TDM_OBJECT_MAPPING, mapping, "map", &place) == 0) return nullptr;
    return {{"file", session_.names().shown(place.file)},
            {"line", place.line},
            {"column", place.column}};
  }

  const Answer &answer_;
  const Session &session_;
  const Units &units_;
  MappingNumbers numbers_;
};

Json json_row(const SpaceRow &row, const Units &units)
{
  return {{"memory", json_name(row.memory)},
          {"interval", json_interval(units.of(row.span))},
          {"memory_interval",
           row.part.has_value() ? json_interval(units.of(*row.part)) : Json(nullptr)},
          {"priority", json_fixed_point(row.span.priority)},
          {"exec_priority", json_fixed_point(row.span.exec_priority)},
          {"reserved", row.reserved}};
}

} // namespace

void write_json(const Answer &answer, const Session &session, const Units &units, std::ostream &out)
{
  write_json(out, RouteJson(answer, session, units).json());
}

void write_json(const std::vector<SpaceTable> &tables, const Units &units, std::ostream &out)
{
  Json spaces = Json::array();
  for (const SpaceTable &table : tables) {
    tdm_interval valid;
    tdm_space_get_valid_interval(table.space, &valid);
    Json rows = Json::array();
    for (const SpaceRow &row : table.rows) rows.push_back(json_row(row, units));
    spaces.push_back({{"name", json_name(table.space)},
                      {"valid_interval", json_interval(units.of(valid))},
                      {"rows", rows}});
  }
  write_json(out, {{"schema_version", json_schema_version}, {"spaces", spaces}});
}

} // namespace tool
