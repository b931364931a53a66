/*
 * The part of the client in C that reads a space to itself: every entry of the table is called, and
 * asks what it is given through every function that there is for it.
 */
#include "client.h"

#include <tdm_c/tdm_inspect.h>

/* What was called, as letters in the order of the calls. */
static char calls[100];
static tdm_section *sections[3];

static void called(void *user, char letter)
{
  const size_t length = strlen(calls);
  CHECK(user == calls);
  if (length + 1 < sizeof calls) calls[length] = letter;
}

static void stack_def(tdm_stack_def *definition, void *user)
{
  called(user, 's');
  CHECK_TEXT(tdm_stack_def_get_name(definition), "s1");
  CHECK(tdm_stack_def_get_minimal_size(definition) == 16);
  CHECK(tdm_stack_def_get_alignment(definition) == 8);
  CHECK(tdm_stack_def_get_fixed(definition) == 1);
  check_location(tdm_stack_def_get_source_location(definition), "layout.tdm", 11, 9);
}

static void heap_def(tdm_heap_def *definition, void *user)
{
  called(user, 'h');
  CHECK_TEXT(tdm_heap_def_get_name(definition), "h1");
  CHECK(tdm_heap_def_get_minimal_size(definition) == 1024);
  CHECK(tdm_heap_def_get_alignment(definition) == 1);
  CHECK(tdm_heap_def_get_fixed(definition) == 0);
  check_location(tdm_heap_def_get_source_location(definition), "layout.tdm", 12, 8);
}

static void vector_table_begin(tdm_vector_table *table, void *user)
{
  called(user, 'v');
  CHECK_TEXT(tdm_vector_table_get_name(table), "v1");
  CHECK(tdm_vector_table_get_size(table) == 2);
  CHECK(tdm_vector_table_get_vector_size(table) == 4);
  CHECK(tdm_vector_table_get_run_address(table) == 0x20);
  check_location(tdm_vector_table_get_source_location(table), "layout.tdm", 13, 16);
}

static void vector_table_end(tdm_vector_table *table, void *user)
{
  called(user, 'V');
  CHECK(table != NULL);
}

static void copy_table(tdm_copy_table *table, void *user)
{
  called(user, 'c');
  CHECK(table != NULL);
}

static void direct_init(tdm_direct_init *init, void *user)
{
  called(user, 'd');
  CHECK(init != NULL);
}

static void reserved_range(tdm_reserved_range *range, void *user)
{
  called(user, 'r');
  CHECK(tdm_reserved_range_get_low(range) == 0x10);
  CHECK(tdm_reserved_range_get_high(range) == 0x20);
}

static void assignment(tdm_assignment *statement, tdm_statement_env *env, void *user)
{
  called(user, '=');
  CHECK(statement != NULL && tdm_statement_env_get_alignment(env) == 0);
}

static void block_begin(tdm_block *block, tdm_statement_env *env, void *user)
{
  called(user, '{');
  CHECK(block != NULL && env != NULL);
}

static void block_end(tdm_block *block, tdm_statement_env *env, void *user)
{
  called(user, '}');
  CHECK(block != NULL && env != NULL);
}

static void if_begin(tdm_if_statement *statement, tdm_statement_env *env, void *user)
{
  called(user, 'i');
  CHECK(statement != NULL && env != NULL);
}

static void if_end(tdm_if_statement *statement, tdm_statement_env *env, void *user)
{
  called(user, 'I');
  CHECK(statement != NULL && env != NULL);
}

static void create_section_begin(tdm_create_section_statement *statement, tdm_statement_env *env,
                                 void *user)
{
  const tdm_attributes *attributes = tdm_create_section_statement_get_attributes(statement);
  called(user, '<');
  CHECK(env != NULL);
  CHECK_TEXT(tdm_create_section_statement_get_name(statement), "se");
  CHECK(tdm_create_section_statement_get_size(statement) == 8);
  CHECK(tdm_attributes_is_readable(attributes) == 1);
  CHECK(tdm_attributes_is_writable(attributes) == 1);
  CHECK(tdm_attributes_is_executable(attributes) == 0);
  CHECK(tdm_attributes_is_inited(attributes) == 0);
  CHECK(tdm_attributes_is_scratch(attributes) == 0);
  CHECK(tdm_attributes_is_blanked(attributes) == 0);
  CHECK(tdm_attributes_none(attributes) == 0);
  check_location(tdm_create_section_statement_get_source_location(statement), "layout.tdm", 20, 3);
}

