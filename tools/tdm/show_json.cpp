// The model as JSON, for programs: everything that the interface tells.
#include <tdm_c/tdm.h>

#include "json_values.h"
#include "memory_map.h"
#include "verbs.h"

namespace tool {

namespace {

class JsonModel {
public:
  explicit JsonModel(const Session &session)
      : spec_(session.spec()), names_(session.names()), memory_map_(spec_)
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
            {"memories", memories(tdm_spec_get_memories(spec_))},
            {"problems", memory_map_.failures()}};
  }

private:
  [[nodiscard]] Json of(const tdm_source_location *location) const
  {
    if (location == nullptr) return nullptr;
    return {{"file", names_.shown(tdm_source_location_get_filename(location))},
            {"line", tdm_source_location_get_line_number(location)},
            {"column", tdm_source_location_get_column_number(location)}};
  }

  [[nodiscard]] Json of(const tdm_processor *processor) const
  {
    Json cores = Json::array();
    for (const tdm_core *core : cores_of(processor)) cores.push_back(of(core));
    return {{"name", json_text(tdm_processor_get_name(processor))},
            {"derivative", json_text(tdm_processor_get_derivative_name(processor))},
            {"location", of(tdm_processor_get_source_location(processor))},
            {"cores", cores},
            {"memories", memories(tdm_processor_get_memories(processor))}};
  }

  [[nodiscard]] static Json name_of(const tdm_space *space)
  {
    return space != nullptr ? json_text(tdm_space_get_full_name(space)) : Json(nullptr);
  }

  [[nodiscard]] Json of(const tdm_core *core) const
  {
    Json orders = Json::array();
    for (const int32_t order : take_elements<int32_t>(tdm_core_get_endianness(core)))
      orders.push_back(json_text(tdm_endianness_to_string(order)));
    Json spaces = Json::array();
    for (const tdm_space *space : spaces_of(core)) spaces.push_back(of(space));
    return {{"name", json_text(tdm_core_get_name(core))},
            {"full_name", json_text(tdm_core_get_full_name(core))},
            {"architecture", json_text(tdm_core_get_arch_name(core))},
            {"location", of(tdm_core_get_source_location(core))},
            {"endianness", orders},
            {"start_address_space", name_of(tdm_core_get_start_address_space(core))},
            {"copytable_space", name_of(tdm_core_get_copytable_space(core))},
            {"spaces", spaces}};
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
    return {{"name", json_text(tdm_space_get_name(space))},
            {"full_name", json_text(tdm_space_get_full_name(space))},
            {"id", tdm_space_get_id(space)},
            {"mau_bits", tdm_space_get_mausize(space)},
            {"alignment", tdm_space_get_alignment(space)},
            {"page_size", tdm_space_get_pagesize(space)},
            {"page_ranges", pages},
            {"page_restrict_sections", tdm_space_get_page_restrict_sections(space) != 0},
            {"locate_direction", downward ? "high_to_low" : "low_to_high"},
            {"has_start_address", tdm_space_get_start_address(space) != nullptr},
            {"address_literal_space", name_of(tdm_space_get_address_literal_space(space))},
            {"valid_interval", json_interval(valid)},
            {"memory_map", regions}};
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
    return {{"name", json_text(tdm_memory_get_name(memory))},
            {"full_name", json_text(tdm_memory_get_full_name(memory))},
            {"location", of(tdm_memory_get_source_location(memory))},
            {"type", memory_type_name(memory)},
            {"reserved", tdm_memory_is_reserved(memory) != 0},
            {"mau_bits", tdm_memory_get_mausize(memory)},
            {"size", tdm_memory_get_size(memory)},
            {"write_mode", json_text(tdm_memory_get_write_mode(memory))},
            {"has_fill", tdm_memory_get_fillspec(memory) != nullptr},
            {"setup_time", tdm_memory_get_setuptime(memory)},
            {"hold_time", tdm_memory_get_holdtime(memory)},
            {"cycles", tdm_memory_get_cycles(memory)},
            {"area", tdm_memory_get_area(memory)},
            {"read_ports", tdm_memory_get_read_ports(memory)},
            {"write_ports", tdm_memory_get_write_ports(memory)},
            {"readwrite_ports", tdm_memory_get_readwrite_ports(memory)}};
  }

  const tdm_spec *spec_;
  const FileNames &names_;
  MemoryMap memory_map_;
};

} // namespace

int show_json(const Session &session, std::ostream &out)
{
  write_json(out, JsonModel(session).model());
  return exit_ok;
}

} // namespace tool
