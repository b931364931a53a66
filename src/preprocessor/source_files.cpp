// The records, and the search for the one that a position belongs to.
#include "preprocessor/source_files.h"

#include <algorithm>
#include <functional>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace tdm {

namespace {

/// The files that have been read under a name, the latest first.
using Readings = std::set<std::int32_t, std::greater<>>;

struct {
  std::vector<SourceFile> files;
  std::unordered_map<const char *, Readings> readings; ///< under their own names, and by #line
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
  state.readings.clear();
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
    const auto index = static_cast<std::int32_t>(state.main_files_left);
    state.readings[name].insert(index);
    return index;
  }
  SourceFile file;
  file.name = name;
  file.includer = includer;
  if (includer >= 0) {
    file.include = state.include;
    file.depth = state.files[static_cast<std::size_t>(includer)].depth + 1;
  }
  const auto index = static_cast<std::int32_t>(state.files.size());
  state.files.push_back(file);
  state.readings[name].insert(index);
  return index;
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
  state.readings[name].insert(index);
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
  const auto readings = state.readings.find(name);
  if (readings == state.readings.end()) return -1;
  // The latest one that read the line: those that a guard made skip it come later, as a rule few.
  for (const std::int32_t index : readings->second)
    if (!skipped(state.files[static_cast<std::size_t>(index)], line)) return index;
  return *readings->second.begin();
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
