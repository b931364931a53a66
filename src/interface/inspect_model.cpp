// The additive readers of specs, processors, cores and memories.
#include "interface/inspect_lists.h"
#include "interface/tdm_inspect_model.h"
#include "model/processor_parameters.h"
#include "model/spec.h"

#include <algorithm>

using tdm::guarded_array;

tdm_arr *tdm_inspect_spec_buses(const tdm_spec *spec)
{
  return tdm::handle_list(spec->buses);
}

tdm_arr *tdm_inspect_spec_clone_spaces(const tdm_spec *spec)
{
  return guarded_array<void *>([&] {
    return tdm::array_of(spec->clone_spaces,
                         [](const auto &entry) -> tdm_space * { return entry.second; });
  });
}

tdm_arr *tdm_inspect_processor_buses(const tdm_processor *processor)
{
  return tdm::handle_list(processor->buses);
}

tdm_arr *tdm_inspect_processor_parameters(const tdm_processor *processor)
{
  return guarded_array<tdm_inspect_parameter>([&] {
    return tdm::array_of(tdm::parameter_meanings(*processor),
                         [](const tdm::ParameterMeaning &meaning) -> tdm_inspect_parameter {
                           return {tdm::text_result(meaning.name),
                                   meaning.text ? tdm::text_result(*meaning.text) : nullptr,
                                   meaning.value.value_or(0), meaning.value ? 1 : 0};
                         });
  });
}

tdm_arr *tdm_inspect_core_buses(const tdm_core *core)
{
  return tdm::handle_list(core->buses);
}

int tdm_inspect_core_space_id_offset(const tdm_core *core)
{
  return core->space_id_offset;
}

int tdm_inspect_core_is_imported(const tdm_core *core)
{
  return core->imported ? 1 : 0;
}

tdm_arr *tdm_inspect_core_imported_cores(const tdm_core *core)
{
  return tdm::handle_list(core->imported_cores);
}

tdm_arr *tdm_inspect_core_assigned_symbols(const tdm_core *core)
{
  return tdm::text_list(core->section_names.assigned_symbols);
}

tdm_arr *tdm_inspect_core_optional_symbols(const tdm_core *core)
{
  return tdm::text_list(core->section_names.optional_symbols);
}

tdm_arr *tdm_inspect_core_required_symbols(const tdm_core *core)
{
  return guarded_array<tdm_inspect_required_symbol>([&] {
    return tdm::array_of(core->section_names.required_symbols,
                         [](const tdm::RequiredSymbol &symbol) -> tdm_inspect_required_symbol {
                           return {tdm::text_result(symbol.name), symbol.count};
                         });
  });
}

tdm_arr *tdm_inspect_core_referenced_names(const tdm_core *core)
{
  return tdm::text_list(core->section_names.referenced_names);
}

tdm_arr *tdm_inspect_core_group_names(const tdm_core *core)
{
  const auto &names = core->section_names.group_names.names();
  return guarded_array<const char *>([&] {
    std::vector<std::string_view> sorted(names.begin(), names.end());
    std::sort(sorted.begin(), sorted.end());
    return tdm::array_of(sorted, [](std::string_view name) { return tdm::text_result(name); });
  });
}

int tdm_inspect_memory_priority(const tdm_memory *memory)
{
  return memory->priority;
}

int tdm_inspect_memory_exec_priority(const tdm_memory *memory)
{
  return memory->exec_priority;
}

int tdm_inspect_memory_write_unit(const tdm_memory *memory)
{
  return memory->hardware().write_unit;
}
