/* Expressions as text, and their values against the data of a located program. */
#include "c_ask.h"

#include <inttypes.h>

/* ---- the program: one section, one symbol, one group, 16 filled addresses from 16 on */

static int marker;

static int is(const char *name, const char *known, void *user)
{
  CHECK(user == &marker);
  return strcmp(name, known) == 0;
}

static int answer(int known, int64_t *value, int64_t result)
{
  if (known) *value = result;
  return known;
}

static int section_exists(const char *name, void *user)
{
  return is(name, ".text", user);
}

static int symbol_defined(const char *name, void *user)
{
  return is(name, "sym", user);
}

static int symbol_value(const char *name, int64_t *value, void *user)
{
  return answer(is(name, "sym", user), value, 41);
}

static int section_address(const char *name, int64_t *value, void *user)
{
  return answer(is(name, ".text", user), value, 0x100);
}

static int section_size(const char *name, int64_t *value, void *user)
{
  return answer(is(name, ".text", user), value, 7);
}

static int group_start(const char *name, int64_t *value, void *user)
{
  return answer(is(name, "grp", user), value, 0x20);
}

static int group_end(const char *name, int64_t *value, void *user)
{
  return answer(is(name, "grp", user), value, 0x50);
}

static int located_data(int64_t start, int64_t end, uint32_t *units, void *user)
{
  int64_t at;
  CHECK(user == &marker);
  if (start < 16 || end > 32) return 0;
  for (at = start; at < end; ++at) units[at - start] = (uint32_t)at;
  return 1;
}

static tdm_inspect_environment program = {section_exists,
                                          symbol_defined,
                                          symbol_value,
                                          section_address,
                                          section_size,
                                          group_start,
                                          group_end,
                                          located_data,
                                          1,
                                          TDM_ENDIANNESS_LITTLE,
                                          8};

/* ---- rows */

typedef struct row {
  const char *symbol;
  const char *text;
  const char *value; /* in the program; or what the failure says */
  const char *alone; /* without an environment, if that differs */
  int refers_to_defined;
} row;

#define NEEDS "this expression can only be used in struct statements and/or symbol assignments"

static const row rows[] = {
    {"a", "(1 + 2 + 3) * 4", "24", NULL, 0},
    {"b", "1 - (2 - 3) - 4", "-2", NULL, 0},
    {"c", "8 / (4 / 2) % 5 * (6 % 4)", "8", NULL, 0},
    {"d", "1 << 2 + 1 >> (1 << 1)", "2", NULL, 0},
    {"e", "(1 | 2) & 3 ^ 1 | (4 & 7) == 4", "3", NULL, 0},
    {"f", "1 < 2 == 3 >= 4 != (1 && 0 || 1)", "1", NULL, 0},
    {"g", "(1 || 0) && 1 && (1 && 1)", "1", NULL, 0},
    {"h", "--5 - -(2 + 1) + !~-1", "9", NULL, 0},
    {"i", "(1 ? 2 : 3) ? 0 ? 1 : 2 : 0 ? 5 : 6", "2", NULL, 0},
    {"j", "(0 ? 1 : 2) + 1", "3", NULL, 0},
    {"k1", "absolute(0 - 3) + min(1, 2 * 3) + max(1 ? 4 : 5, -7)", "8", NULL, 0},
    {"l", "(1 + 2) * 2 - -1024", "1030", NULL, 0},
    {"n", "(-9223372036854775807 - 1) * 1 + (-9223372036854775807 - 1)", "0", NULL, 0},
    {"o", "\"sym\" + 1", "42", NEEDS, 1},
    {"p", "sizeof(sect:\".text\") + addressof(sect:\".text\") * 2", "519", NEEDS, 0},
    {"q", "sizeof(group:grp) - addressof(group:grp)", "16", NEEDS, 0},
    {"r",
     "addressof(group:other) + sizeof(group:other) + addressof(sect:\"x\") + sizeof(sect:\"x\")",
     "-4", NEEDS, 0},
    {"s", "exists(\".text\") * 2 + exists(\"x\") + defined(\"sym\")", "2", NEEDS, 1},
    {"t", "checksum(crc32w, 16, 16 + 8)", "926392439", NEEDS, 0},
    {"u", "checksum(crc32w, 0, 4) + checksum(crc32w, 8, 4096)",
     "the expression needs located section data for the given address range, but not every "
     "location is filled",
     NEEDS, 0},
    {"v", "1 / (2 - 2)", "division by zero", NULL, 0},
    {"w", "\"none\"", "could not find symbol none", NEEDS, 0},
};

