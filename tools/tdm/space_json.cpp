// What a space defines, as JSON: stacks and heaps, tables, banks, setups.
#include "model_json.h"

namespace tool {

namespace {

Json of(const ModelContext &context, const tdm_stack_def *stack)
{
  return json_placed(
      context, TDM_OBJECT_STACK_DEF, stack,
      {{"name", json_text(tdm_stack_def_get_name(stack))},
       {"minimal_size", json_expression(context, tdm_inspect_stack_def_minimal_size(stack))},
       {"direction", json_direction(tdm_inspect_stack_def_direction(stack))},
       {"alignment", tdm_stack_def_get_alignment(stack)},
       {"fixed", tdm_stack_def_get_fixed(stack) != 0},
       {"id", json_expression(context, tdm_inspect_stack_def_id(stack))}});
}

Json of(const ModelContext &context, const tdm_heap_def *heap)
{
  return json_placed(
      context, TDM_OBJECT_HEAP_DEF, heap,
      {{"name", json_text(tdm_heap_def_get_name(heap))},
       {"minimal_size", json_expression(context, tdm_inspect_heap_def_minimal_size(heap))},
       {"direction", json_direction(tdm_inspect_heap_def_direction(heap))},
       {"alignment", tdm_heap_def_get_alignment(heap)},
       {"fixed", tdm_heap_def_get_fixed(heap) != 0}});
}

Json json_spaces(tdm_arr *spaces)
{
  return json_list<tdm_space *>(spaces, [](const tdm_space *space) { return json_name(space); });
}

Json json_destinations(tdm_arr *destinations)
{
  return json_list<tdm_inspect_copy_destination>(
      destinations, [](const tdm_inspect_copy_destination &pair) -> Json {
        return {{"source", json_name(pair.source)}, {"destination", json_name(pair.destination)}};
      });
}

Json of(const ModelContext &context, const tdm_copy_table *table)
{
  tdm_inspect_copy_table record;
  if (table == nullptr || tdm_inspect_get_copy_table(table, &record) == 0) return nullptr;
  return json_placed(
      context, TDM_OBJECT_COPY_TABLE, table,
      {{"name", json_text(record.name)},
       {"alignment", record.alignment},
       {"copy_unit", record.copy_unit},
       {"default_destination", json_name(record.default_destination)},
       {"page_restrict_rom_copies", record.page_restrict_rom_copies != 0},
       {"destinations", json_destinations(tdm_inspect_copy_table_destinations(table))},
       {"sub_tables",
        json_list<tdm_copy_sub_table *>(
            tdm_inspect_copy_table_sub_tables(table), [](const tdm_copy_sub_table *part) -> Json {
              return {{"symbol", json_text(tdm_inspect_copy_sub_table_symbol(part))},
                      {"spaces", json_spaces(tdm_inspect_copy_sub_table_spaces(part))}};
            })}});
}

Json of(const ModelContext &context, const tdm_direct_init *init)
{
  tdm_inspect_direct_init record;
  if (init == nullptr || tdm_inspect_get_direct_init(init, &record) == 0) return nullptr;
  return json_placed(
      context, TDM_OBJECT_DIRECT_INIT, init,
      {{"name", json_text(record.name)},
       {"alignment", record.alignment},
       {"default_destination", json_name(record.default_destination)},
       {"destinations", json_destinations(tdm_inspect_direct_init_destinations(init))}});
}

Json of(const ModelContext &context, const tdm_start_address *start)
{
  tdm_inspect_start_address record;
  if (start == nullptr || tdm_inspect_get_start_address(start, &record) == 0) return nullptr;
  return json_placed(context, TDM_OBJECT_START_ADDRESS, start,
                     {{"symbol", json_text(record.symbol)},
                      {"address", json_expression(context, record.address)},
                      {"bank", record.bank >= 0 ? Json(record.bank) : Json(nullptr)}});
}

Json of(const ModelContext &context, const tdm_bank_def *banks)
{
  tdm_inspect_bank_def record;
  if (banks == nullptr || tdm_inspect_get_bank_def(banks, &record) == 0) return nullptr;
  return json_placed(context, TDM_OBJECT_BANK_DEF, banks,
                     {{"kind", json_text(record.kind)},
                      {"name", json_text(record.name)},
                      {"numbers", json_numbers(tdm_inspect_bank_def_banks(banks))},
                      {"space", json_text(record.space_name)},
                      {"stub_template", json_text(record.stub_template)},
                      {"stub_prefix", json_text(record.stub_prefix)},
                      {"stub_arg_address", json_text(record.stub_arg_address)},
                      {"stub_arg_bank", json_text(record.stub_arg_bank)},
                      {"stub_arg_switch", json_text(record.stub_arg_switch)},
                      {"switch_template", json_text(record.switch_template)},
                      {"switch_prefix", json_text(record.switch_prefix)},
                      {"switch_arg_bank", json_text(record.switch_arg_bank)}});
}

Json of(const ModelContext &context, const tdm_input_modification *modification)
{
  return json_placed(
      context, TDM_OBJECT_INPUT_MODIFICATION, modification,
      {{"space", json_name(tdm_inspect_input_modification_space(modification))},
       {"selector", json_selector(tdm_inspect_input_modification_selector(modification))},
       {"selections", json_list<tdm_selection_statement *>(
                          tdm_inspect_input_modification_selections(modification),
                          [&](const tdm_selection_statement *statement) {
                            return json_selection(context, statement);
                          })}});
}

Json of(const ModelContext &, const tdm_reserved_range *range)
{
  return {{"low", tdm_reserved_range_get_low(range)}, {"high", tdm_reserved_range_get_high(range)}};
}

Json of(const ModelContext &context, const tdm_vector_table *table)
{
  return json_vector_table(context, table);
}

Json of(const ModelContext &context, const tdm_section_layout *layout)
{
  return json_layout(context, layout);
}

template <class Object> Json list_of(const ModelContext &context, tdm_arr *objects)
{
  return json_list<Object *>(objects,
                             [&](const Object *object) -> Json { return of(context, object); });
}

const char *kind_of(const tdm_space *space)
{
  switch (tdm_inspect_space_kind(space)) {
  case TDM_SPACE_NON_ALLOC:
    return "non_alloc";
  case TDM_SPACE_CLONE:
    return "clone";
  default:
    return "defined";
  }
}

} // namespace

void add_definitions(const ModelContext &context, const tdm_space *space, Json &json)
{
  json["kind"] = kind_of(space);
  json["members"] = json_spaces(tdm_inspect_space_members(space));
  json["mappings"] = json_mappings(context, tdm_inspect_space_own_mappings(space));
  json["outgoing"] = json_mapping_numbers(context, tdm_inspect_space_outgoing_mappings(space));
  json["incoming"] = json_mapping_numbers(context, tdm_inspect_space_incoming_mappings(space));
  json["start_address"] = of(context, tdm_space_get_start_address(space));
  json["stacks"] = list_of<tdm_stack_def>(context, tdm_inspect_space_stacks(space));
  json["heaps"] = list_of<tdm_heap_def>(context, tdm_inspect_space_heaps(space));
  json["copy_table"] = of(context, tdm_inspect_space_copy_table(space));
  json["direct_init"] = of(context, tdm_inspect_space_direct_init(space));
  json["banks"] = of(context, tdm_inspect_space_bank_def(space));
  json["vector_tables"] =
      list_of<tdm_vector_table>(context, tdm_inspect_space_vector_tables(space));
  json["reserved_ranges"] =
      list_of<tdm_reserved_range>(context, tdm_inspect_space_reserved_ranges(space));
  json["prohibited_spaces"] = json_numbers(tdm_inspect_space_prohibited_spaces(space));
  json["input_modifications"] =
      list_of<tdm_input_modification>(context, tdm_inspect_space_input_modifications(space));
  json["layouts"] = list_of<tdm_section_layout>(context, tdm_inspect_space_section_layouts(space));
}

Json written(const ModelContext &context, const tdm_stack_def *stack)
{
  return of(context, stack);
}

Json written(const ModelContext &context, const tdm_heap_def *heap)
{
  return of(context, heap);
}

Json written(const ModelContext &context, const tdm_copy_table *table)
{
  return of(context, table);
}

Json written(const ModelContext &context, const tdm_direct_init *init)
{
  return of(context, init);
}

} // namespace tool
