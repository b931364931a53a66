// One whole parse, from start to end of the library: what a tool pays that reads a description.
//
//     bench_parse [--kept] FILE...
//
// --kept prints how many bytes the spec and the texts of the library keep resident.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include <tdm_c/tdm.h>

namespace {

/// What is resident of the process and is no file's; 0 if the system doesn't tell.
size_t held()
{
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with("RssAnon:")) return std::stoul(line.substr(8)) * 1024;
  return 0;
}

} // namespace

int main(int argc, char **argv)
{
  const bool kept = argc > 1 && std::strcmp(argv[1], "--kept") == 0;
  std::vector<const char *> names(argv + (kept ? 2 : 1), argv + argc);
  tdm_arr files = {sizeof(char *), static_cast<uint32_t>(names.size()),
                   static_cast<uint32_t>(names.size()), names.data()};
  tdm_arr directories = {sizeof(char *), 0, 0, nullptr};
  const size_t before = kept ? held() : 0;
  tdm_init(nullptr);
  tdm_spec *spec = tdm_parse_file(&files, &directories);
  const bool failed = spec == nullptr || tdm_get_error_count() != 0;
  if (failed) std::fprintf(stderr, "%s\n", tdm_get_last_error());
  if (kept) std::printf("%zu\n", held() - before);
  tdm_spec_free(spec);
  tdm_cleanup();
  return failed ? 1 : 0;
}
