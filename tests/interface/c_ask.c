/*
 * A client in plain C that asks what the additive headers answer beyond the model itself: the files
 * and tokens of the text, overlaps, routes, and expressions.
 *
 *     c_ask DIRECTORY
 *
 * The directory is that of the descriptions.
 */
#include "c_ask.h"

#include <stdarg.h>

int failures;
tdm_arr no_texts = {sizeof(void *), 0, 0, NULL};

static const char *directory;
static char text[8192];
static size_t length;

void check_text(const char *file, int line, const char *found, const char *expected)
{
  if (found == expected || (found != NULL && expected != NULL && strcmp(found, expected) == 0))
    return;
  printf("%s:%d: found    %s\n%s:%d: expected %s\n", file, line, found != NULL ? found : "null",
         file, line, expected != NULL ? expected : "null");
  ++failures;
}

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

void check_put(const char *file, int line, const char *expected)
{
  check_text(file, line, text, expected);
  length = 0;
  text[0] = '\0';
}

const char *base_name(const char *file)
{
  const char *slash = strrchr(file, '/');
  return slash != NULL ? slash + 1 : file;
}

tdm_arr *one_file(const char *name)
{
  static char path[4096];
  static void *items[1] = {path};
  static tdm_arr files = {sizeof(void *), 1, 1, items};
  snprintf(path, sizeof path, "%s/%s", directory, name);
  return &files;
}

int main(int argc, char **argv)
{
  if (argc < 2) return 2;
  directory = argv[1];
  ask_sources();
  ask_overlaps();
  ask_routes();
  ask_expressions();
  if (failures > 0) printf("%d failures\n", failures);
  return failures > 0 ? 1 : 0;
}
