/*
 * A client in plain C that goes through every exported function, from the identification of the
 * component to its end. What the answers mean is the business of the cases; here counts that the
 * functions can be called as the header says, and give what is theirs to give.
 *
 *     c_client CHIP LAYOUT     absolute names of chip.tdm and layout.tdm
 */
#include "client.h"

#include <stdlib.h>

#include <tdm_c/tdm_inspect.h>

int failures;

void check_text(const char *file, int line, const char *text, const char *expected)
{
  const int same =
      text == NULL || expected == NULL ? text == expected : strcmp(text, expected) == 0;
  if (!same) {
    printf("%s:%d: \"%s\", expected \"%s\"\n", file, line, text != NULL ? text : "(null)",
           expected != NULL ? expected : "(null)");
    ++failures;
  }
}

void check_location(const tdm_source_location *location, const char *file, int line, int column)
{
  const char *name;
  CHECK(location != NULL);
  if (location == NULL) return;
  name = tdm_source_location_get_filename(location);
  CHECK_TEXT(strrchr(name, '/') + 1, file);
  if (tdm_source_location_get_line_number(location) != line ||
      tdm_source_location_get_column_number(location) != column) {
    printf("%s:%d:%d: expected %d:%d\n", name, tdm_source_location_get_line_number(location),
           tdm_source_location_get_column_number(location), line, column);
    ++failures;
  }
}

tdm_arr array_of(void *items, uint32_t count)
{
  tdm_arr arr;
  arr.element_size = sizeof(void *);
  arr.capacity = count;
  arr.count = count;
  arr.items = items;
  return arr;
}

/* The number of elements of a new array, which is given back; the first one goes to `first`. */
static uint32_t take(tdm_arr *arr, uint32_t element_size, void *first)
{
  uint32_t count;
  CHECK(arr != NULL && arr->element_size == element_size && arr->capacity >= 32 &&
        arr->items != NULL);
  count = arr->count;
  if (first != NULL && count > 0) memcpy(first, arr->items, element_size);
  tdm_arr_del(arr);
  return count;
}

static uint32_t take_pointers(tdm_arr *arr, void *first)
{
  return take(arr, sizeof(void *), first);
}

static tdm_addressvalue address(int64_t value, int mau)
{
  tdm_addressvalue result;
  result.value = value;
  result.bits = 0;
  result.mau = mau;
  result.bank = -1;
  return result;
}

static tdm_interval interval(int64_t low, int64_t high, int mau)
{
  tdm_interval result;
  result.low = address(low, mau);
  result.high = address(high, mau);
  result.width = 1;
  result.bits = 1;
  result.priority = 0x10000;
  result.exec_priority = 0x10000;
  return result;
}

static void before_the_start(void)
{
  const char *name = NULL, *revision = NULL;
  int major = 0, minor = -1;
  tdm_arr none = array_of(NULL, 0);

  tdm_provides(NULL, NULL, NULL, NULL);
  tdm_provides(&name, &major, &minor, &revision);
  CHECK_TEXT(name, "tdm_c");
  CHECK(major == 4 && minor == 0);
  CHECK_TEXT(revision, "052");
  CHECK(tdm_requires() == NULL);

  CHECK_TEXT(tdm_get_last_error(), "");
  CHECK_TEXT(tdm_inspect_failure_text(), "");
  CHECK(tdm_inspect_failure_count() == 0);
  CHECK(tdm_parse_file(&none, &none) == NULL);
  CHECK_TEXT(tdm_get_last_error(), "tdm_init has not been called");
  CHECK(tdm_endianness_to_string(TDM_ENDIANNESS_BIG) == NULL);
  CHECK(tdm_inspect_failure_count() == 2);
  tdm_cleanup();
  tdm_spec_free(NULL);
}

