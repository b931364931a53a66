/*
 * The callbacks of a walk. A group that has a place opens a location, which holds for all that is
 * in it; a selection takes its sections out of those that are left, and each is placed at once;
 * areas that the layout makes become pieces like any other.
 *
 * A callback can't end a walk: after a failure they all do nothing.
 */
#include "place.h"

#include <stdlib.h>
#include <string.h>

static void enter_scope(linker *l, location *where)
{
  scope *inner = grow(NULL, 0, sizeof *inner);
  inner->outer = l->scope;
  inner->where = where;
  l->scope = inner;
}

static void leave_scope(linker *l)
{
  scope *left = l->scope;
  l->scope = left->outer;
  free_location(left->where);
  free(left);
}

static location *current_location(const linker *l)
{
  const scope *at = l->scope;
  while (at != NULL && at->where == NULL) at = at->outer;
  return at != NULL ? at->where : NULL;
}

/* What the groups around ask for, and the space for all sections. */
static int64_t alignment_in(const linker *l, const tdm_statement_env *env)
{
  const int64_t of_space = tdm_space_get_alignment(l->space);
  const int64_t of_groups = tdm_statement_env_get_alignment(env);
  const int64_t larger = of_groups > of_space ? of_groups : of_space;
  return larger > 0 ? larger : 1;
}

/* Sizes of areas are in MAUs of the space. */
static void set_size(linker *l, piece *area, int64_t size, int64_t alignment)
{
  const int64_t limit = INT64_MAX / 64 / l->mau;
  if (size < 0 || size > limit || alignment > limit)
    fail(l, "the size of %s %s is out of range", area->from, area->name);
  else
    area->size = size * l->mau;
  area->alignment = (alignment > 0 && alignment <= limit ? alignment : 1) * l->mau;
}

/* An area of the layout, or one that the space defines. */
static piece *add_area(linker *l, const char *name, const char *what, int64_t size,
                       int64_t alignment)
{
  piece *area = add_piece(l, name, what);
  area->attributes = writable;
  area->space = l->space;
  set_size(l, area, size, alignment);
  return area;
}

static void stack_def(tdm_stack_def *definition, void *user)
{
  add_area(user, tdm_stack_def_get_name(definition), "(stack)",
           tdm_stack_def_get_minimal_size(definition), tdm_stack_def_get_alignment(definition));
}

static void heap_def(tdm_heap_def *definition, void *user)
{
  add_area(user, tdm_heap_def_get_name(definition), "(heap)",
           tdm_heap_def_get_minimal_size(definition), tdm_heap_def_get_alignment(definition));
}

/* A definition gives the size that a statement leaves out. */
static void place_defined(linker *l, const char *name, const char *what, int64_t size,
                          const tdm_statement_env *env)
{
  piece *found = NULL;
  for (size_t i = 0; i < l->all.count && found == NULL; ++i) {
    piece *candidate = l->all.items[i];
    if (candidate->space == l->space && !candidate->placed && strcmp(candidate->from, what) == 0 &&
        strcmp(candidate->name, name) == 0)
      found = candidate;
  }
  if (found == NULL)
    found = add_area(l, name, what, size, 1);
  else if (size != 0)
    set_size(l, found, size, found->alignment / l->mau);
  place(l, current_location(l), found, alignment_in(l, env));
}

static void stack_statement(tdm_stack_statement *statement, tdm_statement_env *env, void *user)
{
  place_defined(user, tdm_stack_statement_get_name(statement), "(stack)",
                tdm_stack_statement_get_size(statement), env);
}

static void heap_statement(tdm_heap_statement *statement, tdm_statement_env *env, void *user)
{
  place_defined(user, tdm_heap_statement_get_name(statement), "(heap)",
                tdm_heap_statement_get_size(statement), env);
}

static void reserved_statement(tdm_reserved_statement *statement, tdm_statement_env *env,
                               void *user)
{
  linker *l = user;
  piece *area = add_area(l, tdm_reserved_statement_get_name(statement), "(reserved)",
                         tdm_reserved_statement_get_size(statement), 1);
  place(l, current_location(l), area, alignment_in(l, env));
}

/* What a struct holds is evaluated when addresses are settled; its size is known now. */
static void struct_statement(tdm_struct_statement *statement, tdm_statement_env *env, void *user)
{
  linker *l = user;
  tdm_arr *members = tdm_inspect_struct_statement_members(statement);
  const tdm_inspect_struct_member *member = members->items;
  int64_t size = 0;
  piece *made;
  for (uint32_t i = 0; i < members->count; ++i) size += member[i].size;
  made = add_area(l, tdm_inspect_struct_statement_name(statement), "(struct)", size, 1);
  made->attributes = initialised;
  place(l, current_location(l), made, alignment_in(l, env));
  tdm_arr_del(members);
}

