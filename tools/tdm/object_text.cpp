#include "object_text.h"

#include <optional>
#include <utility>

#include <fmt/format.h>

#include "format.h"
#include "session.h"

namespace tool {

End end_of(tdm_mapsource *source)
{
  if (tdm_mapsource_is_bus(source) != 0)
    return {"bus", text_of(tdm_bus_get_full_name(tdm_mapsource_get_bus(source)))};
  return {"space", text_of(tdm_space_get_full_name(tdm_mapsource_get_space(source)))};
}

End end_of(tdm_mapdestination *destination)
{
  if (const tdm_memory *memory = tdm_mapdestination_get_memory(destination))
    return {"memory", text_of(tdm_memory_get_full_name(memory))};
  if (const tdm_bus *bus = tdm_mapdestination_get_bus(destination))
    return {"bus", text_of(tdm_bus_get_full_name(bus))};
  return {"space", text_of(tdm_space_get_full_name(tdm_mapdestination_get_space(destination)))};
}

std::string unit_text(int mau)
{
  return fmt::format("({}-bit MAUs)", mau);
}

// ---- mappings

std::string mapping_text(const tdm_mapping *mapping)
{
  tdm_inspect_mapping facts{};
  if (tdm_inspect_get_mapping(mapping, &facts) == 0) return "map";
  const End to = end_of(facts.destination);
  const std::string name = facts.name != nullptr ? text_of(facts.name) + " " : "";
  return "map " + name + "to " + to.kind + " " + to.name;
}

namespace {

struct Lines {
  int32_t low, high, width;
};

bool all(const Lines &lines)
{
  return lines.low == 0 && lines.high == lines.width - 1;
}

std::string text_of_lines(const Lines &lines)
{
  return lines.low == lines.high ? fmt::format("{} of {}", lines.low, lines.width)
                                 : fmt::format("{}..{} of {}", lines.low, lines.high, lines.width);
}

} // namespace

std::string lines_text(const tdm_inspect_mapping &mapping, bool forward)
{
  Lines near{mapping.src_line_low, mapping.src_line_high, mapping.src_width};
  Lines far{mapping.dest_line_low, mapping.dest_line_high, mapping.dest_width};
  if (!forward) std::swap(near, far);
  if (all(near) && all(far)) return "";
  return fmt::format("data lines {} → {}", text_of_lines(near), text_of_lines(far));
}

std::string priority_text(int32_t priority, int32_t exec_priority)
{
  if (priority == 0 && exec_priority == 0) return "";
  std::string text = "priority " + fixed_point(priority);
  if (exec_priority != priority) text += ", to execute " + fixed_point(exec_priority);
  return text;
}

// ---- expressions

namespace {

/// Without asking anybody.
std::optional<int64_t> value_of(const tdm_expression *expression)
{
  int64_t value = 0;
  if (tdm_inspect_expression_evaluate(expression, nullptr, nullptr, &value) == 0)
    return std::nullopt;
  return value;
}

std::string source_text(const tdm_expression *expression)
{
  return text_of(tdm_inspect_expression_text(expression));
}

} // namespace

std::string address_text(const tdm_expression *expression)
{
  if (expression == nullptr) return "";
  const auto value = value_of(expression);
  return value ? hex(*value) : source_text(expression);
}

std::string size_text(const tdm_expression *expression, int mau)
{
  if (expression == nullptr) return "";
  const auto value = value_of(expression);
  return value ? fmt::format("{} ({})", hex(*value), human_size(*value, mau))
               : source_text(expression);
}

std::string number_text(const tdm_expression *expression)
{
  if (expression == nullptr) return "";
  const auto value = value_of(expression);
  return value ? std::to_string(*value) : source_text(expression);
}

std::string fill_text(const tdm_fillspec *fill)
{
  if (fill == nullptr) return "";
  std::string text = "fill";
  const char *before = " ";
  for (const auto *value : take_elements<tdm_expression *>(tdm_inspect_fillspec_values(fill))) {
    text += before + address_text(value);
    before = ", ";
  }
  if (const tdm_expression *alignment = tdm_inspect_fillspec_alignment(fill))
    text += " aligned to " + number_text(alignment);
  return text;
}

// ---- places

std::string place_text(const FileNames &names, const tdm_srcpos &place)
{
  return fmt::format("{}:{}:{}", names.shown(place.file), place.line, place.column);
}

std::string line_text(const FileNames &names, const tdm_srcpos &place)
{
  return fmt::format("{}:{}", names.shown(place.file), place.line);
}

std::vector<std::string> origin_lines(const FileNames &names, int kind, const void *object)
{
  Table table;
  for (const char *key : take_elements<const char *>(tdm_inspect_position_keys(kind, object))) {
    tdm_srcpos place;
    if (tdm_inspect_position(kind, object, key, &place) == 1)
      table.add({"@", key, place_text(names, place)});
  }
  return table.lines();
}

std::string origin_text(const FileNames &names, int kind, const void *object)
{
  for (const char *key : take_elements<const char *>(tdm_inspect_position_keys(kind, object))) {
    tdm_srcpos place;
    if (tdm_inspect_position(kind, object, key, &place) == 1) return line_text(names, place);
  }
  return "";
}

} // namespace tool