static void ask_processor(tdm_spec *spec, const tdm_processor *processor)
{
  tdm_core *first_core = NULL;
  tdm_memory *first_memory = NULL;
  CHECK_TEXT(tdm_processor_get_name(processor), "cpu1");
  CHECK(tdm_processor_get_name(processor) == tdm_processor_get_name(processor));
  CHECK_TEXT(tdm_processor_get_derivative_name(processor), "der1");
  check_location(tdm_processor_get_source_location(processor), "chip.tdm", 23, 11);
  CHECK(take_pointers(tdm_processor_get_cores(processor), &first_core) == 1);
  CHECK(first_core != NULL && first_core == tdm_processor_get_core(processor, "cor1"));
  CHECK(tdm_processor_get_core(processor, "cpu1:cor1") == NULL);
  CHECK(tdm_processor_get_core(processor, NULL) == NULL);
  CHECK(take_pointers(tdm_processor_get_memories(processor), &first_memory) == 1);
  CHECK(first_memory != NULL && first_memory == tdm_processor_get_memory(processor, "cpu1:ram1"));
  CHECK(tdm_processor_get_memory(processor, "ram1") == NULL);
  CHECK(tdm_spec_get_memory(spec, "cpu1:ram1") == NULL);
}

static void ask_core(const tdm_core *core)
{
  tdm_space *lin = tdm_core_get_space_by_name(core, "lin");
  tdm_space *first = NULL;
  int32_t order = 0;
  CHECK_TEXT(tdm_core_get_name(core), "cor1");
  CHECK_TEXT(tdm_core_get_full_name(core), "cpu1:cor1");
  CHECK_TEXT(tdm_core_get_arch_name(core), "arc1");
  CHECK_TEXT(tdm_core_get_processor_name(core), "cpu1");
  check_location(tdm_core_get_source_location(core), "chip.tdm", 16, 8);
  CHECK(take_pointers(tdm_core_get_spaces(core), &first) == 3 && first == lin);
  CHECK(tdm_core_get_space_by_id(core, 1) == lin);
  CHECK(tdm_core_get_space_by_id(core, 1 + ((int64_t)1 << 32)) == NULL);
  CHECK(tdm_core_get_space_by_name(core, "cpu1:cor1:lin") == lin);
  CHECK(tdm_core_get_space_by_name(core, "Lin") == NULL);
  CHECK(take(tdm_core_get_endianness(core), 4, &order) == 2 && order == TDM_ENDIANNESS_LITTLE);
  CHECK(tdm_core_get_start_address(core) != NULL);
  CHECK(tdm_core_get_start_address(core) == tdm_space_get_start_address(lin));
  CHECK(tdm_core_get_start_address_space(core) == lin);
  CHECK(tdm_core_get_copytable_space(core) == lin);

  CHECK_TEXT(tdm_endianness_to_string(1), "big");
  CHECK_TEXT(tdm_endianness_to_string(2), "little");
  CHECK_TEXT(tdm_endianness_to_string(0), "<not set>");
  CHECK_TEXT(tdm_endianness_to_string(7), "<unknown>");
  CHECK(tdm_endianness_to_maulib(1) == 2 && tdm_endianness_to_maulib(2) == 1 &&
        tdm_endianness_to_maulib(0) == 0 && tdm_endianness_to_maulib(7) == 0);
}

