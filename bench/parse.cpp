// One whole parse, from start to end of the library: what a tool pays that reads a description.
//
//     bench_parse FILE...
#include <cstdio>
#include <vector>

#include <tdm_c/tdm.h>

int main(int argc, char **argv)
{
  std::vector<const char *> names(argv + 1, argv + argc);
  tdm_arr files = {sizeof(char *), static_cast<uint32_t>(names.size()),
                   static_cast<uint32_t>(names.size()), names.data()};
  tdm_arr directories = {sizeof(char *), 0, 0, nullptr};
  tdm_init(nullptr);
  tdm_spec *spec = tdm_parse_file(&files, &directories);
  const bool failed = spec == nullptr || tdm_get_error_count() != 0;
  if (failed) std::fprintf(stderr, "%s\n", tdm_get_last_error());
  tdm_spec_free(spec);
  tdm_cleanup();
  return failed ? 1 : 0;
}