static void create_section_end(tdm_create_section_statement *statement, tdm_statement_env *env,
                               void *user)
{
  called(user, '>');
  CHECK(statement != NULL && env != NULL);
}

/* g1 goes to an address, g2 to a range and to a memory. */
static void group_begin(tdm_group *group, tdm_statement_env *outer, tdm_statement_env *inner,
                        void *user)
{
  const tdm_group_location *location = tdm_group_get_address(group);
  called(user, '(');
  CHECK(outer != inner && location != NULL);
  if (tdm_group_location_is_address(location)) {
    CHECK(tdm_group_location_get_address(location) == 0x100);
    CHECK(tdm_group_location_count_ranges(location) == 1);
    CHECK(tdm_statement_env_get_alignment(inner) == 16);
    check_location(tdm_group_get_source_location(group), "layout.tdm", 24, 3);
  } else {
    CHECK(tdm_group_location_count_ranges(location) == 2);
    CHECK(tdm_group_location_get_range_start(location, 0) == 0x200);
    CHECK(tdm_group_location_get_range_end(location, 0) == 0x300);
    CHECK(tdm_group_location_get_range_start(location, 1) == 0x400);
    CHECK(tdm_group_location_get_range_end(location, 1) == 0x500);
  }
}

static void group_end(tdm_group *group, tdm_statement_env *outer, tdm_statement_env *inner,
                      void *user)
{
  called(user, ')');
  CHECK(group != NULL && outer != inner);
}

static void heap_statement(tdm_heap_statement *statement, tdm_statement_env *env, void *user)
{
  called(user, 'H');
  CHECK(env != NULL);
  CHECK_TEXT(tdm_heap_statement_get_name(statement), "he");
  CHECK(tdm_heap_statement_get_size(statement) == 6);
  check_location(tdm_heap_statement_get_source_location(statement), "layout.tdm", 18, 33);
}

static void memory_copy(tdm_memory_copy_statement *statement, tdm_statement_env *env, void *user)
{
  called(user, 'm');
  CHECK(statement != NULL && env != NULL);
}

static void reserved_statement(tdm_reserved_statement *statement, tdm_statement_env *env,
                               void *user)
{
  called(user, 'R');
  CHECK(env != NULL);
  CHECK_TEXT(tdm_reserved_statement_get_name(statement), "r1");
  CHECK(tdm_reserved_statement_get_size(statement) == 0x40);
  CHECK(tdm_attributes_is_executable(tdm_reserved_statement_get_attributes(statement)) == 1);
  CHECK(tdm_reserved_statement_get_alloc_allowed_absolute(statement) == 1);
  CHECK(tdm_reserved_statement_get_alloc_allowed_ranged(statement) == 1);
  check_location(tdm_reserved_statement_get_source_location(statement), "layout.tdm", 19, 36);
}

static void section_layout_begin(tdm_section_layout *layout, void *user)
{
  called(user, 'l');
  check_location(tdm_section_layout_get_source_location(layout), "layout.tdm", 16, 1);
}

static void section_layout_end(tdm_section_layout *layout, void *user)
{
  called(user, 'L');
  CHECK(layout != NULL);
}

static void section_found(void *handle, void *user)
{
  called(user, *(const char *)handle);
}

static void selection(tdm_selection_statement *statement, tdm_statement_env *env, void *user)
{
  const tdm_arr all = array_of(sections, 3);
  const char *name = tdm_selection_statement_get_literal_section_name(statement);
  tdm_arr *selectors = tdm_selection_statement_get_selectors(statement);
  const tdm_source_location *location = tdm_selection_statement_get_source_location(statement);
  called(user, ':');
  CHECK(name == NULL || strcmp(name, ".data") == 0);
  CHECK(selectors->count ==
        (name != NULL || tdm_selection_statement_use_reference_tree(statement)));
  CHECK(location != NULL && tdm_source_location_get_line_number(location) >= 20);
  tdm_arr_del(selectors);
  tdm_selection_statement_get_sections(statement, env, &all, section_found, 0, user);
}

