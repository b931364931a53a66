/* The part of the reading client that is for vector tables, layouts, and the rules in force. */
#include "inspect.h"

static const field group_fields[] = {FIELD(tdm_inspect_group, name, TEXT),
                                     FIELD(tdm_inspect_group, contiguous, INT),
                                     FIELD(tdm_inspect_group, clustered, INT),
                                     FIELD(tdm_inspect_group, ordered, INT),
                                     FIELD(tdm_inspect_group, overlay, INT),
                                     FIELD(tdm_inspect_group, copy, INT),
                                     FIELD(tdm_inspect_group, nocopy, INT),
                                     FIELD(tdm_inspect_group, cross_references, INT),
                                     FIELD(tdm_inspect_group, load_time, INT),
                                     FIELD(tdm_inspect_group, is_run_address, INT),
                                     FIELD(tdm_inspect_group, paged, INT),
                                     FIELD(tdm_inspect_group, priority, INT),
                                     FIELD(tdm_inspect_group, alignment, EXPRESSION),
                                     FIELD(tdm_inspect_group, page_number, EXPRESSION),
                                     FIELD(tdm_inspect_group, page_size, EXPRESSION),
                                     FIELD(tdm_inspect_group, attributes, ATTRIBUTES),
                                     FIELD(tdm_inspect_group, fill, FILL),
                                     FIELD(tdm_inspect_group, output_section_name, TEXT),
                                     FIELD(tdm_inspect_group, statement, HANDLE),
                                     FIELDS_END};

static const field env_fields[] = {FIELD(tdm_inspect_statement_env, contiguous, INT),
                                   FIELD(tdm_inspect_statement_env, clustered, INT),
                                   FIELD(tdm_inspect_statement_env, ordered, INT),
                                   FIELD(tdm_inspect_statement_env, overlay, INT),
                                   FIELD(tdm_inspect_statement_env, copy, INT),
                                   FIELD(tdm_inspect_statement_env, nocopy, INT),
                                   FIELD(tdm_inspect_statement_env, allow_cross_references, INT),
                                   FIELD(tdm_inspect_statement_env, load_time, INT),
                                   FIELD(tdm_inspect_statement_env, paged, INT),
                                   FIELD(tdm_inspect_statement_env, page_size, INT),
                                   FIELD(tdm_inspect_statement_env, priority, INT),
                                   FIELD(tdm_inspect_statement_env, direction, INT),
                                   FIELD(tdm_inspect_statement_env, overlay_depth, INT),
                                   FIELD(tdm_inspect_statement_env, alignment, EXPRESSION),
                                   FIELD(tdm_inspect_statement_env, page_number, EXPRESSION),
                                   FIELD(tdm_inspect_statement_env, attributes, ATTRIBUTES),
                                   FIELD(tdm_inspect_statement_env, fill, FILL),
                                   FIELD(tdm_inspect_statement_env, location, HANDLE),
                                   FIELD(tdm_inspect_statement_env, output_section_name, TEXT),
                                   FIELD(tdm_inspect_statement_env, group_name, TEXT),
                                   FIELDS_END};

static const field location_fields[] = {FIELD(tdm_inspect_group_location, space, SPACE),
                                        FIELD(tdm_inspect_group_location, address, EXPRESSION),
                                        FIELD(tdm_inspect_group_location, memory, MEMORY),
                                        FIELD(tdm_inspect_group_location, mapping, MAPPING),
                                        FIELD(tdm_inspect_group_location, group, PLACE),
                                        FIELDS_END};

static const field location_range_fields[] = {FIELD(tdm_inspect_location_range, memory, MEMORY),
                                              FIELD(tdm_inspect_location_range, mapping, MAPPING),
                                              FIELD(tdm_inspect_location_range, low, EXPRESSION),
                                              FIELD(tdm_inspect_location_range, high, EXPRESSION),
                                              FIELDS_END};

