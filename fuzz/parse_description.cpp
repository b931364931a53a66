// Hands the input to the library as files.
#include <cctype>

#include <tdm_c/tdm_inspect_source.h>

#include "description.h"
#include "mapping/walk.h"
#include "preprocessor/macro_expand.h"
#include "preprocessor/source_files.h"

namespace fuzz {

namespace {

Directory &directory()
{
  static Directory directory;
  return directory;
}

/// The name behind a separator, made one that stays in the directory.
std::string file_name(std::string_view line)
{
  std::string name;
  for (const char c : line.substr(0, 20))
    if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '.') name += c;
  return name.find_first_not_of('.') == name.npos ? "noname" : name;
}

} // namespace

tdm_spec *parse(std::string_view text)
{
  std::vector<std::string> names;
  std::string name = "main.tdm";
  bool is_input = true;
  for (int files = 0; files < 16; ++files) {
    std::size_t end = text.size();
    for (const char *separator : {"\n//+++ ", "\n//>>> "})
      end = std::min(end, text.find(separator));
    const std::size_t length = std::min(end + 1, text.size());
    const std::string full = directory().write(name, text.substr(0, length));
    if (is_input) names.push_back(full);
    if (end == text.size()) break;
    is_input = text[end + 3] == '>';
    text.remove_prefix(end + 7);
    const std::size_t line = std::min(text.find('\n'), text.size());
    name = file_name(text.substr(0, line));
    text.remove_prefix(std::min(line + 1, text.size()));
  }
  std::vector<const char *> pointers;
  pointers.reserve(names.size());
  for (const std::string &file : names) pointers.push_back(file.c_str());
  const char *dir = directory().path().c_str();
  const auto count = static_cast<std::uint32_t>(pointers.size());
  const tdm_arr files = {sizeof(char *), count, count, pointers.data()};
  const tdm_arr dirs = {sizeof(char *), 1, 1, &dir};
  tdm_init(nullptr);
  // Files that include themselves, macros that multiply and walks in a circle are slow up to their
  // limits.
  tdm_limits_set(TDM_LIMIT_INCLUDE_DEPTH, 30);
  tdm::source_files_limit = 100;
  tdm::expansion_work.limit = 1 << 12;
  tdm::max_walk_steps = 1 << 12;
  // A known text as last error, whatever went before.
  const tdm_arr nothing = {sizeof(char *), 0, 0, nullptr};
  (void)tdm_parse_file(&nothing, &dirs);
  const char *before = tdm_get_last_error();
  tdm_spec *spec = tdm_parse_file(&files, &dirs);
  require(spec == nullptr || tdm_get_last_error() == before, "success leaves the error text");
  return spec;
}

void finish(tdm_spec *spec)
{
  tdm_spec_free(spec);
  tdm_cleanup();
  directory().clear();
}

} // namespace fuzz
