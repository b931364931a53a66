// The model as JSON, for programs: everything that the interface tells.
#include <tdm_c/tdm.h>

#include "memory_map.h"
#include "model_json.h"
#include "verbs.h"

namespace tool {

namespace {

class JsonModel {
public:
  JsonModel(const Session &session, bool origins)
      : spec_(session.spec()), names_(session.names()), memory_map_(spec_),
        mappings_(spec_), context_{names_, mappings_, origins}
  {
  }

  [[nodiscard]] Json model() const
  {
    Json files = Json::array();
    for (const char *file : take_elements<const char *>(tdm_spec_get_file_dependencies(spec_)))
      files.push_back(names_.shown(file));
    Json processors = Json::array();
    for (const tdm_processor *processor : processors_of(spec_)) processors.push_back(of(processor));
    return {{"schema_version", json_schema_version},
            {"files", files},
            {"processors", processors},
            {"buses", buses(tdm_inspect_spec_buses(spec_))},
            {"memories", memories(tdm_spec_get_memories(spec_))},
            {"problems", memory_map_.failures()}};
  }

private:
  [[nodiscard]] Json of(const tdm_source_location *location) const
  {
    return json_location(names_, location);
  }

  [[nodiscard]] Json of(const tdm_processor *processor) const
  {
    Json cores = Json::array();
    for (const tdm_core *core : cores_of(processor)) cores.push_back(of(core));
    return json_placed(context_, TDM_OBJECT_PROCESSOR, processor,
                       {{"name", json_text(tdm_processor_get_name(processor))},
                        {"derivative", json_text(tdm_processor_get_derivative_name(processor))},
                        {"location", of(tdm_processor_get_source_location(processor))},
                        {"parameters", parameters_of(processor)},
                        {"cores", cores},
                        {"buses", buses(tdm_inspect_processor_buses(processor))},
                        {"memories", memories(tdm_processor_get_memories(processor))}});
  }

  [[nodiscard]] static Json parameters_of(const tdm_processor *processor)
  {
    return json_list<tdm_inspect_parameter>(
        tdm_inspect_processor_parameters(processor),
        [](const tdm_inspect_parameter &parameter) -> Json {
          return {{"name", json_text(parameter.name)},
                  {"text", json_text(parameter.text)},
                  {"value", parameter.is_known != 0 ? Json(parameter.value) : Json(nullptr)}};
        });
  }

  [[nodiscard]] Json buses(tdm_arr *arr) const
  {
    return json_list<tdm_bus *>(arr, [&](const tdm_bus *bus) { return of(bus); });
  }

  [[nodiscard]] Json of(const tdm_bus *bus) const
  {
    const int address_width = tdm_bus_get_address_width(bus);
    return json_placed(
        context_, TDM_OBJECT_BUS, bus,
        {{"name", json_text(tdm_bus_get_name(bus))},
         {"full_name", json_text(tdm_bus_get_full_name(bus))},
         {"location", of(tdm_bus_get_source_location(bus))},
         {"mau_bits", tdm_bus_get_mausize(bus)},
         {"width_bits", tdm_bus_get_width(bus)},
         {"address_width_bits", address_width >= 0 ? Json(address_width) : Json(nullptr)},
         {"wishbone", tdm_bus_get_wishbone(bus) != 0},
         {"mappings", json_mappings(context_, tdm_inspect_bus_own_mappings(bus))},
         {"outgoing", json_mapping_numbers(context_, tdm_inspect_bus_outgoing_mappings(bus))},
         {"incoming", json_mapping_numbers(context_, tdm_inspect_bus_incoming_mappings(bus))}});
  }

  [[nodiscard]] static Json symbols_of(const tdm_core *core)
  {
    return {{"assigned", json_texts(tdm_inspect_core_assigned_symbols(core))},
            {"optional", json_texts(tdm_inspect_core_optional_symbols(core))},
            {"required", json_list<tdm_inspect_required_symbol>(
                             tdm_inspect_core_required_symbols(core),
                             [](const tdm_inspect_required_symbol &symbol) -> Json {
                               if (symbol.count == 0) return {{"name", json_text(symbol.name)}};
                               return {{"prefix", json_text(symbol.name)}, {"count", symbol.count}};
                             })}};
  }

