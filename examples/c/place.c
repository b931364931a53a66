/*
 * What a linker does with the library: reads a description and object files, walks the layouts of
 * every space, places the sections that they select, and shows where each of them goes.
 *
 *     place [-D NAME[=VALUE]]... DESCRIPTION OBJECT...
 *
 * Initialised data that runs in RAM gets a load-time copy, called "[name]". A `load_addr` group
 * selects copies; those that none selects go to the memory that the copy table can read.
 */
#include "place.h"

#include <inttypes.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The first failure counts; what follows from it is of no interest. */
void fail(linker *l, const char *format, ...)
{
  va_list arguments;
  if (l->failed) return;
  l->failed = 1;
  fputs("place: ", stderr);
  va_start(arguments, format);
  vfprintf(stderr, format, arguments);
  va_end(arguments);
  fputc('\n', stderr);
}

/* Grows by doubling, which the count alone tells. */
void *grow(void *items, size_t count, size_t size)
{
  if ((count & (count - 1)) != 0) return items;
  items = realloc(items, (count == 0 ? 1 : 2 * count) * size);
  if (items == NULL) abort();
  return items;
}

/* ---------------------------------------------------------------------------------------------- */
/* Pieces, and how selections see them                                                            */
/* ---------------------------------------------------------------------------------------------- */

static int has(const void *handle, unsigned attribute)
{
  return (((const piece *)handle)->attributes & attribute) != 0;
}

static int is_readable(void *handle)
{
  return handle != NULL;
}

static int is_writable(void *handle)
{
  return has(handle, writable);
}

static int is_executable(void *handle)
{
  return has(handle, executable);
}

static int is_inited(void *handle)
{
  return has(handle, initialised);
}

static int is_scratch(void *handle)
{
  return has(handle, scratch);
}

static int is_blanked(void *handle)
{
  return has(handle, blank);
}

static const char *get_name(void *handle)
{
  return ((const piece *)handle)->name;
}

static const tdm_section_functions functions = {
    .is_readable = is_readable,
    .is_writable = is_writable,
    .is_executable = is_executable,
    .is_inited = is_inited,
    .is_scratch = is_scratch,
    .is_blanked = is_blanked,
    .get_name = get_name,
    .get_display_name = get_name,
};

piece *add_piece(linker *l, const char *name, const char *from)
{
  piece *made = calloc(1, sizeof *made);
  if (made == NULL || (made->name = malloc(strlen(name) + 1)) == NULL) abort();
  strcpy(made->name, name);
  made->from = from;
  l->all.items = grow(l->all.items, l->all.count, sizeof made);
  l->all.items[l->all.count++] = made;
  return made;
}

static piece *new_section(linker *l, const char *name, const char *from, unsigned attributes,
                          int64_t size, int64_t alignment)
{
  piece *made = add_piece(l, name, from);
  made->attributes = attributes;
  made->size = size;
  made->alignment = alignment;
  made->section = tdm_section_create(made, &functions);
  if (made->section == NULL) abort();
  return made;
}

static void add_copy(linker *l, piece *original)
{
  char *name = malloc(strlen(original->name) + 3);
  if (name == NULL) abort();
  sprintf(name, "[%s]", original->name);
  original->copy =
      new_section(l, name, original->from, initialised, original->size, original->alignment);
  original->copy->is_copy = 1;
  free(name);
}

void add_section(linker *l, const char *name, const char *from, unsigned attributes, int64_t size,
                 int64_t alignment)
{
  piece *made = new_section(l, name, from, attributes, size, alignment);
  if ((attributes & writable) && (attributes & initialised)) add_copy(l, made);
}

/* ---------------------------------------------------------------------------------------------- */
/* The course of things                                                                           */
/* ---------------------------------------------------------------------------------------------- */

static void walk_core(linker *l, tdm_core *core)
{
  tdm_arr *spaces = tdm_core_get_spaces(core);
  l->copytable_space = tdm_core_get_copytable_space(core);
  for (uint32_t i = 0; i < spaces->count && !l->failed; ++i)
    walk_space(l, ((tdm_space **)spaces->items)[i]);
  tdm_arr_del(spaces);
}

static void walk_all(linker *l, const tdm_spec *spec)
{
  tdm_arr *processors = tdm_spec_get_processors(spec);
  for (uint32_t i = 0; i < processors->count; ++i) {
    tdm_arr *cores = tdm_processor_get_cores(((tdm_processor **)processors->items)[i]);
    for (uint32_t j = 0; j < cores->count && !l->failed; ++j)
      walk_core(l, ((tdm_core **)cores->items)[j]);
    tdm_arr_del(cores);
  }
  tdm_arr_del(processors);
}

