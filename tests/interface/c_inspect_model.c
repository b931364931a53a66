/* The part of the reading client that is for the objects of the model and what spaces define. */
#include "inspect.h"

static const field mapping_fields[] = {FIELD(tdm_inspect_mapping, name, TEXT),
                                       FIELD(tdm_inspect_mapping, source, SOURCE),
                                       FIELD(tdm_inspect_mapping, destination, DESTINATION),
                                       FIELD(tdm_inspect_mapping, src_offset, LONG),
                                       FIELD(tdm_inspect_mapping, dest_offset, LONG),
                                       FIELD(tdm_inspect_mapping, size, LONG),
                                       FIELD(tdm_inspect_mapping, src_width, INT),
                                       FIELD(tdm_inspect_mapping, src_line_low, INT),
                                       FIELD(tdm_inspect_mapping, src_line_high, INT),
                                       FIELD(tdm_inspect_mapping, dest_width, INT),
                                       FIELD(tdm_inspect_mapping, dest_line_low, INT),
                                       FIELD(tdm_inspect_mapping, dest_line_high, INT),
                                       FIELD(tdm_inspect_mapping, bank, INT),
                                       FIELD(tdm_inspect_mapping, dest_bank, INT),
                                       FIELD(tdm_inspect_mapping, reserved, INT),
                                       FIELD(tdm_inspect_mapping, priority, INT),
                                       FIELD(tdm_inspect_mapping, exec_priority, INT),
                                       FIELD(tdm_inspect_mapping, source_interval, INTERVAL),
                                       FIELD(tdm_inspect_mapping, destination_interval, INTERVAL),
                                       FIELDS_END};

static const field required_symbol_fields[] = {FIELD(tdm_inspect_required_symbol, name, TEXT),
                                               FIELD(tdm_inspect_required_symbol, count, LONG),
                                               FIELDS_END};

static const field parameter_fields[] = {FIELD(tdm_inspect_parameter, name, TEXT),
                                         FIELD(tdm_inspect_parameter, text, TEXT),
                                         FIELD(tdm_inspect_parameter, value, LONG),
                                         FIELD(tdm_inspect_parameter, is_known, INT), FIELDS_END};

static const field start_address_fields[] = {FIELD(tdm_inspect_start_address, symbol, TEXT),
                                             FIELD(tdm_inspect_start_address, address, EXPRESSION),
                                             FIELD(tdm_inspect_start_address, bank, INT),
                                             FIELDS_END};

static const field copy_table_fields[] = {
    FIELD(tdm_inspect_copy_table, name, TEXT),
    FIELD(tdm_inspect_copy_table, alignment, LONG),
    FIELD(tdm_inspect_copy_table, copy_unit, LONG),
    FIELD(tdm_inspect_copy_table, default_destination, SPACE),
    FIELD(tdm_inspect_copy_table, page_restrict_rom_copies, INT),
    FIELDS_END};

static const field destination_fields[] = {FIELD(tdm_inspect_copy_destination, source, SPACE),
                                           FIELD(tdm_inspect_copy_destination, destination, SPACE),
                                           FIELDS_END};

static const field direct_init_fields[] = {
    FIELD(tdm_inspect_direct_init, name, TEXT), FIELD(tdm_inspect_direct_init, alignment, LONG),
    FIELD(tdm_inspect_direct_init, default_destination, SPACE), FIELDS_END};

static const field bank_def_fields[] = {FIELD(tdm_inspect_bank_def, kind, TEXT),
                                        FIELD(tdm_inspect_bank_def, name, TEXT),
                                        FIELD(tdm_inspect_bank_def, space_name, TEXT),
                                        FIELD(tdm_inspect_bank_def, stub_template, TEXT),
                                        FIELD(tdm_inspect_bank_def, stub_prefix, TEXT),
                                        FIELD(tdm_inspect_bank_def, stub_arg_address, TEXT),
                                        FIELD(tdm_inspect_bank_def, stub_arg_bank, TEXT),
                                        FIELD(tdm_inspect_bank_def, stub_arg_switch, TEXT),
                                        FIELD(tdm_inspect_bank_def, switch_template, TEXT),
                                        FIELD(tdm_inspect_bank_def, switch_prefix, TEXT),
                                        FIELD(tdm_inspect_bank_def, switch_arg_bank, TEXT),
                                        FIELDS_END};

static const field expression_field[] = {{"", 0, EXPRESSION}, FIELDS_END};
static const field fill_field[] = {{"", 0, FILL}, FIELDS_END};

static void put_expression(tdm_expression *expression)
{
  put_fields(&expression, expression_field);
}

