/*
 * A client in plain C that reads all that the additive headers give of a description, and compares
 * it line by line with what is expected.
 *
 *     c_inspect DESCRIPTION EXPECTED [--update]
 *
 * Records are written by tables of their fields, lists by the table of their elements; fields that
 * are 0 or null are left out. A space or memory is written by its full name, an expression by
 * where it stands, if that is known, a mapping by its name.
 */
#include <inttypes.h>
#include <stdarg.h>
#include <stddef.h>

#include "inspect.h"

static FILE *expected;
static int updating;
static char text[4096];
static size_t length;
static int lines;
static int indentation;

int failures;

/* ---- lines */

void put(const char *format, ...)
{
  va_list arguments;
  int added;
  va_start(arguments, format);
  added = vsnprintf(text + length, sizeof text - length, format, arguments);
  va_end(arguments);
  if (added > 0) length += (size_t)added;
  if (length >= sizeof text) length = sizeof text - 1;
}

void begin(const char *title)
{
  put("%*s%s", indentation, "", title);
}

void end(void)
{
  char wanted[sizeof text];
  ++lines;
  if (updating) {
    fprintf(expected, "%s\n", text);
  } else if (fgets(wanted, sizeof wanted, expected) == NULL) {
    printf("line %d: nothing more expected, but \"%s\"\n", lines, text);
    ++failures;
  } else {
    wanted[strcspn(wanted, "\n")] = '\0';
    if (strcmp(text, wanted) != 0) {
      printf("line %d: \"%s\"\n   expected \"%s\"\n", lines, text, wanted);
      ++failures;
    }
  }
  length = 0;
  text[0] = '\0';
}

void indent(int by)
{
  indentation += by;
}

/* ---- values */

void put_positions(int kind, const void *object)
{
  tdm_arr *keys = tdm_inspect_position_keys(kind, object);
  uint32_t i;
  put(" {");
  for (i = 0; i < keys->count; ++i) {
    const char *key = ((const char **)keys->items)[i];
    tdm_srcpos place;
    CHECK(tdm_inspect_position(kind, object, key, &place) == 1 && place.pragmas == NULL);
    put("%s%s %d/%d", i > 0 ? ", " : "", key, place.line, place.column);
  }
  put("}");
  tdm_arr_del(keys);
}

static void put_text(const char *value)
{
  if (value != NULL)
    put("\"%s\"", value);
  else
    put("-");
}

static void put_expression(const tdm_expression *expression)
{
  tdm_arr *keys;
  tdm_srcpos place;
  if (expression == NULL) {
    put("-");
    return;
  }
  keys = tdm_inspect_position_keys(TDM_OBJECT_EXPRESSION, expression);
  if (keys->count > 0 && tdm_inspect_position(TDM_OBJECT_EXPRESSION, expression,
                                              ((const char **)keys->items)[0], &place) == 1)
    put("@%d/%d", place.line, place.column);
  else
    put("@?");
  tdm_arr_del(keys);
}

static void put_address(const tdm_addressvalue *address)
{
  put("%" PRId64 ":%d/%d#%d", address->value, address->bits, address->mau, address->bank);
}

static void put_interval(const tdm_interval *interval)
{
  put("[");
  put_address(&interval->low);
  put(" ");
  put_address(&interval->high);
  put(" %d/%" PRIx64 " %d %d]", interval->width, interval->bits, interval->priority,
      interval->exec_priority);
}

static void put_attributes(const tdm_attributes *set)
{
  if (set == NULL)
    put("-");
  else
    put("'%s%s%s%s%s%s%s'", tdm_attributes_is_readable(set) ? "r" : "",
        tdm_attributes_is_writable(set) ? "w" : "", tdm_attributes_is_executable(set) ? "x" : "",
        tdm_attributes_is_inited(set) ? "i" : "", tdm_attributes_is_scratch(set) ? "s" : "",
        tdm_attributes_is_blanked(set) ? "b" : "", tdm_inspect_attributes_is_p(set) ? "p" : "");
}

static void put_fill(const tdm_fillspec *fill)
{
  tdm_arr *values;
  uint32_t i;
  if (fill == NULL) {
    put("-");
    return;
  }
  values = tdm_inspect_fillspec_values(fill);
  put("[");
  for (i = 0; i < values->count; ++i) {
    if (i > 0) put(" ");
    put_expression(((tdm_expression **)values->items)[i]);
  }
  put(" : ");
  put_expression(tdm_inspect_fillspec_alignment(fill));
  put("]");
  tdm_arr_del(values);
}

static void put_value(const tdm_vector_value *value)
{
  tdm_arr *list;
  uint32_t i;
  if (value == NULL) {
    put("-");
    return;
  }
  list = tdm_inspect_vector_value_numbers(value);
  put("(%d ", tdm_inspect_vector_value_kind(value));
  put_text(tdm_inspect_vector_value_symbol(value));
  for (i = 0; i < list->count; ++i) put(" %" PRId64, ((int64_t *)list->items)[i]);
  put(" ");
  put_expression(tdm_inspect_vector_value_loop_offset(value));
  put_positions(TDM_OBJECT_VECTOR_VALUE, value);
  put(")");
  tdm_arr_del(list);
}

static void put_source(tdm_mapsource *source)
{
  put("%s", tdm_mapsource_is_bus(source)
                ? tdm_bus_get_full_name(tdm_mapsource_get_bus(source))
                : tdm_space_get_full_name(tdm_mapsource_get_space(source)));
}