static const field page_fields[] = {FIELD(tdm_inspect_expression_range, low, EXPRESSION),
                                    FIELD(tdm_inspect_expression_range, high, EXPRESSION),
                                    FIELDS_END};

static const field assignment_fields[] = {FIELD(tdm_inspect_assignment, symbol, TEXT),
                                          FIELD(tdm_inspect_assignment, value, EXPRESSION),
                                          FIELD(tdm_inspect_assignment, plain, INT), FIELDS_END};

static const field create_section_fields[] = {
    FIELD(tdm_inspect_create_section, overflow_name, TEXT),
    FIELD(tdm_inspect_create_section, size, EXPRESSION),
    FIELD(tdm_inspect_create_section, block_size, EXPRESSION),
    FIELD(tdm_inspect_create_section, fill, FILL),
    FIELD(tdm_inspect_create_section, statement, HANDLE),
    FIELDS_END};

static const field memory_copy_fields[] = {FIELD(tdm_inspect_memory_copy, name, TEXT),
                                           FIELD(tdm_inspect_memory_copy, memory, MEMORY),
                                           FIELD(tdm_inspect_memory_copy, fill, FILL), FIELDS_END};

static const field struct_member_fields[] = {FIELD(tdm_inspect_struct_member, value, EXPRESSION),
                                             FIELD(tdm_inspect_struct_member, size, INT),
                                             FIELDS_END};

static const field vector_table_fields[] = {
    FIELD(tdm_inspect_vector_table, size, EXPRESSION),
    FIELD(tdm_inspect_vector_table, vector_size, EXPRESSION),
    FIELD(tdm_inspect_vector_table, run_address, EXPRESSION),
    FIELD(tdm_inspect_vector_table, id_symbol_prefix, TEXT),
    FIELD(tdm_inspect_vector_table, template_name, TEXT),
    FIELD(tdm_inspect_vector_table, template_symbol_name, TEXT),
    FIELD(tdm_inspect_vector_table, vector_name_prefix, TEXT),
    FIELD(tdm_inspect_vector_table, default_value, VALUE),
    FIELD(tdm_inspect_vector_table, default_inline, INT),
    FIELD(tdm_inspect_vector_table, copy, INT),
    FIELDS_END};

static const field id_run_fields[] = {FIELD(tdm_inspect_id_run, low, INT),
                                      FIELD(tdm_inspect_id_run, high, INT), FIELDS_END};

static const field expression_field[] = {{"", 0, EXPRESSION}, FIELDS_END};
static const field fill_field[] = {{"", 0, FILL}, FIELDS_END};
static const field value_field[] = {{"", 0, VALUE}, FIELDS_END};
static const field attributes_field[] = {{"", 0, ATTRIBUTES}, FIELDS_END};

/* ---- vector tables */

static void inspect_vector(void *handle)
{
  tdm_vector_value *value = tdm_inspect_vector_value(handle);
  begin("vector ");
  put("optional=%d value=", tdm_inspect_vector_is_optional(handle));
  put_fields(&value, value_field);
  put_positions(TDM_OBJECT_VECTOR, handle);
  end();
  put_list("  ids", tdm_inspect_vector_id_runs(handle), id_run_fields);
}

void inspect_vector_table(void *handle)
{
  tdm_inspect_vector_table record;
  CHECK(tdm_inspect_get_vector_table(handle, &record) == 1);
  begin("vector_table ");
  put("%s", tdm_vector_table_get_name(handle));
  put_fields(&record, vector_table_fields);
  put_positions(TDM_OBJECT_VECTOR_TABLE, handle);
  end();
  indent(2);
  each(tdm_inspect_vector_table_vectors(handle), inspect_vector);
  indent(-2);
}

/* ---- statements */

static void inspect_statement(void *handle);

/* The name and size of stacks, heaps and reserved areas. */
static void put_named(const char *name, tdm_expression *size)
{
  put(" %s size=", name);
  put_fields(&size, expression_field);
}

