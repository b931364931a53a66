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

/* ---- expressions of the caller's */

typedef struct text_row {
  const char *text;
  const char *read;  /* as text again; or null, and what the failure says */
  const char *value; /* in the program; or what the failure says */
} text_row;

#define AT(line, column) "[\"<expression>\" " line "/" column "] syntax error: "

static const text_row text_rows[] = {
    {"1+2*3", "1 + 2 * 3", "7"},
    {" ( 1 + 2 ) * 4k\t// a remark", "(1 + 2) * 4096", "12288"},
    {"1 /* one\n line */ +\n2", "1 + 2", "3"},
    {"count", "3", "3"}, /* an argument, a default that refers to it, and memories */
    {"next * 2", "(3 + 1) * 2", "8"},
    {"sizeof(mem:sram) + addressof(mem:sram)", "64 + 32", "96"},
    {"sizeof(mem:chip:sram)", "64", "64"},
    {"sizeof(mem:common)", "16", "16"},
    {"\"sym\" + sizeof(sect:\".text\") - 1", "\"sym\" + sizeof(sect:\".text\") - 1", "47"},
    {"exists(\".text\") ? addressof(group:grp) : -1",
     "exists(\".text\") ? addressof(group:grp) : -1", "32"},
    {"1 / (3 - count)", "1 / (3 - 3)", "division by zero"},
    {"1 +\n  \"none\"", "1 + \"none\"", AT("2", "3") "could not find symbol none"},
    {"", NULL, AT("1", "1") "unexpected end of the expression"},
    {"1 + ", NULL, AT("1", "5") "unexpected end of the expression"},
    {"(1 + 2", NULL, AT("1", "7") "unexpected end of the expression"},
    {"1 /* open\n", NULL, AT("2", "1") "unexpected end of the expression"},
    {"\"open", NULL, AT("1", "6") "unexpected end of the expression"},
    {"1;", NULL, AT("1", "2") "unexpected token: ;"},
    {"1, 2", NULL, AT("1", "2") "unexpected token: ,"},
    {"(1 + )", NULL, AT("1", "6") "unexpected token: )"},
    {"1 2", NULL, AT("1", "3") "unexpected token: 2"},
    {"a = 1", NULL, AT("1", "1") "unexpected token: a"},
    {"1 +\n  @", NULL, AT("2", "3") "unexpected char: '@'"},
    {"#define A 1", NULL, AT("1", "1") "unexpected char: '#'"},
    {"unknown", NULL, AT("1", "1") "TDM variable \"unknown\" is used but not defined"},
    {"1 +\n lanes", NULL, AT("2", "2") "TDM variable \"lanes\" is used but not defined"},
    {"1 + addressof(mem:common)", NULL,
     AT("1", "15") "could not resolve memory reference \"common\" in addressof expression"},
    {"sizeof(mem:nowhere)", NULL,
     AT("1", "8") "could not resolve memory reference \"nowhere\" in sizeof expression"},
};

static void check_text_row(const text_row *one, const tdm_spec *spec, const tdm_space *space)
{
  const int64_t failed = tdm_inspect_failure_count();
  tdm_expression *expression = tdm_inspect_parse_expression(spec, space, one->text, NULL);
  if (expression == NULL) {
    CHECK(one->read == NULL && tdm_inspect_failure_count() == failed + 1);
    CHECK_TEXT(tdm_get_last_error(), one->value);
    return;
  }
  CHECK(tdm_inspect_failure_count() == failed);
  CHECK_TEXT(tdm_inspect_expression_text(expression), one->read != NULL ? one->read : "nothing");
  check_value(expression, &program, one->value);
  tdm_inspect_expression_delete(expression);
}

/* As deep as a description may nest, and deeper; and long without nesting. */
static void check_extents(const tdm_spec *spec, const tdm_space *space)
{
  enum { terms = 100000 };
  static char text[2 * terms + 2];
  tdm_expression *expression;
  int64_t value = 0;
  int i;
  for (i = 0; i < terms; ++i) memcpy(text + 2 * i, "1+", 2);
  strcpy(text + 2 * terms, "1");
  expression = tdm_inspect_parse_expression(spec, space, text, NULL);
  CHECK(expression != NULL);
  CHECK(tdm_inspect_expression_evaluate(expression, NULL, NULL, &value) == 1);
  CHECK(value == terms + 1);
  tdm_inspect_expression_delete(expression);
  for (i = 256; i <= 257; ++i) {
    memset(text, '(', (size_t)i);
    text[i] = '1';
    memset(text + i + 1, ')', (size_t)i);
    text[2 * i + 1] = '\0';
    expression = tdm_inspect_parse_expression(spec, space, text, NULL);
    CHECK((expression != NULL) == (i == 256));
    tdm_inspect_expression_delete(expression);
  }
  CHECK_TEXT(tdm_get_last_error(), AT("1", "257") "nested too deeply, the limit is 256");
}