static void vector_table(tdm_vector_table *table, void *user)
{
  linker *l = user;
  const int64_t count = tdm_vector_table_get_size(table);
  const int64_t size = tdm_vector_table_get_vector_size(table);
  location *where = location_of_address(l, tdm_vector_table_get_run_address(table));
  const int too_large = size > 0 && count > INT64_MAX / size;
  piece *area =
      add_area(l, tdm_vector_table_get_name(table), "(vectors)", too_large ? -1 : count * size, 1);
  place(l, where, area, 1);
  free_location(where);
}

static void reserved_range(tdm_reserved_range *range, void *user)
{
  take_range(user, tdm_reserved_range_get_low(range), tdm_reserved_range_get_high(range));
}

static void group_begin(tdm_group *group, tdm_statement_env *outer, tdm_statement_env *inner,
                        void *user)
{
  linker *l = user;
  tdm_group_location *given = tdm_group_get_address(group);
  const int64_t failures = tdm_inspect_failure_count();
  (void)outer, (void)inner;
  enter_scope(l, given != NULL ? location_of_group(l, given) : NULL);
  if (tdm_inspect_failure_count() != failures) fail(l, "%s", tdm_inspect_failure_text());
}

static void group_end(tdm_group *group, tdm_statement_env *outer, tdm_statement_env *inner,
                      void *user)
{
  (void)group, (void)outer, (void)inner;
  leave_scope(user);
}

/* The area is placed where it stands, and what is selected in it goes into the area. */
static void create_section_begin(tdm_create_section_statement *statement, tdm_statement_env *env,
                                 void *user)
{
  linker *l = user;
  const tdm_attributes *attributes = tdm_create_section_statement_get_attributes(statement);
  piece *area = add_area(l, tdm_create_section_statement_get_name(statement), "(section)",
                         tdm_create_section_statement_get_size(statement), 1);
  if (!tdm_attributes_is_writable(attributes)) area->attributes = initialised;
  place(l, current_location(l), area, alignment_in(l, env));
  enter_scope(l, location_inside(area));
}

static void create_section_end(tdm_create_section_statement *statement, tdm_statement_env *env,
                               void *user)
{
  (void)statement, (void)env;
  leave_scope(user);
}

/* What a selection needs while its sections come. */
typedef struct selecting {
  linker *l;
  location *where;
  int64_t alignment;
} selecting;

static void selected(void *handle, void *user)
{
  const selecting *now = user;
  place(now->l, now->where, handle, now->alignment);
}

static void selection(tdm_selection_statement *statement, tdm_statement_env *env, void *user)
{
  linker *l = user;
  selecting now = {l, current_location(l), alignment_in(l, env)};
  tdm_arr left = {sizeof(tdm_section *), 0, 0, NULL};
  tdm_section **items = calloc(l->all.count + 1, sizeof *items);
  if (items == NULL) abort();
  for (size_t i = 0; i < l->all.count; ++i)
    if (l->all.items[i]->section != NULL && !l->all.items[i]->placed)
      items[left.count++] = l->all.items[i]->section;
  left.capacity = left.count;
  left.items = items;
  tdm_selection_statement_get_sections(statement, env, &left, selected, 0, &now);
  free(items);
}

/* For `exists` in the condition of an `if`. Symbol tables aren't read: no symbol is defined. */
static int section_exists(const char *name, void *user)
{
  const linker *l = user;
  for (size_t i = 0; i < l->all.count; ++i)
    if (strcmp(l->all.items[i]->name, name) == 0) return 1;
  return 0;
}

/* Copy tables get no room, and assignments no value: both are for when all addresses are settled.
 */
void walk_space(linker *l, tdm_space *space)
{
  static const tdm_walk_callbacks callbacks = {
      .stack_def = stack_def,
      .heap_def = heap_def,
      .vector_table_begin = vector_table,
      .reserved_range = reserved_range,
      .create_section_begin = create_section_begin,
      .create_section_end = create_section_end,
      .group_begin = group_begin,
      .group_end = group_end,
      .heap_statement = heap_statement,
      .reserved_statement = reserved_statement,
      .selection = selection,
      .stack_statement = stack_statement,
      .struct_statement = struct_statement,
  };
  static const tdm_expression_callbacks questions = {.section_exists = section_exists};
  const int64_t failures = tdm_inspect_failure_count();
  enter_space(l, space);
  tdm_space_walk(space, &callbacks, l, &questions, l);
  if (tdm_inspect_failure_count() != failures) fail(l, "%s", tdm_inspect_failure_text());
  while (l->scope != NULL) leave_scope(l);
  leave_space(l);
}