static void inspect_location(const tdm_group_location *location)
{
  tdm_inspect_group_location record;
  CHECK(tdm_inspect_get_group_location(location, &record) == 1);
  begin("location ");
  put("form=%d", tdm_inspect_group_location_form(location));
  put_fields(&record, location_fields);
  put_positions(TDM_OBJECT_GROUP_LOCATION, location);
  end();
  put_list("ranges", tdm_inspect_group_location_ranges(location), location_range_fields);
}

static void inspect_group(const tdm_group *group)
{
  tdm_inspect_group record;
  const tdm_group_location *location = tdm_group_get_address(group);
  CHECK(tdm_inspect_get_group(group, &record) == 1);
  put_fields(&record, group_fields);
  put_positions(TDM_OBJECT_GROUP, group);
  end();
  indent(2);
  put_list("pages", tdm_inspect_group_pages(group), page_fields);
  if (location != NULL) inspect_location(location);
  inspect_statement(record.statement);
  indent(-2);
}

void put_selector(const tdm_section_selector *selector)
{
  const tdm_attributes *required, *excluded;
  put(" selector=");
  if (selector == NULL) {
    put("-");
    return;
  }
  required = tdm_inspect_section_selector_required(selector);
  excluded = tdm_inspect_section_selector_excluded(selector);
  CHECK(tdm_inspect_section_selector_file(selector) == NULL);
  put("+");
  put_fields(&required, attributes_field);
  put("-");
  put_fields(&excluded, attributes_field);
}

static void put_each_selector(void *handle)
{
  put_selector(handle);
}

void inspect_selection(void *handle)
{
  const tdm_selection_statement *statement = handle;
  const char *pattern = tdm_inspect_selection_statement_pattern(statement);
  begin("select ");
  put_fields(&pattern, texts);
  each(tdm_selection_statement_get_selectors(statement), put_each_selector);
  put_positions(TDM_OBJECT_SELECTION_STATEMENT, statement);
  end();
}

static void inspect_if(const tdm_if_statement *statement)
{
  tdm_expression *condition = tdm_inspect_if_statement_condition(statement);
  put(" condition=");
  put_fields(&condition, expression_field);
  put_positions(TDM_OBJECT_IF_STATEMENT, statement);
  end();
  indent(2);
  inspect_statement(tdm_inspect_if_statement_true_branch(statement));
  inspect_statement(tdm_inspect_if_statement_false_branch(statement));
  indent(-2);
}

static void inspect_create_section(const tdm_create_section_statement *statement)
{
  tdm_inspect_create_section record;
  CHECK(tdm_inspect_get_create_section(statement, &record) == 1);
  put_fields(&record, create_section_fields);
  put_positions(TDM_OBJECT_CREATE_SECTION_STATEMENT, statement);
  end();
  indent(2);
  inspect_statement(record.statement);
  indent(-2);
}