/* What values count, in a space of 8 bits with a memory of 16. */
static void check_quantities(const tdm_spec *spec, const tdm_space *space)
{
  static const struct {
    const char *text;
    int32_t kind, mau_size;
  } quantities[] = {
      {"addressof(mem:sram)", TDM_QUANTITY_ADDRESS, 8},
      {"4 + (addressof(mem:sram)) - count", TDM_QUANTITY_ADDRESS, 8},
      {"sizeof(mem:sram) + addressof(sect:\"a\")", TDM_QUANTITY_ADDRESS, 8},
      {"addressof(group:a) & ~3", TDM_QUANTITY_ADDRESS, 8},
      {"max(addressof(group:a), 0x100) - sizeof(group:a)", TDM_QUANTITY_ADDRESS, 8},
      {"1 ? addressof(mem:sram) : 0", TDM_QUANTITY_ADDRESS, 8},
      {"sizeof(mem:common)", TDM_QUANTITY_SIZE, 16},
      {"2 * -sizeof(mem:common) / 4 << 1", TDM_QUANTITY_SIZE, 16},
      {"addressof(mem:sram) - addressof(group:a)", TDM_QUANTITY_SIZE, 8},
      {"addressof(mem:sram) % 16", TDM_QUANTITY_SIZE, 8},
      {"sizeof(mem:sram) / sizeof(sect:\"a\")", TDM_QUANTITY_NUMBER, 0},
      {"addressof(mem:sram) > sizeof(mem:sram)", TDM_QUANTITY_NUMBER, 0},
      {"addressof(mem:sram) + addressof(mem:sram)", TDM_QUANTITY_NUMBER, 0},
      {"sizeof(mem:sram) + sizeof(mem:common)", TDM_QUANTITY_NUMBER, 0},
      {"addressof(mem:sram) * 2", TDM_QUANTITY_NUMBER, 0},
      {"-addressof(mem:sram)", TDM_QUANTITY_NUMBER, 0},
      {"4 - addressof(mem:sram)", TDM_QUANTITY_NUMBER, 0},
      {"\"sym\" + sizeof(mem:sram)", TDM_QUANTITY_NUMBER, 0},
      {"checksum(crc32w, addressof(mem:sram), 4)", TDM_QUANTITY_NUMBER, 0},
  };
  size_t i;
  for (i = 0; i < sizeof quantities / sizeof *quantities; ++i) {
    tdm_inspect_quantity found = {-1, -1};
    tdm_inspect_expression_delete(
        tdm_inspect_parse_expression(spec, space, quantities[i].text, &found));
    if (found.kind != quantities[i].kind || found.mau_size != quantities[i].mau_size)
      CHECK_TEXT(quantities[i].text, "of another quantity");
  }
}

static tdm_space *space_of(const tdm_spec *spec, const char *name)
{
  tdm_arr *processors = tdm_spec_get_processors(spec);
  tdm_arr *cores = tdm_processor_get_cores(((tdm_processor **)processors->items)[0]);
  tdm_space *space = tdm_core_get_space_by_name(((tdm_core **)cores->items)[0], name);
  tdm_arr_del(cores);
  tdm_arr_del(processors);
  return space;
}

/* "name=text:value, " of each, "?" for what isn't known */
static void put_parameters(const tdm_spec *spec, const char *processor)
{
  tdm_arr *list = tdm_inspect_processor_parameters(tdm_spec_get_processor(spec, processor));
  uint32_t i;
  for (i = 0; i < list->count; ++i) {
    const tdm_inspect_parameter *one = (const tdm_inspect_parameter *)list->items + i;
    put("%s=%s:", one->name, one->text != NULL ? one->text : "?");
    if (one->is_known)
      put("%" PRId64 ", ", one->value);
    else
      put("?, ");
    CHECK(one->is_known || one->value == 0);
  }
  tdm_arr_del(list);
}

static void ask_texts(void)
{
  tdm_spec *spec, *other;
  tdm_space *space;
  tdm_expression *kept;
  tdm_inspect_quantity quantity = {7, 7};
  size_t i;
  int64_t value = 0, failed;
  tdm_init(NULL);
  spec = tdm_parse_file(one_file("expression_scope.tdm"), &no_texts);
  other = tdm_parse_file(one_file("expressions.tdm"), &no_texts);
  if (spec == NULL || other == NULL) puts(tdm_get_last_error());
  CHECK(spec != NULL && other != NULL);
  space = space_of(spec, "lin");
  for (i = 0; i < sizeof text_rows / sizeof *text_rows; ++i)
    check_text_row(&text_rows[i], spec, space);
  check_extents(spec, space);
  check_quantities(spec, space);
  failed = tdm_inspect_failure_count();
  put_parameters(spec, "chip");
  CHECK_PUT("count=3:3, next=3 + 1:4, ");
  put_parameters(spec, "odd");
  CHECK_PUT("used=2 * (3 + 1):8, count=7:7, used_twice=2:2, far=sizeof(sect:\"a\") + 7:?, "
            "division=7 / (2 * (3 + 1) - 2 * (3 + 1)):?, held=?:?, missing=?:?, round=?:?, "
            "around=?:?, ");
  CHECK(tdm_inspect_failure_count() == failed);
  CHECK(tdm_inspect_parse_expression(other, space, "1", &quantity) == NULL);
  CHECK_TEXT(tdm_get_last_error(), "the space is none of this description");
  CHECK(quantity.kind == 7 && quantity.mau_size == 7);
  kept = tdm_inspect_parse_expression(spec, space, "next + sizeof(mem:sram)", NULL);
  tdm_spec_free(spec);
  CHECK(tdm_inspect_expression_evaluate(kept, NULL, NULL, &value) == 1 && value == 68);
  tdm_inspect_expression_delete(kept);
  tdm_inspect_expression_delete(NULL);
  tdm_spec_free(other);
  tdm_cleanup();
}

void ask_expressions(void)
{
  static const tdm_inspect_environment nothing = {NULL, NULL, NULL, NULL, NULL, NULL,
                                                  NULL, NULL, 1,    0,    0};
  tdm_spec *spec;
  tdm_arr *layouts, *statements;
  tdm_inspect_assignment assignment;
  uint32_t i;
  ask_texts();
  tdm_init(NULL);
  spec = tdm_parse_file(one_file("expressions.tdm"), &no_texts);
  if (spec == NULL) puts(tdm_get_last_error());
  CHECK(spec != NULL);
  layouts = tdm_inspect_space_section_layouts(space_of(spec, "lin"));
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
