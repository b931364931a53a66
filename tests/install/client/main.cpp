// A client in C++ that knows the installed package alone.
//
//   client CHIP
#include <cstdio>

#include "client.h"

static int faults = 0;

void check(bool holds, const char *what, const char *file, int line)
{
  if (holds) return;
  std::printf("%s:%d: %s\n", file, line, what);
  faults++;
}

int main(int argc, char **argv)
{
  void *files[] = {argv[argc - 1]};
  const tdm_arr names = {sizeof(void *), 1, 1, files}, none = {sizeof(void *), 0, 0, nullptr};
  tdm_init(&none);
  tdm_spec *spec = tdm_parse_file(&names, &none);
  if (spec == nullptr) {
    std::printf("%s\n", tdm_get_last_error());
    return 1;
  }
  tdm_core *core = tdm_processor_get_core(tdm_spec_get_processor(spec, "cpu1"), "cor1");
  tdm_space *space = tdm_core_get_space_by_name(core, "lin");
  test_expressions(spec);
  test_walk(space);
  test_failures(space, tdm_core_get_space_by_name(core, "bad"));
  tdm_spec_free(spec);
  test_keeping(names);
  tdm_cleanup();
  std::printf(faults == 0 ? "all as expected\n" : "%d faults\n", faults);
  return faults == 0 ? 0 : 1;
}