static void stack_statement(tdm_stack_statement *statement, tdm_statement_env *env, void *user)
{
  called(user, 'S');
  CHECK(env != NULL);
  CHECK_TEXT(tdm_stack_statement_get_name(statement), "st");
  CHECK(tdm_stack_statement_get_size(statement) == 3);
  check_location(tdm_stack_statement_get_source_location(statement), "layout.tdm", 18, 11);
}

static void struct_statement(tdm_struct_statement *statement, tdm_statement_env *env, void *user)
{
  called(user, 't');
  CHECK(statement != NULL && env != NULL);
}

static void table_statement(tdm_table_statement *statement, tdm_statement_env *env, void *user)
{
  called(user, 'T');
  CHECK(env != NULL);
  check_location(tdm_table_statement_get_source_location(statement), "layout.tdm", 23, 3);
}

/* Sections of the client: a handle is the section's name behind a letter for the record of calls.
 */
static int is_writable(void *handle)
{
  return *(const char *)handle == 'D';
}

static int is_executable(void *handle)
{
  return *(const char *)handle == 'X';
}

static const char *get_name(void *handle)
{
  return (const char *)handle + 1;
}

static int section_exists(const char *name, void *user)
{
  CHECK_TEXT(name, ".data");
  called(user, 'e');
  return 1;
}

static tdm_walk_callbacks all_callbacks(void)
{
  tdm_walk_callbacks table;
  table.stack_def = stack_def;
  table.heap_def = heap_def;
  table.vector_table_begin = vector_table_begin;
  table.vector_table_end = vector_table_end;
  table.copy_table = copy_table;
  table.direct_init = direct_init;
  table.reserved_range = reserved_range;
  table.assignment = assignment;
  table.block_begin = block_begin;
  table.block_end = block_end;
  table.if_begin = if_begin;
  table.if_end = if_end;
  table.create_section_begin = create_section_begin;
  table.create_section_end = create_section_end;
  table.group_begin = group_begin;
  table.group_end = group_end;
  table.heap_statement = heap_statement;
  table.memory_copy = memory_copy;
  table.reserved_statement = reserved_statement;
  table.section_layout_begin = section_layout_begin;
  table.section_layout_end = section_layout_end;
  table.selection = selection;
  table.stack_statement = stack_statement;
  table.struct_statement = struct_statement;
  table.table_statement = table_statement;
  return table;
}

void walk(const char *file)
{
  static char data[] = "D.data", text[] = "X.text", other[] = "O.other";
  const tdm_section_functions functions = {NULL, is_writable, is_executable, NULL,    NULL,
                                           NULL, NULL,        get_name,      get_name};
  const tdm_expression_callbacks questions = {section_exists, NULL};
  const tdm_walk_callbacks callbacks = all_callbacks();
  const char *name = file;
  tdm_arr files = array_of(&name, 1), none = array_of(NULL, 0);
  tdm_spec *spec;
  tdm_space *space;
  int64_t failures_before;

  tdm_init(NULL);
  spec = tdm_parse_file(&files, &none);
  if (spec == NULL) {
    puts(tdm_inspect_failure_text());
    ++failures;
    tdm_cleanup();
    return;
  }
  sections[0] = tdm_section_create(data, &functions);
  sections[1] = tdm_section_create(text, &functions);
  sections[2] = tdm_section_create(other, &functions);
  space = tdm_core_get_space_by_name(
      tdm_processor_get_core(tdm_spec_get_processor(spec, "cpu1"), "cor1"), "lin");
  failures_before = tdm_inspect_failure_count();
  tdm_space_walk(space, &callbacks, calls, &questions, calls);
  CHECK_TEXT(calls, "shcdvrl{={SH}ie{R}I<{:DOX}>mtT({:D})({:X}):X}LV");
  if (tdm_inspect_failure_count() != failures_before)
    check_text(__FILE__, __LINE__, tdm_inspect_failure_text(), "no failure");
  tdm_space_walk(space, NULL, NULL, &questions, calls);
  tdm_section_delete(sections[0]);
  tdm_section_delete(sections[1]);
  tdm_section_delete(sections[2]);
  tdm_section_delete(NULL);
  tdm_spec_free(spec);
  tdm_cleanup();
}