static void inspect_simple_statement(tdm_statement *statement)
{
  tdm_assignment *assignment = tdm_inspect_statement_assignment(statement);
  tdm_heap_statement *heap = tdm_inspect_statement_heap(statement);
  tdm_stack_statement *stack = tdm_inspect_statement_stack(statement);
  tdm_reserved_statement *reserved = tdm_inspect_statement_reserved(statement);
  tdm_memory_copy_statement *copy = tdm_inspect_statement_memory_copy(statement);
  tdm_struct_statement *structure = tdm_inspect_statement_struct(statement);
  tdm_table_statement *table = tdm_inspect_statement_table(statement);
  if (assignment != NULL) {
    tdm_inspect_assignment record;
    CHECK(tdm_inspect_get_assignment(assignment, &record) == 1);
    put_fields(&record, assignment_fields);
    put_positions(TDM_OBJECT_ASSIGNMENT, assignment);
  } else if (heap != NULL) {
    put_named(tdm_heap_statement_get_name(heap), tdm_inspect_heap_statement_size(heap));
    put_positions(TDM_OBJECT_HEAP_STATEMENT, heap);
  } else if (stack != NULL) {
    put_named(tdm_stack_statement_get_name(stack), tdm_inspect_stack_statement_size(stack));
    put_positions(TDM_OBJECT_STACK_STATEMENT, stack);
  } else if (reserved != NULL) {
    tdm_fillspec *fill = tdm_inspect_reserved_statement_fill(reserved);
    put_named(tdm_reserved_statement_get_name(reserved),
              tdm_inspect_reserved_statement_size(reserved));
    put(" fill=");
    put_fields(&fill, fill_field);
    put_positions(TDM_OBJECT_RESERVED_STATEMENT, reserved);
  } else if (copy != NULL) {
    tdm_inspect_memory_copy record;
    CHECK(tdm_inspect_get_memory_copy(copy, &record) == 1);
    put_fields(&record, memory_copy_fields);
    put_positions(TDM_OBJECT_MEMORY_COPY_STATEMENT, copy);
  } else if (structure != NULL) {
    put(" %s", tdm_inspect_struct_statement_name(structure));
    put_positions(TDM_OBJECT_STRUCT_STATEMENT, structure);
    end();
    put_list("  members", tdm_inspect_struct_statement_members(structure), struct_member_fields);
    return;
  } else {
    CHECK(table != NULL);
    put_positions(TDM_OBJECT_TABLE_STATEMENT, table);
  }
  end();
}

/* That the positions by the kind of the handle and by that of all statements are one. */
static void inspect_statement(void *handle)
{
  tdm_statement *statement = handle;
  tdm_block *block;
  begin("statement ");
  if (statement == NULL) {
    put("-");
    end();
    return;
  }
  put("%d", tdm_inspect_statement_kind(statement));
  block = tdm_inspect_statement_block(statement);
  if (block != NULL) {
    put_positions(TDM_OBJECT_STATEMENT, statement);
    put_positions(TDM_OBJECT_BLOCK, block);
    end();
    indent(2);
    each(tdm_inspect_block_statements(block), inspect_statement);
    indent(-2);
  } else if (tdm_inspect_statement_if(statement) != NULL) {
    inspect_if(tdm_inspect_statement_if(statement));
  } else if (tdm_inspect_statement_create_section(statement) != NULL) {
    inspect_create_section(tdm_inspect_statement_create_section(statement));
  } else if (tdm_inspect_statement_group(statement) != NULL) {
    inspect_group(tdm_inspect_statement_group(statement));
  } else if (tdm_inspect_statement_selection(statement) != NULL) {
    end();
    inspect_selection(tdm_inspect_statement_selection(statement));
  } else {
    inspect_simple_statement(statement);
  }
}

static void inspect_layout(void *handle)
{
  begin("layout ");
  put("direction=%d", tdm_inspect_section_layout_direction(handle));
  put_positions(TDM_OBJECT_SECTION_LAYOUT, handle);
  end();
  indent(2);
  each(tdm_inspect_block_statements(tdm_inspect_section_layout_block(handle)), inspect_statement);
  indent(-2);
}

/* ---- the rules in force */

static void selection_in_env(tdm_selection_statement *statement, tdm_statement_env *env, void *user)
{
  tdm_inspect_statement_env record;
  CHECK(user == NULL && tdm_inspect_get_statement_env(env, &record) == 1);
  inspect_selection(statement);
  begin("in");
  put_fields(&record, env_fields);
  end();
  put_list("pages", tdm_inspect_statement_env_page_ranges(env), ranges);
}

static int exists(const char *name, void *user)
{
  CHECK(user == NULL);
  return strcmp(name, ".data") == 0;
}

void inspect_layouts(tdm_space *space)
{
  const tdm_expression_callbacks sections = {exists, NULL};
  tdm_walk_callbacks callbacks;
  memset(&callbacks, 0, sizeof callbacks);
  callbacks.selection = selection_in_env;
  each(tdm_inspect_space_section_layouts(space), inspect_layout);
  tdm_space_walk(space, &callbacks, NULL, &sections, NULL);
}
