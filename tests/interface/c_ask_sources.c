/* The files that were read, their chains of #include, and the tokens of the preprocessor. */
#include "c_ask.h"

static void put_position(const tdm_srcpos *position)
{
  CHECK(position->pragmas == NULL);
  if (position->file == NULL)
    put("nowhere");
  else
    put("%s:%d:%d", base_name(position->file), position->line, position->column);
}

static void put_files(void)
{
  tdm_arr *files = tdm_inspect_source_files();
  uint32_t i;
  for (i = 0; i < files->count; ++i) {
    const tdm_inspect_source_file *file = (const tdm_inspect_source_file *)files->items + i;
    put("%s%s %d ", i > 0 ? ", " : "", base_name(file->name), file->includer);
    put_position(&file->included);
  }
  tdm_arr_del(files);
}

static void put_chain(const char *directory_of, const char *name, int line)
{
  char path[4096];
  tdm_srcpos position;
  tdm_arr *chain;
  uint32_t i;
  memset(&position, 0, sizeof position);
  if (name != NULL) {
    snprintf(path, sizeof path, "%.*s%s", (int)(base_name(directory_of) - directory_of),
             directory_of, name);
    position.file = path;
  }
  position.line = line;
  chain = tdm_inspect_include_chain(&position);
  for (i = 0; i < chain->count; ++i) {
    if (i > 0) put(" < ");
    put_position((const tdm_srcpos *)chain->items + i);
  }
  tdm_arr_del(chain);
}

static const char all_files[] =
    "main.tdm -1 nowhere, guarded.tdm 0 main.tdm:2:1, outer.tdm 0 main.tdm:3:1, "
    "inner.tdm 2 outer.tdm:2:3, guarded.tdm 2 outer.tdm:3:1, inner.tdm 2 renamed.tdm:7:1, "
    "guarded.tdm 0 main.tdm:4:1";

static void ask_chains(const char *main_file)
{
  put_chain(main_file, "guarded.tdm", 3); /* only the first time */
  CHECK_PUT("main.tdm:2:1");
  put_chain(main_file, "guarded.tdm", 1); /* any time; so the last one */
  CHECK_PUT("main.tdm:4:1");
  put_chain(main_file, "inner.tdm", 1);
  CHECK_PUT("renamed.tdm:7:1 < main.tdm:3:1");
  put_chain("", "renamed.tdm", 7);
  CHECK_PUT("main.tdm:3:1");
  put_chain(main_file, "main.tdm", 5);
  put_chain(main_file, "none.tdm", 5);
  put_chain(main_file, NULL, 5);
  CHECK_PUT("");
}

/* Where reading has got to, which is a token ahead. */
static void put_reading(void)
{
  tdm_srcpos reading;
  if (tdm_inspect_reading(&reading) == 1) put_position(&reading);
}

static void ask_tokens(void)
{
  tdm_inspect_token token;
  tdm_token_stream *stream;
  const char *main_file;
  put_reading();
  CHECK_PUT("");
  stream = tdm_inspect_tokens_start(one_file("sources/main.tdm"), &no_texts);
  CHECK(stream != NULL);
  put_reading();
  CHECK_PUT("main.tdm:1:0");
  main_file = ((const char **)one_file("sources/main.tdm")->items)[0];
  while (tdm_inspect_tokens_next(stream, &token) == 1) {
    if (token.number == TDM_TOKEN_WHITE) CHECK(strlen(token.text) <= 2);
    if (token.number == TDM_TOKEN_WHITE || token.number == TDM_TOKEN_NEWLINE) continue;
    put("%d %s ", token.number, token.text);
    put_position(&token.position);
    put("\n");
  }
  CHECK_PUT("7 guarded guarded.tdm:3:1\n"
            "7 inner inner.tdm:1:1\n"
            "7 inner inner.tdm:1:1\n"
            "7 memory main.tdm:5:1\n"
            "7 ram main.tdm:5:8\n"
            "25 { main.tdm:5:12\n"
            "7 size main.tdm:5:14\n"
            "57 = main.tdm:5:19\n"
            "9 4 main.tdm:5:21\n"
            "37 + main.tdm:5:21\n"
            "9 4 main.tdm:5:21\n"
            "74 ; main.tdm:5:29\n"
            "27 } main.tdm:5:31\n"
            "17 // a remark main.tdm:5:33\n"
            "11 \"text\" main.tdm:9:1\n"
            "10 1.5 main.tdm:9:8\n"
            "17 /* of\ntwo lines */ main.tdm:9:12\n"
            "12 'c' main.tdm:10:14\n"
            "32 -> main.tdm:10:18\n"
            "7 a main.tdm:11:1\n"
            "7 b main.tdm:11:1\n"
            "37 + main.tdm:11:1\n"
            "7 a main.tdm:11:1\n"
            "7 b main.tdm:11:1\n");
  CHECK(tdm_inspect_tokens_next(stream, &token) == 0 && tdm_inspect_failure_count() == 1);
  put_files();
  put_reading();
  CHECK_PUT(all_files);
  ask_chains(main_file);
  tdm_inspect_tokens_end(stream);
  tdm_inspect_tokens_end(stream);
  tdm_inspect_tokens_end(NULL);
}