static void put_destination(tdm_mapdestination *destination)
{
  if (tdm_mapdestination_is_memory(destination))
    put("%s", tdm_memory_get_full_name(tdm_mapdestination_get_memory(destination)));
  else if (tdm_mapdestination_is_bus(destination))
    put("%s", tdm_bus_get_full_name(tdm_mapdestination_get_bus(destination)));
  else
    put("%s", tdm_space_get_full_name(tdm_mapdestination_get_space(destination)));
}

static void put_handle(enum form form, void *handle)
{
  tdm_inspect_mapping mapping;
  if (handle == NULL) {
    put("-");
    return;
  }
  switch (form) {
  case SPACE:
    put("%s", tdm_space_get_full_name(handle));
    break;
  case MEMORY:
    put("%s", tdm_memory_get_full_name(handle));
    break;
  case CORE:
    put("%s", tdm_core_get_full_name(handle));
    break;
  case MAPPING:
    CHECK(tdm_inspect_get_mapping(handle, &mapping) == 1);
    put_text(mapping.name);
    break;
  case SOURCE:
    put_source(handle);
    break;
  case DESTINATION:
    put_destination(handle);
    break;
  default: /* a location or a statement, which is written elsewhere */
    put("there");
  }
}

static void put_field(enum form form, const void *item)
{
  void *handle;
  const tdm_srcpos *place;
  tdm_addressvalue start;
  switch (form) {
  case INT:
    put("%d", *(const int32_t *)item);
    break;
  case LONG:
    put("%" PRId64, *(const int64_t *)item);
    break;
  case TEXT:
    put_text(*(const char *const *)item);
    break;
  case INTERVAL:
    put_interval(item);
    break;
  case PLACE:
    place = item;
    handle = strrchr(place->file, '/');
    put("%s:%d/%d", handle != NULL ? (char *)handle + 1 : place->file, place->line, place->column);
    break;
  case EXPRESSION:
    put_expression(*(tdm_expression *const *)item);
    break;
  case ATTRIBUTES:
    put_attributes(*(tdm_attributes *const *)item);
    break;
  case FILL:
    put_fill(*(tdm_fillspec *const *)item);
    break;
  case VALUE:
    put_value(*(tdm_vector_value *const *)item);
    break;
  case RANGE:
    tdm_range_get_start_address(*(tdm_range *const *)item, &start);
    put_address(&start);
    put("+%" PRId64, tdm_range_get_size(*(tdm_range *const *)item));
    break;
  default:
    memcpy(&handle, item, sizeof handle);
    put_handle(form, handle);
  }
}

/* Whether there is nothing to tell of a field of a record: 0, or null. */
static int is_empty(const field *one, const void *item)
{
  static const char zeros[sizeof(int64_t)] = {0};
  if (one->name[0] == '\0' || one->form == INTERVAL || one->form == PLACE) return 0;
  return memcmp(item, zeros, one->form == INT ? sizeof(int32_t) : sizeof(int64_t)) == 0;
}

void put_fields(const void *record, const field *fields)
{
  for (; fields->form != NOTHING; ++fields) {
    if (is_empty(fields, (const char *)record + fields->offset)) continue;
    if (fields->name[0] != '\0') put(" %s=", fields->name);
    put_field(fields->form, (const char *)record + fields->offset);
  }
}

void put_list(const char *title, tdm_arr *list, const field *fields)
{
  uint32_t i;
  begin(title);
  put(":");
  for (i = 0; i < list->count; ++i) {
    put(fields->name[0] != '\0' ? " (" : " ");
    put_fields((const char *)list->items + i * (size_t)list->element_size, fields);
    if (fields->name[0] != '\0') put(" )");
  }
  end();
  tdm_arr_del(list);
}

void each(tdm_arr *list, void (*function)(void *handle))
{
  uint32_t i;
  for (i = 0; i < list->count; ++i) function(((void **)list->items)[i]);
  tdm_arr_del(list);
}

#define ONE(name, form) const field name[] = {{"", 0, form}, FIELDS_END}
ONE(texts, TEXT);
ONE(numbers, INT);
ONE(spaces, SPACE);
ONE(cores, CORE);
ONE(mappings, MAPPING);
ONE(ranges, RANGE);

int main(int argc, char **argv)
{
  void *files[1];
  tdm_arr names, none;
  tdm_spec *spec;
  if (argc < 3) return 2;
  updating = argc > 3 && strcmp(argv[3], "--update") == 0;
  expected = fopen(argv[2], updating ? "w" : "r");
  if (expected == NULL) return 2;
  files[0] = argv[1];
  names.element_size = none.element_size = sizeof(void *);
  names.capacity = names.count = 1;
  names.items = files;
  none.capacity = none.count = 0;
  none.items = NULL;

  tdm_init(NULL);
  spec = tdm_parse_file(&names, &none);
  if (spec == NULL) {
    puts(tdm_inspect_failure_text());
    return 1;
  }
  inspect_spec(spec);
  ask_for_nothing(spec);
  CHECK(tdm_inspect_failure_count() == 0);
  tdm_spec_free(spec);
  tdm_cleanup();
  if (!updating && fgets(text, sizeof text, expected) != NULL) {
    printf("expected further: %s", text);
    ++failures;
  }
  fclose(expected);
  if (failures > 0) printf("%d differences\n", failures);
  return failures > 0 ? 1 : 0;
}