  [[nodiscard]] Json of(const tdm_core *core) const
  {
    Json orders = Json::array();
    for (const int32_t order : take_elements<int32_t>(tdm_core_get_endianness(core)))
      orders.push_back(json_text(tdm_endianness_to_string(order)));
    Json spaces = Json::array();
    for (const tdm_space *space : spaces_of(core)) spaces.push_back(of(space));
    return json_placed(
        context_, TDM_OBJECT_CORE, core,
        {{"name", json_text(tdm_core_get_name(core))},
         {"full_name", json_text(tdm_core_get_full_name(core))},
         {"architecture", json_text(tdm_core_get_arch_name(core))},
         {"location", of(tdm_core_get_source_location(core))},
         {"endianness", orders},
         {"start_address_space", json_name(tdm_core_get_start_address_space(core))},
         {"copytable_space", json_name(tdm_core_get_copytable_space(core))},
         {"space_id_offset", tdm_inspect_core_space_id_offset(core)},
         {"imported", tdm_inspect_core_is_imported(core) != 0},
         {"imports", json_list<tdm_core *>(tdm_inspect_core_imported_cores(core),
                                           [](const tdm_core *other) {
                                             return json_text(tdm_core_get_full_name(other));
                                           })},
         {"symbols", symbols_of(core)},
         {"referenced_sections", json_texts(tdm_inspect_core_referenced_names(core))},
         {"groups", json_texts(tdm_inspect_core_group_names(core))},
         {"buses", buses(tdm_inspect_core_buses(core))},
         {"spaces", spaces}});
  }

  [[nodiscard]] Json of(const tdm_space *space) const
  {
    tdm_interval valid;
    tdm_space_get_valid_interval(space, &valid);
    Json pages = Json::array();
    for (const tdm_range *range : take_elements<tdm_range *>(tdm_space_get_page_ranges(space))) {
      tdm_addressvalue start;
      tdm_range_get_start_address(range, &start);
      pages.push_back({{"start", json_address(start)}, {"size", tdm_range_get_size(range)}});
    }
    Json regions = Json::array();
    for (const Region &region : memory_map_.of(space))
      regions.push_back({{"memory", json_text(tdm_memory_get_full_name(region.memory))},
                         {"interval", json_interval(region.span)},
                         {"reserved", region.reserved}});
    const bool downward = tdm_space_get_locate_direction(space) == TDM_HIGH_TO_LOW;
    Json json{{"name", json_text(tdm_space_get_name(space))},
              {"full_name", json_text(tdm_space_get_full_name(space))},
              {"id", tdm_space_get_id(space)},
              {"mau_bits", tdm_space_get_mausize(space)},
              {"alignment", tdm_space_get_alignment(space)},
              {"page_size", tdm_space_get_pagesize(space)},
              {"page_ranges", pages},
              {"page_restrict_sections", tdm_space_get_page_restrict_sections(space) != 0},
              {"locate_direction", downward ? "high_to_low" : "low_to_high"},
              {"has_start_address", tdm_space_get_start_address(space) != nullptr},
              {"address_literal_space", json_name(tdm_space_get_address_literal_space(space))},
              {"valid_interval", json_interval(valid)},
              {"memory_map", regions}};
    add_definitions(context_, space, json);
    return json_placed(context_, TDM_OBJECT_SPACE, space, std::move(json));
  }

  [[nodiscard]] Json memories(tdm_arr *arr) const
  {
    Json memories = Json::array();
    for (const tdm_memory *memory : take_elements<tdm_memory *>(arr))
      memories.push_back(of(memory));
    return memories;
  }

  [[nodiscard]] Json of(const tdm_memory *memory) const
  {
    return json_placed(
        context_, TDM_OBJECT_MEMORY, memory,
        {{"name", json_text(tdm_memory_get_name(memory))},
         {"full_name", json_text(tdm_memory_get_full_name(memory))},
         {"location", of(tdm_memory_get_source_location(memory))},
         {"type", memory_type_name(memory)},
         {"reserved", tdm_memory_is_reserved(memory) != 0},
         {"mau_bits", tdm_memory_get_mausize(memory)},
         {"size", tdm_memory_get_size(memory)},
         {"priority", tdm_inspect_memory_priority(memory)},
         {"exec_priority", tdm_inspect_memory_exec_priority(memory)},
         {"write_unit", tdm_inspect_memory_write_unit(memory)},
         {"write_mode", json_text(tdm_memory_get_write_mode(memory))},
         {"has_fill", tdm_memory_get_fillspec(memory) != nullptr},
         {"fill", json_fill(context_, tdm_memory_get_fillspec(memory))},
         {"setup_time", tdm_memory_get_setuptime(memory)},
         {"hold_time", tdm_memory_get_holdtime(memory)},
         {"cycles", tdm_memory_get_cycles(memory)},
         {"area", tdm_memory_get_area(memory)},
         {"read_ports", tdm_memory_get_read_ports(memory)},
         {"write_ports", tdm_memory_get_write_ports(memory)},
         {"readwrite_ports", tdm_memory_get_readwrite_ports(memory)},
         {"mappings", json_mappings(context_, tdm_inspect_memory_own_mappings(memory))},
         {"incoming",
          json_mapping_numbers(context_, tdm_inspect_memory_incoming_mappings(memory))}});
  }

  const tdm_spec *spec_;
  const FileNames &names_;
  MemoryMap memory_map_;
  MappingNumbers mappings_;
  ModelContext context_;
};

} // namespace

int show_json(const Options &options, const Session &session, std::ostream &out)
{
  write_json(out, JsonModel(session, options.origin).model());
  return exit_ok;
}

} // namespace tool