static void ask_space(const tdm_core *core)
{
  tdm_space *lin = tdm_core_get_space_by_name(core, "lin");
  tdm_space *wide = tdm_core_get_space_by_id(core, 2);
  const tdm_space *void_space = tdm_core_get_space_by_name(core, "non alloc");
  tdm_range *page = NULL;
  tdm_addressvalue start;
  tdm_interval valid;
  CHECK_TEXT(tdm_space_get_name(lin), "lin");
  CHECK_TEXT(tdm_space_get_full_name(lin), "cpu1:cor1:lin");
  CHECK_TEXT(tdm_space_get_core_name(lin), "cor1");
  CHECK_TEXT(tdm_space_get_processor_name(lin), "cpu1");
  CHECK(tdm_space_get_id(lin) == 1);
  CHECK(tdm_space_get_mausize(lin) == 8 && tdm_space_get_mausize(wide) == 16);
  CHECK(tdm_space_get_alignment(lin) == 4 && tdm_space_get_alignment(wide) == 0);
  CHECK(tdm_space_get_pagesize(lin) == 0x100 && tdm_space_get_pagesize(wide) == 0);
  CHECK(tdm_space_get_page_restrict_sections(lin) == 1);
  CHECK(tdm_space_get_page_restrict_sections(wide) == 0);
  CHECK(tdm_space_get_locate_direction(lin) == TDM_HIGH_TO_LOW);
  CHECK(tdm_space_get_locate_direction(wide) == TDM_LOW_TO_HIGH);
  CHECK(tdm_space_get_start_address(wide) == NULL);
  CHECK(tdm_space_get_address_literal_space(lin) == wide);
  tdm_space_set_address_literal_space(lin, NULL);
  CHECK(tdm_space_get_address_literal_space(lin) == NULL);

  CHECK(take_pointers(tdm_space_get_page_ranges(lin), &page) == 1);
  CHECK(take_pointers(tdm_space_get_page_ranges(wide), NULL) == 0);
  tdm_range_get_start_address(page, &start);
  CHECK(start.value == 0x10 && start.bits == 0 && start.mau == 8 && start.bank == -1);
  CHECK(tdm_range_get_size(page) == 0x10);

  tdm_space_get_valid_interval(lin, &valid);
  CHECK(valid.low.value == 0 && valid.high.value == 0x10000 && valid.high.mau == 8);
  CHECK_TEXT(tdm_space_get_full_name(void_space), "::non alloc");
  CHECK_TEXT(tdm_space_get_core_name(void_space), "");
}

static void ask_memory(const tdm_spec *spec, const tdm_memory *ram)
{
  const tdm_memory *rom = tdm_spec_get_memory(spec, "rom1");
  tdm_interval range;
  CHECK_TEXT(tdm_memory_get_name(ram), "ram1");
  CHECK_TEXT(tdm_memory_get_full_name(ram), "cpu1:ram1");
  CHECK_TEXT(tdm_memory_get_full_name(rom), "rom1");
  CHECK_TEXT(tdm_memory_get_processor_name(ram), "cpu1");
  CHECK_TEXT(tdm_memory_get_processor_name(rom), NULL);
  CHECK(tdm_memory_get_mausize(ram) == 8);
  CHECK(tdm_memory_get_size(ram) == 0x1000);
  CHECK(tdm_memory_get_type(ram) == TDM_MEMORY_RAM && tdm_memory_get_type(rom) == TDM_MEMORY_ROM);
  CHECK(tdm_memory_is_reserved(ram) == 0 && tdm_memory_is_reserved(rom) == 1);
  CHECK(tdm_memory_get_fillspec(ram) != NULL && tdm_memory_get_fillspec(rom) == NULL);
  CHECK_TEXT(tdm_memory_get_write_mode(ram), "fast");
  CHECK_TEXT(tdm_memory_get_write_mode(rom), NULL);
  CHECK(tdm_memory_get_setuptime(ram) == 1);
  CHECK(tdm_memory_get_holdtime(ram) == 2);
  CHECK(tdm_memory_get_cycles(ram) == 3);
  CHECK(tdm_memory_get_area(ram) == 4);
  CHECK(tdm_memory_get_read_ports(ram) == 5 && tdm_memory_get_read_ports(rom) == 1);
  CHECK(tdm_memory_get_write_ports(ram) == 6);
  CHECK(tdm_memory_get_readwrite_ports(ram) == 7);
  check_location(tdm_memory_get_source_location(ram), "chip.tdm", 18, 10);
  tdm_memory_get_addressrange(ram, &range);
  CHECK(range.low.value == 0 && range.high.value == 0x1000 && range.low.bank == -1);
  CHECK(range.width == 1 && range.bits == 1 && range.priority == 0x10000);
}

