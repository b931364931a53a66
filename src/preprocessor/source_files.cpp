// The records, and the search for the one that a position belongs to.
#include "preprocessor/source_files.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace tdm {

namespace {

struct Renaming {
  const char *name;
  std::int32_t file;
};

struct {
  std::vector<SourceFile> files;
  std::vector<Renaming> renamings;
  std::unordered_set<const char *> names; ///< of all files that have been opened, once each
  std::size_t main_files_left = 0;
  tdm_srcpos include = {};
  std::int32_t depth_limit = 0;
  bool refused = false;
} state;

bool skipped(const SourceFile &file, std::uint32_t line)
{
  return line > file.skip_from && line < file.skip_to;
}

/// Of two readings that a position may belong to, the later one, unless only the earlier one has
/// read the line.
std::int32_t better(std::int32_t found, std::int32_t index, std::uint32_t line)
{
  if (found < 0) return index;
  const auto &files = state.files;
  const bool found_read = !skipped(files[static_cast<std::size_t>(found)], line);
  const bool index_read = !skipped(files[static_cast<std::size_t>(index)], line);
  if (found_read != index_read) return found_read ? found : index;
  return found > index ? found : index;
}

} // namespace

std::size_t source_files_limit = 1 << 16;

std::size_t source_files_allowed()
{
  return std::max(source_files_limit, state.names.size() * (source_files_limit / 1024));
}

void source_files_start(std::size_t main_files)
{
  state.names.clear();
  state.files.assign(main_files, {});
  state.renamings.clear();
  state.main_files_left = main_files;
  state.include = {};
  state.refused = false;
}

void source_files_end()
{
  state = {};
}

std::int32_t source_file_opened(const char *name, std::int32_t includer)
{
  state.names.insert(name);
  if (includer < 0 && state.main_files_left > 0) {
    SourceFile &file = state.files[--state.main_files_left];
    file.name = name;
    return static_cast<std::int32_t>(state.main_files_left);
  }
  SourceFile file;
  file.name = name;
  file.includer = includer;
  if (includer >= 0) {
    file.include = state.include;
    file.depth = state.files[static_cast<std::size_t>(includer)].depth + 1;
  }
  state.files.push_back(file);
  return static_cast<std::int32_t>(state.files.size() - 1);
}

bool source_files_refused()
{
  return std::exchange(state.refused, true);
}

void source_files_include_at(const tdm_srcpos &place)
{
  state.include = place;
}

void source_file_renamed(std::int32_t index, const char *name)
{
  if (state.renamings.empty() || state.renamings.back().name != name ||
      state.renamings.back().file != index)
    state.renamings.push_back({name, index});
}

void source_file_skips(std::int32_t index, std::uint32_t line, bool skips)
{
  SourceFile &file = state.files[static_cast<std::size_t>(index)];
  if (skips) {
    file.skipping = line;
    return;
  }
  if (file.skipping != 0 && line > file.skipping &&
      line - file.skipping > file.skip_to - file.skip_from) {
    file.skip_from = file.skipping;
    file.skip_to = line;
  }
  file.skipping = 0;
}

const std::vector<SourceFile> &source_files()
{
  return state.files;
}

std::int32_t source_file_of(const char *name, std::uint32_t line)
{
  std::int32_t found = -1;
  for (std::size_t i = 0; i < state.files.size(); ++i)
    if (state.files[i].name == name) found = better(found, static_cast<std::int32_t>(i), line);
  for (const Renaming &renaming : state.renamings)
    if (renaming.name == name) found = better(found, renaming.file, line);
  return found;
}

void source_files_limit_depth(std::int32_t depth)
{
  state.depth_limit = depth;
}

std::int32_t source_files_depth_limit()
{
  return state.depth_limit;
}

} // namespace tdm
