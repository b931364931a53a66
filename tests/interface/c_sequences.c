/*
 * The part of the client in C that compares whole walks: what is called, in which order, with which
 * environments, and what is left out when entries of the table are null.
 *
 * A walk is written as one letter for each call: that of the entry in the order of the table, and
 * "?" or "!" with the first letter of the name for a question of a condition.
 */
#include "client.h"

#include <tdm_c/tdm_inspect.h>

static const char letters[] = "shvVcdr={}iI<>()HmRlL:StT";
enum { entries = sizeof letters - 1, deepest = 16 };

static char calls[200];

/* The environments of the scopes that are open; null stands for one that hasn't been seen yet. */
static const tdm_statement_env *open_scopes[deepest];
static int depth;
/* Scopes aren't seen to open and to end without the entries for that: then only calls count. */
static int partial;

static void note(char letter)
{
  const size_t length = strlen(calls);
  if (length + 1 < sizeof calls) calls[length] = letter;
}

static void push(const tdm_statement_env *env)
{
  if (partial) return;
  for (int i = 0; i < depth; ++i) CHECK(env == NULL || open_scopes[i] != env);
  CHECK(depth < deepest);
  if (depth < deepest) open_scopes[depth++] = env;
}

static void pop(void)
{
  CHECK(partial || depth > 0);
  if (depth > 0) --depth;
}

/* A statement is given the environment of the innermost scope, and no other. */
static void statement(char letter, const tdm_statement_env *env)
{
  note(letter);
  if (partial) return;
  CHECK(env != NULL && depth > 0);
  if (depth > 0 && open_scopes[depth - 1] == NULL) {
    --depth;
    push(env);
  }
  CHECK(depth > 0 && open_scopes[depth - 1] == env);
}

#define DEFINITION(name, letter, type)                                                             \
  static void name(type *definition, void *user)                                                   \
  {                                                                                                \
    note(letter);                                                                                  \
    CHECK(user == calls && (definition != NULL || letter == 'c'));                                 \
  }
#define STATEMENT(name, letter, type, then)                                                        \
  static void name(type *given, tdm_statement_env *env, void *user)                                \
  {                                                                                                \
    if (letter == '>') pop();                                                                      \
    statement(letter, env);                                                                        \
    CHECK(user == calls && given != NULL);                                                         \
    then;                                                                                          \
  }

DEFINITION(stack_def, 's', tdm_stack_def)
DEFINITION(heap_def, 'h', tdm_heap_def)
DEFINITION(vector_table_begin, 'v', tdm_vector_table)
DEFINITION(vector_table_end, 'V', tdm_vector_table)
DEFINITION(copy_table, 'c', tdm_copy_table)
DEFINITION(direct_init, 'd', tdm_direct_init)
DEFINITION(reserved_range, 'r', tdm_reserved_range)
STATEMENT(assignment, '=', tdm_assignment, )
STATEMENT(block_begin, '{', tdm_block, )
STATEMENT(block_end, '}', tdm_block, )
STATEMENT(if_begin, 'i', tdm_if_statement, )
STATEMENT(if_end, 'I', tdm_if_statement, )
STATEMENT(create_section_begin, '<', tdm_create_section_statement, push(NULL))
STATEMENT(create_section_end, '>', tdm_create_section_statement, )
STATEMENT(heap_statement, 'H', tdm_heap_statement, )
STATEMENT(memory_copy, 'm', tdm_memory_copy_statement, )
STATEMENT(reserved_statement, 'R', tdm_reserved_statement, )
STATEMENT(selection, ':', tdm_selection_statement, )
STATEMENT(stack_statement, 'S', tdm_stack_statement, )
STATEMENT(struct_statement, 't', tdm_struct_statement, )
STATEMENT(table_statement, 'T', tdm_table_statement, )

static void group_begin(tdm_group *group, tdm_statement_env *outer, tdm_statement_env *inner,
                        void *user)
{
  statement('(', outer);
  CHECK(user == calls && group != NULL && inner != NULL);
  push(inner);
}

static void group_end(tdm_group *group, tdm_statement_env *outer, tdm_statement_env *inner,
                      void *user)
{
  CHECK(user == calls && group != NULL);
  CHECK(partial || (depth > 0 && open_scopes[depth - 1] == inner));
  pop();
  statement(')', outer);
}

static void section_layout_begin(tdm_section_layout *layout, void *user)
{
  note('l');
  CHECK(user == calls && layout != NULL && depth == 0);
  push(NULL);
}

static void section_layout_end(tdm_section_layout *layout, void *user)
{
  note('L');
  CHECK(user == calls && layout != NULL);
  pop();
  CHECK(depth == 0);
}

/* The names that are known are single letters of the text that is given. */
static int section_exists(const char *name, void *user)
{
  note('?');
  note(*name);
  return strchr(user, *name) != NULL;
}

static int symbol_defined(const char *name, void *user)
{
  note('!');
  note(*name);
  return strchr(user, *name) != NULL;
}

static const tdm_walk_callbacks every_entry = {stack_def,
                                               heap_def,
                                               vector_table_begin,
                                               vector_table_end,
                                               copy_table,
                                               direct_init,
                                               reserved_range,
                                               assignment,
                                               block_begin,
                                               block_end,
                                               if_begin,
                                               if_end,
                                               create_section_begin,
                                               create_section_end,
                                               group_begin,
                                               group_end,
                                               heap_statement,
                                               memory_copy,
                                               reserved_statement,
                                               section_layout_begin,
                                               section_layout_end,
                                               selection,
                                               stack_statement,
                                               struct_statement,
                                               table_statement};