static void ask_bus(const tdm_bus *bus)
{
  CHECK_TEXT(tdm_bus_get_name(bus), "bus1");
  CHECK_TEXT(tdm_bus_get_full_name(bus), "cpu1:cor1:bus1");
  CHECK_TEXT(tdm_bus_get_core_name(bus), "cor1");
  CHECK_TEXT(tdm_bus_get_processor_name(bus), "cpu1");
  CHECK(tdm_bus_get_mausize(bus) == 8);
  CHECK(tdm_bus_get_width(bus) == 8);
  CHECK(tdm_bus_get_address_width(bus) == 24);
  CHECK(tdm_bus_get_wishbone(bus) == 1);
  check_location(tdm_bus_get_source_location(bus), "chip.tdm", 5, 7);
}

/* The ten functions, each with an address or interval that it has a route for, and what is there.
 */
static void translate_forward(const tdm_space *lin, const tdm_space *wide, const tdm_memory *ram,
                              const tdm_memory *rom)
{
  const tdm_interval span = interval(0x4000, 0x4010, 8);
  const tdm_addressvalue at = address(0x8010, 8), in_wide = address(8, 16);
  tdm_map_interval_result span_result;
  tdm_map_address_result result;
  tdm_mapdestination *destination;
  tdm_arr *results = NULL;

  CHECK(tdm_space_map_interval_forward(lin, &span, &results) == 1);
  CHECK(take(results, sizeof span_result, &span_result) == 1);
  destination = span_result.object;
  CHECK(tdm_mapdestination_is_bus(destination) == 1);
  CHECK(tdm_mapdestination_is_memory(destination) == 0);
  CHECK(tdm_mapdestination_is_space(destination) == 0);
  CHECK(tdm_mapdestination_get_memory(destination) == NULL);
  CHECK(tdm_mapdestination_get_space(destination) == NULL);
  CHECK(span_result.interval.priority == 0x30000 && span_result.reserved == 0);
  ask_bus(tdm_mapdestination_get_bus(destination));

  CHECK(tdm_space_map_addressvalue_forward(wide, &in_wide, &results) == 1);
  CHECK(take(results, sizeof result, &result) == 1);
  destination = result.object;
  CHECK(tdm_mapdestination_is_space(destination) == 1);
  CHECK(tdm_mapdestination_get_space(destination) == lin);
  CHECK(result.address.value == 16 && result.address.mau == 8);

  CHECK(tdm_space_map_interval_forward_to_memory(lin, &span, &results) == 1);
  CHECK(take(results, sizeof span_result, &span_result) == 1);
  CHECK(span_result.object == ram && span_result.reserved == 1);
  CHECK(tdm_mapdestination_is_memory(span_result.object) == 1);
  CHECK(tdm_mapdestination_get_memory(span_result.object) == ram);
  CHECK(span_result.interval.low.value == 0 && span_result.interval.high.value == 0x10);

  CHECK(tdm_space_map_addressvalue_forward_to_memory(lin, &at, &results) == 1);
  CHECK(take(results, sizeof result, &result) == 1);
  CHECK(result.object == rom && result.address.value == 0x10);
}

static void translate_backward(const tdm_space *lin, const tdm_memory *ram, const tdm_memory *rom)
{
  const tdm_interval span = interval(0, 0x10, 8);
  const tdm_addressvalue at = address(0x10, 8);
  tdm_map_interval_result span_result;
  tdm_map_address_result result;
  tdm_mapsource *source;
  tdm_arr *results = NULL;

  CHECK(tdm_memory_map_interval_backward(ram, &span, &results) == 1);
  CHECK(take(results, sizeof span_result, &span_result) == 2);
  source = span_result.object;
  CHECK(tdm_mapsource_is_bus(source) == 1 && tdm_mapsource_is_space(source) == 0);
  CHECK(tdm_mapsource_get_space(source) == NULL);
  ask_bus(tdm_mapsource_get_bus(source));

  CHECK(tdm_memory_map_addressvalue_backward(rom, &at, &results) == 1);
  CHECK(take(results, sizeof result, &result) == 1);
  CHECK_TEXT(tdm_bus_get_full_name(tdm_mapsource_get_bus(result.object)), "gbus");
  CHECK_TEXT(tdm_bus_get_core_name(tdm_mapsource_get_bus(result.object)), NULL);
  CHECK_TEXT(tdm_bus_get_processor_name(tdm_mapsource_get_bus(result.object)), NULL);
  CHECK(tdm_bus_get_address_width(tdm_mapsource_get_bus(result.object)) == -1);

  CHECK(tdm_memory_map_interval_backward_to_bus(rom, &span, &results) == 1);
  CHECK(take(results, sizeof span_result, &span_result) == 3);
  CHECK(tdm_memory_map_addressvalue_backward_to_bus(rom, &at, &results) == 1);
  CHECK(take(results, sizeof result, &result) == 3);

  CHECK(tdm_memory_map_interval_backward_to_space(rom, &span, &results) == 1);
  CHECK(take(results, sizeof span_result, &span_result) == 1);
  source = span_result.object;
  CHECK(tdm_mapsource_is_space(source) == 1 && tdm_mapsource_get_bus(source) == NULL);
  CHECK(tdm_mapsource_get_space(source) == lin);
  CHECK(span_result.interval.low.value == 0x8000);
  CHECK(tdm_memory_map_addressvalue_backward_to_space(ram, &at, &results) == 1);
  CHECK(take(results, sizeof result, &result) == 3);
}