/* The copies of what is initialised and went to RAM, data or code. */
static void place_copies(linker *l)
{
  const size_t count = l->placed.count;
  for (size_t i = 0; i < count && !l->failed; ++i) {
    piece *original = l->placed.items[i];
    if (original->section == NULL || !(original->attributes & initialised)) continue;
    if (tdm_memory_get_type(original->memory) != TDM_MEMORY_RAM) continue;
    if (original->copy == NULL) add_copy(l, original);
    if (original->copy->placed) continue;
    if (l->space != original->load_space) enter_space(l, original->load_space);
    place(l, NULL, original->copy, 1);
  }
  leave_space(l);
}

static tdm_spec *parse(linker *l, const char *description)
{
  const char *here = ".";
  const tdm_arr files = {sizeof description, 1, 1, &description}, dirs = {sizeof here, 1, 1, &here};
  tdm_spec *spec = tdm_parse_file(&files, &dirs);
  tdm_arr *errors = tdm_get_errors();
  const tdm_message *first = errors->items;
  if (errors->count > 0)
    fail(l, "%s:%d: %s", first->position.file != NULL ? first->position.file : description,
         first->position.line, first->text);
  else if (spec == NULL)
    fail(l, "%s", tdm_inspect_failure_text());
  tdm_arr_del(errors);
  return spec;
}

/* ---------------------------------------------------------------------------------------------- */
/* The table                                                                                      */
/* ---------------------------------------------------------------------------------------------- */

static void show_placed(const piece *shown)
{
  const int indent = shown->inside ? 2 : 0;
  printf("%*s%-*s %-10s %-22s %#10" PRIx64 "  %-18s %#8" PRIx64 " %#7" PRIx64 "\n", indent, "",
         30 - indent, shown->name, shown->from, tdm_space_get_full_name(shown->space),
         (uint64_t)shown->address, tdm_memory_get_full_name(shown->memory),
         (uint64_t)shown->offset.value, (uint64_t)shown->units);
}

/* By name: the order of sections in an object file is its compiler's. Equal ones are areas of
 * several spaces. */
static int compare(const void *left, const void *right)
{
  const piece *one = *(piece *const *)left, *other = *(piece *const *)right;
  int order = strcmp(one->name, other->name);
  if (order == 0) order = strcmp(one->from, other->from);
  if (order == 0 && one->space != NULL && other->space != NULL)
    order = strcmp(tdm_space_get_full_name(one->space), tdm_space_get_full_name(other->space));
  return order;
}

static void show_left(const linker *l)
{
  qsort(l->all.items, l->all.count, sizeof *l->all.items, compare);
  puts("\nleft over:");
  for (size_t i = 0; i < l->all.count; ++i) {
    const piece *left = l->all.items[i];
    if (left->placed || left->is_copy) continue;
    printf("%-30s %-10s %s\n", left->name, left->from,
           left->space != NULL ? tdm_space_get_full_name(left->space) : "no selection takes it");
  }
}

static void show(const linker *l)
{
  printf("%-30s %-10s %-22s %10s  %-18s %8s %7s\n", "section", "from", "space", "address", "memory",
         "offset", "room");
  for (size_t i = 0; i < l->placed.count; ++i) show_placed(l->placed.items[i]);
  show_left(l);
}

static void clean_up(linker *l)
{
  for (size_t i = 0; i < l->all.count; ++i) {
    tdm_section_delete(l->all.items[i]->section);
    free(l->all.items[i]->name);
    free(l->all.items[i]);
  }
  free(l->all.items);
  free(l->placed.items);
  free(l->taken);
}

static void link_program(linker *l, const char *description, char *const *objects)
{
  tdm_spec *spec = parse(l, description);
  for (; *objects != NULL && !l->failed; ++objects) read_object(l, *objects);
  if (!l->failed) walk_all(l, spec);
  if (!l->failed) place_copies(l);
  if (!l->failed) show(l);
  leave_space(l);
  clean_up(l);
  tdm_spec_free(spec);
}

int main(int count, char **words)
{
  static linker l;
  tdm_arr defines = {sizeof(char *), 0, 0, NULL};
  const char **names = calloc((size_t)count, sizeof *names);
  int at = 1;
  if (names == NULL) abort();
  for (; at + 1 < count && strcmp(words[at], "-D") == 0; at += 2)
    names[defines.count++] = words[at + 1];
  if (at + 1 >= count) {
    fputs("usage: place [-D NAME[=VALUE]]... DESCRIPTION OBJECT...\n", stderr);
    free(names);
    return 2;
  }
  defines.capacity = defines.count;
  defines.items = names;
  tdm_init(&defines);
  link_program(&l, words[at], words + at + 1);
  tdm_cleanup();
  free(names);
  return l.failed;
}
