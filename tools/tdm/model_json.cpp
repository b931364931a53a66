// Values of the model's JSON that stand in many places, and mappings.
#include "model_json.h"

#include <string>
#include <utility>

#include "object_text.h"

namespace tool {

MappingNumbers::MappingNumbers(const tdm_spec *spec)
{
  const auto add_buses = [&](tdm_arr *buses) {
    for (const tdm_bus *bus : take_elements<tdm_bus *>(buses))
      add(tdm_inspect_bus_own_mappings(bus));
  };
  for (const tdm_processor *processor : processors_of(spec)) {
    for (const tdm_core *core : cores_of(processor)) {
      add_buses(tdm_inspect_core_buses(core));
      for (const tdm_space *space : spaces_of(core)) add(tdm_inspect_space_own_mappings(space));
    }
    add_buses(tdm_inspect_processor_buses(processor));
  }
  add_buses(tdm_inspect_spec_buses(spec));
  for (const tdm_memory *memory : memories_of(spec)) add(tdm_inspect_memory_own_mappings(memory));
}

void MappingNumbers::add(tdm_arr *mappings)
{
  for (const tdm_mapping *mapping : take_elements<tdm_mapping *>(mappings))
    numbers_.emplace(mapping, numbers_.size());
}

Json json_texts(tdm_arr *arr)
{
  return json_list<const char *>(arr, json_text);
}

Json json_numbers(tdm_arr *arr)
{
  return json_list<int32_t>(arr, [](int32_t number) { return Json(number); });
}

Json json_name(const tdm_space *space)
{
  return space != nullptr ? json_text(tdm_space_get_full_name(space)) : Json(nullptr);
}

Json json_name(const tdm_memory *memory)
{
  return memory != nullptr ? json_text(tdm_memory_get_full_name(memory)) : Json(nullptr);
}

Json json_direction(int direction)
{
  switch (direction) {
  case TDM_LOW_TO_HIGH:
    return "low_to_high";
  case TDM_HIGH_TO_LOW:
    return "high_to_low";
  default:
    return nullptr;
  }
}

Json json_attributes(const tdm_attributes *attributes)
{
  if (attributes == nullptr) return nullptr;
  std::string letters;
  if (tdm_attributes_is_readable(attributes)) letters += 'r';
  if (tdm_attributes_is_writable(attributes)) letters += 'w';
  if (tdm_attributes_is_executable(attributes)) letters += 'x';
  if (tdm_attributes_is_inited(attributes)) letters += 'i';
  if (tdm_attributes_is_scratch(attributes)) letters += 's';
  if (tdm_attributes_is_blanked(attributes)) letters += 'b';
  if (tdm_inspect_attributes_is_p(attributes)) letters += 'p';
  return letters;
}

Json json_expression(const ModelContext &context, const tdm_expression *expression)
{
  if (expression == nullptr) return nullptr;
  int64_t value = 0;
  const bool known = tdm_inspect_expression_evaluate(expression, nullptr, nullptr, &value) != 0;
  return json_placed(context, TDM_OBJECT_EXPRESSION, expression,
                     {{"text", json_text(tdm_inspect_expression_text(expression))},
                      {"value", known ? Json(value) : Json(nullptr)}});
}

Json json_fixed_point(int32_t number)
{
  constexpr int32_t one = 0x10000;
  if (number % one == 0) return number / one;
  return static_cast<double>(number) / one;
}

Json json_lines(int32_t low, int32_t high, int32_t width)
{
  return {{"low", low}, {"high", high}, {"width", width}};
}

Json json_fill(const ModelContext &context, const tdm_fillspec *fill)
{
  if (fill == nullptr) return nullptr;
  return {{"values", json_list<tdm_expression *>(tdm_inspect_fillspec_values(fill),
                                                 [&](const tdm_expression *value) {
                                                   return json_expression(context, value);
                                                 })},
          {"alignment", json_expression(context, tdm_inspect_fillspec_alignment(fill))}};
}

Json json_placed(const ModelContext &context, int kind, const void *object, Json json)
{
  if (!context.origins) return json;
  Json &origins = json["origins"] = Json::object();
  for (const char *key : take_elements<const char *>(tdm_inspect_position_keys(kind, object))) {
    tdm_srcpos place;
    if (tdm_inspect_position(kind, object, key, &place) == 1)
      origins[key] = place_text(context.names, place);
  }
  return json;
}

namespace {

Json json_end(tdm_mapsource *source)
{
  if (tdm_mapsource_is_bus(source))
    return {{"bus", json_text(tdm_bus_get_full_name(tdm_mapsource_get_bus(source)))}};
  return {{"space", json_name(tdm_mapsource_get_space(source))}};
}

Json json_end(tdm_mapdestination *destination)
{
  if (tdm_mapdestination_is_memory(destination))
    return {{"memory", json_name(tdm_mapdestination_get_memory(destination))}};
  if (tdm_mapdestination_is_bus(destination))
    return {{"bus", json_text(tdm_bus_get_full_name(tdm_mapdestination_get_bus(destination)))}};
  return {{"space", json_name(tdm_mapdestination_get_space(destination))}};
}

Json json_bank(int32_t bank)
{
  return bank >= 0 ? Json(bank) : Json(nullptr);
}

Json json_mapping(const ModelContext &context, const tdm_mapping *mapping)
{
  tdm_inspect_mapping record;
  if (tdm_inspect_get_mapping(mapping, &record) == 0) return nullptr;
  return json_placed(
      context, TDM_OBJECT_MAPPING, mapping,
      {{"number", context.mappings.of(mapping)},
       {"name", json_text(record.name)},
       {"source", json_end(record.source)},
       {"destination", json_end(record.destination)},
       {"source_offset", record.src_offset},
       {"destination_offset", record.dest_offset},
       {"size", record.size},
       {"source_lines", json_lines(record.src_line_low, record.src_line_high, record.src_width)},
       {"destination_lines",
        json_lines(record.dest_line_low, record.dest_line_high, record.dest_width)},
       {"bank", json_bank(record.bank)},
       {"destination_bank", json_bank(record.dest_bank)},
       {"reserved", record.reserved != 0},
       {"priority", json_fixed_point(record.priority)},
       {"exec_priority", json_fixed_point(record.exec_priority)},
       {"source_interval", json_interval(record.source_interval)},
       {"destination_interval", json_interval(record.destination_interval)}});
}

} // namespace

Json json_mappings(const ModelContext &context, tdm_arr *mappings)
{
  return json_list<tdm_mapping *>(
      mappings, [&](const tdm_mapping *mapping) { return json_mapping(context, mapping); });
}

Json json_mapping_numbers(const ModelContext &context, tdm_arr *mappings)
{
  return json_list<tdm_mapping *>(
      mappings, [&](const tdm_mapping *mapping) { return Json(context.mappings.of(mapping)); });
}

} // namespace tool