/* Values that a caller gets wrong are failures of their own, and nothing else is. */
/* An array with all its room 0 behind the results, which is filled with what isn't. */
static void scribble(tdm_arr *arr, size_t element_size, uint32_t count)
{
  const size_t used = count * element_size, room = arr->capacity * element_size;
  unsigned char *bytes = arr->items;
  size_t i, dirty = 0;
  CHECK(arr->element_size == element_size && arr->capacity >= 32 && arr->count == count);
  for (i = used; i < room; ++i) dirty += bytes[i] != 0;
  CHECK(dirty == 0);
  memset(bytes, 0xA5, room);
}

/* The results of translations are new arrays, whichever of those before are still held, and
 * whatever their holder made of them. */
static void hold_arrays(const tdm_space *lin)
{
  const tdm_addressvalue at = address(0x8010, 8);
  const tdm_interval span = interval(0x4000, 0x4010, 8);
  tdm_arr *held[4] = {NULL, NULL, NULL, NULL};
  int round, i;
  for (round = 0; round < 3; ++round) {
    CHECK(tdm_space_map_addressvalue_forward_to_memory(lin, &at, &held[0]) == 1);
    CHECK(tdm_space_map_interval_forward_to_memory(lin, &span, &held[1]) == 1);
    CHECK(tdm_space_map_addressvalue_forward_to_memory(lin, &at, &held[2]) == 1);
    scribble(held[0], sizeof(tdm_map_address_result), 1);
    scribble(held[1], sizeof(tdm_map_interval_result), 1);
    scribble(held[2], sizeof(tdm_map_address_result), 1);
    tdm_arr_del(held[(round + 1) % 3]);
    CHECK(tdm_space_map_interval_forward_to_memory(lin, &span, &held[3]) == 1);
    scribble(held[3], sizeof(tdm_map_interval_result), 1);
    for (i = 0; i < 4; ++i)
      if (i != (round + 1) % 3) tdm_arr_del(held[i]);
  }
  CHECK(tdm_space_map_addressvalue_forward_to_memory(lin, &at, &held[0]) == 1);
  free(held[0]->items);
  held[0]->items = NULL;
  tdm_arr_del(held[0]);
  CHECK(tdm_space_map_addressvalue_forward_to_memory(lin, &at, &held[0]) == 1);
  scribble(held[0], sizeof(tdm_map_address_result), 1);
  tdm_arr_del(held[0]);
}