static const char needs_data[] =
    "this expression can only be used in struct statements and/or symbol assignments";

/* A condition takes `defined` as 0 and doesn't ask; `exists` is asked wherever it is reached. */
static const struct row {
  const char *space, *known; /* null: no callbacks for expressions */
  const char *expected, *failure;
} rows[] = {
    {"empty", "", "c", NULL},
    {"all", "ab", "sshhcdvvrrl{({(:){={}m}i?ai{St}II<{:({{:}})}>R})}Ll{<{}>}LVV", NULL},
    {"all", "", "sshhcdvvrrl{({(:){={}m}i?a(T)I<{:({{:}})}>R})}Ll{<{}>}LVV", NULL},
    {"fresh", NULL, "cl{({<{({({:})}){:}:}>{({})}})}L", NULL},
    {"branches", "", "cl{i?aSIii?bTIIi?aIi?aI}L", NULL},
    {"branches", "a", "cl{i?aHIii?bTIIi?a?bIi?aHI}L", NULL},
    {"branches", "b", "cl{i?aSIii?b({i?a=I})IIi?aIi?aI}L", NULL},
    {"branches", "ab", "cl{i?aHIii?b({i?a:I})IIi?a?bHIi?aHI}L", NULL},
    {"branches", NULL, "cl{i", needs_data},
    {"again", "a", "cl{iIi?a{i?aI}IT}L", NULL},
    {"again", NULL, "cl{iIi", needs_data},
    {"rules", "a", "cl{({i?a({H{",
     "syntax error: trying to set ordered restriction for clustered group"},
    {"rules", "", "cl{({i?a(S)I})T}Ll{}L", NULL},
    {"late", "a", "cl{i?a{<{({})}>{",
     "syntax error: using page restriction without setting page size for space cpu1:cor1:late"},
    {"late", "", "cl{i?aIT}L", NULL},
    {"data", "a", "cl{({Ti?a", needs_data},
    {"data", "", "cl{({Ti?aHI})T}L", NULL},
};

static void run(tdm_space *space, const struct row *row, const tdm_walk_callbacks *table)
{
  const tdm_expression_callbacks questions = {section_exists, symbol_defined};
  memset(calls, 0, sizeof calls);
  depth = 0;
  tdm_space_walk(space, table, calls, row->known != NULL ? &questions : NULL, (void *)row->known);
}

/* Twice: nothing of a walk, failed or not, is left for the next one. */
static void check_row(tdm_space *space, const struct row *row)
{
  for (int i = 0; i < 2; ++i) {
    const int64_t before = tdm_inspect_failure_count();
    run(space, row, &every_entry);
    CHECK_TEXT(calls, row->expected);
    CHECK(tdm_inspect_failure_count() - before == (row->failure != NULL));
    if (row->failure != NULL) {
      const char *text = strchr(tdm_get_last_error(), ']');
      CHECK_TEXT(text != NULL ? text + 2 : "", row->failure);
    }
  }
}

/* What is left of a walk with one of its entries alone, or with all others. */
static void filter(const char *expected, char letter, int alone, char *left)
{
  for (; *expected != '\0'; ++expected)
    if (*expected == '?' || *expected == '!') {
      *left++ = *expected++;
      *left++ = *expected;
    } else if ((*expected == letter) == alone) {
      *left++ = *expected;
    }
  *left = '\0';
}

/* Each entry by itself, and each of them null: what is skipped are its calls, and never a scope. */
static void check_entries(tdm_space *space, const struct row *row)
{
  void (*given[entries])(void), (*slots[entries])(void);
  tdm_walk_callbacks table;
  char expected[sizeof calls];
  CHECK(sizeof given == sizeof table);
  memcpy(given, &every_entry, sizeof given);
  partial = 1;
  for (int i = 0; i < 2 * entries; ++i) {
    const int entry = i / 2, alone = i % 2;
    for (int j = 0; j < entries; ++j) slots[j] = (j == entry) == alone ? given[j] : NULL;
    memcpy(&table, slots, sizeof table);
    run(space, row, &table);
    filter(row->expected, letters[entry], alone, expected);
    CHECK_TEXT(calls, expected);
  }
  partial = 0;
}

void sequences(const char *file)
{
  const char *name = file;
  tdm_arr files = array_of(&name, 1), none = array_of(NULL, 0);
  tdm_spec *spec;
  tdm_init(NULL);
  spec = tdm_parse_file(&files, &none);
  CHECK(spec != NULL);
  if (spec == NULL) puts(tdm_inspect_failure_text());
  for (size_t i = 0; spec != NULL && i < sizeof rows / sizeof *rows; ++i) {
    tdm_core *core = tdm_processor_get_core(tdm_spec_get_processor(spec, "cpu1"), "cor1");
    tdm_space *space = tdm_core_get_space_by_name(core, rows[i].space);
    const int differences = failures;
    check_row(space, &rows[i]);
    check_entries(space, &rows[i]);
    if (failures != differences) printf("that was row %d, space %s\n", (int)i, rows[i].space);
  }
  tdm_spec_free(spec);
  tdm_cleanup();
}