/* The text of the first token of the kind. */
static const char *text_of_first(int number)
{
  tdm_inspect_token token = {0, NULL, {NULL, 0, 0, NULL}};
  tdm_token_stream *stream = tdm_inspect_tokens_start(one_file("sources/main.tdm"), &no_texts);
  while (tdm_inspect_tokens_next(stream, &token) == 1 && token.number != number) continue;
  tdm_inspect_tokens_end(stream);
  return token.text;
}

/* From the first input of a period on. */
static void check_addresses_of_texts(void)
{
  static const int kinds[] = {TDM_TOKEN_NAME, TDM_TOKEN_STRING, TDM_TOKEN_COMMENT};
  tdm_cleanup();
  tdm_init(NULL);
  for (int i = 0; i < 3; ++i) CHECK(text_of_first(kinds[i]) == text_of_first(kinds[i]));
}

/* A stream ends by whatever else begins an input, and a handle that is left is no harm. */
static void end_streams(void)
{
  tdm_inspect_token token;
  tdm_arr *files = one_file("sources/main.tdm");
  tdm_token_stream *stream = tdm_inspect_tokens_start(files, &no_texts);
  CHECK(tdm_inspect_tokens_next(stream, &token) == 1);
  CHECK(tdm_parse_file(files, &no_texts) == NULL);
  CHECK(strstr(tdm_get_last_error(), "guarded.tdm\" 3/1] syntax error: ") != NULL);
  CHECK(tdm_inspect_tokens_next(stream, &token) == 0);
  CHECK_TEXT(tdm_get_last_error(), "the stream of tokens has been ended");
  tdm_inspect_tokens_end(stream);

  stream = tdm_inspect_tokens_start(files, &no_texts);
  tdm_init(NULL);
  CHECK(tdm_inspect_tokens_next(stream, &token) == 0);
  CHECK(tdm_inspect_tokens_next(NULL, &token) == 0);
  stream = tdm_inspect_tokens_start(files, &no_texts);
  CHECK(stream != NULL);

  CHECK(tdm_inspect_tokens_start(one_file("sources/none.tdm"), &no_texts) == NULL);
  CHECK_TEXT(base_name(tdm_get_last_error()), "none.tdm\"");
  CHECK(tdm_inspect_tokens_start(&no_texts, &no_texts) == NULL);
  CHECK_TEXT(tdm_get_last_error(), "no target-description file given");
}

/* The files are known after a failure, too. */
static void ask_after_failure(void)
{
  CHECK(tdm_parse_file(one_file("sources/outer.tdm"), &no_texts) == NULL);
  put_files();
  CHECK_PUT("outer.tdm -1 nowhere, inner.tdm 0 outer.tdm:2:3, guarded.tdm 0 outer.tdm:3:1");
}

static void limit_depth(void)
{
  tdm_inspect_token token;
  tdm_inspect_message message;
  tdm_token_stream *stream;
  int errors = tdm_get_error_count();
  CHECK(tdm_limits_set(TDM_LIMIT_INCLUDE_DEPTH, 1) == 1);
  CHECK(tdm_limits_set(TDM_LIMIT_INCLUDE_DEPTH, -1) == 0 && tdm_limits_set(2, 1) == 0);
  stream = tdm_inspect_tokens_start(one_file("sources/main.tdm"), &no_texts);
  while (tdm_inspect_tokens_next(stream, &token) == 1) continue;
  tdm_inspect_tokens_end(stream);
  put_files();
  CHECK_PUT("main.tdm -1 nowhere, guarded.tdm 0 main.tdm:2:1, outer.tdm 0 main.tdm:3:1, "
            "guarded.tdm 0 main.tdm:4:1");
  CHECK(tdm_get_error_count() == errors + 3);
  CHECK(tdm_inspect_get_message(tdm_inspect_message_count() - 1, &message) == 1);
  put("%c%d %s ", message.letter, message.number, message.text);
  put("%s:%d", base_name(message.position.file), message.position.line);
  CHECK_PUT("E956 #include nested too deeply, the limit is 1 renamed.tdm:7");
  CHECK(tdm_limits_set(TDM_LIMIT_INCLUDE_DEPTH, INT64_MAX) == 1);
}

void ask_sources(void)
{
  tdm_arr *nothing = tdm_inspect_source_files();
  CHECK(nothing->count == 0);
  tdm_arr_del(nothing);
  put_chain("", "before", 1);
  CHECK(tdm_inspect_tokens_start(one_file("sources/main.tdm"), &no_texts) == NULL);
  CHECK_TEXT(tdm_get_last_error(), "tdm_init has not been called");
  tdm_init(NULL);
  tdm_cleanup();
  CHECK_TEXT(tdm_inspect_token_name(TDM_TOKEN_NAME), "<identifier>");
  CHECK(tdm_inspect_token_name(-1) == NULL && tdm_inspect_token_name(75) == NULL);
  CHECK_TEXT(tdm_inspect_token_name(74), ";");

  tdm_init(NULL);
  ask_tokens();
  check_addresses_of_texts();
  end_streams();
  ask_after_failure();
  limit_depth();
  CHECK(tdm_inspect_tokens_start(one_file("sources/main.tdm"), &no_texts) != NULL);
  tdm_cleanup();
}