static void fail_in_queries(const tdm_space *lin, const tdm_memory *ram)
{
  const int64_t before = tdm_inspect_failure_count();
  const tdm_addressvalue nowhere = address(-1, 8), words = address(0, 16);
  tdm_interval wide = interval(0, 1, 8);
  tdm_arr *results = NULL;

  CHECK(tdm_space_map_addressvalue_forward(lin, &nowhere, &results) == 0);
  CHECK(take(results, sizeof(tdm_map_address_result), NULL) == 0);
  CHECK(tdm_inspect_failure_count() == before);

  CHECK(tdm_memory_map_addressvalue_backward(ram, &words, &results) == 0);
  CHECK(take(results, sizeof(tdm_map_address_result), NULL) == 0);
  CHECK_TEXT(tdm_get_last_error(), "address given in MAUs of 16 bits, expected 8");
  CHECK(tdm_inspect_failure_count() == before + 1);

  wide.high.mau = 24;
  CHECK(tdm_space_map_interval_forward(lin, &wide, &results) == 0);
  CHECK(take(results, sizeof(tdm_map_interval_result), NULL) == 0);
  CHECK_TEXT(tdm_get_last_error(), "address given in MAUs of 24 bits, expected 8");

  wide.high.mau = 8;
  wide.width = 65;
  CHECK(tdm_space_map_interval_forward(lin, &wide, &results) == 0);
  CHECK(take(results, sizeof(tdm_map_interval_result), NULL) == 0);
  CHECK_TEXT(tdm_get_last_error(), tdm_inspect_failure_text());
  CHECK(tdm_inspect_failure_count() == before + 3);
}

static void ranges_of_the_caller(void)
{
  tdm_addressvalue start = address(-5, 24), read;
  tdm_range *range;
  start.bits = 23;
  start.bank = 3;
  range = tdm_range_create(&start, (int64_t)1 << 40);
  tdm_range_get_start_address(range, &read);
  CHECK(read.value == -5 && read.bits == 23 && read.mau == 24 && read.bank == 3);
  CHECK(tdm_range_get_size(range) == (int64_t)1 << 40);
  tdm_range_delete(range);
  tdm_range_delete(NULL);
}

/* Ascending, and none twice. */
static void check_message_kinds(void)
{
  tdm_inspect_message_kind kind = {0, 0, NULL, NULL};
  int index = 0, number = 0;
  CHECK(tdm_inspect_get_message_kind(-1, &kind) == 0);
  for (; tdm_inspect_get_message_kind(index, &kind) == 1; ++index) {
    CHECK(kind.number > number && kind.format != NULL);
    number = kind.number;
    if (number != 972) continue;
    CHECK(kind.letter == 'W');
    CHECK_TEXT(kind.format, "macro \"%s\" redefined");
    CHECK(strstr(kind.meaning, "different definition") != NULL);
  }
  CHECK(index > 50);
}

/* Names end with the texts of their period; what is found by one stays. */
static void names_of_two_periods(const tdm_spec *spec)
{
  const tdm_processor *processor = tdm_spec_get_processor(spec, "cpu1");
  const tdm_memory *memory = tdm_processor_get_memory(processor, "cpu1:ram1");
  CHECK_TEXT(tdm_processor_get_name(processor), "cpu1");
  CHECK_TEXT(tdm_memory_get_full_name(memory), "cpu1:ram1");
  tdm_cleanup();
  CHECK(tdm_processor_get_name(processor) == NULL && tdm_memory_get_full_name(memory) == NULL);
  CHECK(tdm_spec_get_processor(spec, "cpu1") == processor);
  tdm_init(NULL);
  CHECK(tdm_processor_get_memory(processor, "cpu1:ram1") == memory);
  CHECK(tdm_memory_get_full_name(memory) == NULL && tdm_memory_get_name(memory) == NULL);
  CHECK_TEXT(tdm_get_last_error(), "the names of a spec end with tdm_cleanup");
  CHECK(tdm_processor_get_name(processor) == NULL);
  tdm_cleanup();
}