static void inspect_mapping(void *handle)
{
  tdm_inspect_mapping mapping;
  CHECK(tdm_inspect_get_mapping(handle, &mapping) == 1);
  begin("map");
  put_fields(&mapping, mapping_fields);
  put_positions(TDM_OBJECT_MAPPING, handle);
  end();
}

static void inspect_bus(void *handle)
{
  begin("bus ");
  put("%s", tdm_bus_get_full_name(handle));
  put_positions(TDM_OBJECT_BUS, handle);
  end();
  indent(2);
  each(tdm_inspect_bus_own_mappings(handle), inspect_mapping);
  put_list("outgoing", tdm_inspect_bus_outgoing_mappings(handle), mappings);
  put_list("incoming", tdm_inspect_bus_incoming_mappings(handle), mappings);
  indent(-2);
}

static void inspect_memory(void *handle)
{
  const tdm_memory *memory = handle;
  tdm_fillspec *fill = tdm_memory_get_fillspec(memory);
  begin("memory ");
  put("%s priority=%d exec_priority=%d write_unit=%d fill=", tdm_memory_get_full_name(memory),
      tdm_inspect_memory_priority(memory), tdm_inspect_memory_exec_priority(memory),
      tdm_inspect_memory_write_unit(memory));
  put_fields(&fill, fill_field);
  put_positions(TDM_OBJECT_MEMORY, memory);
  end();
  indent(2);
  each(tdm_inspect_memory_own_mappings(memory), inspect_mapping);
  put_list("incoming", tdm_inspect_memory_incoming_mappings(memory), mappings);
  indent(-2);
}

static void inspect_stack(void *handle)
{
  const tdm_stack_def *stack = handle;
  begin("stack ");
  put("%s direction=%d min_size=", tdm_stack_def_get_name(stack),
      tdm_inspect_stack_def_direction(stack));
  put_expression(tdm_inspect_stack_def_minimal_size(stack));
  put(" id=");
  put_expression(tdm_inspect_stack_def_id(stack));
  put_positions(TDM_OBJECT_STACK_DEF, stack);
  end();
}

static void inspect_heap(void *handle)
{
  const tdm_heap_def *heap = handle;
  begin("heap ");
  put("%s direction=%d min_size=", tdm_heap_def_get_name(heap),
      tdm_inspect_heap_def_direction(heap));
  put_expression(tdm_inspect_heap_def_minimal_size(heap));
  put_positions(TDM_OBJECT_HEAP_DEF, heap);
  end();
}

static void inspect_reserved_range(void *handle)
{
  begin("reserved");
  put(" %d %d", (int)tdm_reserved_range_get_low(handle), (int)tdm_reserved_range_get_high(handle));
  end();
}

static void inspect_sub_table(void *handle)
{
  begin("sub_table ");
  put("%s", tdm_inspect_copy_sub_table_symbol(handle));
  end();
  put_list("  spaces", tdm_inspect_copy_sub_table_spaces(handle), spaces);
}

static void inspect_tables(const tdm_space *space)
{
  const tdm_copy_table *table = tdm_inspect_space_copy_table(space);
  const tdm_direct_init *init = tdm_inspect_space_direct_init(space);
  if (table != NULL) {
    tdm_inspect_copy_table record;
    CHECK(tdm_inspect_get_copy_table(table, &record) == 1);
    begin("copy_table");
    put_fields(&record, copy_table_fields);
    put_positions(TDM_OBJECT_COPY_TABLE, table);
    end();
    put_list("destinations", tdm_inspect_copy_table_destinations(table), destination_fields);
    each(tdm_inspect_copy_table_sub_tables(table), inspect_sub_table);
  }
  if (init != NULL) {
    tdm_inspect_direct_init record;
    CHECK(tdm_inspect_get_direct_init(init, &record) == 1);
    begin("direct_init");
    put_fields(&record, direct_init_fields);
    put_positions(TDM_OBJECT_DIRECT_INIT, init);
    end();
    put_list("destinations", tdm_inspect_direct_init_destinations(init), destination_fields);
  }
}

static void inspect_start_and_banks(const tdm_space *space)
{
  const tdm_start_address *start = tdm_space_get_start_address(space);
  const tdm_bank_def *banks = tdm_inspect_space_bank_def(space);
  if (start != NULL) {
    tdm_inspect_start_address record;
    CHECK(tdm_inspect_get_start_address(start, &record) == 1);
    begin("start_address");
    put_fields(&record, start_address_fields);
    put_positions(TDM_OBJECT_START_ADDRESS, start);
    end();
  }
  if (banks != NULL) {
    tdm_inspect_bank_def record;
    CHECK(tdm_inspect_get_bank_def(banks, &record) == 1);
    begin("banks");
    put_fields(&record, bank_def_fields);
    put_positions(TDM_OBJECT_BANK_DEF, banks);
    end();
    put_list("numbers", tdm_inspect_bank_def_banks(banks), numbers);
  }
}