static void check_value(const tdm_expression *expression, const tdm_inspect_environment *table,
                        const char *expected)
{
  char found[32];
  int64_t value = 0;
  const int64_t failed = tdm_inspect_failure_count();
  if (tdm_inspect_expression_evaluate(expression, table, &marker, &value) == 1) {
    snprintf(found, sizeof found, "%" PRId64, value);
    CHECK_TEXT(found, expected);
    CHECK(tdm_inspect_failure_count() == failed);
  } else {
    CHECK(value == 0 && tdm_inspect_failure_count() == failed + 1);
    if (strstr(tdm_get_last_error(), expected) == NULL) CHECK_TEXT(tdm_get_last_error(), expected);
  }
}

static void put_ranges(const tdm_expression *expression)
{
  tdm_arr *ranges = tdm_inspect_expression_data_ranges(expression, &program, &marker);
  uint32_t i;
  for (i = 0; i < ranges->count; ++i) {
    const tdm_inspect_data_range *range = (const tdm_inspect_data_range *)ranges->items + i;
    put("%" PRId64 "..%" PRId64 " ", range->start, range->end);
  }
  tdm_arr_del(ranges);
}

static void check_row(const row *one, const tdm_expression *expression)
{
  int round;
  CHECK_TEXT(tdm_inspect_expression_text(expression), one->text);
  for (round = 0; round < 2; ++round) { /* an evaluation leaves nothing behind for the next */
    check_value(expression, &program, one->value);
    check_value(expression, NULL, one->alone != NULL ? one->alone : one->value);
  }
  CHECK(tdm_inspect_expression_refers_to_defined(expression, &program, &marker) ==
        one->refers_to_defined);
  CHECK(tdm_inspect_expression_refers_to_defined(expression, NULL, NULL) == 0);
}

void ask_expressions(void)
{
  static const tdm_inspect_environment nothing = {NULL, NULL, NULL, NULL, NULL, NULL,
                                                  NULL, NULL, 1,    0,    0};
  tdm_spec *spec;
  tdm_core *core;
  tdm_arr *layouts, *statements;
  tdm_inspect_assignment assignment;
  uint32_t i;
  tdm_init(NULL);
  spec = tdm_parse_file(one_file("expressions.tdm"), &no_texts);
  if (spec == NULL) puts(tdm_get_last_error());
  CHECK(spec != NULL);
  layouts = tdm_spec_get_processors(spec);
  statements = tdm_processor_get_cores(((tdm_processor **)layouts->items)[0]);
  core = ((tdm_core **)statements->items)[0];
  tdm_arr_del(layouts);
  tdm_arr_del(statements);
  layouts = tdm_inspect_space_section_layouts(tdm_core_get_space_by_name(core, "lin"));
  statements = tdm_inspect_block_statements(
      tdm_inspect_section_layout_block(((tdm_section_layout **)layouts->items)[0]));
  CHECK(statements->count == sizeof rows / sizeof *rows);
  for (i = 0; i < statements->count; ++i) {
    CHECK(tdm_inspect_get_assignment(
              tdm_inspect_statement_assignment(((tdm_statement **)statements->items)[i]),
              &assignment) == 1);
    CHECK_TEXT(assignment.symbol, rows[i].symbol);
    check_row(&rows[i], assignment.value);
    put_ranges(assignment.value);
  }
  CHECK_PUT("16..24 0..4 8..4096 ");
  check_value(assignment.value, &nothing, "could not find symbol none");
  CHECK(tdm_inspect_expression_text(NULL) == NULL);
  tdm_arr_del(statements);
  tdm_arr_del(layouts);
  tdm_spec_free(spec);
  tdm_cleanup();
}