static void messages(const char *file)
{
  const char *files[1], *defines[2] = {"A=1", "B"};
  tdm_arr names = array_of(files, 1), macros = array_of(defines, 2), none = array_of(NULL, 0);
  tdm_message warning;
  tdm_inspect_message message;
  tdm_spec *spec;
  files[0] = file;

  tdm_init(&macros);
  spec = tdm_parse_file(&names, &none);
  CHECK(spec != NULL);
  CHECK(tdm_get_error_count() == 0 && tdm_get_warning_count() == 1);
  CHECK(take(tdm_get_errors(), sizeof(tdm_message), NULL) == 0);
  CHECK(take(tdm_get_warnings(), sizeof warning, &warning) == 1);
  CHECK(warning.number == 972 && warning.note == 0);
  CHECK_TEXT(warning.text, "macro \"CLOCK\" redefined");

  CHECK(tdm_inspect_message_count() == 2);
  CHECK(tdm_inspect_get_message(-1, &message) == 0 && tdm_inspect_get_message(2, &message) == 0);
  CHECK(tdm_inspect_get_message(0, &message) == 1);
  CHECK(message.letter == 'W' && message.number == 972 && message.note == 1);
  CHECK(message.text == warning.text && message.position.line == warning.position.line);
  CHECK(tdm_inspect_get_message(1, &message) == 1);
  CHECK(message.letter == 'I' && message.number == 981 && message.note == -1);
  check_message_kinds();

  tdm_init(NULL); /* starts anew, but keeps the texts */
  CHECK(tdm_get_warning_count() == 0 && tdm_inspect_message_count() == 0);
  CHECK_TEXT(warning.text, "macro \"CLOCK\" redefined");
  names_of_two_periods(spec);
  tdm_spec_free(spec); /* all that is left to do with it */
}

int main(int argc, char **argv)
{
  const char *files[1], *kept;
  tdm_arr names = array_of(files, 1), none = array_of(NULL, 0);
  const tdm_processor *processor, *first = NULL;
  const tdm_memory *ram, *rom, *global = NULL;
  const tdm_space *lin;
  const tdm_core *core;
  const char *dependency = NULL;
  tdm_spec *spec;
  const tdm_addressvalue at = address(0x8010, 8);
  tdm_arr *held = NULL;
  if (argc != 4) return 2;
  files[0] = argv[1];

  before_the_start();
  tdm_init(NULL);
  CHECK(tdm_parse_file(&none, &none) == NULL);
  CHECK_TEXT(tdm_get_last_error(), "no target-description file given");
  spec = tdm_parse_file(&names, &none);
  if (spec == NULL) {
    puts(tdm_inspect_failure_text());
    return 1;
  }
  CHECK_TEXT(tdm_get_last_error(), "no target-description file given");

  processor = tdm_spec_get_processor(spec, "cpu1");
  core = tdm_processor_get_core(processor, "cor1");
  lin = tdm_core_get_space_by_name(core, "lin");
  ram = tdm_processor_get_memory(processor, "cpu1:ram1");
  rom = tdm_spec_get_memory(spec, "rom1");
  CHECK(take_pointers(tdm_spec_get_processors(spec), &first) == 1 && first == processor);
  CHECK(take_pointers(tdm_spec_get_memories(spec), &global) == 1 && global == rom);
  CHECK(tdm_spec_get_processor(spec, "CPU1") == NULL);
  CHECK(tdm_spec_get_processor(spec, NULL) == NULL && tdm_spec_get_memory(spec, NULL) == NULL);
  CHECK(take_pointers(tdm_spec_get_file_dependencies(spec), &dependency) == 1);
  CHECK_TEXT(dependency, argv[1]);

  ask_processor(spec, processor);
  ask_core(core);
  ask_space(core);
  ask_memory(spec, ram);
  translate_forward(lin, tdm_core_get_space_by_id(core, 2), ram, rom);
  translate_backward(lin, ram, rom);
  hold_arrays(lin);
  CHECK(tdm_space_map_addressvalue_forward_to_memory(lin, &at, &held) == 1);
  fail_in_queries(lin, ram);
  ranges_of_the_caller();

  kept = tdm_space_get_full_name(lin);
  tdm_spec_free(spec);
  CHECK_TEXT(kept, "cpu1:cor1:lin");
  tdm_cleanup();
  CHECK(take(held, sizeof(tdm_map_address_result), NULL) == 1);
  messages(argv[1]);
  walk(argv[2]);
  sequences(argv[3]);
  if (failures > 0) printf("%d differences\n", failures);
  return failures > 0 ? 1 : 0;
}