static void inspect_modification(void *handle)
{
  const tdm_input_modification *modification = handle;
  const tdm_space *space = tdm_inspect_input_modification_space(modification);
  const tdm_section_selector *selector = tdm_inspect_input_modification_selector(modification);
  begin("modify ");
  put_fields(&space, spaces);
  put_selector(selector);
  put_positions(TDM_OBJECT_INPUT_MODIFICATION, modification);
  end();
  indent(2);
  each(tdm_inspect_input_modification_selections(modification), inspect_selection);
  indent(-2);
}

static void inspect_space(void *handle)
{
  tdm_space *space = handle;
  begin("space ");
  put("%s kind=%d", tdm_space_get_full_name(space), tdm_inspect_space_kind(space));
  put_positions(TDM_OBJECT_SPACE, space);
  end();
  indent(2);
  put_list("members", tdm_inspect_space_members(space), spaces);
  each(tdm_inspect_space_own_mappings(space), inspect_mapping);
  put_list("outgoing", tdm_inspect_space_outgoing_mappings(space), mappings);
  put_list("incoming", tdm_inspect_space_incoming_mappings(space), mappings);
  each(tdm_inspect_space_stacks(space), inspect_stack);
  each(tdm_inspect_space_heaps(space), inspect_heap);
  inspect_tables(space);
  each(tdm_inspect_space_vector_tables(space), inspect_vector_table);
  each(tdm_inspect_space_reserved_ranges(space), inspect_reserved_range);
  inspect_start_and_banks(space);
  put_list("prohibited", tdm_inspect_space_prohibited_spaces(space), numbers);
  each(tdm_inspect_space_input_modifications(space), inspect_modification);
  inspect_layouts(space);
  indent(-2);
}

static void inspect_core(void *handle)
{
  const tdm_core *core = handle;
  begin("core ");
  put("%s offset=%d imported=%d", tdm_core_get_full_name(core),
      tdm_inspect_core_space_id_offset(core), tdm_inspect_core_is_imported(core));
  put_positions(TDM_OBJECT_CORE, core);
  end();
  indent(2);
  put_list("imports", tdm_inspect_core_imported_cores(core), cores);
  put_list("assigned", tdm_inspect_core_assigned_symbols(core), texts);
  put_list("optional", tdm_inspect_core_optional_symbols(core), texts);
  put_list("required", tdm_inspect_core_required_symbols(core), required_symbol_fields);
  put_list("referenced", tdm_inspect_core_referenced_names(core), texts);
  put_list("groups", tdm_inspect_core_group_names(core), texts);
  each(tdm_inspect_core_buses(core), inspect_bus);
  each(tdm_core_get_spaces(core), inspect_space);
  indent(-2);
}

static void inspect_processor(void *handle)
{
  begin("processor ");
  put("%s", tdm_processor_get_name(handle));
  put_positions(TDM_OBJECT_PROCESSOR, handle);
  end();
  indent(2);
  put_list("parameters", tdm_inspect_processor_parameters(handle), parameter_fields);
  each(tdm_inspect_processor_buses(handle), inspect_bus);
  each(tdm_processor_get_memories(handle), inspect_memory);
  each(tdm_processor_get_cores(handle), inspect_core);
  indent(-2);
}

void inspect_spec(tdm_spec *spec)
{
  put_list("clone_spaces", tdm_inspect_spec_clone_spaces(spec), spaces);
  each(tdm_inspect_spec_buses(spec), inspect_bus);
  each(tdm_spec_get_memories(spec), inspect_memory);
  each(tdm_spec_get_processors(spec), inspect_processor);
}

static void nothing_expected(void *handle)
{
  (void)handle;
  CHECK(0);
}

void ask_for_nothing(tdm_spec *spec)
{
  const tdm_processor *processor = tdm_spec_get_processor(spec, "cpu1");
  tdm_srcpos place = {NULL, 7, 7, NULL};
  CHECK(tdm_inspect_position(TDM_OBJECT_PROCESSOR, processor, "nowhere", &place) == 0);
  CHECK(tdm_inspect_position(TDM_OBJECT_PROCESSOR, processor, NULL, &place) == 0);
  CHECK(tdm_inspect_position(0, processor, "name", &place) == 0);
  CHECK(tdm_inspect_position(TDM_OBJECT_TABLE_STATEMENT + 1, processor, "name", &place) == 0);
  CHECK(place.file == NULL && place.line == 7 && place.column == 7);
  each(tdm_inspect_position_keys(-1, processor), nothing_expected);
}
